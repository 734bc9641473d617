// SPDX-License-Identifier: MIT
// Long replies that come again, and the values that were read from them.
//
// The font server makes the answers that everybody asks for once, and hands out the same bytes until a font
// changes. Whoever asks again gets the value that it got before: reading some thousand fonts anew takes far
// longer than seeing that nothing has changed.
#pragma once

#include "ipc/client/stubs.hpp"

#include <vellum/values.hpp>

#include <array>
#include <vector>

namespace vellum {

// The user sees to it that one thread at a time uses it.
class KeptReplies {
public:
    // The value of a reply; null for what is none. Of a long reply the value is kept, with the reply's
    // pages or a copy of its bytes, until a font changes or newer ones take its place.
    Ref<const void> Read(ReplyMemory reply);

private:
    // What is shorter is read as fast as it is compared.
    static constexpr size_t kShortest = size_t{2} << 10;

    // A value takes several times the room of its bytes: what is longer than this is not kept.
    static constexpr size_t kLongest = size_t{8} << 20;

    static constexpr size_t kMost = 4;

    struct Kept {
        MemoryMapping pages;        // or, where the reply came without pages of its own,
        std::vector<uint8_t> bytes; // its bytes
        Ref<const void> value;      // null where nothing is kept

        bool IsOf(const ReplyMemory &reply) const noexcept;
    };

    void ForgetOnceFontsHaveChanged() noexcept;

    std::array<Kept, kMost> kept_;
    size_t next_ = 0;         // the place of the one that was kept for longest
    uint32_t generation_ = 0; // of the fonts that the replies are about
};

} // namespace vellum
