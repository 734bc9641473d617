// SPDX-License-Identifier: MIT
// The head that every value begins with: its kind and its reference count.
//
// A new kind of value is a struct that derives from ValObject, one constexpr ValKind, and a
// function that allocates it with AllocateObject. Kinds outside the ten public ones (font objects,
// ports) do the same with type kValTypeOther, and can then live in any container.
#pragma once

#include <vellum/values.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace vellum {

struct ValObject;

// What a kind does; one constant per kind. A null function means the default in its comment.
struct ValKind {
    ValType type;
    const char *name;                                    // for descriptions
    void (*finalize)(ValObject *);                       // frees what it holds; default: nothing
    bool (*equal)(const ValObject *, const ValObject *); // same kind, not same object; default: false
    uint64_t (*hash)(const ValObject *);                 // default: by address
    const ValString *(*describe)(const ValObject *);     // owned; default: name and address
};

struct ValObject {
    // The count of an object that is never counted or freed: constants in read-only memory.
    static constexpr uint32_t kImmortal = UINT32_MAX;

    constexpr explicit ValObject(const ValKind &kind, uint32_t references = 1) noexcept
        : kind(&kind), references(references) {}

    const ValKind *kind;
    mutable std::atomic<uint32_t> references;
};

// A new T in one allocation with `extra` bytes behind it, or null when memory is exhausted.
template <class T, class... Arguments>
T *AllocateObject(size_t extra, Arguments &&...arguments) noexcept {
    if (extra > SIZE_MAX - sizeof(T)) return nullptr;
    void *memory = std::malloc(sizeof(T) + extra);
    return memory ? new (memory) T(std::forward<Arguments>(arguments)...) : nullptr;
}

} // namespace vellum
