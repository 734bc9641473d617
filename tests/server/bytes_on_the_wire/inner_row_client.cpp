// SPDX-License-Identifier: MIT
// A program that uses the shared register by its handle, as the library's own functions do: for the row
// that no exported function sends, and for the scopes that they do not hand on.
#include "client_arguments.hpp"
#include "frame/handles/global_glyphary.hpp"
#include "show_value.hpp"

#include <cstdio>
#include <string>

namespace vellum::test {
namespace {

template <class T>
std::string ShownAnswer(const Ref<T> &answer) {
    return Shown(answer.Get());
}

// VERB ARGUMENT [KEYS] SCOPE, as texts; nothing for what it cannot do.
std::string Answer(const std::string &verb, int count, char **a) {
    const TGlobalGlyphary fonts;
    const VLScope scope = Word(a[count - 1]);
    if (verb == "properties-of-best" && count == 3)
        return ShownAnswer(
            fonts.CopyPropertiesForFontMatchingRequest(Request(a[0]).Get(), Keys(a[1]).Get(), scope));
    if (count != 2) return "";
    if (verb == "fonts-for-request")
        return ShownAnswer(fonts.CopyFontsForRequest(Request(a[0]).Get(), scope));
    if (verb == "font-for-request")
        return ShownAnswer(fonts.CopyFontForRequest(Request(a[0]).Get(), scope));
    if (verb == "fonts-for-url") return ShownAnswer(fonts.CopyFontsForURL(URL(a[0]).Get(), scope));
    if (verb == "font-for-name") return ShownAnswer(fonts.CopyFontForName(String(a[0]).Get(), scope));
    if (verb == "is-registered") return std::to_string(fonts.IsFontRegistered(URL(a[0]).Get()));
    if (verb == "is-enabled") return std::to_string(fonts.IsFontEnabled(URL(a[0]).Get()));
    if (verb == "reference") return std::to_string(fonts.GetFontReference(URL(a[0]).Get()));
    if (verb == "directory") return ShownAnswer(fonts.CopyFontDirectoryURL(URL(a[0]).Get()));
    if (verb == "priority") return std::to_string(fonts.GetFontPriority(URL(a[0]).Get()));
    return "";
}

} // namespace
} // namespace vellum::test

int main(int count, char **arguments) {
    if (count < 4) return 2;
    const std::string answer = vellum::test::Answer(arguments[1], count - 2, arguments + 2);
    std::puts(answer.c_str());
    return answer.empty() ? 2 : 0;
}
