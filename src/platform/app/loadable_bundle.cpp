// SPDX-License-Identifier: MIT
#include "platform/app/loadable_bundle.hpp"

#include <dlfcn.h>
#include <unistd.h>

#include <string>

namespace vellum {

namespace {

// The path of the code; empty for what can't be a bundle.
std::string CodeOf(std::string_view folder) {
    while (folder.size() > 1 && folder.ends_with('/')) folder.remove_suffix(1);
    if (!folder.starts_with('/')) return {};
    std::string_view name = folder.substr(folder.rfind('/') + 1);
    name = name.substr(0, name.rfind('.'));
    if (name.empty()) return {};
    return std::string(folder).append("/").append(name).append(".so");
}

bool IsThere(const std::string &code) noexcept {
    return !code.empty() && ::access(code.c_str(), R_OK) == 0;
}

} // namespace

bool HasBundleCode(std::string_view folder) {
    return IsThere(CodeOf(folder));
}

void *LoadBundleSymbol(std::string_view folder, const char *name) {
    const std::string code = CodeOf(folder);
    // Where there is none, which is the rule, the loader need not be asked.
    if (!IsThere(code)) return nullptr;
    void *handle = ::dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) return nullptr;
    void *symbol = ::dlsym(handle, name);
    ::dlclose(handle);
    return symbol;
}

} // namespace vellum
