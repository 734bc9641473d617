// SPDX-License-Identifier: MIT
// What is the same for every value: counting, kind, equality, hash; and how the dead are freed.
#include "platform/val/object.hpp"

#include "platform/val/hash.hpp"

namespace vellum {
namespace {

// How many finalize functions may run inside of each other before the dead are put off.
constexpr uint32_t kMaximumNestedFinalizers = 64;

// The objects of this thread whose finalize has yet to run. Plain data, so that a thread that never
// nests that deep pays nothing for it.
struct Morgue {
    ValObject **objects;
    size_t count;
    size_t capacity;
    uint32_t nested;
};
constinit thread_local Morgue sMorgue = {};

bool PutOff(Morgue &morgue, ValObject *object) noexcept {
    if (morgue.count == morgue.capacity) {
        size_t capacity = morgue.capacity ? morgue.capacity * 2 : 256;
        void *grown = std::realloc(morgue.objects, capacity * sizeof(ValObject *));
        if (!grown) return false;
        morgue.objects = static_cast<ValObject **>(grown);
        morgue.capacity = capacity;
    }
    morgue.objects[morgue.count++] = object;
    return true;
}

void Finalize(Morgue &morgue, ValObject *object) noexcept {
    ++morgue.nested;
    object->kind->finalize(object);
    --morgue.nested;
    std::free(object);
}

void Empty(Morgue &morgue) noexcept {
    while (morgue.count) Finalize(morgue, morgue.objects[--morgue.count]);
    std::free(morgue.objects);
    morgue.objects = nullptr;
    morgue.capacity = 0;
}

void Destroy(ValObject *object) noexcept {
    if (!object->kind->finalize) return std::free(object);
    Morgue &morgue = sMorgue;
    // Without memory to put it off, the object is finalized at once, however deep.
    if (morgue.nested >= kMaximumNestedFinalizers && PutOff(morgue, object)) return;
    Finalize(morgue, object);
    if (morgue.nested == 0 && morgue.count) Empty(morgue);
}

} // namespace

bool TryRetain(const ValObject *object) noexcept {
    uint32_t count = object->references.load(std::memory_order_relaxed);
    while (count != 0 && count != ValObject::kImmortal) {
        if (object->references.compare_exchange_weak(count, count + 1, std::memory_order_acquire,
                                                     std::memory_order_relaxed)) {
            return true;
        }
    }
    return count == ValObject::kImmortal;
}

} // namespace vellum

using namespace vellum;

const void *ValRetain(const void *value) noexcept {
    const ValObject *object = AsObject(value);
    if (object && object->references.load(std::memory_order_relaxed) != ValObject::kImmortal) {
        object->references.fetch_add(1, std::memory_order_relaxed);
    }
    return value;
}

void ValRelease(const void *value) noexcept {
    const ValObject *object = AsObject(value);
    if (!object || object->references.load(std::memory_order_relaxed) == ValObject::kImmortal) return;
    if (object->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        Destroy(const_cast<ValObject *>(object));
    }
}

ValType ValGetType(const void *value) noexcept {
    return value ? AsObject(value)->kind->type : ValType{kValTypeNone};
}

bool ValEqual(const void *a, const void *b) noexcept {
    if (a == b) return true;
    if (!a || !b) return false;
    const ValKind *kind = AsObject(a)->kind;
    return kind == AsObject(b)->kind && kind->equal && kind->equal(AsObject(a), AsObject(b));
}

uint64_t ValHash(const void *value) noexcept {
    if (!value) return 0;
    const ValObject *object = AsObject(value);
    return object->kind->hash ? object->kind->hash(object)
                              : HashInteger(reinterpret_cast<uintptr_t>(object));
}
