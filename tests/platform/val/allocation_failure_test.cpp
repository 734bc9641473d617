// SPDX-License-Identifier: MIT
// Exhausted memory, one allocation after the other: everything that can fail gives null or false,
// changes nothing, and leaks nothing (which the address sanitizer sees).
#include "platform/val/character_set.hpp"
#include "platform/val/shorthand.hpp"
#include "support/allocations.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace vellum {
namespace {

class ExhaustedMemory : public test::ExhaustedMemoryTest {
protected:
    // FailEach for what makes a value.
    template <class T>
    int FailEachMaking(const std::function<T *()> &make) {
        return FailEach([&] { return static_cast<bool>(Adopt(make())); });
    }
};

const std::string kLong(1000, 'L'); // too long for any buffer in place

TEST_F(ExhaustedMemory, MakesNoString) {
    using Make = std::function<const ValString *()>;
    const uint16_t units[] = {'a', 0xD834, 0xDD1E};
    auto upper = S(kLong);
    auto lower = S("abc%41 ");
    auto uuid = Adopt(ValUUIDCreate());
    const Make kMakers[] = {
        [] { return ValStringCreateWithUTF8("abc", 3); },
        [] { return ValStringCreateWithCString("abc"); },
        [] { return ValStringCreateWithFileSystemRepresentation("\xFF", 1); },
        [&] { return ValStringCreateWithUTF16(units, 3); },
        [] { return ValStringCreateWithBytes("abc", 3, kValStringEncodingRoman); },
        [] { return ValStringCreateWithBytes(kLong.data(), kLong.size(), kValStringEncodingUTF16BE); },
        [] { return ValStringCreateWithBytes(kLong.data(), kLong.size(), kValStringEncodingJapanese); },
        [&] { return ValStringCopyLowercase(upper.Get()); },
        [&] {
            return ValStringCopySubstring(lower.Get(), {1, 2});
        },
        [&] { return ValStringCopyTrimming(lower.Get(), S("").Get()); },
        [&] { return ValStringCopyTrimmingWhitespace(lower.Get()); },
        [&] { return ValStringCopyAddingPercentEscapes(upper.Get(), nullptr); },
        [&] { return ValStringCopyRemovingPercentEscapes(lower.Get()); },
        [&] { return ValUUIDCopyString(uuid.Get()); },
        [&] { return ValCopyDescription(upper.Get()); },
    };
    for (const Make &make : kMakers) FailEachMaking(make);
}

TEST_F(ExhaustedMemory, MakesNoSimpleValue) {
    auto text = S("01234567-89ab-cdef-0123-456789abcdef");
    EXPECT_EQ(FailEachMaking<const ValNumber>([] { return ValNumberCreateSInt32(1); }), 1);
    EXPECT_EQ(FailEachMaking<const ValNumber>([] { return ValNumberCreateFloat64(1); }), 1);
    EXPECT_EQ(FailEachMaking<const ValData>([] { return ValDataCreate("abc", 3); }), 1);
    EXPECT_EQ(FailEachMaking<const ValUUID>([] { return ValUUIDCreate(); }), 1);
    EXPECT_EQ(FailEachMaking<const ValUUID>([&] { return ValUUIDCreateWithString(text.Get()); }), 1);
}

TEST_F(ExhaustedMemory, LeavesLentBytesWithTheirOwner) {
    int released = 0;
    auto count = [](void *context) { ++*static_cast<int *>(context); };
    const int failures = FailEachMaking<const ValData>(
        [&] { return ValDataCreateWithBytesNoCopy("abc", 3, count, &released); });
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(released, 1); // by the one that was made
}

TEST_F(ExhaustedMemory, MakesNoURL) {
    auto text = S("file:///a/b#c");
    auto long_text = S("file:///" + kLong + "/%41#f");
    auto relative = S("../" + kLong + "/./x");
    auto url = U("file:///" + kLong + "/%41#f");
    auto name = S("a b");
    using Make = std::function<const ValURL *()>;
    const Make kMakers[] = {
        [&] { return ValURLCreateWithString(text.Get(), nullptr); },
        [&] { return ValURLCreateWithBytes("file:///", 8, nullptr); },
        [&] { return ValURLCreateWithString(relative.Get(), url.Get()); },
        [&] { return ValURLCreateWithFileSystemPath(relative.Get(), true, nullptr); },
        [&] { return ValURLCreateWithFileSystemPath(relative.Get(), false, url.Get()); },
        [&] { return ValURLCopyWithFragment(url.Get(), name.Get()); },
        [&] { return ValURLCopyDeletingLastPathComponent(url.Get()); },
        [&] { return ValURLCopyAppendingPathComponent(url.Get(), name.Get(), true); },
    };
    for (const Make &make : kMakers) EXPECT_GE(FailEachMaking(make), 1);
}

TEST_F(ExhaustedMemory, MakesNoPartOfAURL) {
    auto url = U("file://host/" + kLong + "/a.b#f%41");
    for (auto copy :
         {ValURLCopyScheme, ValURLCopyHost, ValURLCopyPath, ValURLCopyFragment, ValURLCopyDecodedFragment,
          ValURLCopyFileSystemPath, ValURLCopyLastPathComponent, ValURLCopyPathExtension}) {
        FailEachMaking<const ValString>([&] { return copy(url.Get()); });
    }
    char buffer[2000];
    FailEach([&] { return ValURLGetFileSystemRepresentation(url.Get(), buffer, sizeof buffer); });
}

TEST_F(ExhaustedMemory, LeavesDataAsItWas) {
    EXPECT_EQ(FailEach([] {
                  auto data = Adopt(ValDataCreateMutable(2));
                  if (!data) return false;
                  EXPECT_TRUE(ValDataAppend(data.Get(), "ab", 2));
                  const bool appended = ValDataAppend(data.Get(), "cdef", 4);
                  EXPECT_EQ(ValDataGetLength(data.Get()), appended ? 6u : 2u);
                  if (!appended) return false;
                  const bool grown = ValDataSetLength(data.Get(), 1000);
                  EXPECT_EQ(ValDataGetLength(data.Get()), grown ? 1000u : 6u);
                  EXPECT_EQ(ValDataGetBytes(data.Get())[5], 'f');
                  return grown;
              }),
              3);
}

TEST_F(ExhaustedMemory, LeavesAnArrayAsItWas) {
    auto item = N(1);
    FailEach([&] {
        auto array = Adopt(ValArrayCreateMutable(1, nullptr));
        for (size_t i = 0; i < 50; ++i) {
            if (ValArrayAppend(array.Get(), item.Get())) continue;
            EXPECT_EQ(ValArrayGetCount(array.Get()), i);
            return false;
        }
        auto copy = Adopt(ValArrayCreateMutableCopy(array.Get()));
        const bool appended = ValArrayAppendArray(copy.Get(), array.Get());
        EXPECT_EQ(ValArrayGetCount(copy.Get()), !copy ? 0u : appended ? 100u : 50u);
        return appended;
    });
    auto text = S("a;" + kLong + ";c");
    auto separator = S(";");
    EXPECT_GE(FailEachMaking<const ValArray>(
                  [&] { return ValStringCopyComponents(text.Get(), separator.Get()); }),
              4);
}

TEST_F(ExhaustedMemory, LeavesADictionaryAsItWas) {
    std::vector<Ref<const ValNumber>> numbers;
    for (int i = 0; i < 100; ++i) numbers.push_back(N(i));
    FailEach([&] {
        auto dictionary = Adopt(ValDictionaryCreateMutable(1, nullptr, nullptr));
        for (size_t i = 0; i < 100; ++i) {
            if (ValDictionarySetValue(dictionary.Get(), numbers[i].Get(), numbers[i].Get())) continue;
            EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), i);
            for (size_t j = 0; j < i; ++j) {
                EXPECT_EQ(ValDictionaryGetValue(dictionary.Get(), numbers[j].Get()), numbers[j].Get());
            }
            return false;
        }
        return static_cast<bool>(Adopt(ValDictionaryCreateMutableCopy(dictionary.Get())));
    });
    const void *items[] = {numbers[0].Get()};
    EXPECT_EQ(FailEachMaking<const ValDictionary>([&] { return ValDictionaryCreate(items, items, 1); }), 1);
}

TEST_F(ExhaustedMemory, LeavesASetAsItWas) {
    std::vector<Ref<const ValNumber>> numbers;
    for (int i = 0; i < 100; ++i) numbers.push_back(N(i));
    FailEach([&] {
        auto set = Adopt(ValSetCreateMutable(0, nullptr));
        for (size_t i = 0; i < 100; ++i) {
            if (ValSetAdd(set.Get(), numbers[i].Get())) continue;
            EXPECT_EQ(ValSetGetCount(set.Get()), i);
            return false;
        }
        return static_cast<bool>(Adopt(ValSetCreateMutableCopy(set.Get())));
    });
    const void *items[] = {numbers[0].Get()};
    EXPECT_EQ(FailEachMaking<const ValSet>([&] { return ValSetCreate(items, 1); }), 1);
}

TEST_F(ExhaustedMemory, LeavesACharacterSetAsItWas) {
    auto other = MutableSetOf({{1, 1}, {0x20000, 0x20000}});
    FailEach([&] {
        auto set = Adopt(ValCharacterSetCreateMutable());
        if (!ValCharacterSetAddRange(set.Get(), 0x10000, 0x1FFFF)) {
            EXPECT_EQ(ValCharacterSetGetCount(set.Get()), 0u);
            return false;
        }
        if (!ValCharacterSetAddRange(set.Get(), 0, 0xFFFF)) {
            EXPECT_EQ(RangesOf(set.Get()), (Ranges{{0x10000, 0x1FFFF}}));
            return false;
        }
        if (!ValCharacterSetUnion(set.Get(), other.Get())) {
            EXPECT_EQ(RangesOf(set.Get()), (Ranges{{0, 0x1FFFF}}));
            return false;
        }
        auto copy = Adopt(ValCharacterSetCreateMutableCopy(set.Get()));
        return copy && Adopt(ValCharacterSetCopyBitmap(copy.Get()));
    });
    EXPECT_EQ(FailEachMaking<const ValCharacterSet>([] { return ValCharacterSetCreateWithRange(1, 9999); }),
              1);
    EXPECT_EQ(FailEachMaking<const ValCharacterSet>([] { return ValCharacterSetCreateWithBitmap("a", 1); }),
              1);
}

TEST_F(ExhaustedMemory, SharesNoCharacterSetButGivesItBack) {
    std::vector<Ref<const ValCharacterSet>> sets;
    for (uint32_t i = 0; i < 200; ++i) sets.push_back(Adopt(ValCharacterSetCreateWithRange(i, 300)));
    for (auto &set : sets) {
        test::FailAllocationAfter(0);
        EXPECT_EQ(ShareCharacterSet(set).Get(), set.Get());
    }
    test::FailAllocationAfter(-1);
    for (auto &set : sets) EXPECT_EQ(ShareCharacterSet(set).Get(), set.Get());
}

TEST_F(ExhaustedMemory, StillComparesAndReleases) {
    auto a = S("É" + kLong + "2");
    auto b = S("é" + kLong + "10");
    Ref<const void> deep = A({});
    for (int i = 0; i < 1000; ++i) deep = A({deep.Get()});
    test::FailAllocationAfter(0);
    EXPECT_EQ(ValStringCompare(a.Get(), b.Get(), kValCompareCaseInsensitive), 1);
    EXPECT_NE(ValStringCompare(a.Get(), b.Get(), 7), 0);
    EXPECT_TRUE(kValCaseInsensitiveStringCallbacks.equal(a.Get(), a.Get()));
    test::FailAllocationAfter(0);
    deep = nullptr;
}

} // namespace
} // namespace vellum
