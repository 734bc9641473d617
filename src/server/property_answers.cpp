// SPDX-License-Identifier: MIT
// The answers to questions for properties of fonts that are named. However many are named, others are
// answered in between.
//
// The register is one process's like any other; what makes its fonts everybody's is added here.
#include "ipc/encoding/travelling_values.hpp"
#include "server/answers.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace vellum {

namespace {

// As many fonts take about a millisecond.
constexpr size_t kFontsAtOnce = 16;

Ref<const void> FolderOf(const ValURL *url) {
    const std::string path(TValURL(Retain(url)).Absolute().Path().View());
    return TValURL::FromPath(path.substr(0, path.rfind('/')), true).Ref();
}

// A property that only the server knows of a font; null for any other, and for what is not there.
Ref<const void> SharedProperty(FontServer &server, const ValURL *url, const ValString *key) {
    if (!server.Fonts().GetFontScope(url)) return nullptr;
    if (ValEqual(key, kVLFontPropertyScope)) return MakeNumber(int64_t{server.Register().ScopeOf(url)});
    if (ValEqual(key, kVLFontPropertyPriority))
        return MakeNumber(int64_t{server.Register().PriorityOf(url)});
    if (ValEqual(key, kVLFontPropertyFontRef))
        return MakeNumber(static_cast<int32_t>(server.Fonts().GetFontReference(url)));
    return ValEqual(key, kVLFontPropertyDirectory) ? FolderOf(url) : nullptr;
}

const ValString *const kSharedKeys[] = {kVLFontPropertyScope, kVLFontPropertyPriority,
                                        kVLFontPropertyFontRef, kVLFontPropertyDirectory};

bool IsSharedKey(const ValString *key) noexcept {
    return std::ranges::any_of(kSharedKeys,
                               [key](const ValString *shared) { return ValEqual(key, shared); });
}

Ref<const ValDictionary> WithSharedProperties(FontServer &server, const ValURL *url, const ValSet *keys,
                                              Ref<const ValDictionary> properties) {
    TValMutableDict more;
    for (const ValString *key : kSharedKeys) {
        if (!ValSetContains(keys, key)) continue;
        if (const auto value = SharedProperty(server, url, key)) more.Set(key, value.Get());
    }
    if (!properties || more.IsEmpty()) return properties;
    for (const auto &[key, value] : TValDict(properties))
        if (!ValDictionaryGetValue(more.Get(), key)) more.Set(key, value);
    return more.Publish();
}

// An answer about many fonts, in slices.
struct Round {
    // Adds what is known of some fonts to the answer.
    using AddSome = std::function<void(const ValArray *urls, TValMutableDict &answer)>;

    FontServer &server;
    Errand errand;
    Ref<const ValArray> urls;
    AddSome add;
    size_t next = 0;
    TValMutableDict answer = TValMutableDict();

    // False once the reply has been sent, or nobody waits for it any more.
    bool Slice() {
        if (errand.peer->IsClosed()) return false;
        const size_t count = ValArrayGetCount(urls.Get());
        TValMutableArray some;
        for (size_t i = 0; i < kFontsAtOnce && next < count; ++i)
            some.Append(ValArrayGetValue(urls.Get(), next++));
        add(some.Get(), answer);
        if (next < count) return true;
        OutgoingReply reply;
        if (!answer.IsEmpty()) reply.memory = Flattened(answer.Publish().Get()).value_or(OutgoingMemory());
        errand.Reply(reply);
        return false;
    }
};

// The first slice is done at once: most questions are for few fonts.
void Begin(Round round) {
    FontServer &server = round.server;
    auto kept = std::make_shared<Round>(std::move(round));
    const auto slice = [kept] {
        try {
            return kept->Slice();
        } catch (const std::bad_alloc &) {
            OutgoingReply reply;
            reply.code = kMachNoMemory;
            kept->errand.Reply(reply);
            return false;
        }
    };
    if (slice()) server.Loop().AddSideWork(slice);
}

} // namespace

void AnswerPropertiesForFonts(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    auto urls = Resurrected<ValArray>(arguments[0].memory);
    const auto keys = Resurrected<ValSet>(arguments[1].memory);
    if (!urls || !keys) return errand.Reply({});
    Begin({server, std::move(errand), std::move(urls),
           [&server, keys](const ValArray *some, TValMutableDict &answer) {
               const TValDict found(
                   server.Fonts().CopyPropertiesForFonts(some, keys.Get(), kVLScopeProcess));
               for (const auto &[url, properties] : found) {
                   const auto all = WithSharedProperties(server, Cast<ValURL>(url), keys.Get(),
                                                         Retain(Cast<ValDictionary>(properties)));
                   answer.Set(url, all.Get());
               }
           }});
}

void AnswerPropertyForFonts(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    auto urls = Resurrected<ValArray>(arguments[0].memory);
    const TValStr text(arguments[1].text);
    if (!urls || !text) return errand.Reply({});
    const TValStr key = text.Unique();
    Begin(
        {server, std::move(errand), std::move(urls),
         [&server, key, is_shared = IsSharedKey(key.Get())](const ValArray *some, TValMutableDict &answer) {
             if (!is_shared) {
                 const TValDict found(
                     server.Fonts().CopyPropertyForFonts(some, key.Get(), kVLScopeProcess));
                 for (const auto &[url, value] : found) answer.Set(url, value);
                 return;
             }
             for (const void *item : Elements(some)) {
                 const auto *url = Cast<ValURL>(item);
                 const auto value = url ? SharedProperty(server, url, key.Get()) : nullptr;
                 if (value) answer.Set(url, value.Get());
             }
         }});
}

void AnswerPropertiesForFont(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    const TValURL url = TValURL::FromText(arguments[0].text);
    const auto keys = Resurrected<ValSet>(arguments[1].memory);
    if (!url || !keys) return errand.Reply({});
    const auto properties =
        WithSharedProperties(server, url.Get(), keys.Get(),
                             server.Fonts().CopyPropertiesForFont(url.Get(), keys.Get(), kVLScopeProcess));
    OutgoingReply reply;
    reply.memory = Flattened(properties.Get()).value_or(OutgoingMemory());
    errand.Reply(reply);
}

} // namespace vellum
