// SPDX-License-Identifier: MIT
#include "tools/explain.hpp"

#include "tools/face_properties.hpp"
#include "tools/text.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <optional>
#include <string_view>

namespace vellum::tool {

namespace {

Ref<const ValString> MakeKey(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

// What a stage, or the whole trace, has under a key: borrowed, or null.
const void *At(const ValDictionary *stage, std::string_view key) {
    return ValDictionaryGetValue(stage, MakeKey(key).Get());
}

std::string TextAt(const ValDictionary *stage, std::string_view key) {
    return Bytes(StringAt(stage, MakeKey(key).Get()));
}

size_t CountAt(const ValDictionary *stage, std::string_view key) {
    return static_cast<size_t>(NumberAt(stage, MakeKey(key).Get()));
}

std::vector<const ValDictionary *> StagesOf(const ValDictionary *trace) {
    const ValArray *stages = ArrayAt(trace, MakeKey("stages").Get());
    std::vector<const ValDictionary *> list;
    for (size_t i = 0; i < ValArrayGetCount(stages); ++i)
        list.push_back(static_cast<const ValDictionary *>(ValArrayGetValue(stages, i)));
    return list;
}

// ---- words for things -------------------------------------------------------------------------------

struct Words {
    const ValString *const *key;
    const char *one; // "its family name is ..."
};

constexpr Words kProperties[] = {
    {&kVLFontPropertyName, "PostScript name"},    {&kVLFontPropertyFamilyName, "family name"},
    {&kVLFontPropertyFullName, "full name"},      {&kVLFontPropertySubfamilyName, "style name"},
    {&kVLFontPropertyVersionName, "version"},     {&kVLFontPropertyCopyrightName, "copyright notice"},
    {&kVLFontPropertyTraits, "traits"},           {&kVLFontPropertyURL, "place"},
    {&kVLFontPropertyCharacterSet, "characters"}, {&kVLFontPropertySupportedLanguages, "languages"},
    {&kVLFontPropertyPriority, "priority"},
};

std::string WordsFor(const ValString *key) {
    for (const Words &words : kProperties)
        if (*words.key == key || ValEqual(*words.key, key)) return words.one;
    return Printable(Bytes(key));
}

std::string Number(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", number);
    return text;
}

std::string Fonts(size_t count) {
    return count == 0 ? "no font" : count == 1 ? "1 font" : Grouped(count) + " fonts";
}

std::string Quoted(const void *value) {
    switch (ValGetType(value)) {
    case kValTypeString:
        return '"' + Printable(Bytes(static_cast<const ValString *>(value))) + '"';
    case kValTypeURL:
        return Printable(PathOf(static_cast<const ValURL *>(value)));
    default:
        return "what is asked";
    }
}

// ---- why a font was dropped -------------------------------------------------------------------------

struct Bit {
    int32_t bit;
    const char *name;
};
constexpr Bit kBits[] = {{kVLFontTraitItalic, "italic"},
                         {kVLFontTraitBold, "bold"},
                         {kVLFontTraitExpanded, "expanded"},
                         {kVLFontTraitCondensed, "condensed"},
                         {kVLFontTraitMonospace, "monospaced"}};

std::string TraitsThatDiffer(const ValDictionary *wanted, const ValDictionary *own) {
    const auto bits = static_cast<uint32_t>(NumberAt(wanted, kVLFontTraitSymbolic));
    const auto own_bits = static_cast<uint32_t>(static_cast<int64_t>(NumberAt(own, kVLFontTraitSymbolic)));
    for (const Bit &bit : kBits)
        if (bits & ~own_bits & static_cast<uint32_t>(bit.bit)) return std::string("it is not ") + bit.name;
    constexpr std::array kValues = {std::pair(&kVLFontTraitWeight, "weight"),
                                    std::pair(&kVLFontTraitWidth, "width"),
                                    std::pair(&kVLFontTraitSlant, "slant")};
    for (const auto &[key, name] : kValues) {
        if (!ValDictionaryContainsKey(wanted, *key)) continue;
        const double wish = NumberAt(wanted, *key), value = NumberAt(own, *key);
        if (std::abs(wish - value) > 0.0001)
            return std::string("its ") + name + " is " + Number(value) + ", not " + Number(wish);
    }
    return "its traits differ";
}

std::string MissingCharacters(const ValCharacterSet *wanted, const ValCharacterSet *own) {
    auto missing = Adopt(ValCharacterSetCreateMutableCopy(wanted));
    uint32_t first = UINT32_MAX, last = UINT32_MAX;
    while (ValCharacterSetNextRange(own, &first, &last))
        if (!ValCharacterSetRemoveRange(missing.Get(), first, last)) break;
    if (ValCharacterSetGetCount(missing.Get()) == 0)
        return "it stands for the end of a list of fonts, and is never chosen for characters";
    std::string ranges = RangesOf(missing.Get());
    const auto upper = [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; };
    std::ranges::transform(ranges, ranges.begin(), upper);
    return "it has no U+" + ranges;
}

bool Supports(const ValArray *own, const void *language) {
    return own && ValArrayContains(own, language);
}

std::string MissingLanguages(const void *wanted, const ValArray *own) {
    if (ValGetType(wanted) != kValTypeArray) return "it does not support " + Quoted(wanted);
    const auto *languages = static_cast<const ValArray *>(wanted);
    for (size_t i = 0; i < ValArrayGetCount(languages); ++i)
        if (const void *language = ValArrayGetValue(languages, i); !Supports(own, language))
            return "it does not support " + Quoted(language);
    return "it does not support the languages";
}

template <class T>
const T *As(const void *value, ValType type) {
    return ValGetType(value) == type ? static_cast<const T *>(value) : nullptr;
}

std::string WhyDropped(const ValString *property, const void *wanted, const void *own) {
    if (ValEqual(property, kVLFontPropertyTraits))
        return TraitsThatDiffer(As<ValDictionary>(wanted, kValTypeDictionary),
                                As<ValDictionary>(own, kValTypeDictionary));
    if (ValEqual(property, kVLFontPropertyCharacterSet))
        return MissingCharacters(As<ValCharacterSet>(wanted, kValTypeCharacterSet),
                                 As<ValCharacterSet>(own, kValTypeCharacterSet));
    if (ValEqual(property, kVLFontPropertySupportedLanguages))
        return MissingLanguages(wanted, As<ValArray>(own, kValTypeArray));
    if (!own) return "it has no " + WordsFor(property);
    return "its " + WordsFor(property) + " is not " + Quoted(wanted);
}

// ---- stages -----------------------------------------------------------------------------------------

std::string NameOfURL(const void *url, VLScope scope) {
    return NameOf(Describe(static_cast<const ValURL *>(url), scope));
}

std::string WordsForStage(const ValDictionary *stage, VLScope scope) {
    const std::string kind = TextAt(stage, "stage");
    const auto *property = static_cast<const ValString *>(At(stage, "property"));
    if (kind == "register")
        return TextAt(stage, "register") == "process" ? "among the fonts of this process:"
                                                      : "among the fonts of the machine:";
    if (kind == "index")
        return "  " + Fonts(CountAt(stage, "fonts")) + " with the " + WordsFor(property) + ' ' +
               Quoted(At(stage, "requested"));
    if (kind == "scan")
        return "  no name is asked for: " + Fonts(CountAt(stage, "fonts")) + " to look through";
    if (kind == "order") {
        const void *decided_by = At(stage, "decidedBy");
        std::string first = NameOfURL(At(stage, "font"), scope);
        std::string second = NameOfURL(At(stage, "before"), scope);
        if (first == second) { // their files tell them apart
            first = Quoted(At(stage, "font"));
            second = Quoted(At(stage, "before"));
        }
        return "  " + first + " comes before " + second +
               (decided_by ? " by the " + WordsFor(static_cast<const ValString *>(decided_by))
                           : ", as it was registered first");
    }
    if (kind == "activation") return "  no register has it: it is looked for beyond them";
    if (kind == "activated") return "  that ended so: " + TextAt(stage, "outcome");
    return "  " + kind;
}

bool IsDropped(const ValDictionary *stage) {
    return TextAt(stage, "stage") == "dropped";
}

bool IsOrder(const ValDictionary *stage) {
    return TextAt(stage, "stage") == "order";
}

// Who reads on wants to know why the first ones are first.
constexpr size_t kToldOrders = 10;

// The property that puts the first font of the answer before a later one: of those between neighbours on
// the way, the one that counts most.
std::string DecidedUpTo(const ValURL *font, const std::vector<const ValDictionary *> &stages) {
    const ValString *const by_rank[] = {kVLFontPropertyFamilyName, kVLFontPropertyTraits,
                                        kVLFontPropertySubfamilyName, kVLFontPropertyPriority};
    size_t best = std::size(by_rank);
    for (const ValDictionary *stage : stages) {
        if (!IsOrder(stage)) continue;
        const void *decided_by = At(stage, "decidedBy");
        const auto rank = static_cast<size_t>(
            std::ranges::find_if(by_rank,
                                 [&](const void *key) { return decided_by && ValEqual(key, decided_by); }) -
            std::begin(by_rank));
        best = std::min(best, rank);
        if (ValEqual(At(stage, "before"), font)) break;
    }
    return best < std::size(by_rank) ? "by the " + WordsFor(by_rank[best]) : "as it was registered later";
}

// Why a font that no index gave is not among the candidates.
std::string WhyNoCandidate(const ValURL *font, const std::vector<Wish> &wishes, VLScope scope) {
    for (const Wish &wish : wishes) {
        const void *const keys[] = {wish.key};
        const auto properties =
            Adopt(VLCopyPropertiesForFont(font, Adopt(ValSetCreate(keys, 1)).Get(), scope));
        const void *own = ValDictionaryGetValue(properties.Get(), wish.key);
        if (wish.key == kVLFontPropertyURL)
            return "it lies in " + Printable(PathOf(font)) + ", not in " + Quoted(wish.value.Get());
        const auto *text = As<ValString>(own, kValTypeString);
        const auto *wanted = As<ValString>(wish.value.Get(), kValTypeString);
        if (!wanted || (text && ValStringCompare(text, wanted, kValCompareCaseInsensitive) == 0)) continue;
        if (wish.key == kVLFontPropertySupportedLanguages) continue;
        return "it is not among the fonts with the " + WordsFor(wish.key) + ' ' + Quoted(wanted) +
               (text ? ": its own is " + Quoted(text) : "");
    }
    return "it is not among the fonts that were looked at";
}

} // namespace

TracedAnswer FindTraced(const ValDictionary *request, VLScope scope) {
    TracedAnswer answer;
    VLSetLookupTraceCallback(
        [](const ValDictionary *lookup, void *context) {
            static_cast<TracedAnswer *>(context)->trace = Retain(lookup);
        },
        &answer);
    answer.fonts = Adopt(VLCopyFontsWithProperties(request, scope, kActivateNothing));
    VLSetLookupTraceCallback(nullptr, nullptr);
    return answer;
}

std::vector<std::string> Explain(const TracedAnswer &answer, VLScope scope) {
    std::vector<std::string> lines;
    size_t orders = 0;                     // neighbours in the answer
    std::map<std::string, size_t> dropped; // by property
    const auto tell_dropped = [&] {
        for (const auto &[property, count] : dropped)
            lines.push_back("  " + Fonts(count) + " dropped by the " + property);
        dropped.clear();
    };
    for (const ValDictionary *stage : StagesOf(answer.trace.Get())) {
        if (IsDropped(stage)) {
            ++dropped[WordsFor(static_cast<const ValString *>(At(stage, "property")))];
            continue;
        }
        tell_dropped();
        if (!IsOrder(stage) || ++orders <= kToldOrders) lines.push_back(WordsForStage(stage, scope));
    }
    tell_dropped();
    if (orders > kToldOrders) lines.push_back("  and so on, for " + Fonts(orders - kToldOrders) + " more");
    return lines;
}

std::string WhyNot(const ValURL *font, const std::vector<Wish> &wishes, const TracedAnswer &answer,
                   VLScope scope) {
    const auto stages = StagesOf(answer.trace.Get());
    for (size_t place = 0; place < ValArrayGetCount(answer.fonts.Get()); ++place) {
        if (!ValEqual(ValArrayGetValue(answer.fonts.Get(), place), font)) continue;
        if (place == 0) return "it is the answer";
        return "it fits, and is number " + Grouped(place + 1) + ": it comes after " +
               NameOfURL(ValArrayGetValue(answer.fonts.Get(), 0), scope) + ' ' + DecidedUpTo(font, stages);
    }
    for (const ValDictionary *stage : stages)
        if (IsDropped(stage) && ValEqual(At(stage, "font"), font))
            return WhyDropped(static_cast<const ValString *>(At(stage, "property")), At(stage, "requested"),
                              At(stage, "found"));
    return WhyNoCandidate(font, wishes, scope);
}

} // namespace vellum::tool
