// SPDX-License-Identifier: MIT
// Numbers. Equality and hash go by the exact numeric value, whatever the type that a number keeps.
#include "platform/val/number.hpp"

#include "platform/val/hash.hpp"

#include <bit>
#include <cmath>
#include <limits>
#include <optional>

namespace vellum {
namespace {

constexpr double kTwoTo63 = 0x1p63; // the first double above every int64_t; its negative is the lowest

// The value of a number, if it is an integer that int64_t holds.
std::optional<int64_t> ExactInteger(const ValNumber &number) noexcept {
    if (!number.IsReal()) return number.integer;
    double real = number.real;
    if (!(real >= -kTwoTo63 && real < kTwoTo63) || real != std::trunc(real)) return std::nullopt;
    return static_cast<int64_t>(real);
}

// Without its fraction, clamped to Integer's range; not-a-number gives 0.
template <class Integer>
Integer Truncate(double real) noexcept {
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(real)) return 0;
    if (real <= static_cast<double>(Limits::min())) return Limits::min();
    if (real >= std::ldexp(1.0, Limits::digits)) return Limits::max();
    return static_cast<Integer>(real);
}

bool EqualNumbers(const ValObject *a, const ValObject *b) {
    auto &left = *static_cast<const ValNumber *>(a);
    auto &right = *static_cast<const ValNumber *>(b);
    auto x = ExactInteger(left);
    auto y = ExactInteger(right);
    if (x || y) return x == y;
    return left.real == right.real || (std::isnan(left.real) && std::isnan(right.real));
}

uint64_t HashNumber(const ValObject *object) {
    auto &number = *static_cast<const ValNumber *>(object);
    if (auto integer = ExactInteger(number)) return HashInteger(static_cast<uint64_t>(*integer));
    double real = std::isnan(number.real) ? std::numeric_limits<double>::quiet_NaN() : number.real;
    return HashInteger(~std::bit_cast<uint64_t>(real));
}

template <class Value>
const ValNumber *Create(ValNumberType type, Value value) noexcept {
    return AllocateObject<ValNumber>(0, type, value);
}

// Small integers of the two types that properties have, one object each: flags, scopes, formats and
// counts are nearly all small. An object is made when it is first asked for, and then stays.
constexpr int64_t kLeastShared = -1;
constexpr int64_t kGreatestShared = 255;
using SharedNumbers = std::atomic<const ValNumber *>[kGreatestShared - kLeastShared + 1];

constinit SharedNumbers sSharedSInt32{};
constinit SharedNumbers sSharedSInt64{};

const ValNumber *CreateOrShare(SharedNumbers &shared, ValNumberType type, int64_t value) noexcept {
    if (value < kLeastShared || value > kGreatestShared) return Create(type, value);
    std::atomic<const ValNumber *> &place = shared[value - kLeastShared];
    const ValNumber *number = place.load(std::memory_order_acquire);
    if (number) return number;
    number = Create(type, value);
    if (!number) return nullptr;
    number->references.store(ValObject::kImmortal, std::memory_order_relaxed);
    const ValNumber *first = nullptr;
    if (place.compare_exchange_strong(first, number, std::memory_order_acq_rel)) return number;
    std::free(const_cast<ValNumber *>(number)); // another thread was faster; nobody has seen this one
    return first;
}

} // namespace

constinit const ValKind kNumberKind{kValTypeNumber, "Number", nullptr, EqualNumbers, HashNumber, nullptr};

} // namespace vellum

using namespace vellum;

const ValNumber *ValNumberCreateSInt8(int8_t value) noexcept {
    return Create(kValNumberTypeSInt8, int64_t{value});
}
const ValNumber *ValNumberCreateSInt16(int16_t value) noexcept {
    return Create(kValNumberTypeSInt16, int64_t{value});
}
const ValNumber *ValNumberCreateSInt32(int32_t value) noexcept {
    return CreateOrShare(sSharedSInt32, kValNumberTypeSInt32, value);
}
const ValNumber *ValNumberCreateSInt64(int64_t value) noexcept {
    return CreateOrShare(sSharedSInt64, kValNumberTypeSInt64, value);
}
const ValNumber *ValNumberCreateFloat32(float value) noexcept {
    return Create(kValNumberTypeFloat32, static_cast<double>(value));
}
const ValNumber *ValNumberCreateFloat64(double value) noexcept {
    return Create(kValNumberTypeFloat64, value);
}

ValNumberType ValNumberGetNumberType(const ValNumber *number) noexcept {
    return number ? number->type : ValNumberType{kValNumberTypeNone};
}

int32_t ValNumberGetSInt32(const ValNumber *number) noexcept {
    if (!number) return 0;
    return number->IsReal() ? Truncate<int32_t>(number->real) : static_cast<int32_t>(number->integer);
}

int64_t ValNumberGetSInt64(const ValNumber *number) noexcept {
    if (!number) return 0;
    return number->IsReal() ? Truncate<int64_t>(number->real) : number->integer;
}

double ValNumberGetFloat64(const ValNumber *number) noexcept {
    if (!number) return 0;
    return number->IsReal() ? number->real : static_cast<double>(number->integer);
}
