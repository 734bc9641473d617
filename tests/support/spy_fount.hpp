// SPDX-License-Identifier: MIT
// The legacy font service of a test's own: a real bundle that is loaded by name, and that writes down what
// it is told (support/bundles/spy_fount.c). The process looks for it when it has something to tell; ctest
// gives each test a process.
#pragma once

#include "support/temp_dir.hpp"

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace vellum::test {

class SpyFount {
public:
    SpyFount() {
        const std::string resources = folder_.MakeFolder("Fount.framework/Resources");
        code_ = folder_.File("Fount.framework/Fount.so");
        std::filesystem::copy_file(VELLUM_SPY_FOUNT, code_);
        ::setenv("VL_FRAMEWORK_RESOURCES_PATH", resources.c_str(), 1);
    }

    // What was told since the last time, a line a call.
    std::vector<std::string> Told() const {
        char *log = Symbol<char>("SpyLog");
        std::vector<std::string> lines;
        std::string text(log);
        *log = '\0';
        for (size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1))
            lines.push_back(text.substr(0, end));
        return lines;
    }

    void SetFontCount(uint32_t count) const { *Symbol<uint32_t>("SpyFontCount") = count; }

    // The folder of the bundle.
    std::string Framework() const { return folder_.File("Fount.framework"); }

private:
    template <class T>
    T *Symbol(const char *name) const {
        void *handle = ::dlopen(code_.c_str(), RTLD_NOW | RTLD_LOCAL);
        return handle ? static_cast<T *>(::dlsym(handle, name)) : nullptr;
    }

    const TempDir folder_;
    std::string code_;
};

} // namespace vellum::test
