// SPDX-License-Identifier: MIT
#include "platform/port/foreign_descriptors.hpp"

#include "platform/process/own_thread.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

namespace vellum {

namespace {

void *CloseOnThread(void *descriptor) {
    ::close(static_cast<int>(reinterpret_cast<intptr_t>(descriptor)));
    return nullptr;
}

} // namespace

bool IsMemoryFile(int descriptor) noexcept {
    return ::fcntl(descriptor, F_GET_SEALS) >= 0;
}

void CloseApart(TDescriptor descriptor) noexcept {
    // A connection that lingers is reset instead; for what is none, this does nothing.
    const linger at_once = {1, 0};
    ::setsockopt(descriptor.Get(), SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    const SignalsBlocked blocked;
    pthread_t thread;
    const auto number = static_cast<intptr_t>(descriptor.Get());
    if (::pthread_create(&thread, nullptr, CloseOnThread, reinterpret_cast<void *>(number)) == 0) {
        descriptor.Release();
        ::pthread_detach(thread);
    }
}

} // namespace vellum
