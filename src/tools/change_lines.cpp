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

// A list without fonts says that nobody knows which have changed.
void ChangeLines::Write(const ValDictionary *user_info) {
    const ValArray *added = ArrayAt(user_info, kAvailableFontURLsAddedKey);
    if (added && ValArrayGetCount(added) == 0)
        out_ << (form_ == Form::kJson ? Dump({{"change", "unknown"}, {"url", nullptr}}, -1)
                                      : "unknown  any font may have changed; ask again")
             << '\n';
    Write("removed", ArrayAt(user_info, kAvailableFontURLsRemovedKey));
    Write("added", added);
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
