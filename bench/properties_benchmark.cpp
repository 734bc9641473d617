// SPDX-License-Identifier: MIT
// How long it takes to derive what is known of all faces of font files that nobody has opened before:
// Vellum beside bare HarfBuzz, and beside fontconfig's scan. And what the answers take in memory.
//
//     properties_benchmark [FOLDER...]
//
#include "describe/client_font_entity.hpp"
#include "font_files.hpp"
#include "rotation.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <fontconfig/fontconfig.h>
// It needs the one above.
#include <fontconfig/fcfreetype.h>
#include <hb-ot.h>
#include <hb.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

using namespace vellum;
using namespace vellum::bench;

namespace {

constexpr int kRounds = 15;

// ---- bare HarfBuzz
// ---------------------------------------------------------------------------------------

constexpr hb_ot_name_id_t kNames[] = {
    HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_OT_NAME_ID_FULL_NAME,          HB_OT_NAME_ID_FONT_FAMILY,
    HB_OT_NAME_ID_FONT_SUBFAMILY,  HB_OT_NAME_ID_TYPOGRAPHIC_FAMILY, HB_OT_NAME_ID_TYPOGRAPHIC_SUBFAMILY};
constexpr hb_tag_t kTables[] = {HB_TAG('O', 'S', '/', '2'), HB_TAG('h', 'e', 'a', 'd'),
                                HB_TAG('h', 'h', 'e', 'a'), HB_TAG('p', 'o', 's', 't')};

size_t ReadNames(hb_face_t *face) {
    size_t seen = 0;
    for (const hb_ot_name_id_t name : kNames) {
        char text[256];
        unsigned int size = sizeof text;
        hb_ot_name_get_utf8(face, name, HB_LANGUAGE_INVALID, &size, text);
        seen += size;
    }
    return seen;
}

size_t ReadTables(hb_face_t *face) {
    size_t seen = 0;
    for (const hb_tag_t tag : kTables) {
        hb_blob_t *table = hb_face_reference_table(face, tag);
        unsigned int length = 0;
        const char *bytes = hb_blob_get_data(table, &length);
        for (unsigned int i = 0; i < length && i < 96; ++i) seen += static_cast<unsigned char>(bytes[i]);
        hb_blob_destroy(table);
    }
    return seen;
}

size_t ReadCoverage(hb_face_t *face) {
    hb_set_t *set = hb_set_create();
    hb_face_collect_unicodes(face, set);
    const size_t seen = hb_set_get_population(set);
    hb_set_destroy(set);
    return seen;
}

size_t ReadWithHarfBuzz(const TFiles &files, bool coverage) {
    size_t seen = 0;
    for (const std::string &file : files) {
        hb_blob_t *blob = hb_blob_create_from_file_or_fail(file.c_str());
        for (unsigned int i = 0, count = hb_face_count(blob); i < count; ++i) {
            hb_face_t *face = hb_face_create(blob, i);
            seen += ReadNames(face) + ReadTables(face);
            if (coverage) seen += ReadCoverage(face);
            hb_face_destroy(face);
        }
        hb_blob_destroy(blob);
    }
    return seen;
}

// ---- fontconfig
// ------------------------------------------------------------------------------------------

size_t ScanWithFontconfig(const TFiles &files) {
    size_t seen = 0;
    for (const std::string &file : files) {
        FcFontSet *set = FcFontSetCreate();
        int count = 0;
        const auto *path = reinterpret_cast<const FcChar8 *>(file.c_str());
        seen += FcFreeTypeQueryAll(path, static_cast<unsigned int>(-1), nullptr, &count, set) != 0;
        FcFontSetDestroy(set);
    }
    return seen;
}

// ---- Vellum
// ----------------------------------------------------------------------------------------------

using TKeys = std::vector<const ValString *>;

const TKeys &NamesAndTraits() {
    static const TKeys &sKeys =
        *new TKeys{kVLFontPropertyName, kVLFontPropertyFamilyName, kVLFontPropertyFullName,
                   kVLFontPropertySubfamilyName, kVLFontPropertyTraits};
    return sKeys;
}

// What a pattern of fontconfig's holds: names in all languages, weight, width, slant and spacing, coverage,
// languages, version, axes and places on them, the format.
const TKeys &WhatFontconfigDerives() {
    static const TKeys &sKeys = *new TKeys{
        kVLFontPropertyName,          kVLFontPropertyFamilyName,         kVLFontPropertyFullName,
        kVLFontPropertySubfamilyName, kVLFontPropertyLocalizedNames,     kVLFontPropertyTraits,
        kVLFontPropertyCharacterSet,  kVLFontPropertySupportedLanguages, kVLFontPropertyVersionName,
        kVLFontPropertyVariationAxes, kVLFontPropertyVariations,         kVLFontPropertyFormat};
    return sKeys;
}

const TKeys &Coverage() {
    static const TKeys &sKeys = *new TKeys{kVLFontPropertyCharacterSet};
    return sKeys;
}

const TKeys &CoverageAndLanguages() {
    static const TKeys &sKeys = *new TKeys{kVLFontPropertyCharacterSet, kVLFontPropertySupportedLanguages};
    return sKeys;
}

size_t Derive(const Ref<const GxFont> &font, const TKeys &keys) {
    const auto set = Adopt(ValSetCreate(reinterpret_cast<const void *const *>(keys.data()), keys.size()));
    return ValDictionaryGetCount(TClientFontEntity(font).CopyProperties(set.Get(), false).Get());
}

size_t DeriveEverything(const Ref<const GxFont> &font) {
    return ValDictionaryGetCount(TClientFontEntity(font).CopyRegistrationProperties().Get()) +
           Derive(font, {kVLFontPropertyVersionName, kVLFontPropertyCopyrightName});
}

template <class Derive>
size_t ReadWithVellum(const TFiles &files, Derive derive) {
    FacetFontPurgeCaches(nullptr);
    size_t seen = 0;
    for (const std::string &file : files) {
        const auto fonts = GxFontCreateFontsWithURL(TValURL::FromPath(file).Get());
        for (const void *font : Elements(fonts.Get()))
            seen += derive(Retain(static_cast<const GxFont *>(font)));
    }
    FacetFontPurgeCaches(nullptr);
    return seen;
}

TSide VellumSide(const char *name, const TFiles &files, const TKeys &keys) {
    return {name, [&files, &keys] {
                return ReadWithVellum(files,
                                      [&](const Ref<const GxFont> &font) { return Derive(font, keys); });
            }};
}

// ---- memory
// ----------------------------------------------------------------------------------------------

class Memory {
public:
    explicit Memory(const TFiles &files) {
        Print("opened", [&] {
            for (const std::string &file : files) {
                const auto fonts = GxFontCreateFontsWithURL(TValURL::FromPath(file).Get());
                for (const void *font : Elements(fonts.Get()))
                    fonts_.push_back(Retain(static_cast<const GxFont *>(font)));
            }
            FacetFontPurgeCaches(nullptr);
        });
        Print("names and traits",
              [&] { ForEach([](const auto &font) { Derive(font, NamesAndTraits()); }); });
        Print("coverage", [&] { ForEach([](const auto &font) { Derive(font, Coverage()); }); });
        Print("everything", [&] { ForEach([](const auto &font) { DeriveEverything(font); }); });
    }

private:
    template <class Act>
    void Print(const char *what, Act act) {
        const size_t before = mallinfo2().uordblks;
        act();
        const size_t now = mallinfo2().uordblks;
        std::printf("  %-34s %9.0f bytes a face more\n", what,
                    static_cast<double>(now - before) / static_cast<double>(fonts_.size()));
    }

    template <class Act>
    void ForEach(Act act) const {
        for (const auto &font : fonts_) act(font);
    }

    std::vector<Ref<const GxFont>> fonts_;
};

void Compare(std::vector<TSide> sides, const char *title) {
    Rotate(sides, kRounds);
    std::printf("%s\n", title);
    vellum::bench::Print(sides);
}

} // namespace

int main(int count, char **arguments) {
    const TFiles files = FindFontFiles({arguments + 1, arguments + count});
    size_t faces = 0;
    ReadWithVellum(files, [&](const Ref<const GxFont> &) { return ++faces; });
    std::printf("%zu files, %zu faces, %d rounds\n", files.size(), faces, kRounds);
    if (faces == 0) return EXIT_FAILURE;

    Compare({{"HarfBuzz, without coverage", [&] { return ReadWithHarfBuzz(files, false); }},
             VellumSide("Vellum, names and traits", files, NamesAndTraits())},
            "names and traits");
    Compare({{"fontconfig's scan", [&] { return ScanWithFontconfig(files); }},
             VellumSide("Vellum, the same things", files, WhatFontconfigDerives())},
            "everything that fontconfig's scan derives");
    Compare({VellumSide("Vellum, coverage", files, Coverage()),
             VellumSide("Vellum, coverage and languages", files, CoverageAndLanguages())},
            "languages");
    Compare({{"HarfBuzz", [&] { return ReadWithHarfBuzz(files, true); }},
             {"fontconfig's scan", [&] { return ScanWithFontconfig(files); }},
             {"Vellum, everything", [&] { return ReadWithVellum(files, DeriveEverything); }}},
            "everything");
    std::printf("memory\n");
    const Memory memory(files);
    return EXIT_SUCCESS;
}
