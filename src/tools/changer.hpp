// SPDX-License-Identifier: MIT
// What register, unregister, enable and disable do with a file, and what comes in between.
#pragma once

#include "tools/file_contents.hpp"
#include "tools/font_files.hpp"

#include <vellum/vellum.hpp>

#include <optional>
#include <string>
#include <vector>

namespace vellum::tool {

enum class Action { kRegister, kUnregister, kEnable, kDisable };

struct ChangeOptions {
    std::vector<std::string> paths;
    std::string scope = "user";
    std::string face; // of that PostScript name alone; empty: the whole file
    bool dry_run = false;
    bool json = false;
    bool jsonl = false;
};

// What came of one file.
struct Changed {
    std::string path;
    std::vector<std::string> faces; // what they are called
    std::optional<Refusal> problem; // none: it was done
};

class Changer {
public:
    // `options` must outlive it.
    Changer(Action action, const ChangeOptions &options);

    // Changes a file, or says what would come of it: the register is asked then, too.
    Changed Change(const std::string &path, const FileContents &contents) const;

private:
    // What a register says of a file or a face.
    enum class Standing { kUnknown, kDisabled, kEnabled };

    Ref<const ValArray> TargetsIn(const std::string &path, const std::vector<FoundFont> &faces) const;
    void Rehearse(const ValArray *targets) const;
    std::optional<Refusal> Obstacle(const Changed &file, const ValURL *font,
                                    const Refusal *unreadable) const;
    Refusal WhyUnknown(const std::string &path, const Refusal *unreadable) const;
    std::optional<Refusal> Apply(const std::string &path, const ValArray *targets) const;
    Standing StandingOf(const ValURL *font) const;
    bool IsRegisteredForAsLong(const ValURL *font) const;

    const Action action_;
    const ChangeOptions &options_;
    const VLScope scope_;
};

} // namespace vellum::tool
