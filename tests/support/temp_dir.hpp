// SPDX-License-Identifier: MIT
// A folder of a test's own, which goes away with everything in it at the end of the test.
#pragma once

#include "support/bytes.hpp"

#include <vellum/values.hpp>

#include <string>
#include <string_view>

namespace vellum::test {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    const std::string &Path() const { return path_; }
    std::string File(std::string_view name) const { return path_ + '/' + std::string(name); }

    // Writes a file, making the folders on its way, and returns its path. Throws on failure.
    std::string Write(std::string_view name, const Bytes &bytes) const;
    std::string Write(std::string_view name, std::string_view text) const;

    // Makes a folder, with those on its way, and returns its path.
    std::string MakeFolder(std::string_view name) const;

private:
    std::string path_;
};

// The file URL of a path.
Ref<const ValURL> FileURL(std::string_view path);

// The URL of a text as it stands.
Ref<const ValURL> MakeURL(std::string_view text);

} // namespace vellum::test
