// SPDX-License-Identifier: MIT
// Whether a face fits a URL's fragment: parameters between ";", key and value between "=".
#include "describe/font_entity.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

#include <charconv>
#include <cmath>

namespace vellum {

namespace {

// Two places on an axis this close are one.
constexpr double kAxisTolerance = 0.01;

struct NameParameter {
    const ValString *const *key;
    const ValString *const *property;
};

constexpr NameParameter kNameParameters[] = {
    {&kVLFontURLParameterPostScriptName, &kVLFontPropertyName},
    {&kVLFontURLParameterFamilyName, &kVLFontPropertyFamilyName},
    {&kVLFontURLParameterFullName, &kVLFontPropertyFullName},
    {&kVLFontURLParameterSubfamilyName, &kVLFontPropertySubfamilyName},
};

// The property that a parameter's key compares; null for a key that names none.
const ValString *NamedProperty(const ValString *key) {
    for (const NameParameter &parameter : kNameParameters)
        if (ValEqual(key, *parameter.key)) return *parameter.property;
    return nullptr;
}

bool MatchesName(const TFontEntity &font, const ValString *property, const ValString *value) {
    const auto name = font.CopyProperty(property, false);
    const auto *text = Cast<ValString>(name.Get());
    return text && ValStringCompare(text, value, kValCompareCaseInsensitive) == 0;
}

// Text that is no number reads as 0, as does what follows one.
double ReadAxisValue(std::string_view text) noexcept {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// The name of the axis with a tag, or null.
Ref<const ValString> AxisNameForTag(const TFontEntity &font, std::string_view tag) {
    if (tag.size() != 4) return nullptr;
    uint32_t identifier = 0;
    for (const char letter : tag) identifier = identifier << 8 | static_cast<uint8_t>(letter);
    const auto axes = font.CopyProperty(kVLFontPropertyVariationAxes, true);
    const auto *array = Cast<ValArray>(axes.Get());
    for (size_t i = 0; i < ValArrayGetCount(array); ++i) {
        const auto *axis = Cast<ValDictionary>(ValArrayGetValue(array, i));
        const void *number = ValDictionaryGetValue(axis, kVLVariationAxisIdentifier);
        if (static_cast<uint32_t>(ReadSInt32(number)) == identifier)
            return Retain(Cast<ValString>(ValDictionaryGetValue(axis, kVLVariationAxisName)));
    }
    return nullptr;
}

// The parameters of one fragment, held against one face.
class FragmentMatcher {
public:
    explicit FragmentMatcher(const TFontEntity &font) noexcept : font_(font) {}

    // True for a parameter that fits, and for one that selects nothing.
    bool Matches(const ValString *parameter) {
        const auto pieces = Adopt(ValStringCopyComponents(parameter, kVLFontURLParameterKeyValueSeparator));
        if (ValArrayGetCount(pieces.Get()) != 2) return true;
        const auto *key = Cast<ValString>(ValArrayGetValue(pieces.Get(), 0));
        const auto *value = Cast<ValString>(ValArrayGetValue(pieces.Get(), 1));
        if (const ValString *property = NamedProperty(key)) return MatchesName(font_, property, value);
        if (!ValStringHasPrefix(key, kVLFontURLParameterVariationPrefix)) return true;
        return MatchesAxis(key, value);
    }

private:
    // `key` is the variation prefix and the name or the tag of an axis.
    bool MatchesAxis(const ValString *key, const ValString *value) {
        const TValStr text(Retain(key));
        const size_t prefix = TValStr(Retain(kVLFontURLParameterVariationPrefix)).View().size();
        const TValStr axis(text.View().substr(prefix));
        const void *place = FindPlace(axis);
        if (!place) return false;
        const double wanted = ReadAxisValue(TValStr(Retain(value)).View());
        return std::abs(ReadFloat64(place) - wanted) < kAxisTolerance;
    }

    const void *FindPlace(const TValStr &axis) {
        if (!variations_) variations_ = font_.CopyProperty(kVLFontPropertyVariations, true);
        const auto *places = Cast<ValDictionary>(variations_.Get());
        if (const void *place = ValDictionaryGetValue(places, axis.Get())) return place;
        return ValDictionaryGetValue(places, AxisNameForTag(font_, axis.View()).Get());
    }

    const TFontEntity &font_;
    Ref<const void> variations_; // fetched for the first parameter that needs them
};

} // namespace

bool TFontEntity::MatchesFragment(const ValString *fragment) const {
    FragmentMatcher matcher(*this);
    const auto parameters = Adopt(ValStringCopyComponents(fragment, kVLFontURLParameterSeparator));
    for (size_t i = 0; i < ValArrayGetCount(parameters.Get()); ++i)
        if (!matcher.Matches(Cast<ValString>(ValArrayGetValue(parameters.Get(), i)))) return false;
    return true;
}

} // namespace vellum
