// SPDX-License-Identifier: MIT
// TAutoActivationVerifier: whether this process may have missing fonts searched and activated.
#pragma once

#include <atomic>
#include <cstdint>

namespace vellum {

class TAutoActivationVerifier {
public:
    // Whether it may now; `asks` becomes whether the user wants to be asked before a font is. The settings
    // are read each time. What the application declares of itself is read once. What kind of process it is,
    // together with what the settings allowed at that moment, is found once, and never again: a process to
    // which they did not allow it then may not for the rest of its life, deliberately. May throw
    // std::bad_alloc.
    static bool CanAutoActivateFonts(bool &asks);

private:
    static constexpr uint32_t kClassified = 1;
    static constexpr uint32_t kMayActivate = 2;
    static constexpr uint32_t kIsReady = 4;

    static bool SettingsAllow(bool &asks, bool &forbids);
    static void Classify(bool is_allowed);

    static std::atomic<uint32_t> sFlags;
};

} // namespace vellum
