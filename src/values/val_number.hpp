// SPDX-License-Identifier: MIT
// Numbers: making them, and reading them out of values that may be none.
#pragma once

#include "values/out_of_memory.hpp"
#include "values/val_cast.hpp"

#include <cstdint>

namespace vellum {

// These throw std::bad_alloc when memory is exhausted. The argument's type is the number's.
inline Ref<const ValNumber> MakeNumber(int8_t value) {
    return OrBadAlloc(Adopt(ValNumberCreateSInt8(value)));
}
inline Ref<const ValNumber> MakeNumber(int16_t value) {
    return OrBadAlloc(Adopt(ValNumberCreateSInt16(value)));
}
inline Ref<const ValNumber> MakeNumber(int32_t value) {
    return OrBadAlloc(Adopt(ValNumberCreateSInt32(value)));
}
inline Ref<const ValNumber> MakeNumber(int64_t value) {
    return OrBadAlloc(Adopt(ValNumberCreateSInt64(value)));
}
inline Ref<const ValNumber> MakeNumber(float value) {
    return OrBadAlloc(Adopt(ValNumberCreateFloat32(value)));
}
inline Ref<const ValNumber> MakeNumber(double value) {
    return OrBadAlloc(Adopt(ValNumberCreateFloat64(value)));
}

// A boolean reads as 1 or 0, a number as values.h says, anything else and null as 0.
int32_t ReadSInt32(const void *value) noexcept;
int64_t ReadSInt64(const void *value) noexcept;
double ReadFloat64(const void *value) noexcept;

// A new number with what a value reads as: TValNum holds the result of a lookup by its meaning.
class TValNum {
public:
    explicit TValNum(const void *value) noexcept : value_(Ref<const void>::Retain(value)) {}

    int32_t SInt32() const noexcept { return ReadSInt32(value_.Get()); }
    int64_t SInt64() const noexcept { return ReadSInt64(value_.Get()); }
    double Float64() const noexcept { return ReadFloat64(value_.Get()); }

private:
    Ref<const void> value_;
};

} // namespace vellum
