// SPDX-License-Identifier: MIT
// What is written is read back equal; what cannot be, is not written.
#include "platform/app/property_list.hpp"
#include "platform/val/data.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace vellum::test {
namespace {

std::string Written(const void *value) {
    const auto data = WritePropertyList(value);
    return data ? std::string(Bytes(data.Get())) : "(null)";
}

void ExpectRoundTrip(const Ref<const void> &value) {
    const std::string text = Written(value.Get());
    const auto back = ReadPropertyList(text.data(), text.size());
    EXPECT_TRUE(ValEqual(back.Get(), value.Get())) << text;
}

Ref<const void> Dictionary(const void *key, const void *value) {
    return Adopt(ValDictionaryCreate(&key, &value, 1));
}
Ref<const void> ArrayOf(const void *item) {
    return Adopt(ValArrayCreate(&item, 1));
}

TEST(PropertyListWriter, LaysAListOutForPeople) {
    const auto inner = ArrayOf(Adopt(ValNumberCreateSInt32(400)).Get());
    const auto list = Dictionary(String("a<b").Get(), inner.Get());
    EXPECT_EQ(Written(list.Get()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vlist version=\"1.0\">\n"
                                   "<dict>\n    <key>a&lt;b</key>\n    <array>\n"
                                   "        <integer>400</integer>\n    </array>\n</dict>\n</vlist>\n");
}

TEST(PropertyListWriter, IsReadBackEqual) {
    for (const char *text : {"", " ", "  two\n lines\r\n\r \t ", "é & <😀> ]]> \"'", "--", "\xEF\xBB\xBF"})
        ExpectRoundTrip(String(text));
    for (const int64_t number : {int64_t{0}, int64_t{-1}, INT64_MIN, INT64_MAX})
        ExpectRoundTrip(Adopt(ValNumberCreateSInt64(number)));
    for (const double number : {0.1, -1e300, 5e-324, 5.0, std::numeric_limits<double>::infinity()})
        ExpectRoundTrip(Adopt(ValNumberCreateFloat64(number)));
    ExpectRoundTrip(Adopt(ValNumberCreateFloat32(0.1F)));
    ExpectRoundTrip(Adopt(ValNumberCreateSInt8(-3)));
    ExpectRoundTrip(Ref<const void>::Retain(kValBooleanTrue));
    ExpectRoundTrip(Ref<const void>::Retain(kValBooleanFalse));
    for (const std::string_view bytes : {"", "a", "ab", "abc", "abcd"})
        ExpectRoundTrip(Adopt(ValDataCreate(bytes.data(), bytes.size())));
    ExpectRoundTrip(Adopt(ValArrayCreate(nullptr, 0)));
    ExpectRoundTrip(Adopt(ValDictionaryCreate(nullptr, nullptr, 0)));
    ExpectRoundTrip(Dictionary(String("").Get(), ArrayOf(kValBooleanTrue).Get()));
}

TEST(PropertyListWriter, RefusesWhatHasNoForm) {
    EXPECT_EQ(Written(nullptr), "(null)");
    for (const char *text : {"\x01", "a\x1F", "\xFF", "\xED\xA0\x80", "\xEF\xBF\xBF"})
        EXPECT_EQ(
            Written(
                Adopt(ValStringCreateWithFileSystemRepresentation(text, std::string(text).size())).Get()),
            "(null)")
            << text;
    EXPECT_EQ(Written(Adopt(ValNumberCreateFloat64(std::nan(""))).Get()), "(null)");
    const auto uuid = Adopt(ValUUIDCreate());
    EXPECT_EQ(Written(uuid.Get()), "(null)");
    EXPECT_EQ(Written(ArrayOf(uuid.Get()).Get()), "(null)");
    EXPECT_EQ(Written(Dictionary(kValBooleanTrue, kValBooleanTrue).Get()), "(null)");
    const auto raw = Adopt(ValArrayCreateMutable(0, &kValRawCallbacks));
    ValArrayAppend(raw.Get(), reinterpret_cast<const void *>(uintptr_t{1}));
    EXPECT_EQ(Written(raw.Get()), "(null)");
}

TEST(PropertyListWriter, WritesWhatIsNestedSixtyFourDeepAtTheMost) {
    Ref<const void> value = Ref<const void>::Retain(kValBooleanTrue);
    for (size_t depth = 0; depth < kMaximumPropertyListNesting; ++depth) value = ArrayOf(value.Get());
    ExpectRoundTrip(value);
    EXPECT_EQ(Written(ArrayOf(value.Get()).Get()), "(null)");

    Ref<const void> empty = Adopt(ValArrayCreate(nullptr, 0));
    for (size_t depth = 1; depth < kMaximumPropertyListNesting; ++depth) empty = ArrayOf(empty.Get());
    ExpectRoundTrip(empty);
    EXPECT_EQ(Written(ArrayOf(empty.Get()).Get()), "(null)");
}

TEST(PropertyListWriter, WritesSixteenMebibytesAtTheMost) {
    const size_t frame = Written(String("").Get()).size();
    ExpectRoundTrip(String(std::string(kMaximumPropertyListSize - frame, 'x')));
    EXPECT_EQ(Written(String(std::string(kMaximumPropertyListSize - frame + 1, 'x')).Get()), "(null)");
}

} // namespace
} // namespace vellum::test
