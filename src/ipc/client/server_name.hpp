// SPDX-License-Identifier: MIT
// What the font server is called in this session.
#pragma once

#include "ipc/messages/message_rows.hpp"
#include "ipc/session/session_manager.hpp"

#include <array>

namespace vellum {

class ServerName {
public:
    ServerName() noexcept {
        try {
            TSessionManager().ResolveServiceName(name_.data(), name_.size(), kFontServerName);
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
