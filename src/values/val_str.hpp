// SPDX-License-Identifier: MIT
// TValStr: a string as a value of C++.
#pragma once

#include "values/val_cast.hpp"

#include <string>
#include <string_view>

namespace vellum {

// A string or none. Constructors and functions throw std::bad_alloc when memory is exhausted; text
// that is no valid UTF-8 makes none.
class TValStr {
public:
    TValStr() noexcept = default;
    explicit TValStr(vellum::Ref<const ValString> string) noexcept : string_(std::move(string)) {}
    explicit TValStr(std::string_view text);
    explicit TValStr(const char *text) : TValStr(text ? TValStr(std::string_view(text)) : TValStr()) {}
    explicit TValStr(const std::string &text) : TValStr(std::string_view(text)) {}

    explicit operator bool() const noexcept { return static_cast<bool>(string_); }
    bool IsEmpty() const noexcept { return View().empty(); }

    // Both are borrowed. The view is empty for none, else whatever bytes the string has.
    const ValString *Get() const noexcept { return string_.Get(); }
    std::string_view View() const noexcept;

    const vellum::Ref<const ValString> &Ref() const noexcept { return string_; }

    friend bool operator==(const TValStr &a, const TValStr &b) noexcept {
        return ValEqual(a.Get(), b.Get());
    }

    bool HasPrefix(std::string_view prefix) const noexcept { return View().starts_with(prefix); }
    bool HasSuffix(std::string_view suffix) const noexcept { return View().ends_with(suffix); }

    // Without `trim` at both ends, as often as it stands there.
    TValStr Trim(const TValStr &trim) const;
    TValStr TrimWhitespace() const;

    // Without "-" at both ends, and then without white space there: a "-" behind white space stays.
    TValStr TrimWhitespaceAndDash() const;

    TValStr Lowercase() const;

    // The one string of the process that is equal to this one.
    TValStr Unique() const;

    // The same for a bare string. It is owned, because the pool drops what nobody else holds.
    static vellum::Ref<const ValString> GetUniqueString(const ValString *string) noexcept;

private:
    vellum::Ref<const ValString> string_;
};

} // namespace vellum
