// SPDX-License-Identifier: MIT
#include "platform/port/memory_mapping.hpp"

#include "platform/port/memory_block.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace vellum {

std::optional<MemoryMapping> MemoryMapping::Create(int descriptor, size_t length) noexcept {
    const int seals = ::fcntl(descriptor, F_GET_SEALS); // fails for what is no memory file
    if (seals < 0 || (seals & MemoryBlock::kSeals) != MemoryBlock::kSeals) return std::nullopt;
    struct stat status;
    if (::fstat(descriptor, &status) != 0 || status.st_size < 0) return std::nullopt;
    if (length == 0 || length > static_cast<size_t>(status.st_size)) return std::nullopt;
    void *memory = ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED) return std::nullopt;
    return MemoryMapping({static_cast<const uint8_t *>(memory), length}, {status.st_dev, status.st_ino});
}

MemoryMapping::~MemoryMapping() {
    if (!bytes_.empty()) ::munmap(const_cast<uint8_t *>(bytes_.data()), bytes_.size());
}

} // namespace vellum
