// SPDX-License-Identifier: MIT
// What a program hears of changes, and the turns of its main loop.
#pragma once

#include "support/values.hpp"

#include <vellum/vellum.h>

#include <glib.h>

#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vellum::test {

// Runs GLib's default context until nothing waits; how many passes that took.
inline int TurnMainLoop() {
    int passes = 0;
    while (g_main_context_iteration(nullptr, FALSE)) ++passes;
    return passes;
}

struct HeardChange {
    std::string key;
    std::vector<std::string> fonts;
    std::thread::id thread;

    bool operator==(const HeardChange &other) const { return key == other.key && fonts == other.fonts; }
};

inline void PrintTo(const HeardChange &change, std::ostream *out) {
    *out << change.key << ":";
    for (const std::string &font : change.fonts) *out << ' ' << font;
}

// A user info as it was heard; it must have one entry.
inline HeardChange ReadChange(const ValDictionary *user_info) {
    size_t cursor = 0;
    const void *key = nullptr, *fonts = nullptr;
    ValDictionaryNext(user_info, &cursor, &key, &fonts);
    if (ValDictionaryGetCount(user_info) != 1) return {"(not one entry)", {}, {}};
    return {TextOf(key), Texts(Retain(static_cast<const ValArray *>(fonts))), std::this_thread::get_id()};
}

// Hears from when it is made until it dies.
class HeardChanges {
public:
    HeardChanges() { VLAddFontsChangedObserver(this, Hear); }
    ~HeardChanges() { VLRemoveFontsChangedObserver(this); }
    HeardChanges(const HeardChanges &) = delete;
    HeardChanges &operator=(const HeardChanges &) = delete;

    // What was heard by now, without turning the main loop.
    const std::vector<HeardChange> &SoFar() const { return changes_; }

    // What was heard after the main loop has turned, and not told before.
    std::vector<HeardChange> Next() {
        TurnMainLoop();
        return std::exchange(changes_, {});
    }

private:
    static void Hear(void *, void *observer, const ValString *, const void *,
                     const ValDictionary *user_info) {
        static_cast<HeardChanges *>(observer)->changes_.push_back(ReadChange(user_info));
    }

    std::vector<HeardChange> changes_;
};

inline HeardChange Added(std::vector<std::string> fonts) {
    return {"LDFontManagerAvailableFontURLsAdded", std::move(fonts), {}};
}
inline HeardChange Removed(std::vector<std::string> fonts) {
    return {"LDFontManagerAvailableFontURLsRemoved", std::move(fonts), {}};
}

} // namespace vellum::test
