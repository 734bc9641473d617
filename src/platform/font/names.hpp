// SPDX-License-Identifier: MIT
// The names of a face: its name table, read when a name is first asked for, and what was chosen
// from it. Faces of a collection that point at one table share one of these.
#pragma once

#include "platform/font/font_source.hpp"
#include "platform/font/name_table.hpp"
#include "platform/font/table_directory.hpp"

#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace vellum {

class TNames {
public:
    // `stretch` is the name table, if there is one; `more` as in TNameTable.
    TNames(TFontSourcePtr source, std::optional<TStretch> stretch, std::vector<uint16_t> more)
        : source_(std::move(source)), stretch_(stretch), more_(std::move(more)) {}

    // True for a face of the same source whose names would be these.
    bool IsFor(std::optional<TStretch> stretch, const std::vector<uint16_t> &more) const {
        return stretch_ == stretch && more_ == more;
    }

    // Reads the table now, in a round that is under way.
    void Load(const TReading &reading) const;

    Ref<const ValString> Copy(uint16_t name) const;
    Ref<const ValString> CopyInLanguage(uint16_t name, std::string_view language) const;
    Ref<const ValArray> CopyLanguages() const;

private:
    const TNameTable &Table() const;
    void LoadLocked(const TReading &reading) const;

    const TFontSourcePtr source_;
    const std::optional<TStretch> stretch_;
    const std::vector<uint16_t> more_;

    mutable std::mutex mutex_; // guards all below
    mutable TNameTable table_; // absent until it could be read
    mutable std::vector<std::pair<uint16_t, Ref<const ValString>>> chosen_;
};

} // namespace vellum
