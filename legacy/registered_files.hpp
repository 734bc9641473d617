// SPDX-License-Identifier: MIT
// The files that this process has told the service of, by the register that each was for.
//
// Registers are sets: registered twice, or told of before it could be read, a file is in a register once,
// and one withdrawal takes it out. A change is for one register alone, the shared one whenever the scope
// asks for it, as it is with the library's own.
#pragma once

#include <vellum/vellum.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vellum::legacy {

// Not safe for threads: the service's mutex guards it.
class TRegisteredFiles {
public:
    void Add(const std::string &path, VLScope scope);

    // Takes a file, or all below a folder, out of one register.
    void Remove(const std::string &path, VLScope scope);

    // Takes a file out of both.
    void Forget(const std::string &path) noexcept { files_.erase(path); }

    // Hides a file, or all below a folder, in this process, or shows it again. What leaves the registers
    // and comes again is shown.
    void Hide(const std::string &path, bool hides);

    // The file of that path, and those below it.
    std::vector<std::string> At(const std::string &path) const;

    // Whether a file is in a register and not hidden.
    bool IsShown(const std::string &path) const;

    // All, in the order in which they were registered.
    std::vector<std::string> InOrder() const;

    bool IsEmpty() const noexcept { return files_.empty(); }

private:
    struct File {
        uint8_t registers = 0;
        bool is_hidden = false;
        uint64_t number = 0; // in the order of registration
    };

    std::map<std::string, File> files_;
    uint64_t last_number_ = 0;
};

} // namespace vellum::legacy
