// SPDX-License-Identifier: MIT
// Callbacks of containers.
#include "platform/val/callbacks.hpp"

#include "platform/val/hash.hpp"

namespace vellum {
namespace {

constexpr unsigned kMaximumEqualityDepth = 1000;
constinit thread_local unsigned sEqualityDepth = 0;
constinit thread_local size_t *sEqualityBudget = nullptr; // null: there is no end of it

bool PayFromBudget(size_t count) noexcept {
    if (!sEqualityBudget) return true;
    const bool enough = count < *sEqualityBudget;
    *sEqualityBudget = enough ? *sEqualityBudget - count : 0;
    return enough;
}

bool IsContainer(const void *value) noexcept {
    ValType type = ValGetType(value);
    return type == kValTypeArray || type == kValTypeDictionary || type == kValTypeSet;
}

bool IsConstant(const ValCallbacks &callbacks) noexcept {
    return &callbacks == &kValValueCallbacks || &callbacks == &kValRawCallbacks ||
           &callbacks == &kValCaseInsensitiveStringCallbacks;
}

} // namespace

uint64_t HashItem(const ValCallbacks &callbacks, const void *item) noexcept {
    return callbacks.hash ? callbacks.hash(item) : HashInteger(reinterpret_cast<uintptr_t>(item));
}

uint64_t HashMember(const ValCallbacks &callbacks, const void *item) noexcept {
    if (callbacks.retain == ValRetain && IsContainer(item)) return ValGetType(item);
    return HashItem(callbacks, item);
}

size_t BytesForCallbacks(const ValCallbacks &callbacks) noexcept {
    return IsConstant(callbacks) ? 0 : sizeof callbacks;
}

const ValCallbacks *PlaceCallbacks(const ValCallbacks &callbacks, void *&tail) noexcept {
    if (IsConstant(callbacks)) return &callbacks;
    auto *copy = new (tail) ValCallbacks(callbacks);
    tail = copy + 1;
    return copy;
}

EqualityDepth::EqualityDepth(size_t count) noexcept
    : fits_(++sEqualityDepth <= kMaximumEqualityDepth && PayFromBudget(count)) {}
EqualityDepth::~EqualityDepth() {
    --sEqualityDepth;
}

EqualityBudget::EqualityBudget(size_t &left) noexcept : former_(std::exchange(sEqualityBudget, &left)) {}
EqualityBudget::~EqualityBudget() {
    sEqualityBudget = former_;
}

} // namespace vellum

extern constinit const ValCallbacks kValValueCallbacks = {ValRetain, ValRelease, ValEqual, ValHash,
                                                          ValCopyDescription};
extern constinit const ValCallbacks kValRawCallbacks = {nullptr, nullptr, nullptr, nullptr, nullptr};
