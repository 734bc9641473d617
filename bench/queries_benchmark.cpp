// SPDX-License-Identifier: MIT
// How long questions take, and how that grows with the number of faces: Vellum's exported functions beside
// fontconfig, over the same faces with the same names, styles, coverage and languages.
//
//     queries_benchmark [FOLDER...]
//
// fontconfig is asked with FcFontSetMatch and FcFontSetList over a set that is in memory, without the
// substitutions of a configuration: what it would be asked with has more in it.
#include "frame/handles/local_glyphary.hpp"
#include "many_faces.hpp"
#include "rotation.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <vellum/vellum.hpp>

#include <fontconfig/fontconfig.h>

#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace vellum;
using namespace vellum::bench;

namespace {

constexpr int kRounds = 7;

// U+10FFFD is for private use: no font has it.
constexpr uint32_t kNobodysCharacter = 0x10FFFD;

// Characters of many scripts, so that the best font is now an early and now a late one.
constexpr uint32_t kCharacters[] = {0x41,   0xE9,    0x416,  0x3B1,  0x5D0,  0x627,  0x915, 0xE01,
                                    0x10D0, 0x1F600, 0x3042, 0x4E00, 0xAC00, 0x2200, 0x16A0};

Ref<const ValString> Text(const std::string &text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

const FcChar8 *Bytes(const std::string &text) {
    return reinterpret_cast<const FcChar8 *>(text.c_str());
}

// ---- the faces --------------------------------------------------------------------------------------

struct TOriginal {
    TFont font;
    FcPattern *pattern; // what fontconfig's scan says of the file
};

std::string StringOf(FcPattern *pattern, const char *object) {
    FcChar8 *text = nullptr;
    return FcPatternGetString(pattern, object, 0, &text) == FcResultMatch
               ? reinterpret_cast<const char *>(text)
               : "";
}

std::vector<TOriginal> FindOriginals(const TFiles &files) {
    std::vector<TOriginal> originals;
    for (const std::string &path : files) {
        auto font = TakeApart(path);
        int count = 0;
        FcPattern *pattern = font ? FcFreeTypeQuery(Bytes(path), 0, nullptr, &count) : nullptr;
        if (!pattern) continue;
        font->family = StringOf(pattern, FC_FAMILY);
        font->style = StringOf(pattern, FC_STYLE);
        originals.push_back({std::move(*font), pattern});
    }
    return originals;
}

TNames NamesOfCopy(const TOriginal &original, size_t copy) {
    const std::string number = std::to_string(copy);
    const std::string family = original.font.family + " " + number;
    std::string postscript = StringOf(original.pattern, FC_POSTSCRIPT_NAME) + "-" + number;
    return {family, original.font.style, family + " " + original.font.style, postscript};
}

// The faces of both sides, which grow together.
class TFaces {
public:
    explicit TFaces(std::vector<TOriginal> originals) : originals_(std::move(originals)) {}

    void GrowTo(size_t count) {
        while (names_.size() < count) Add();
    }

    const std::vector<TNames> &Names() const { return names_; }
    FcFontSet *Set() const { return set_; }

private:
    void Add() {
        const TOriginal &original = originals_[names_.size() % originals_.size()];
        const TNames names = NamesOfCopy(original, names_.size() / originals_.size());
        const std::string bytes = PutTogether(original.font, names);
        const auto data = Adopt(ValDataCreate(bytes.data(), bytes.size()));
        if (!VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess))
            std::fprintf(stderr, "%s was refused\n", names.full.c_str());
        FcPattern *pattern = FcPatternDuplicate(original.pattern);
        for (const char *object : {FC_FAMILY, FC_FULLNAME, FC_POSTSCRIPT_NAME})
            FcPatternDel(pattern, object);
        FcPatternAddString(pattern, FC_FAMILY, Bytes(names.family));
        FcPatternAddString(pattern, FC_FULLNAME, Bytes(names.full));
        FcPatternAddString(pattern, FC_POSTSCRIPT_NAME, Bytes(names.postscript));
        FcFontSetAdd(set_, pattern);
        names_.push_back(names);
    }

    std::vector<TOriginal> originals_;
    std::vector<TNames> names_;
    FcFontSet *set_ = FcFontSetCreate();
};

// ---- asking fontconfig ------------------------------------------------------------------------------

size_t Match(FcFontSet *set, const std::function<void(FcPattern *)> &fill) {
    FcPattern *pattern = FcPatternCreate();
    fill(pattern);
    FcDefaultSubstitute(pattern);
    FcResult result;
    FcPattern *found = FcFontSetMatch(nullptr, &set, 1, pattern, &result);
    const size_t done = found ? 1 : 0;
    if (found) FcPatternDestroy(found);
    FcPatternDestroy(pattern);
    return done;
}

size_t List(FcFontSet *set, const std::vector<const char *> &objects) {
    FcPattern *pattern = FcPatternCreate();
    FcObjectSet *wanted = FcObjectSetCreate();
    for (const char *object : objects) FcObjectSetAdd(wanted, object);
    FcFontSet *found = FcFontSetList(nullptr, &set, 1, pattern, wanted);
    const auto done = static_cast<size_t>(found->nfont);
    FcFontSetDestroy(found);
    FcObjectSetDestroy(wanted);
    FcPatternDestroy(pattern);
    return done;
}

// ---- the questions ----------------------------------------------------------------------------------

// One question as both sides are asked it, `repeat` times by Vellum and `fc_repeat` times by fontconfig.
struct TQuestion {
    const char *name;
    size_t repeat;
    std::function<size_t(size_t)> ask; // the i-th time; not 0 when there was an answer, as expected
    size_t fc_repeat;
    std::function<size_t(size_t)> fc_ask;
};

std::function<size_t()> Times(size_t count, const std::function<size_t(size_t)> &ask) {
    return [=] {
        size_t done = 0;
        for (size_t i = 0; i < count; ++i) done += ask(i);
        return done == count ? done : 0;
    };
}

size_t Is(const void *owned) {
    Keep(owned);
    ValRelease(owned);
    return owned ? 1 : 0;
}

Ref<const ValDictionary> FamilyAndTraits(const TNames &names, double weight, double slant) {
    TValMutableDict traits, request;
    traits.Set(kVLFontTraitWeight, MakeNumber(weight).Get());
    traits.Set(kVLFontTraitSlant, MakeNumber(slant).Get());
    request.Set(kVLFontPropertyFamilyName, Text(names.family).Get());
    request.Set(kVLFontPropertyTraits, traits.Publish().Get());
    return request.Publish();
}

// The traits that the face itself has, so that there is an answer.
Ref<const ValDictionary> RequestFor(const TNames &names) {
    const auto url = Adopt(VLCopyFontWithName(Text(names.postscript).Get(), kVLScopeProcess, 0));
    const void *const keys[] = {kVLFontPropertyTraits};
    const auto properties =
        Adopt(VLCopyPropertiesForFont(url.Get(), Adopt(ValSetCreate(keys, 1)).Get(), kVLScopeProcess));
    const auto *traits =
        Cast<ValDictionary>(ValDictionaryGetValue(properties.Get(), kVLFontPropertyTraits));
    return FamilyAndTraits(names, ReadFloat64(ValDictionaryGetValue(traits, kVLFontTraitWeight)),
                           ReadFloat64(ValDictionaryGetValue(traits, kVLFontTraitSlant)));
}

Ref<const ValSet> AllKeys() {
    const void *const keys[] = {
        kVLFontPropertyName,   kVLFontPropertyFamilyName,    kVLFontPropertyFullName,
        kVLFontPropertyTraits, kVLFontPropertySubfamilyName, kVLFontPropertyURL,
        kVLFontPropertyFormat, kVLFontPropertyCharacterSet,  kVLFontPropertySupportedLanguages,
    };
    return Adopt(ValSetCreate(keys, std::size(keys)));
}

std::vector<TQuestion> MakeQuestions(const TFaces &faces) {
    constexpr size_t kAsked = 200;
    std::vector<Ref<const ValString>> postscript, family;
    std::vector<Ref<const ValDictionary>> requests;
    for (size_t i = 0; i < kAsked; ++i) {
        const TNames &names = faces.Names()[i * 7919 % faces.Names().size()];
        postscript.push_back(Text(names.postscript));
        family.push_back(Text(names.family));
        requests.push_back(RequestFor(names));
    }
    const auto names_at = [&faces](size_t i) -> const TNames & {
        return faces.Names()[i % kAsked * 7919 % faces.Names().size()];
    };
    FcFontSet *set = faces.Set();
    const auto match_character = [set](uint32_t character) {
        return Match(set, [character](FcPattern *pattern) {
            FcCharSet *characters = FcCharSetCreate();
            FcCharSetAddChar(characters, character);
            FcPatternAddCharSet(pattern, FC_CHARSET, characters);
            FcCharSetDestroy(characters);
        });
    };
    return {
        {"name", 20000,
         [=](size_t i) { return Is(VLCopyFontWithName(postscript[i % kAsked].Get(), kVLScopeProcess, 0)); },
         5,
         [=](size_t i) {
             return Match(set, [&](FcPattern *pattern) {
                 FcPatternAddString(pattern, FC_POSTSCRIPT_NAME, Bytes(names_at(i).postscript));
             });
         }},
        {"family", 20000,
         [=](size_t i) { return Is(VLCopyFontWithName(family[i % kAsked].Get(), kVLScopeProcess, 0)); }, 5,
         [=](size_t i) {
             return Match(set, [&](FcPattern *pattern) {
                 FcPatternAddString(pattern, FC_FAMILY, Bytes(names_at(i).family));
             });
         }},
        {"family, weight and slant", 5000,
         [=](size_t i) {
             return Is(VLCopyFontWithProperties(requests[i % kAsked].Get(), kVLScopeProcess, 0));
         },
         5,
         [=](size_t i) {
             return Match(set, [&](FcPattern *pattern) {
                 FcPatternAddString(pattern, FC_FAMILY, Bytes(names_at(i).family));
                 FcPatternAddInteger(pattern, FC_WEIGHT, FC_WEIGHT_BOLD);
                 FcPatternAddInteger(pattern, FC_SLANT, FC_SLANT_ITALIC);
             });
         }},
        {"a character", 20000,
         [=](size_t i) {
             Is(VLCopyFontForCharacter(kCharacters[i % std::size(kCharacters)], kVLScopeProcess, 0));
             return size_t{1};
         },
         5, [=](size_t i) { return match_character(kCharacters[i % std::size(kCharacters)]); }},
        {"no font's character, again", 100000,
         [=](size_t) { return 1 - Is(VLCopyFontForCharacter(kNobodysCharacter, kVLScopeProcess, 0)); }, 5,
         [=](size_t) { return match_character(kNobodysCharacter); }},
        {"all families", 1000, [=](size_t) { return Is(VLCopyAvailableFamilyNames(kVLScopeProcess)); }, 2,
         [=](size_t) { return List(set, {FC_FAMILY}) ? size_t{1} : size_t{0}; }},
        {"all properties", 1,
         [=](size_t) { return Is(VLCopyPropertiesForAllFonts(AllKeys().Get(), kVLScopeProcess)); }, 1,
         [=](size_t) {
             return List(set, {FC_POSTSCRIPT_NAME, FC_FAMILY, FC_FULLNAME, FC_WEIGHT, FC_SLANT, FC_WIDTH,
                               FC_STYLE, FC_FILE, FC_FONTFORMAT, FC_CHARSET, FC_LANG})
                        ? size_t{1}
                        : size_t{0};
         }},
    };
}

double Nanoseconds(const std::function<size_t()> &body) {
    const auto start = std::chrono::steady_clock::now();
    if (body() == 0) std::fprintf(stderr, "something did nothing\n");
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

// What the first question costs after a font has come: the price of bringing what is kept up to date.
void PrintFirstAfterAChange(const TFaces &faces) {
    size_t n = 0;
    const auto change = [&] {
        const auto url = Adopt(VLCopyFontWithName(
            Text(faces.Names()[n++ % faces.Names().size()].postscript).Get(), kVLScopeProcess, 0));
        const auto urls = [&] {
            const void *const item = url.Get();
            return Adopt(ValArrayCreate(&item, 1));
        }();
        const TLocalGlyphary registry;
        registry.DisableFonts(urls.Get(), kVLScopeProcess);
        registry.EnableFonts(urls.Get(), kVLScopeProcess);
    };
    const auto measure = [&](const char *name, const std::function<size_t()> &ask) {
        std::vector<double> times;
        for (int i = 0; i < 15; ++i) {
            change();
            times.push_back(Nanoseconds(ask));
        }
        std::ranges::sort(times);
        std::printf("  %-34s %12.0f ns\n", name, times[times.size() / 2]);
    };
    std::printf(" the first question after a change\n");
    measure("name", [&] { return Is(VLCopyFontWithName(Text(faces.Names()[20].postscript).Get(), 1, 0)); });
    measure("a character", [] { return Is(VLCopyFontForCharacter('A', kVLScopeProcess, 0)); });
    measure("no font's character",
            [] { return 1 - Is(VLCopyFontForCharacter(kNobodysCharacter, kVLScopeProcess, 0)); });
    measure("all families", [] { return Is(VLCopyAvailableFamilyNames(kVLScopeProcess)); });
}

// What a thread pays that has not asked for a character yet which no font has.
double FirstMissOfAThread() {
    std::vector<double> times;
    for (int i = 0; i < 101; ++i)
        std::thread([&] {
            Is(VLCopyFontForCharacter('A', kVLScopeProcess, 0));
            times.push_back(Nanoseconds(
                [] { return 1 - Is(VLCopyFontForCharacter(kNobodysCharacter, kVLScopeProcess, 0)); }));
        }).join();
    std::ranges::sort(times);
    return times[times.size() / 2];
}

void Measure(const TFaces &faces) {
    std::printf("%zu faces\n", faces.Names().size());
    for (const TQuestion &question : MakeQuestions(faces)) {
        std::vector<TSide> sides;
        sides.push_back({"vellum", Times(question.repeat, question.ask)});
        sides.push_back({"fontconfig", Times(question.fc_repeat, question.fc_ask)});
        Rotate(sides, kRounds);
        const double own = sides[0].Median() * 1e6 / static_cast<double>(question.repeat);
        const double theirs = sides[1].Median() * 1e6 / static_cast<double>(question.fc_repeat);
        std::printf("  %-34s %12.0f ns, fontconfig %12.0f ns: %10.1f times as fast\n", question.name, own,
                    theirs, theirs / own);
    }
    std::printf("  %-34s %12.0f ns\n", "no font's character, first", FirstMissOfAThread());
    PrintFirstAfterAChange(faces);
    std::fflush(stdout);
}

} // namespace

int main(int count, char **arguments) {
    auto originals = FindOriginals(FindFontFiles({arguments + 1, arguments + count}));
    if (originals.empty()) {
        std::fprintf(stderr, "there are no fonts to measure with\n");
        return 1;
    }
    std::printf("%zu originals\n", originals.size());
    TFaces faces(std::move(originals));
    for (const size_t size : {size_t{1000}, size_t{4000}, size_t{16000}}) {
        faces.GrowTo(size);
        Measure(faces);
    }
}
