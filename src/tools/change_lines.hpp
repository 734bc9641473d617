// SPDX-License-Identifier: MIT
// What is heard of fonts that come and go, a line a font.
#pragma once

#include <vellum/vellum.hpp>

#include <cstddef>
#include <ostream>

namespace vellum::tool {

// Writes a line for each font that came or went since it was made, when the notifications are delivered.
class ChangeLines {
public:
    enum class Form { kText, kJson };

    // After `most` fonts it writes no more; 0: without end.
    ChangeLines(std::ostream &out, Form form, size_t most);
    ~ChangeLines();
    ChangeLines(const ChangeLines &) = delete;
    ChangeLines &operator=(const ChangeLines &) = delete;

    size_t Count() const noexcept { return count_; }
    bool HasEnough() const noexcept { return most_ != 0 && count_ >= most_; }

private:
    static void Hear(void *center, void *observer, const ValString *name, const void *object,
                     const ValDictionary *user_info) noexcept;
    void Write(const ValDictionary *user_info);
    void Write(const char *change, const ValArray *fonts);

    std::ostream &out_;
    const Form form_;
    const size_t most_;
    size_t count_ = 0;
};

} // namespace vellum::tool
