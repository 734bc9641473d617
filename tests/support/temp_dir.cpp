// SPDX-License-Identifier: MIT
// Temporary folders below TMPDIR.
#include "support/temp_dir.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

std::string WriteFile(const std::string &path, const char *bytes, size_t size) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes, static_cast<std::streamsize>(size));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path);
    return path;
}

} // namespace

TempDir::TempDir() : path_(fs::temp_directory_path() / "vellum-test-XXXXXX") {
    if (!mkdtemp(path_.data())) throw std::runtime_error("cannot make " + path_);
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TempDir::Write(std::string_view name, const Bytes &bytes) const {
    return WriteFile(File(name), reinterpret_cast<const char *>(bytes.data()), bytes.size());
}

std::string TempDir::Write(std::string_view name, std::string_view text) const {
    return WriteFile(File(name), text.data(), text.size());
}

std::string TempDir::MakeFolder(std::string_view name) const {
    fs::create_directories(File(name));
    return File(name);
}

Ref<const ValURL> FileURL(std::string_view path) {
    const auto text = Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size()));
    return Adopt(ValURLCreateWithFileSystemPath(text.Get(), false, nullptr));
}

Ref<const ValURL> MakeURL(std::string_view text) {
    return Adopt(ValURLCreateWithBytes(text.data(), text.size(), nullptr));
}

} // namespace vellum::test
