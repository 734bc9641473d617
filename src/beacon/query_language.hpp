// SPDX-License-Identifier: MIT
// What the index of font files is asked: names that a file's faces must have.
//
//     query = clause { " && " clause }
//     clause = attribute ` == "` value `"`
//
// A value has no escapes. It ends at the first quote behind which the text ends, or another clause begins:
// so quotes, backslashes and ampersands may stand in a name. No attribute stands twice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellum {

// The numbers are those in the index.
enum class NameAttribute : uint8_t { kPostScript = 1, kFamily = 2, kStyle = 3, kFull = 4 };

struct NameClause {
    NameAttribute attribute;
    std::string value;

    bool operator==(const NameClause &) const = default;
};

// The longest query, in bytes.
constexpr size_t kLongestQuery = size_t{16} << 10;

// The clauses of a query, one at least, in its order; nothing for a text that is none. Throws
// std::bad_alloc.
std::optional<std::vector<NameClause>> ParseQuery(std::string_view text);

} // namespace vellum
