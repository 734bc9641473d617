// SPDX-License-Identifier: MIT
// Opening and reading of regular files that anybody may have put there, or may be changing.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>

namespace vellum {

// Bytes of their own.
class TBuffer {
public:
    TBuffer() noexcept = default;
    explicit TBuffer(size_t size) : bytes_(std::make_unique_for_overwrite<uint8_t[]>(size)), size_(size) {}

    std::span<const uint8_t> View() const noexcept { return {bytes_.get(), size_}; }
    std::span<uint8_t> Writable() noexcept { return {bytes_.get(), size_}; }
    size_t Size() const noexcept { return size_; }
    void Cut(size_t size) noexcept { size_ = size < size_ ? size : size_; }

private:
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_ = 0;
};

// One descriptor, closed at the end.
class TDescriptor {
public:
    explicit TDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
    TDescriptor(TDescriptor &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    TDescriptor &operator=(TDescriptor &&other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~TDescriptor();

    int Get() const noexcept { return descriptor_; }
    bool IsOpen() const noexcept { return descriptor_ >= 0; }

    // Hands the descriptor over to the caller.
    int Release() noexcept { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

// Which state of which file.
struct TFileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    uint64_t size = 0;
    int64_t seconds = 0;
    int64_t nanoseconds = 0;

    static TFileIdentity Of(const struct stat &status) noexcept;
    bool operator==(const TFileIdentity &) const = default;
};

// Opens a regular file of at most `limit` bytes for reading, without waiting for anything and without
// becoming anybody's terminal. Anything else gives a closed descriptor.
TDescriptor OpenRegularFile(const char *path, uint64_t limit, TFileIdentity *identity) noexcept;

// What one reading gave: how many bytes, and whether an error ended it.
struct TReadResult {
    size_t length = 0;
    bool failed = false;
};

// Everything that there is of the stretch of a file that begins at `offset`; a signal does not end it
// early.
TReadResult ReadFully(int descriptor, uint64_t offset, std::span<uint8_t> out) noexcept;

// The content of a regular file of at most `limit` bytes. A file that is cut short meanwhile gives what
// was left of it. None for anything else, for an error, and when memory is exhausted.
std::optional<TBuffer> ReadWholeFile(const char *path, uint64_t limit) noexcept;

} // namespace vellum
