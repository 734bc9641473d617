// SPDX-License-Identifier: MIT
// Where the bytes of a font come from: a file, a buffer, or what a packed file unpacks to.
//
// Bytes are reached in rounds. A source keeps no descriptor between rounds: there may be thousands
// of sources, and programs close descriptors that they do not know, and fork. Files are never
// mapped, since a mapped file that is cut short kills the process.
#pragma once

#include "platform/font/big_endian.hpp"
#include "platform/fs/file.hpp"

#include <vellum/values.hpp>

#include <memory>
#include <string>
#include <utility>

namespace vellum {

// Opens a regular file of at most limits::kFileSize.
TDescriptor OpenRegularFile(const char *path, TFileIdentity *identity) noexcept;

// A round of reading. One that could not begin is false, and reads nothing.
class TReading {
public:
    TReading() noexcept = default;
    TReading(TDescriptor descriptor, uint64_t size)
        : TReading(std::make_shared<const TDescriptor>(std::move(descriptor)), size) {}
    TReading(std::shared_ptr<const TDescriptor> descriptor, uint64_t size) noexcept
        : descriptor_(std::move(descriptor)), size_(size), open_(true) {}
    TReading(TBytes memory, std::shared_ptr<const void> owner) noexcept
        : memory_(memory), owner_(std::move(owner)), size_(memory.size()), open_(true) {}

    explicit operator bool() const noexcept { return open_; }
    uint64_t Size() const noexcept { return size_; }

    // The bytes, if they lie in memory.
    TBytes Memory() const noexcept { return memory_; }

    // Reads what there is, and says how much that was.
    size_t Read(uint64_t offset, std::span<uint8_t> out) const noexcept;

    // What there is of a stretch.
    TBuffer Copy(uint64_t offset, size_t length) const;

    // The extended attribute of that name, at most `limit` bytes of it; empty for none.
    TBuffer CopyAttribute(const char *name, size_t limit) const;

private:
    std::shared_ptr<const TDescriptor> descriptor_; // null: the bytes lie in memory
    TBytes memory_;
    std::shared_ptr<const void> owner_;
    uint64_t size_ = 0;
    bool open_ = false;
};

// Begins a round with a file as it is now, and says what it is; false for what OpenRegularFile opens not.
TReading OpenFontFile(const char *path, TFileIdentity *identity);

class TFontSource {
public:
    virtual ~TFontSource() = default;

    // Begins a round; false when the bytes cannot be had, or are no longer those that they were.
    virtual TReading Open() const = 0;
};

using TFontSourcePtr = std::shared_ptr<const TFontSource>;

// A file as it was when it was first opened.
class TFileSource final : public TFontSource {
public:
    TFileSource(std::string path, const TFileIdentity &identity)
        : path_(std::move(path)), identity_(identity) {}

    TReading Open() const override;

private:
    const std::string path_;
    const TFileIdentity identity_;
};

class TDataSource final : public TFontSource {
public:
    explicit TDataSource(const ValData *data) : data_(Retain(data)) {}

    TReading Open() const override;

private:
    const Ref<const ValData> data_;
};

} // namespace vellum
