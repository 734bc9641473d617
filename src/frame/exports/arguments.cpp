// SPDX-License-Identifier: MIT
#include "frame/exports/arguments.hpp"

#include "platform/val/array.hpp"
#include "platform/val/dictionary.hpp"
#include "platform/val/set.hpp"

namespace vellum {

namespace {

constexpr int kMaximumDepth = 16;
constexpr size_t kMaximumItems = size_t{1} << 22; // counted wherever they stand: values may be shared

bool AreOurs(const ValCallbacks *callbacks) noexcept {
    return callbacks == &kValValueCallbacks || callbacks == &kValCaseInsensitiveStringCallbacks;
}

class PlainWalk {
public:
    bool Passes(const void *value) noexcept {
        switch (ValGetType(value)) {
        case kValTypeArray:
            return Enter([&] { return PassesArray(static_cast<const ValArray *>(value)); });
        case kValTypeSet:
            return Enter([&] { return PassesSet(static_cast<const ValSet *>(value)); });
        case kValTypeDictionary:
            return Enter([&] { return PassesDictionary(static_cast<const ValDictionary *>(value)); });
        default:
            return true;
        }
    }

private:
    template <class Walk>
    bool Enter(Walk walk) noexcept {
        if (depth_ == kMaximumDepth) return false;
        ++depth_;
        const bool passes = walk();
        --depth_;
        return passes;
    }

    bool PassesItem(const void *item) noexcept { return ++items_ <= kMaximumItems && Passes(item); }

    bool PassesArray(const ValArray *array) noexcept {
        if (!AreOurs(array->callbacks)) return false;
        for (size_t i = 0; i < ValArrayGetCount(array); ++i)
            if (!PassesItem(ValArrayGetValue(array, i))) return false;
        return true;
    }

    bool PassesSet(const ValSet *set) noexcept {
        if (!AreOurs(set->callbacks)) return false;
        size_t cursor = 0;
        for (const void *member; ValSetNext(set, &cursor, &member);)
            if (!PassesItem(member)) return false;
        return true;
    }

    bool PassesDictionary(const ValDictionary *dictionary) noexcept {
        if (!AreOurs(dictionary->key_callbacks) || !AreOurs(dictionary->value_callbacks)) return false;
        size_t cursor = 0;
        for (const void *key, *value; ValDictionaryNext(dictionary, &cursor, &key, &value);)
            if (!PassesItem(key) || !PassesItem(value)) return false;
        return true;
    }

    int depth_ = 0;
    size_t items_ = 0;
};

} // namespace

bool IsPlain(const void *value) noexcept {
    return PlainWalk().Passes(value);
}

} // namespace vellum
