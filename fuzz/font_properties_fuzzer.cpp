// SPDX-License-Identifier: MIT
// Any bytes as a font file: every property of its faces is derived, twice, and described for a register.
// The file has no place in any folder, but is read as all files are.
#include "describe/client_font_entity.hpp"
#include "describe/font_info.hpp"
#include "describe/font_properties.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace vellum;

namespace {

// Enough for faces of every kind that a file can have; a thousand would only make every run slow.
constexpr size_t kFaces = 4;

const ValString *const *const kKeys[] = {
    &kVLFontPropertyName,
    &kVLFontPropertyFamilyName,
    &kVLFontPropertyFullName,
    &kVLFontPropertySubfamilyName,
    &kVLFontPropertyVersionName,
    &kVLFontPropertyCopyrightName,
    &kVLFontPropertyInstanceName,
    &kVLFontPropertyLocalizedNames,
    &kVLFontPropertyTraits,
    &kVLFontPropertyURL,
    &kVLFontPropertyUUID,
    &kVLFontPropertyBookmark,
    &kVLFontPropertyCharacterSet,
    &kVLFontPropertyVariationAxes,
    &kVLFontPropertyVariations,
    &kVLFontPropertySupportedLanguages,
    &kVLFontPropertyDesignLanguages,
    &kVLFontPropertyFormat,
    &kVLFontPropertyStringEncoding,
    &kVLFontPropertyIgnoreScriptAnalysis,
    &kVLFontPropertyFlags,
    &kVLFontPropertyUnicodeRanges,
};

void Check(bool holds) {
    if (!holds) std::abort();
}

// A file without a name, under the path that leads to every process's own descriptors.
class NamelessFile {
public:
    NamelessFile(const uint8_t *bytes, size_t size) : descriptor_(memfd_create("font", MFD_CLOEXEC)) {
        Check(descriptor_ >= 0 && write(descriptor_, bytes, size) == static_cast<ssize_t>(size));
    }
    NamelessFile(const NamelessFile &) = delete;
    NamelessFile &operator=(const NamelessFile &) = delete;
    ~NamelessFile() { close(descriptor_); }

    TValURL URL() const { return TValURL::FromPath("/proc/self/fd/" + std::to_string(descriptor_)); }

private:
    const int descriptor_;
};

// What is kept is what somebody gets who derives it anew.
void AskEverything(const Ref<const GxFont> &font) {
    const TClientFontEntity kept(font);
    const TClientFontEntity anew(font, nullptr);
    const auto ask = [&](const ValString *key, bool all) {
        const auto value = kept.CopyProperty(key, all);
        Check(ValEqual(value.Get(), kept.CopyProperty(key, all).Get()));
        Check(ValEqual(value.Get(), anew.CopyProperty(key, all).Get()));
    };
    for (const ValString *const *key : kKeys) {
        ask(*key, false);
        if (TFontProperties::IsNameKey(*key)) ask(*key, true);
    }
}

void CheckWhatMustHold(const TClientFontEntity &face) {
    const auto traits = face.CopyTraits();
    Check(ValDictionaryGetCount(traits.Get()) == 4);
    for (const ValString *key : {kVLFontTraitWeight, kVLFontTraitWidth, kVLFontTraitSlant})
        Check(std::isfinite(ReadFloat64(ValDictionaryGetValue(traits.Get(), key))));
    Check(ValArrayGetCount(face.CopyUnicodeRanges().Get()) == 4);
    Check((face.GetFlags() & ~uint32_t{0x30C0}) == 0);
    Check(ReadSInt32(face.CopyFormat().Get()) <= kVLFontFormatBitmap);
    for (const ValString *key : {kVLFontPropertyName, kVLFontPropertyFamilyName, kVLFontPropertyFullName}) {
        const auto name = face.CopyProperty(key, false);
        const auto names = face.CopyProperty(key, true);
        Check(!name || ValArrayContains(static_cast<const ValArray *>(names.Get()), name.Get()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    FacetFontPurgeCaches(nullptr); // files of equal size are told apart by time alone
    const NamelessFile file(bytes, size);
    const auto fonts = GxFontCreateFontsWithURL(file.URL().Get());
    TValMutableArray described;
    for (const void *item : Elements(fonts.Get())) {
        if (described.Count() == kFaces) break;
        const auto font = Retain(static_cast<const GxFont *>(item));
        AskEverything(font);
        CheckWhatMustHold(TClientFontEntity(font));
        described.Append(TClientFontEntity(font).CopyRegistrationProperties().Get());
    }
    if (fonts) Check(static_cast<bool>(TFontInfo::FlattenFontInfo(described.Publish().Get())));
    return 0;
}
