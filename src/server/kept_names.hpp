// SPDX-License-Identifier: MIT
// Where the fonts of some names are: found once, and answered until a font changes.
//
// What a register has of a font lies in many places of its memory. Programs ask for the same names; these
// lie here, close together, each beside its answer.
#pragma once

#include "platform/val/hash.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vellum {

class KeptNames {
public:
    KeptNames() noexcept;

    // The text of the URL of the font called `name`, as `make` gives it; empty when there is no font, which
    // is not kept. Throws std::bad_alloc.
    std::string Get(std::string_view name, const std::function<std::string()> &make);

private:
    void Forget() noexcept;
    uint32_t &SlotOf(std::string_view name) noexcept;
    void Keep(std::string_view name, std::string_view url);

    // Strangers could think of any number of names.
    static constexpr size_t kSlots = 4096; // a power of 2; at most half of them are taken
    static constexpr size_t kMostBytes = size_t{256} << 10;

    HashSeeds seeds_ = kHashSeeds; // nobody's but this process's
    std::vector<uint32_t> slots_;  // where in entries_ there is an entry, plus 1; 0: free
    std::string entries_;          // each a header, the name, the URL
    size_t count_ = 0;
    uint32_t generation_ = 0; // of the fonts that they are about
};

} // namespace vellum
