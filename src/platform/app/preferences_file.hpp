// SPDX-License-Identifier: MIT
// The file of a preferences domain: read whole, replaced whole.
#pragma once

#include "platform/fs/file.hpp"

#include <vellum/values.hpp>

#include <string>

namespace vellum {

struct PreferencesContent {
    Ref<const ValDictionary> values; // null without a file, and with a broken or an unreadable one
    bool is_broken = false;          // there is a file, and it is no dictionary
    int error = 0;                   // why the file, which may be there, could not be read
};

// What the file of a path says now. May throw std::bad_alloc.
PreferencesContent ReadPreferences(const std::string &path);

// Puts a file with these values in the place of the one of a path, mode 0600. With `keeps_former` that one
// is kept under another name. 0, or the errno of the failure, and then there is what there was. To be
// called under the file's lock. May throw std::bad_alloc.
int WritePreferences(const std::string &path, const ValDictionary *values, bool keeps_former);

// Of all that change one file, one at a time has its lock, in whatever process and thread; who dies gives
// it back.
class PreferencesLock {
public:
    PreferencesLock() noexcept = default;
    PreferencesLock(const PreferencesLock &) = delete;
    PreferencesLock &operator=(const PreferencesLock &) = delete;
    ~PreferencesLock();

    // Makes the file's folder (mode 0700) when it is not there, and waits for the lock. 0, or the errno of
    // the failure. May throw std::bad_alloc.
    int Take(const std::string &path);

private:
    TDescriptor lock_;
};

} // namespace vellum
