// SPDX-License-Identifier: MIT
// Reading numbers out of values that may be none.
#include "values/val_number.hpp"

namespace vellum {
namespace {

// Null for what is no number; `read` of null is 0.
template <class Result>
Result Read(const void *value, Result (*read)(const ValNumber *)) noexcept {
    if (const auto *boolean = Cast<ValBoolean>(value)) return ValBooleanGetValue(boolean) ? 1 : 0;
    return read(Cast<ValNumber>(value));
}

} // namespace

int32_t ReadSInt32(const void *value) noexcept {
    return Read<int32_t>(value, ValNumberGetSInt32);
}
int64_t ReadSInt64(const void *value) noexcept {
    return Read<int64_t>(value, ValNumberGetSInt64);
}
double ReadFloat64(const void *value) noexcept {
    return Read<double>(value, ValNumberGetFloat64);
}

} // namespace vellum
