// SPDX-License-Identifier: MIT
#include "platform/loop/private_loop.hpp"

#include "platform/fs/file.hpp"
#include "platform/late/glib.hpp"
#include "platform/process/fork_gate.hpp"

#include <sys/eventfd.h>

#include <algorithm>
#include <array>

namespace vellum {

namespace {

gint PollOutside(GPollFD *descriptors, guint count, gint timeout) noexcept {
    const OutsideLibrary waiting;
    return g_poll(descriptors, count, timeout);
}

// GLib ends a process that has no descriptor for a context. It needs one; more are asked for, so that other
// threads may take some meanwhile.
bool HasRoomForContext() noexcept {
    std::array<TDescriptor, 4> room;
    for (TDescriptor &descriptor : room) descriptor = TDescriptor(::eventfd(0, EFD_CLOEXEC));
    return std::ranges::all_of(room, &TDescriptor::IsOpen);
}

GMainContext *CreateContext() noexcept {
    return sGLib.Open() && HasRoomForContext() ? g_main_context_new() : nullptr;
}

} // namespace

void PrivateLoop::End::operator()(GMainContext *context) const noexcept {
    g_main_context_unref(context);
}

void PrivateLoop::End::operator()(GMainLoop *loop) const noexcept {
    g_main_loop_unref(loop);
}

void PrivateLoop::End::operator()(GSource *timer) const noexcept {
    g_source_destroy(timer);
    g_source_unref(timer);
}

PrivateLoop::PrivateLoop(const char *name) noexcept
    : name_(name), context_(CreateContext()),
      loop_(context_ ? g_main_loop_new(context_.get(), FALSE) : nullptr) {
    if (context_) g_main_context_set_poll_func(context_.get(), PollOutside);
}

void PrivateLoop::SetTimer(std::chrono::milliseconds delay, TimerAction action, void *info) noexcept {
    action_ = action;
    info_ = info;
    timer_.reset(g_timeout_source_new(static_cast<guint>(delay.count())));
    const GSourceFunc fire = [](gpointer loop) -> gboolean {
        const auto *mine = static_cast<PrivateLoop *>(loop);
        mine->action_(mine->info_);
        return G_SOURCE_REMOVE;
    };
    (g_source_set_name)(timer_.get(), name_); // newer ones have a macro
    g_source_set_callback(timer_.get(), fire, this, nullptr);
    g_source_attach(timer_.get(), context_.get());
}

void PrivateLoop::Run() noexcept {
    g_main_loop_run(loop_.get());
}

void PrivateLoop::Stop() noexcept {
    g_main_loop_quit(loop_.get());
}

} // namespace vellum
