// SPDX-License-Identifier: MIT
// The second forks of files, as far as their type goes.
#pragma once

#include "support/bytes.hpp"

#include <string>
#include <vector>

namespace vellum::test {

// A resource map that lists these types (four characters each), with nothing behind them.
inline Bytes ResourceFork(const std::vector<std::string> &types) {
    ByteWriter fork;
    fork.U32(16).U32(16).U32(0).U32(static_cast<uint32_t>(30 + 8 * types.size()));
    fork.Zeros(24).U16(28).U16(0).U16(static_cast<uint32_t>(types.size()) - 1);
    for (const std::string &type : types) fork.Text(type).U16(0).U16(0);
    return fork;
}

} // namespace vellum::test
