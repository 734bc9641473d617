// SPDX-License-Identifier: MIT
// A folder in the framework's resources with files about fonts: looked for once in a process.
#pragma once

#include "platform/fs/file.hpp"

#include <vellum/values.hpp>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vellum {

// Lives as long as the process. Any thread may use it.
class TResourceFolder {
public:
    // `name` is what stands behind the path of the resources: "/FontInfo/".
    constexpr explicit TResourceFolder(std::string_view name) noexcept : name_(name) {}
    TResourceFolder(const TResourceFolder &) = delete;
    TResourceFolder &operator=(const TResourceFolder &) = delete;

    // The folder's path, with a slash at its end (borrowed). Null when it is not there at the first call,
    // and ever after: most machines have none, and pay one load for it. Throws std::bad_alloc.
    const ValString *Path();

    // The content of a file of the folder; none without the folder, and for what ReadWholeFile refuses.
    // Throws std::bad_alloc.
    std::optional<TBuffer> Read(std::string_view file_name, uint64_t limit);

private:
    static constexpr uintptr_t kUnknown = UINTPTR_MAX;

    const ValString *Publish(Ref<const ValString> path) noexcept;

    const std::string_view name_;
    std::atomic<uintptr_t> slot_{kUnknown}; // else the path, which is never released, or 0
};

} // namespace vellum
