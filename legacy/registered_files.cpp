// SPDX-License-Identifier: MIT
// A mark a register, for each file that is in any.
#include "registered_files.hpp"

#include "folders.hpp"

#include <algorithm>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr uint8_t kProcess = 1;
constexpr uint8_t kShared = 2;

// The mark of the register that a change is for; 0 when the scope asks for none.
constexpr uint8_t MarkOf(VLScope scope) noexcept {
    if (scope & (kVLScopeUser | kVLScopeSession)) return kShared;
    return scope & kVLScopeProcess ? kProcess : 0;
}

} // namespace

void TRegisteredFiles::Add(const std::string &path, VLScope scope) {
    const uint8_t mark = MarkOf(scope);
    if (mark == 0) return;
    File &file = files_[path];
    if (file.registers == 0) file.number = ++last_number_;
    file.registers |= mark;
}

void TRegisteredFiles::Remove(const std::string &path, VLScope scope) {
    for (const std::string &file : At(path)) {
        const auto found = files_.find(file);
        found->second.registers &= static_cast<uint8_t>(~MarkOf(scope));
        if (found->second.registers == 0) files_.erase(found);
    }
}

void TRegisteredFiles::Hide(const std::string &path, bool hides) {
    for (const std::string &file : At(path)) files_[file].is_hidden = hides;
}

std::vector<std::string> TRegisteredFiles::At(const std::string &path) const {
    std::vector<std::string> paths;
    if (files_.contains(path)) paths.push_back(path);
    ForEachBelow(files_, path, [&](const auto &entry) { paths.push_back(entry.first); });
    return paths;
}

bool TRegisteredFiles::IsShown(const std::string &path) const {
    const auto found = files_.find(path);
    return found != files_.end() && !found->second.is_hidden;
}

std::vector<std::string> TRegisteredFiles::InOrder() const {
    std::vector<std::pair<uint64_t, std::string>> numbered;
    for (const auto &[path, file] : files_) numbered.emplace_back(file.number, path);
    std::sort(numbered.begin(), numbered.end());
    std::vector<std::string> paths;
    for (auto &entry : numbered) paths.push_back(std::move(entry.second));
    return paths;
}

} // namespace vellum::legacy
