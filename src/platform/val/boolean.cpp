// SPDX-License-Identifier: MIT
// The two booleans.
#include "platform/val/hash.hpp"
#include "platform/val/object.hpp"

namespace vellum {
extern const ValKind kBooleanKind;
} // namespace vellum

struct ValBoolean : vellum::ValObject {
    constexpr explicit ValBoolean(bool boolean) noexcept
        : ValObject(vellum::kBooleanKind, kImmortal), value(boolean) {}

    bool value;
};

namespace vellum {
namespace {

uint64_t HashBoolean(const ValObject *object) {
    return CombineHash(kValTypeBoolean, static_cast<const ValBoolean *>(object)->value);
}

constinit const ValBoolean kTrue(true);
constinit const ValBoolean kFalse(false);

} // namespace

// There are no others, so that only the same object is equal.
constinit const ValKind kBooleanKind{kValTypeBoolean, "Boolean", nullptr, nullptr, HashBoolean, nullptr};

} // namespace vellum

extern constinit const ValBoolean *const kValBooleanTrue = &vellum::kTrue;
extern constinit const ValBoolean *const kValBooleanFalse = &vellum::kFalse;

bool ValBooleanGetValue(const ValBoolean *boolean) noexcept {
    return boolean && boolean->value;
}
