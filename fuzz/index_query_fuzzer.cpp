// SPDX-License-Identifier: MIT
// Queries to the index of font files: what is parsed, written again, must parse to the same.
#include "beacon/query_language.hpp"

#include <cstdint>
#include <cstdlib>

using namespace vellum;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

static std::string_view NameOf(NameAttribute attribute) {
    switch (attribute) {
    case NameAttribute::kPostScript:
        return "com_orrery_fount_name_postscript";
    case NameAttribute::kFamily:
        return "com_orrery_fount_name_family";
    case NameAttribute::kStyle:
        return "com_orrery_fount_name_style";
    case NameAttribute::kFull:
        return "com_orrery_fount_name_full";
    }
    std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto clauses = ParseQuery(text);
    if (!clauses) return 0;
    std::string again;
    for (const NameClause &clause : *clauses) {
        if (!again.empty()) again += " && ";
        again.append(NameOf(clause.attribute)).append(" == \"").append(clause.value).append("\"");
    }
    if (clauses->empty() || again != text) std::abort(); // nothing of a query is ever left out
    return 0;
}
