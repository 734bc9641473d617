// SPDX-License-Identifier: MIT
#include "describe/resource_folder.hpp"

#include "ipc/session/session_manager.hpp"
#include "platform/fs/folder.hpp"
#include "platform/val/string.hpp"
#include "values/out_of_memory.hpp"

#include <string>

namespace vellum {

namespace {

const ValString *AsPath(uintptr_t slot) noexcept {
    return reinterpret_cast<const ValString *>(slot);
}

// Null when there is no such folder.
Ref<const ValString> FindFolder(std::string_view name) {
    const ValString *resources = TSessionManager().GetFrameworkResourcesDirPath();
    if (!resources) return nullptr;
    const std::string path = std::string(Text(resources)).append(name);
    return LeadsToFolder(path.c_str()) ? OrBadAlloc(MakeString(path)) : nullptr;
}

} // namespace

const ValString *TResourceFolder::Path() {
    if (slot_.load(std::memory_order_relaxed) == 0) return nullptr;
    const uintptr_t slot = slot_.load(std::memory_order_acquire);
    return slot == kUnknown ? Publish(FindFolder(name_)) : AsPath(slot);
}

// The first thread's answer stands.
const ValString *TResourceFolder::Publish(Ref<const ValString> path) noexcept {
    uintptr_t slot = kUnknown;
    const auto found = reinterpret_cast<uintptr_t>(path.Get());
    if (!slot_.compare_exchange_strong(slot, found, std::memory_order_acq_rel, std::memory_order_acquire))
        return AsPath(slot);
    return path.Release();
}

std::optional<TBuffer> TResourceFolder::Read(std::string_view file_name, uint64_t limit) {
    const ValString *folder = Path();
    if (!folder) return std::nullopt;
    return ReadWholeFile(std::string(Text(folder)).append(file_name).c_str(), limit);
}

} // namespace vellum
