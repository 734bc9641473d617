// SPDX-License-Identifier: MIT
#include "server/desktop_signals.hpp"

#include "service/session_bus.hpp"

namespace vellum {

namespace {

constexpr char kName[] = "org.vellum.Fonts";
constexpr char kPath[] = "/org/vellum/Fonts";

GVariant *Strings(const std::vector<std::string> &texts) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_STRING_ARRAY);
    for (const std::string &text : texts)
        if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
            g_variant_builder_add(&builder, "s", text.c_str());
    return g_variant_builder_end(&builder);
}

void Emit(GDBusConnection *bus, const DesktopNews &news) {
    GVariant *changes[] = {Strings(news.came), Strings(news.went)};
    g_dbus_connection_emit_signal(bus, nullptr, kPath, kName, "FontsChanged",
                                  g_variant_new_tuple(changes, 2), nullptr);
    g_dbus_connection_flush_sync(bus, nullptr, nullptr);
}

} // namespace

DesktopSignals::DesktopSignals() : thread_([this] { Run(); }) {}

DesktopSignals::~DesktopSignals() {
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void DesktopSignals::Say(DesktopNews news) {
    const std::lock_guard lock(mutex_);
    if (waiting_.size() >= kMostWaiting) waiting_.pop_front();
    waiting_.push_back(std::move(news));
    changed_.notify_one();
}

void DesktopSignals::Run() {
    const SessionBus bus = ConnectToSessionBus(kName);
    for (;;) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return is_ending_ || !waiting_.empty(); });
        if (waiting_.empty()) return; // ending, and everything said
        const DesktopNews news = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        if (bus) Emit(bus.get(), news);
    }
}

} // namespace vellum
