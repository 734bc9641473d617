// SPDX-License-Identifier: MIT
// The making of values: trees, chains and large ones.
#include "ipc/encoding/generator.hpp"

#include "ipc/encoding/generator_leaves.hpp"

namespace vellum::test {
namespace {

using Value = Ref<const void>;

constexpr size_t kDeepestTree = 6;
constexpr size_t kLongestChain = 68;
constexpr size_t kLargeCount = 600;

class ValueMaker {
public:
    ValueMaker(Random &random, bool with_strings) : random_(random), with_strings_(with_strings) {}

    Value Make() {
        if (random_.OneIn(300)) return Large();
        if (random_.OneIn(60)) return Chain();
        return random_.OneIn(4) ? Leaf() : Container(1);
    }

private:
    using Maker = Value (*)(Random &);

    Value Leaf() {
        static constexpr Maker kMakers[] = {RandomNumber, RandomNumber, RandomNumber, RandomNumber,
                                            RandomData,   RandomData,   RandomURL,    RandomURL,
                                            RandomUUID,   RandomBoolean};
        if (random_.OneIn(150)) return RandomCharacterSet(random_);
        if (with_strings_ && random_.OneIn(3)) return RandomString(random_);
        return random_.Pick(kMakers)(random_);
    }

    Value Item(size_t depth) {
        return depth < kDeepestTree && random_.OneIn(3) ? Container(depth + 1) : Leaf();
    }

    Value Container(size_t depth) {
        switch (random_.Below(3)) {
        case 0:
            return Array(depth, random_.Below(6));
        case 1:
            return Set(depth, random_.Below(6));
        default:
            return Dictionary(depth, random_.Below(4));
        }
    }

    Value Array(size_t depth, size_t count) {
        auto array = Adopt(ValArrayCreateMutable(0, nullptr));
        while (count-- > 0) {
            ValArrayAppend(array.Get(), (random_.OneIn(12) ? nullptr : Item(depth)).Get());
        }
        return array;
    }

    const ValCallbacks *Callbacks() {
        return random_.OneIn(8) ? &kValCaseInsensitiveStringCallbacks : &kValValueCallbacks;
    }

    Value Set(size_t depth, size_t count) {
        auto set = Adopt(ValSetCreateMutable(0, Callbacks()));
        while (count-- > 0) ValSetAdd(set.Get(), Item(depth).Get());
        return set;
    }

    Value Dictionary(size_t depth, size_t count) {
        auto dictionary = Adopt(ValDictionaryCreateMutable(0, Callbacks(), Callbacks()));
        while (count-- > 0) {
            const Value key = Item(depth);
            ValDictionarySetValue(dictionary.Get(), key.Get(), Item(depth).Get());
        }
        return dictionary;
    }

    // A container of the value, and at times of one or two others.
    Value Around(const Value &value) {
        auto array = Adopt(ValArrayCreateMutable(0, nullptr));
        auto set = Adopt(ValSetCreateMutable(0, nullptr));
        auto dictionary = Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
        switch (random_.Below(4)) {
        case 0:
            if (random_.OneIn(4)) ValSetAdd(set.Get(), Leaf().Get());
            ValSetAdd(set.Get(), value.Get());
            return set;
        case 1:
            ValDictionarySetValue(dictionary.Get(), Leaf().Get(), value.Get());
            return dictionary;
        case 2:
            ValDictionarySetValue(dictionary.Get(), value.Get(), Leaf().Get());
            return dictionary;
        default:
            ValArrayAppend(array.Get(), value.Get());
            if (random_.OneIn(4)) ValArrayAppend(array.Get(), Leaf().Get());
            return array;
        }
    }

    Value Chain() {
        Value value = Leaf();
        const size_t length = random_.Between(random_.OneIn(2) ? 1 : 60, kLongestChain);
        for (size_t i = 0; i < length; ++i) value = Around(value);
        return value;
    }

    Value Large() {
        const size_t count = random_.Between(100, kLargeCount);
        switch (random_.Below(5)) {
        case 0:
            return Array(kDeepestTree, count);
        case 1:
            return Set(kDeepestTree, count);
        case 2:
            return Dictionary(kDeepestTree, count / 2);
        case 3:
            return LargeData(random_, 10 * count);
        default:
            return with_strings_ ? LongString(random_, 5 * count) : Container(1);
        }
    }

    Random &random_;
    const bool with_strings_;
};

} // namespace

Ref<const void> RandomValue(Random &random) {
    return ValueMaker(random, true).Make();
}

Ref<const void> RandomValueWithoutStrings(Random &random) {
    return ValueMaker(random, false).Make();
}

} // namespace vellum::test
