// SPDX-License-Identifier: MIT
// Set-up of FreeType on first use, with an allocator that has a ceiling and forgets nothing.
#include "platform/font/freetype_library.hpp"

#include "platform/font/limits.hpp"
#include "platform/process/passing_failures.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>

namespace vellum {
namespace {

// FreeType 2.12 does not survive every refusal of memory. A glyph slot of a Type 1 or CFF font that gets
// none for its few words brings the process down: so small blocks may pass the ceiling, and come out of a
// reserve when memory has run out. Other refusals leave blocks behind: FreeType is then taken down and all
// its blocks are freed.
constexpr size_t kSmallBlock = 4096;
constexpr size_t kReserve = 64u << 10; // many glyph slots

// What stands before each block.
struct alignas(std::max_align_t) TBlock {
    TBlock *previous;
    TBlock *next;
    size_t size; // this included
};

// Guards FreeType, and all that follows.
constinit std::mutex sMutex;
constinit FT_Library sLibrary = nullptr;
constinit TBlock sBlocks = {&sBlocks, &sBlocks, 0};
constinit size_t sHeld = 0;
constinit bool sIsSpoilt = false; // some memory was refused, or is in the reserve
alignas(TBlock) constinit std::array<std::byte, kReserve> sReserve = {};
constinit size_t sReserved = 0;

bool HasRoom(size_t size) noexcept {
    const size_t ceiling = limits::kFreeTypeMemory + (size <= kSmallBlock ? kReserve : 0);
    return sHeld <= ceiling && size <= ceiling - sHeld;
}

void *Reserve(size_t size) noexcept {
    const size_t rounded = (size + alignof(TBlock) - 1) / alignof(TBlock) * alignof(TBlock);
    if (size > kSmallBlock || rounded > kReserve - sReserved) return nullptr;
    void *memory = sReserve.data() + sReserved;
    sReserved += rounded;
    return memory;
}

bool IsReserved(const TBlock *block) noexcept {
    const auto *first = reinterpret_cast<const std::byte *>(block);
    return std::less_equal<>()(sReserve.data(), first) && std::less<>()(first, sReserve.data() + kReserve);
}

TBlock *BlockOf(void *bytes) noexcept {
    return static_cast<TBlock *>(bytes) - 1;
}

void *List(void *memory, size_t size) noexcept {
    auto *block = new (memory) TBlock{&sBlocks, sBlocks.next, size};
    block->next->previous = sBlocks.next = block;
    sHeld += size;
    return block + 1;
}

void Unlist(const TBlock *block) noexcept {
    block->previous->next = block->next;
    block->next->previous = block->previous;
    sHeld -= block->size;
}

// A font that asks for more than the ceiling always will; that memory runs out passes.
void *Refuse(bool passes) noexcept {
    sIsSpoilt = true;
    if (passes) ++tPassingFailures;
    return nullptr;
}

void *Allocate(FT_Memory, long count) noexcept {
    const size_t size = static_cast<size_t>(count) + sizeof(TBlock);
    if (count < 0 || !HasRoom(size)) return Refuse(false);
    if (void *memory = std::malloc(size)) return List(memory, size);
    sIsSpoilt = true;
    void *memory = Reserve(size);
    return memory ? List(memory, size) : Refuse(true);
}

void Free(FT_Memory, void *bytes) noexcept {
    TBlock *block = BlockOf(bytes);
    Unlist(block);
    if (!IsReserved(block)) std::free(block);
}

void *Reallocate(FT_Memory memory, long before, long count, void *bytes) noexcept {
    TBlock *block = BlockOf(bytes);
    if (IsReserved(block)) {
        void *moved = Allocate(memory, count);
        if (moved) std::memcpy(moved, bytes, static_cast<size_t>(std::min(before, count)));
        if (moved) Free(memory, bytes);
        return moved;
    }
    const size_t size = static_cast<size_t>(count) + sizeof(TBlock);
    Unlist(block);
    const bool has_room = count >= 0 && HasRoom(size);
    if (void *moved = has_room ? std::realloc(block, size) : nullptr) return List(moved, size);
    List(block, block->size);
    return Refuse(has_room);
}

constinit FT_MemoryRec_ sMemory = {nullptr, Allocate, Free, Reallocate};

// It serves until the process ends, or some memory is refused. Its settings are FreeType's own, whatever
// the environment says.
void SetUp() noexcept {
    if (!sFreeType.Open() || FT_New_Library(&sMemory, &sLibrary) != 0) return;
    FT_Add_Default_Modules(sLibrary);
}

void TakeDown() noexcept {
    if (sLibrary) FT_Done_Library(sLibrary);
    sLibrary = nullptr;
    while (sBlocks.next != &sBlocks) Free(&sMemory, sBlocks.next + 1);
    sReserved = 0;
    sIsSpoilt = false;
}

std::mutex &MutexOfOpened() noexcept {
    sFreeType.Open();
    return sMutex;
}

} // namespace

// One that lacks modules, for want of memory, is none.
TFreeType::TFreeType() : lock_(MutexOfOpened()) {
    const uint32_t failures = tPassingFailures;
    if (!sLibrary) SetUp();
    if (failures == tPassingFailures) library_ = sLibrary;
    if (!library_) ++tPassingFailures;
}

TFreeType::~TFreeType() {
    if (sIsSpoilt) TakeDown();
}

FT_Memory TFreeType::Memory() noexcept {
    return &sMemory;
}

} // namespace vellum
