// SPDX-License-Identifier: MIT
// What the font server, or another service of it, is called in this session.
#pragma once

#include "ipc/messages/message_rows.hpp"
#include "ipc/session/session_manager.hpp"

#include <array>

namespace vellum {

class ServerName {
public:
    explicit ServerName(const char *service = kFontServerName) noexcept {
        try {
            TSessionManager().ResolveServiceName(name_.data(), name_.size(), service);
        } catch (...) { // memory is exhausted
            name_[0] = '\0';
        }
    }

    // False when there is no such name: the session's suffix makes none.
    bool IsValid() const noexcept { return name_[0] != '\0'; }
    const char *Get() const noexcept { return name_.data(); }

private:
    std::array<char, 64> name_; // with the zero that ends it
};

} // namespace vellum
