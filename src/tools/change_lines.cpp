// SPDX-License-Identifier: MIT
#include "tools/change_lines.hpp"

#include "tools/json.hpp"
#include "tools/text.hpp"

#include <new>
#include <string>

namespace vellum::tool {

ChangeLines::ChangeLines(std::ostream &out, Form form, size_t most) : out_(out), form_(form), most_(most) {
    if (!VLAddFontsChangedObserver(this, Hear)) throw std::bad_alloc();
}

ChangeLines::~ChangeLines() {
    VLRemoveFontsChangedObserver(this);
}

void ChangeLines::Hear(void *, void *observer, const ValString *, const void *,
                       const ValDictionary *user_info) noexcept {
    try {
        static_cast<ChangeLines *>(observer)->Write(user_info);
    } catch (...) { // memory is exhausted: the next change may be shown
    }
}

void ChangeLines::Write(const ValDictionary *user_info) {
    Write("removed", ArrayAt(user_info, kAvailableFontURLsRemovedKey));
    Write("added", ArrayAt(user_info, kAvailableFontURLsAddedKey));
    out_.flush();
}

void ChangeLines::Write(const char *change, const ValArray *fonts) {
    for (size_t i = 0; i < ValArrayGetCount(fonts) && !HasEnough(); ++i, ++count_) {
        const std::string url = Bytes(static_cast<const ValString *>(ValArrayGetValue(fonts, i)));
        if (form_ == Form::kJson)
            out_ << Dump({{"change", change}, {"url", url}}, -1) << '\n';
        else
            out_ << change << "  " << Printable(url) << '\n';
    }
}

} // namespace vellum::tool
