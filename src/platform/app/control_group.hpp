// SPDX-License-Identifier: MIT
// What the name of a process's control group says: systemd puts each service and each application of a
// desktop into one of its own.
//
//     /user.slice/user-1000.slice/user@1000.service/app.slice/app-gnome-org.example.App-4711.scope
//     /system.slice/cron.service
#pragma once

#include <string>
#include <string_view>

namespace vellum {

// The path of the process's group in systemd's hierarchy, from the text of /proc/PID/cgroup; empty when
// there is none.
std::string_view ControlGroup(std::string_view text) noexcept;

// The application whose group it is, its escapes decoded: of the innermost unit of the form
// app[-LAUNCHER]-ID-RANDOM.scope, app[-LAUNCHER]-ID.service or app[-LAUNCHER]-ID@RANDOM.service. Empty
// when none is of such a form. May throw std::bad_alloc.
std::string ApplicationOfControlGroup(std::string_view group);

// Whether it is the group of a service of the system, and not of a user's.
bool IsSystemService(std::string_view group) noexcept;

} // namespace vellum
