// SPDX-License-Identifier: MIT
// Preferences of the user: for each domain a property list, $XDG_CONFIG_HOME/vellum/DOMAIN.vlist, or below
// $HOME/.config where that variable is unset.
//
// Nothing is remembered: each read is of the file as it is now, so that what one process changes holds in
// all of them. A change reads, alters and writes under a lock, and the new file takes the old one's place
// at once: whoever is killed in it, and whatever disk is full, a reader finds the whole of one or the
// other.
#pragma once

#include <vellum/values.hpp>

#include <string>
#include <string_view>

namespace vellum {

// Alters a domain's values.
class PreferencesChange {
public:
    // What `values` (the domain's, or empty) are to be. May throw std::bad_alloc: nothing is changed then.
    virtual void Apply(ValDictionary *values) const = 0;

protected:
    ~PreferencesChange() = default;
};

// Any thread may use it. Operations may throw std::bad_alloc.
class TPreferences {
public:
    // A domain is a name such as "com.example.App", without a slash.
    explicit TPreferences(std::string_view domain);

    // The value of a key now; null when there is none, and when the file is broken or can't be read.
    Ref<const void> CopyValue(const ValString *key) const;

    // 0, or the errno of the failure, which is also logged; the file is as it was then. ENOENT: neither
    // variable says where. EINVAL: the values have no form in a property list. ETIMEDOUT: somebody else
    // keeps the lock for half a minute. A file that is no property list is not overwritten: it is kept
    // beside the new one, as DOMAIN.vlist.broken-N, and the log says so.
    int Change(const PreferencesChange &change) const;

    // Sets a key's value, or with null removes it.
    int SetValue(const ValString *key, const void *value) const;

    // Where the domain's values are; empty when no variable says where.
    const std::string &Path() const noexcept { return path_; }

private:
    int ChangeLocked(const PreferencesChange &change) const;

    std::string path_;
};

} // namespace vellum
