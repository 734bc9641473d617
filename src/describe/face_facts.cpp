// SPDX-License-Identifier: MIT
#include "describe/face_facts.hpp"

namespace vellum {

FaceFacts::~FaceFacts() {
    for (const SlotType &slot : slots_) {
        const void *value = slot.load(std::memory_order_acquire);
        if (value && value != &kNothing) static_cast<void>(Adopt(value));
    }
}

FaceFacts *FaceFacts::Of(const GxFont *font) noexcept {
    return static_cast<FaceFacts *>(GxFontGetCompanion(
        font, []() -> std::unique_ptr<GxFontCompanion> { return std::make_unique<FaceFacts>(); }));
}

const void *FaceFacts::Put(Fact fact, Ref<const void> value) noexcept {
    const void *fresh = value ? value.Get() : &kNothing;
    const void *current = nullptr;
    if (!Slot(fact).compare_exchange_strong(current, fresh, std::memory_order_acq_rel)) return current;
    static_cast<void>(value.Release());
    return fresh;
}

} // namespace vellum
