// SPDX-License-Identifier: MIT
// The "post" table: the angle and the pitch that a font tells a PostScript printer.
#pragma once

#include "describe/table_bytes.hpp"

namespace vellum {

// An absent table is upright, and not of fixed pitch.
class postTable {
public:
    explicit postTable(Ref<const ValData> table) noexcept : table_(std::move(table)) {}

    // Any value but 0 means yes: fonts with other values than 1 are about.
    bool IsFixedPitch() const noexcept { return table_.U32(12) != 0; }

    // The angle in degrees over 180, read as though it had no sign: 12 degrees give 0.0667, and -12
    // degrees, a common italic, give 364.02.
    //
    // The missing sign is deliberate and must stay. It makes the slant of a face that only this table
    // describes, and such slants are kept and asked for by others: with a sign the same face would
    // no longer be found by them. Whether the value is used at all is for the traits to decide.
    float GetItalicAngle() const noexcept;

private:
    TableBytes table_;
};

} // namespace vellum
