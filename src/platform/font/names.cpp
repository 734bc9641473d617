// SPDX-License-Identifier: MIT
// Late reading of name tables. A round that cannot begin leaves nothing behind: a process that is
// out of descriptors for a moment does not make its fonts nameless.
#include "platform/font/names.hpp"

#include "platform/font/limits.hpp"
#include "platform/val/object.hpp"

#include <algorithm>

namespace vellum {

void TNames::Load(const TReading &reading) const {
    const std::lock_guard lock(mutex_);
    LoadLocked(reading);
}

void TNames::LoadLocked(const TReading &reading) const {
    if (table_ || !stretch_ || !reading) return;
    const size_t length = std::min<size_t>(stretch_->length, limits::kNameTableBytes);
    table_ = TNameTable(reading.Copy(stretch_->offset, length).View(), more_);
}

const TNameTable &TNames::Table() const {
    if (!table_ && stretch_) LoadLocked(source_->Open());
    return table_;
}

Ref<const ValString> TNames::Copy(uint16_t name) const {
    const std::lock_guard lock(mutex_);
    for (const auto &[known, text] : chosen_) {
        if (known == name) return text;
    }
    const TNameTable &table = Table();
    if (!table) return nullptr;
    const uint32_t failures = tPassingFailures;
    auto text = table.Copy(name);
    if (failures == tPassingFailures) chosen_.emplace_back(name, text); // else it may not be the best one
    return text;
}

Ref<const ValString> TNames::CopyInLanguage(uint16_t name, std::string_view language) const {
    const std::lock_guard lock(mutex_);
    return Table().CopyInLanguage(name, language);
}

Ref<const ValArray> TNames::CopyLanguages() const {
    const std::lock_guard lock(mutex_);
    const TNameTable &table = Table();
    return table ? table.CopyLanguages() : nullptr;
}

} // namespace vellum
