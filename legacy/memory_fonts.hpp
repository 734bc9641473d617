// SPDX-License-Identifier: MIT
// Fonts in memory, as files that only this process can open.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace vellum::legacy {

// A sealed file without a name. Its path leads through this process's descriptor, which stays open as long
// as the object lives.
class TMemoryFile {
public:
    explicit TMemoryFile(std::span<const uint8_t> bytes);
    TMemoryFile(TMemoryFile &&other) noexcept;
    ~TMemoryFile();
    TMemoryFile(const TMemoryFile &) = delete;
    TMemoryFile &operator=(const TMemoryFile &) = delete;

    explicit operator bool() const noexcept { return file_ >= 0; }

    std::string Path() const;

private:
    int file_ = -1;
};

// Containers and the fonts in them, by ids that count from 1 and do not come again. Not safe for threads:
// the service's mutex guards it.
class TMemoryFonts {
public:
    // Returns the container's id.
    uint32_t Add(TMemoryFile file, size_t faces);

    // The path of a container's file; empty when there is no such container.
    std::string PathOf(uint32_t container) const;

    // Closes the container's file.
    void Remove(uint32_t container);

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
