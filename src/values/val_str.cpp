// SPDX-License-Identifier: MIT
// TValStr: a string as a value of C++.
#include "values/val_str.hpp"

#include "platform/val/string.hpp"
#include "values/out_of_memory.hpp"
#include "values/string_uniquer.hpp"

namespace vellum {
namespace {

// Copies of something are null only when memory is exhausted.
TValStr Owned(const TValStr &from, const ValString *copy) {
    return from ? TValStr(OrBadAlloc(Adopt(copy))) : TValStr();
}

} // namespace

TValStr::TValStr(std::string_view text) : string_(OrBadAlloc(MakeString(text))) {
    if (!string_.Get()->is_unicode) string_ = nullptr;
}

std::string_view TValStr::View() const noexcept {
    return Text(string_);
}

TValStr TValStr::Trim(const TValStr &trim) const {
    return Owned(*this, ValStringCopyTrimming(Get(), trim.Get()));
}

TValStr TValStr::TrimWhitespace() const {
    return Owned(*this, ValStringCopyTrimmingWhitespace(Get()));
}

TValStr TValStr::TrimWhitespaceAndDash() const {
    return Trim(TValStr("-")).TrimWhitespace();
}

TValStr TValStr::Lowercase() const {
    return Owned(*this, ValStringCopyLowercase(Get()));
}

TValStr TValStr::Unique() const {
    return TValStr(GetUniqueString(Get()));
}

Ref<const ValString> TValStr::GetUniqueString(const ValString *string) noexcept {
    return TValStringUniquer().GetUniqueString(string);
}

} // namespace vellum
