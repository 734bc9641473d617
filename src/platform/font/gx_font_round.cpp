// SPDX-License-Identifier: MIT
#include "platform/font/gx_font_round.hpp"

#include <utility>

namespace vellum {

namespace {

// The outermost of this thread's. A plain pointer: what is to be destroyed with a thread waits for the
// loader's lock when the thread first uses it, which may be with a register locked.
constinit thread_local GxFontRound *tRound = nullptr;

} // namespace

GxFontRound::GxFontRound() noexcept {
    if (!tRound) tRound = this;
}

GxFontRound::~GxFontRound() {
    if (tRound == this) tRound = nullptr;
}

void GxFontRound::Keep(std::shared_ptr<const TDescriptor> file, const TFileIdentity &identity) noexcept {
    if (!tRound) return;
    tRound->file_ = std::move(file);
    tRound->identity_ = identity;
}

std::shared_ptr<const TDescriptor> GxFontRound::Find(const TFileIdentity &identity) noexcept {
    return tRound && tRound->file_ && tRound->identity_ == identity ? tRound->file_ : nullptr;
}

} // namespace vellum
