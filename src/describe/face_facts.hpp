// SPDX-License-Identifier: MIT
// FaceFacts: what has been derived of one face, each thing once, kept with the font object.
//
// A slot is filled by whoever asks first and read without a lock from then on. Of two threads that derive
// the same thing at a time, both answer what the first to finish has put there. What was derived while
// reading the font failed is answered, but not kept: a process that is out of descriptors for a moment
// does not lose anything for good.
#pragma once

#include "platform/font/gx_font.hpp"
#include "platform/process/passing_failures.hpp"

#include <vellum/values.hpp>

#include <array>
#include <atomic>
#include <cstddef>
#include <utility>

namespace vellum {

// The things that are kept. What else a face answers, its GxFont keeps or nobody does.
enum class Fact : uint8_t {
    kMetadata,
    kURL,
    kPostScriptName,
    kFamilyName,
    kFullName,
    kSubfamilyName,
    kVersionName,
    kCopyrightName,
    kPostScriptNames,
    kFamilyNames,
    kFullNames,
    kSubfamilyNames,
    kVersionNames,
    kCopyrightNames,
    kLocalizedNames,
    kTraits,
    kSupportedLanguages,
    kUnicodeRanges,
    kVariationAxes,
    kFormat,
    kStringEncoding,
    kFlags,
};

inline constexpr size_t kFactCount = static_cast<size_t>(Fact::kFlags) + 1;

class FaceFacts final : public GxFontCompanion {
public:
    FaceFacts() = default;
    ~FaceFacts() override;

    // The facts of a font (borrowed, living as long as it), or null: for null, and when memory is
    // exhausted.
    static FaceFacts *Of(const GxFont *font) noexcept;

    // The kept answer; the first call derives it. `derive` gives a Ref, null for none.
    template <class Derive>
    auto Keep(Fact fact, Derive derive) -> decltype(derive()) {
        using Answer = decltype(derive());
        using Pointer = decltype(std::declval<Answer>().Get());
        const void *known = Slot(fact).load(std::memory_order_acquire);
        if (!known) {
            const uint32_t failures = tPassingFailures;
            Answer fresh = derive();
            if (failures != tPassingFailures) return fresh;
            known = Put(fact, std::move(fresh));
        }
        return known == &kNothing ? Answer() : Answer::Retain(static_cast<Pointer>(known));
    }

private:
    using SlotType = std::atomic<const void *>; // null: not derived yet

    static constexpr char kNothing = 0; // its address: derived, and there is none

    SlotType &Slot(Fact fact) noexcept { return slots_[static_cast<size_t>(fact)]; }

    // Fills the slot, unless somebody was faster; gives what it holds.
    const void *Put(Fact fact, Ref<const void> value) noexcept;

    std::array<SlotType, kFactCount> slots_{};
};

} // namespace vellum
