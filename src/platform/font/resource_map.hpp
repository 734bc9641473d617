// SPDX-License-Identifier: MIT
// The resources in the second fork of a file; platform/fs/file_fork.hpp says where a fork lies.
//
// A fork can claim anything. What lies outside of it is not there, and reading all that it claims to
// have costs no more time than its size and the bounds below allow, however its resources overlap.
#pragma once

#include "platform/font/font_source.hpp"
#include "platform/font/gx_font.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vellum {

// Resources of one type that are believed, in the map's order; real forks have some hundred.
inline constexpr size_t kMaximumResources = 4096;

// The largest resource that is read: as many bytes as there are places that a resource can begin at.
inline constexpr uint32_t kMaximumResourceSize = 16u << 20;

// The second fork of a file as a round of reading of its own; false without one. `file` is a round of
// the file itself. May throw std::bad_alloc, as everything here.
TReading OpenFork(const TReading &file, const std::string &path);

struct TResource {
    uint16_t id;
    uint64_t offset; // in the fork, of its length; the bytes follow
};

class TResourceMap {
public:
    // One without a map that can be read has no resources.
    explicit TResourceMap(TReading fork);

    bool HasType(GxTag type) const noexcept;

    // In the map's order.
    std::vector<TResource> Find(GxTag type) const;

    // The bytes of a resource; none when they are not all there, and once more has been read than the
    // fork is large. Reading each resource once never comes to that unless they overlap.
    std::optional<TBuffer> Copy(const TResource &resource);

private:
    GxTag TypeAt(size_t row) const noexcept;
    void AppendReferences(std::vector<TResource> &found, size_t row) const;

    const TReading fork_;
    uint64_t left_;         // how much may still be read
    uint64_t data_ = 0;     // where the resources lie
    TBuffer map_;           // as much of it as can matter
    TBytes types_;          // the list of types in it, and the lists of references behind that
    size_t type_count_ = 0; // no more than there are
};

} // namespace vellum
