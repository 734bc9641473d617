// SPDX-License-Identifier: MIT
// Descriptors and ids of fonts in memory.
#include "memory_fonts.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr int kFirstDescriptor = 3; // above those that programs expect to be their input and output
constexpr int kSeals = F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;

constinit std::atomic<int> sNextDescriptor = kFirstDescriptor;

bool Fill(int file, std::span<const uint8_t> bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<size_t>(written));
    }
    return fcntl(file, F_ADD_SEALS, kSeals) == 0;
}

// A number that was not used of late: programs that draw text remember faces by path, and would take a new
// font at an old path for the old one. Numbers begin again when the process may have no higher ones.
int MoveToNewNumber(int file) noexcept {
    int moved = fcntl(file, F_DUPFD_CLOEXEC, sNextDescriptor.load());
    if (moved < 0) moved = fcntl(file, F_DUPFD_CLOEXEC, kFirstDescriptor);
    close(file);
    if (moved >= 0) sNextDescriptor = moved + 1;
    return moved;
}

} // namespace

TMemoryFile::TMemoryFile(std::span<const uint8_t> bytes) {
    const int file = memfd_create("vellum-font", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (file < 0) return;
    struct stat status = {};
    if (!Fill(file, bytes) || fstat(file, &status) != 0) {
        close(file);
        return;
    }
    device_ = status.st_dev;
    number_ = status.st_ino;
    file_ = MoveToNewNumber(file);
}

TMemoryFile::TMemoryFile(TMemoryFile &&other) noexcept
    : file_(std::exchange(other.file_, -1)), device_(other.device_), number_(other.number_) {}

TMemoryFile::~TMemoryFile() {
    if (*this) close(file_);
}

TMemoryFile::operator bool() const noexcept {
    struct stat status = {};
    return file_ >= 0 && fstat(file_, &status) == 0 && status.st_dev == device_ && status.st_ino == number_;
}

std::string TMemoryFile::Path() const {
    return "/proc/self/fd/" + std::to_string(file_);
}

uint32_t TMemoryFonts::Add(TMemoryFile file, size_t faces) {
    const uint32_t id = last_container_ + 1;
    std::vector<uint32_t> fonts;
    for (size_t i = 0; i < faces; ++i) {
        fonts.push_back(last_font_ + 1 + static_cast<uint32_t>(i));
        container_of_font_[fonts.back()] = id;
    }
    containers_.emplace(id, Container{std::move(file), std::move(fonts)});
    last_container_ = id;
    last_font_ += static_cast<uint32_t>(faces);
    return id;
}

std::string TMemoryFonts::PathOf(uint32_t container) const {
    const auto found = containers_.find(container);
    return found == containers_.end() || !found->second.file ? std::string() : found->second.file.Path();
}

std::vector<std::string> TMemoryFonts::ForgetLost() {
    std::vector<std::string> paths;
    for (auto &[id, container] : containers_) {
        if (!container.file.IsLost()) continue;
        paths.push_back(container.file.Path());
        container.file.Forget();
    }
    return paths;
}

void TMemoryFonts::Remove(uint32_t container) {
    for (const uint32_t font : FontsOf(container)) container_of_font_.erase(font);
    containers_.erase(container);
}

std::span<const uint32_t> TMemoryFonts::FontsOf(uint32_t container) const {
    const auto found = containers_.find(container);
    return found == containers_.end() ? std::span<const uint32_t>() : std::span(found->second.fonts);
}

uint32_t TMemoryFonts::ContainerOf(uint32_t font) const {
    const auto found = container_of_font_.find(font);
    return found == container_of_font_.end() ? 0 : found->second;
}

} // namespace vellum::legacy
