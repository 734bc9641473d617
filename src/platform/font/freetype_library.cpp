// SPDX-License-Identifier: MIT
// Set-up of FreeType on first use, with an allocator that has a ceiling.
#include "platform/font/freetype_library.hpp"

#include "platform/font/limits.hpp"
#include "platform/process/passing_failures.hpp"

#include <malloc.h>

#include <cstdlib>

namespace vellum {
namespace {

// Guards FreeType, and the count of what it holds.
constinit std::mutex sMutex;
constinit size_t sHeld = 0;

// A font that asks for more than the ceiling always will; that memory runs out passes.
void *Allocate(FT_Memory, long size) noexcept {
    if (size <= 0 || static_cast<size_t>(size) > limits::kFreeTypeMemory - sHeld) return nullptr;
    void *block = std::malloc(static_cast<size_t>(size));
    if (block)
        sHeld += malloc_usable_size(block);
    else
        ++tPassingFailures;
    return block;
}

void Free(FT_Memory, void *block) noexcept {
    sHeld -= malloc_usable_size(block);
    std::free(block);
}

void *Reallocate(FT_Memory, long, long size, void *block) noexcept {
    if (size <= 0 || static_cast<size_t>(size) > limits::kFreeTypeMemory) return nullptr;
    const size_t before = malloc_usable_size(block);
    if (static_cast<size_t>(size) > limits::kFreeTypeMemory - (sHeld - before)) return nullptr;
    void *moved = std::realloc(block, static_cast<size_t>(size));
    if (moved)
        sHeld = sHeld - before + malloc_usable_size(moved);
    else
        ++tPassingFailures;
    return moved;
}

constinit FT_MemoryRec_ sMemory = {nullptr, Allocate, Free, Reallocate};

// Never freed: it serves until the process ends. Its settings are FreeType's own, whatever the
// environment says. One that lacks modules, for want of memory, is none.
FT_Library MakeLibrary() noexcept {
    FT_Library library = nullptr;
    if (!sFreeType.Open()) return nullptr;
    const uint32_t failures = tPassingFailures;
    if (FT_New_Library(&sMemory, &library) != 0) return nullptr;
    FT_Add_Default_Modules(library);
    if (failures == tPassingFailures) return library;
    FT_Done_Library(library);
    return nullptr;
}

// Guarded by the mutex, like all of FreeType.
constinit FT_Library sLibrary = nullptr;

std::mutex &MutexOfOpened() noexcept {
    sFreeType.Open();
    return sMutex;
}

} // namespace

TFreeType::TFreeType() : lock_(MutexOfOpened()) {
    if (!sLibrary) sLibrary = MakeLibrary();
    if (!sLibrary) ++tPassingFailures;
    library_ = sLibrary;
}

FT_Memory TFreeType::Memory() noexcept {
    return &sMemory;
}

} // namespace vellum
