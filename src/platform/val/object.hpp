// SPDX-License-Identifier: MIT
// The head that every value begins with: its kind and its reference count.
//
// A new kind of value is a struct that derives from ValObject, one constexpr ValKind, and a
// function that allocates it with AllocateObject. Kinds outside the ten public ones (font objects,
// ports) do the same with type kValTypeOther, and can then live in any container.
#pragma once

#include "platform/process/passing_failures.hpp"

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
    void (*finalize)(ValObject *);                       // ends what it holds, see below; default: nothing
    bool (*equal)(const ValObject *, const ValObject *); // same kind, not same object; default: false
    uint64_t (*hash)(const ValObject *);                 // default: by address
    const ValString *(*describe)(const ValObject *);     // owned; default: name and address
};

// `finalize` runs once, on whatever thread gave the last reference back. It releases what the
// object holds and calls the destructor if that does anything; the memory of the object itself is
// freed after it. Objects that die inside of very many others' finalize functions are put off until
// those have returned, so nesting of any depth is released in little stack.
struct ValObject {
    // The count of an object that is never counted or freed: constants in the library's own data.
    static constexpr uint32_t kImmortal = UINT32_MAX;

    constexpr explicit ValObject(const ValKind &object_kind, uint32_t count = 1) noexcept
        : kind(&object_kind), references(count) {}

    const ValKind *kind;
    mutable std::atomic<uint32_t> references;
};

// No block of memory is larger.
inline constexpr size_t kMaximumSize = PTRDIFF_MAX;

// malloc and realloc, counting failures.
inline void *Allocate(size_t size) noexcept {
    void *memory = std::malloc(size);
    if (!memory) ++tPassingFailures;
    return memory;
}
inline void *Reallocate(void *memory, size_t size) noexcept {
    void *moved = std::realloc(memory, size);
    if (!moved) ++tPassingFailures;
    return moved;
}

// A new T in one allocation with `extra` bytes behind it, or null when memory is exhausted.
template <class T, class... Arguments>
T *AllocateObject(size_t extra, Arguments &&...arguments) noexcept {
    if (extra > kMaximumSize - sizeof(T)) return nullptr;
    void *memory = Allocate(sizeof(T) + extra);
    return memory ? new (memory) T(std::forward<Arguments>(arguments)...) : nullptr;
}

// The bytes behind an object of AllocateObject.
template <class T>
void *ExtraBytes(T *object) noexcept {
    return reinterpret_cast<char *>(object) + sizeof(T);
}

// Adds a reference unless the object is already dying. This is how a table that does not keep its
// members alive hands one out: the caller holds the lock that the member's finalize takes to leave
// the table, so that the memory stands while it is looked at.
bool TryRetain(const ValObject *object) noexcept;

// The object behind a value.
inline const ValObject *AsObject(const void *value) noexcept {
    return static_cast<const ValObject *>(value);
}

// ValGetType of what is not null.
inline ValType TypeOf(const void *value) noexcept {
    return AsObject(value)->kind->type;
}

} // namespace vellum
