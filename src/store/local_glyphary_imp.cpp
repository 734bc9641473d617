// SPDX-License-Identifier: MIT
// The life of a register, and the font references that it gives out.
#include "store/local_glyphary_imp.hpp"

#include "frame/registry/generation_seed.hpp"
#include "platform/process/process.hpp"

#include <chrono>
#include <thread>

namespace vellum {

namespace {

// One round of waiting for the fonts to change. The atomic read and the pause are effects, so that
// a compiler can't take a loop around this out.
void WaitForAnotherGeneration() {
    static_cast<void>(TGenerationSeed::GetGeneration());
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace

TLocalGlypharyImp::TLocalGlypharyImp()
    : process_id_(GetProcessID()), data_fonts_(kValValueCallbacks, kValRawCallbacks),
      legacy_containers_(kValRawCallbacks, kValRawCallbacks) {}

TLocalGlypharyImp::~TLocalGlypharyImp() = default;

const GxFont *TLocalGlypharyImp::GetPossiblyDisabledFont(FontReference reference) const noexcept {
    const GxFont *font = enabled_.Find(reference);
    return font ? font : disabled_.Find(reference);
}

// An occupied index is asked for again and again and never passed over: once 32,767 faces have been
// registered, the register stands still until that index is free. That is deliberate, for an index
// is never given to two faces that live at one time; who registers very many faces looks first
// whether the indexes that they need are free.
uint32_t TLocalGlypharyImp::FindNextFontIndex(uint32_t candidate) const {
    if (candidate > kLastFontIndex) candidate = 0;
    const FontReference reference = MakeFontReference(candidate, process_id_);
    while (GetPossiblyDisabledFont(reference)) WaitForAnotherGeneration();
    return candidate;
}

// The cursor moves before the face is entered, and the reference is made of the value that it had.
FontReference TLocalGlypharyImp::TakeNextReference() const {
    const uint32_t index = index_cursor_;
    index_cursor_ = FindNextFontIndex(index + 1);
    return MakeFontReference(index, process_id_);
}

} // namespace vellum
