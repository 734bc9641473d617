// SPDX-License-Identifier: MIT
// Which application the running program is: whose settings hold for it, and what kind of process it is.
#pragma once

#include <vellum/values.hpp>

#include <string>
#include <string_view>

namespace vellum {

// Where this is learned from. Those of the process; tests name others.
struct ApplicationSources {
    std::string flatpak_info = "/.flatpak-info";
    std::string control_groups = "/proc/self/cgroup";
    std::string process_state = "/proc/self/stat";
};

// The identifier of the running application, the first of
// - "BundleIdentifier" in the Info.vlist of its main bundle (main_bundle.hpp says which is believed),
// - the id that Flatpak runs it under,
// - the id of the systemd unit, a scope or a service, in which the desktop started it.
// Null when none names one, and in a program that runs with more rights than its caller. May throw
// std::bad_alloc.
Ref<const ValString> CopyApplicationIdentifier(const ApplicationSources &sources = {});

// Whether the application's information holds the boolean true for a key, or a number other than 0.
bool DeclaresTrue(const ValDictionary *information, const ValString *key) noexcept;

// Whether the application is linked against a system release that has a fix, by the fix's number.
bool HasCompatibilityFix(std::string_view fix) noexcept;

// Whether the process is a system service: systemd started it as one, it has no display, and no terminal.
// May throw std::bad_alloc.
bool IsDaemonProcess(const ApplicationSources &sources = {});

// Whether the process has a display that a window could be shown on.
bool HasDisplay() noexcept;

} // namespace vellum
