// SPDX-License-Identifier: MIT
// Files that came from elsewhere: browsers and download tools write down where from.
#pragma once

namespace vellum {

// Whether a file (by its path; through links) was downloaded: it has the extended attribute
// user.xdg.origin.url.
bool IsQuarantined(const char *path) noexcept;

} // namespace vellum
