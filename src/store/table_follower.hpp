// SPDX-License-Identifier: MIT
// What a higher floor keeps beside a register's table of enabled fonts.
#pragma once

#include "store/font_reference.hpp"

namespace vellum {

// Told of every face that comes and goes, with the register's mutex held.
class TTableFollower {
public:
    virtual ~TTableFollower() = default;

    // A face stands at the end of the table. May throw std::bad_alloc; the follower is then given up.
    virtual void FaceAdded(FontReference reference) = 0;

    // A face is leaving the table.
    virtual void FaceRemoved(FontReference reference) = 0;
};

} // namespace vellum
