// SPDX-License-Identifier: MIT
#include "platform/port/memory_block.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace vellum {
namespace {

// Linux 6.3 and later; some systems give no memory files without it.
#ifndef MFD_NOEXEC_SEAL
#define MFD_NOEXEC_SEAL 0x0008U
#endif

// How long a file of this process may become. Who writes more gets a signal that ends the program.
size_t MaximumFileSize() noexcept {
    rlimit limit;
    if (::getrlimit(RLIMIT_FSIZE, &limit) != 0) return 0;
    return limit.rlim_cur < PTRDIFF_MAX ? static_cast<size_t>(limit.rlim_cur) : PTRDIFF_MAX;
}

size_t RoundToPages(size_t size) noexcept {
    const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
    return (size + page - 1) / page * page;
}

} // namespace

MemoryBlock::MemoryBlock(MemoryBlock &&other) noexcept
    : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0)),
      descriptor_(std::exchange(other.descriptor_, -1)) {}

MemoryBlock &MemoryBlock::operator=(MemoryBlock &&other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

MemoryBlock::~MemoryBlock() {
    Free();
}

void MemoryBlock::Free() noexcept {
    if (descriptor_ < 0)
        std::free(bytes_);
    else if (bytes_)
        ::munmap(bytes_, size_);
    if (descriptor_ >= 0) ::close(descriptor_);
    bytes_ = nullptr;
    size_ = 0;
    descriptor_ = -1;
}

MemoryBlock MemoryBlock::Create() noexcept {
    MemoryBlock block;
    constexpr unsigned kFlags = MFD_CLOEXEC | MFD_ALLOW_SEALING;
    block.descriptor_ = ::memfd_create("vellum", kFlags | MFD_NOEXEC_SEAL);
    if (block.descriptor_ < 0 && errno == EINVAL) block.descriptor_ = ::memfd_create("vellum", kFlags);
    return block;
}

MemoryBlock MemoryBlock::CreateCopy(const void *bytes, size_t length) noexcept {
    if (length > kLongestCopied) {
        MemoryBlock block = Create();
        if (block.Append(bytes, length)) block.Seal();
        return block;
    }
    MemoryBlock block;
    const size_t size = RoundToPages(length);
    if (size) block.bytes_ = static_cast<uint8_t *>(std::malloc(size));
    if (!block.bytes_) return block;
    std::memcpy(block.bytes_, bytes, length);
    std::memset(block.bytes_ + length, 0, size - length);
    block.size_ = size;
    return block;
}

bool MemoryBlock::Append(const void *bytes, size_t length) noexcept {
    if (descriptor_ < 0 || bytes_) return false;
    const size_t maximum = MaximumFileSize();
    if (size_ > maximum || length > maximum - size_) {
        Free();
        return false;
    }
    const auto *from = static_cast<const uint8_t *>(bytes);
    while (length) {
        const ssize_t written = ::write(descriptor_, from, length);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) {
            Free();
            return false;
        }
        from += written;
        size_ += static_cast<size_t>(written);
        length -= static_cast<size_t>(written);
    }
    return true;
}

bool MemoryBlock::Seal() noexcept {
    if (bytes_) return true;
    const size_t size = RoundToPages(size_);
    if (size == 0 || size > MaximumFileSize() || ::ftruncate(descriptor_, static_cast<off_t>(size)) != 0 ||
        ::fcntl(descriptor_, F_ADD_SEALS, kSeals) != 0) {
        Free();
        return false;
    }
    void *memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor_, 0);
    if (memory == MAP_FAILED) {
        Free();
        return false;
    }
    bytes_ = static_cast<uint8_t *>(memory);
    size_ = size;
    return true;
}

} // namespace vellum
