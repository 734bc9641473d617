// SPDX-License-Identifier: MIT
// Arrays.
#include "platform/val/array.hpp"

#include "platform/val/hash.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr size_t kMaximumCount = SIZE_MAX / 4 / sizeof(void *);

// How many items at the front a hash looks at.
constexpr size_t kHashedItems = 8;

void ReleaseAll(ValArray *array) noexcept {
    for (const void *item : Items(array)) ReleaseItem(*array->callbacks, item);
}

void FinalizeArray(ValObject *object) {
    auto *array = static_cast<ValArray *>(object);
    ReleaseAll(array);
    if (array->on_heap) std::free(array->items);
}

bool EqualArrays(const ValObject *a, const ValObject *b) {
    auto *left = static_cast<const ValArray *>(a);
    auto *right = static_cast<const ValArray *>(b);
    if (left->count != right->count || !SameRules(*left->callbacks, *right->callbacks)) return false;
    EqualityDepth depth(left->count);
    auto equal = [left](const void *x, const void *y) { return EqualItems(*left->callbacks, x, y); };
    return depth && std::ranges::equal(Items(left), Items(right), equal);
}

uint64_t HashArray(const ValObject *object) {
    auto *array = static_cast<const ValArray *>(object);
    uint64_t hash = CombineHash(kValTypeArray, array->count);
    for (const void *item : Items(array).first(std::min(array->count, kHashedItems))) {
        hash = CombineHash(hash, HashMember(*array->callbacks, item));
    }
    return hash;
}

// Makes room for `more` items behind the last one.
bool Reserve(ValArray *array, size_t more) noexcept {
    if (more <= array->capacity - array->count) return true;
    if (more > kMaximumCount - array->count) return false;
    size_t capacity = std::max({array->count + more, array->capacity * 2, size_t{8}});
    void *grown = Reallocate(array->on_heap ? array->items : nullptr, capacity * sizeof(void *));
    if (!grown) return false;
    if (!array->on_heap && array->count) std::memcpy(grown, array->items, array->count * sizeof(void *));
    array->items = static_cast<const void **>(grown);
    array->capacity = capacity;
    array->on_heap = true;
    return true;
}

} // namespace

constinit const ValKind kArrayKind{kValTypeArray, "Array", FinalizeArray, EqualArrays, HashArray, nullptr};

ValArray *AdoptIntoArray(std::span<const void *const> items) noexcept {
    ValArray *array = ValArrayCreateMutable(items.size(), nullptr);
    if (!array) {
        for (const void *item : items) ValRelease(item);
        return nullptr;
    }
    std::ranges::copy(items, array->items);
    array->count = items.size();
    return array;
}

} // namespace vellum

using namespace vellum;

const ValArray *ValArrayCreate(const void *const *items, size_t count) noexcept {
    if (!items && count) return nullptr;
    ValArray *array = ValArrayCreateMutable(count, nullptr);
    for (size_t i = 0; array && i < count; ++i) ValArrayAppend(array, items[i]);
    return array;
}

ValArray *ValArrayCreateMutable(size_t capacity, const ValCallbacks *callbacks) noexcept {
    const ValCallbacks &rules = OrValueCallbacks(callbacks);
    if (capacity > kMaximumCount) return nullptr;
    auto *array = AllocateObject<ValArray>(BytesForCallbacks(rules) + capacity * sizeof(void *));
    if (!array) return nullptr;
    void *tail = ExtraBytes(array);
    array->callbacks = PlaceCallbacks(rules, tail);
    array->items = static_cast<const void **>(tail);
    array->capacity = capacity;
    return array;
}

ValArray *ValArrayCreateMutableCopy(const ValArray *array) noexcept {
    if (!array) return nullptr;
    ValArray *copy = ValArrayCreateMutable(array->count, array->callbacks);
    if (copy) ValArrayAppendArray(copy, array);
    return copy;
}

size_t ValArrayGetCount(const ValArray *array) noexcept {
    return array ? array->count : 0;
}

const void *ValArrayGetValue(const ValArray *array, size_t index) noexcept {
    return array && index < array->count ? array->items[index] : nullptr;
}

const void *const *ValArrayGetValues(const ValArray *array) noexcept {
    return array ? array->items : nullptr;
}

size_t ValArrayGetFirstIndexOf(const ValArray *array, const void *item) noexcept {
    for (size_t i = 0; i < ValArrayGetCount(array); ++i) {
        if (EqualItems(*array->callbacks, array->items[i], item)) return i;
    }
    return SIZE_MAX;
}

bool ValArrayContains(const ValArray *array, const void *item) noexcept {
    return ValArrayGetFirstIndexOf(array, item) != SIZE_MAX;
}

bool ValArrayAppend(ValArray *array, const void *item) noexcept {
    if (!array || !Reserve(array, 1)) return false;
    array->items[array->count] = RetainItem(*array->callbacks, item);
    ++array->count;
    return true;
}

bool ValArrayAppendArray(ValArray *array, const ValArray *more) noexcept {
    if (!array) return false;
    const size_t count = ValArrayGetCount(more); // `more` may be the array itself
    if (!Reserve(array, count)) return false;
    for (size_t i = 0; i < count; ++i) ValArrayAppend(array, more->items[i]);
    return true;
}

bool ValArrayReplace(ValArray *array, size_t index, const void *item) noexcept {
    if (!array || index >= array->count) return false;
    const void *retained = RetainItem(*array->callbacks, item);
    ReleaseItem(*array->callbacks, std::exchange(array->items[index], retained));
    return true;
}

bool ValArrayRemove(ValArray *array, size_t index) noexcept {
    if (!array || index >= array->count) return false;
    const void *removed = array->items[index];
    const void **at = array->items + index;
    --array->count;
    std::memmove(at, at + 1, (array->count - index) * sizeof(void *));
    ReleaseItem(*array->callbacks, removed);
    return true;
}

void ValArrayRemoveAll(ValArray *array) noexcept {
    if (!array) return;
    ReleaseAll(array);
    array->count = 0;
}
