// SPDX-License-Identifier: MIT
// The characters that no font was found for, as a thread remembers them until a font changes anywhere: a
// page of text asks for each of them many times.
#pragma once

#include <vellum/values.hpp>

#include <cstdint>

namespace vellum {

// A handle on the calling thread's memory. To be made before a register is asked, and used by the
// thread that made it. There is no limit to what is remembered but that of the characters.
class TCharacterRejectCache {
public:
    // Makes the thread's memory, or empties it when a font has changed.
    TCharacterRejectCache() noexcept;

    bool Contains(uint32_t character) const noexcept;

    // Remembers a character that was asked for in vain after this handle was made; not, if a font has
    // changed since: it may be the one that was missing.
    void Add(uint32_t character) const noexcept;

private:
    struct Rejects {
        uint32_t generation; // when it was last empty
        Ref<ValCharacterSet> characters;
    };

    Rejects *rejects_; // null when there was no memory for one
    const uint32_t generation_;
};

} // namespace vellum
