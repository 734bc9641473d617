// SPDX-License-Identifier: MIT
// What a provider of fonts makes of the data that it is asked with.
#include "ipc/client/font_provider.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_number.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Notes what it is asked, and answers with what it has.
struct Provider {
    Ref<const void> answer;
    std::vector<int32_t> processes;
    std::vector<size_t> attribute_counts; // 0 for null as well
    size_t nulls = 0;

    static const void *Answer(void *context, const ValDictionary *attributes, int32_t process) {
        auto *self = static_cast<Provider *>(context);
        self->processes.push_back(process);
        self->attribute_counts.push_back(ValDictionaryGetCount(attributes));
        if (!attributes) ++self->nulls;
        return Ref<const void>(self->answer).Release();
    }

    // The answer to a request; null for no data.
    Ref<const void> Ask(const void *request) {
        const auto memory = Flattened(request);
        const auto bytes = memory ? memory->Bytes() : std::span<const uint8_t>();
        return AskBytes(bytes);
    }
    Ref<const void> AskBytes(std::span<const uint8_t> bytes) {
        const FontProviderBlock block = {Answer, {std::shared_ptr<void>(), this}};
        const auto data = Adopt(ValDataCreate(bytes.data(), bytes.size()));
        const auto reply = AnswerFontRequests(block, data.Get());
        return Resurrected({ValDataGetBytes(reply.Get()), ValDataGetLength(reply.Get())});
    }
};

Ref<const ValDictionary> Request(const void *process) {
    TValMutableDict attributes, request;
    attributes.Set(kVLFontPropertyName, String("A").Get());
    request.Set(ProviderKey("attributes").Get(), attributes.Get());
    if (process) request.Set(ProviderKey("pid").Get(), process);
    return request.Publish();
}
Ref<const ValDictionary> RequestOf(int32_t process) {
    return Request(MakeNumber(process).Get());
}

Ref<const ValArray> Strings(std::initializer_list<const char *> texts) {
    TValMutableArray array;
    for (const char *text : texts) array.Append(String(text).Get());
    return array.Publish();
}

template <class T>
Ref<const ValArray> Several(const std::vector<Ref<T>> &items) {
    TValMutableArray array;
    for (const auto &item : items) array.Append(item.Get());
    return array.Publish();
}

TEST(FontProvider, AnswersOneRequestWithWhateverItsBlockGives) {
    Provider provider = {String("no array"), {}, {}, 0};
    EXPECT_EQ(TextOf(provider.Ask(RequestOf(42).Get())), "no array");
    EXPECT_THAT(provider.processes, ElementsAre(42));
    EXPECT_THAT(provider.attribute_counts, ElementsAre(1u));
}

TEST(FontProvider, AnswersSeveralRequestsWithAllTheirFontsInOneArray) {
    Provider provider = {Strings({"x", "y"}), {}, {}, 0};
    const auto answer = provider.Ask(Several<const ValDictionary>({RequestOf(1), RequestOf(2)}).Get());
    EXPECT_THAT(Texts(Retain(Cast<ValArray>(answer.Get()))), ElementsAre("x", "y", "x", "y"));
    EXPECT_THAT(provider.processes, ElementsAre(1, 2));
}

TEST(FontProvider, HasNoDataForSeveralRequestsThatBringNothing) {
    const auto requests = Several<const ValDictionary>({RequestOf(1), RequestOf(2)});
    Provider empty = {Strings({}), {}, {}, 0}, null, other = {String("no array"), {}, {}, 0};
    for (Provider *provider : {&empty, &null, &other}) {
        EXPECT_FALSE(provider->Ask(requests.Get()));
        EXPECT_EQ(provider->processes.size(), 2u);
    }
}

TEST(FontProvider, TakesWhatIsMissingForNothing) {
    Provider provider;
    EXPECT_FALSE(provider.Ask(TValMutableDict().Publish().Get()));
    EXPECT_FALSE(provider.Ask(Several<const ValString>({String("no request")}).Get()));
    EXPECT_THAT(provider.processes, ElementsAre(0, 0));
    EXPECT_EQ(provider.nulls, 2u);
}

TEST(FontProvider, TakesATrueProcessForTheFirst) {
    Provider provider;
    provider.Ask(Request(kValBooleanTrue).Get());
    provider.Ask(Request(kValBooleanFalse).Get());
    EXPECT_THAT(provider.processes, ElementsAre(1, 0));
    TValMutableDict listed;
    listed.Set(ProviderKey("pid").Get(), kValBooleanTrue);
    EXPECT_EQ(TRemoteFontProvider(listed.Get()).GetProcessID(), 1);
}

TEST(FontProvider, IsNotAskedByDataThatIsNoRequest) {
    Provider provider = {Strings({"x"}), {}, {}, 0};
    EXPECT_FALSE(provider.Ask(String("please").Get()));
    EXPECT_FALSE(provider.AskBytes({}));
    const uint8_t nonsense[] = {0xff, 0xff, 0xff, 0xff, 1};
    EXPECT_FALSE(provider.AskBytes(nonsense));
    EXPECT_THAT(provider.processes, IsEmpty());
}

TEST(FontProvider, WithoutANameHasNoPort) {
    EXPECT_FALSE(TRemoteFontProvider(TValMutableDict().Publish().Get()).CreatePort());
}

} // namespace
} // namespace vellum::test
