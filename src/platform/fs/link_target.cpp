// SPDX-License-Identifier: MIT
#include "platform/fs/link_target.hpp"

#include <filesystem>

namespace vellum {

std::vector<std::string> LinkTargets(const std::string &path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path written = fs::read_symlink(path, error);
    if (error) return {};
    const fs::path real = fs::canonical(path, error);
    if (error) return {};
    // An absolute target takes the place of the folder.
    return {(fs::path(path).parent_path() / written).lexically_normal().string(), real.string()};
}

} // namespace vellum
