// SPDX-License-Identifier: MIT
// Fonts in memory, as files that only this process can open, by way of a descriptor each.
//
// Descriptors are the program's: it may close any, those too that it did not open, and open another file by
// the same number. Such a file is not ours to read or to close: ours is lost then, and forgotten.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace vellum::legacy {

// A sealed file without a name. Its path leads through this process's descriptor, which stays open as long
// as the object lives and the program lets it.
class TMemoryFile {
public:
    explicit TMemoryFile(std::span<const uint8_t> bytes);
    TMemoryFile(TMemoryFile &&other) noexcept;
    ~TMemoryFile();
    TMemoryFile(const TMemoryFile &) = delete;
    TMemoryFile &operator=(const TMemoryFile &) = delete;

    // Whether there is such a file, and the descriptor still leads to it.
    explicit operator bool() const noexcept;

    // Whether there was one and the descriptor does not.
    bool IsLost() const noexcept { return file_ >= 0 && !*this; }
    void Forget() noexcept { file_ = -1; }

    // Where the file is to be found; of one that is lost, where it was.
    std::string Path() const;

private:
    int file_ = -1;
    dev_t device_ = 0; // which file it is
    ino_t number_ = 0;
};

// Containers and the fonts in them, by ids that count from 1 and do not come again. Not safe for threads:
// the service's mutex guards it.
class TMemoryFonts {
public:
    // Returns the container's id.
    uint32_t Add(TMemoryFile file, size_t faces);

    bool Has(uint32_t container) const { return containers_.contains(container); }

    // The path of a container's file; empty when there is none, or no more.
    std::string PathOf(uint32_t container) const;

    // Closes the container's file.
    void Remove(uint32_t container);

    // Forgets the files that are lost, and gives out where they were. Their containers stay until they are
    // removed.
    std::vector<std::string> ForgetLost();

    // Empty when there is no such container.
    std::span<const uint32_t> FontsOf(uint32_t container) const;

    // 0 when there is no such font.
    uint32_t ContainerOf(uint32_t font) const;

private:
    struct Container {
        TMemoryFile file;
        std::vector<uint32_t> fonts;
    };

    std::map<uint32_t, Container> containers_;
    std::map<uint32_t, uint32_t> container_of_font_;
    uint32_t last_container_ = 0;
    uint32_t last_font_ = 0;
};

} // namespace vellum::legacy
