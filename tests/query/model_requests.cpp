// SPDX-License-Identifier: MIT
#include "query/model_requests.hpp"

#include "support/temp_dir.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_set.hpp"

#include <charconv>

namespace vellum::test {
namespace {

// How often each property is asked for; 0 is a key that nobody knows.
constexpr size_t kNumbers[] = {1,  1,  1,  1,  1,  1,  2,  2,  2,  2,  2,  2,  2,  2,  3,  3,  3,  3,
                               3,  3,  4,  4,  4,  4,  4,  4,  4,  4,  5,  5,  6,  6,  9,  9,  9,  9,
                               9,  9,  9,  9,  9,  9,  9,  9,  10, 10, 10, 10, 10, 13, 13, 13, 13, 13,
                               13, 13, 13, 14, 14, 15, 15, 16, 16, 16, 16, 16, 16, 16, 16};
constexpr size_t kNumbersThatNeverMatch[] = {0, 7, 8, 11, 12, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27};
constexpr double kOffsets[] = {0, 0, 0, 0.00005, -0.00005, 0.0001, -0.0001, 0.00015, -0.00015, 0.1};

// Added to a place on an axis.
constexpr double kAxisOffsets[] = {0, 0, 0.005, -0.005, 0.01, -0.01, 0.0099, 0.1};

// A key as the constant, or as a string that only equals it.
Ref<const ValString> Key(size_t number, ModelRandom &random) {
    if (number == 0) {
        const ValString *const unknown[] = {kVLFontPropertyManufacturerName,
                                            kVLFontPropertyPrimaryLanguage};
        return random.OneIn(2) ? String("Foo") : Retain(random.Of(unknown));
    }
    const ValString *key = ModelKey(number);
    return random.OneIn(5) ? String(TextOf(key)) : Retain(key);
}

std::string Shortest(double value) {
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

double PlaceOn(const ModelFace &face, const ModelAxis &axis) {
    if (!face.variations) return 0;
    const auto place = face.variations->find(axis.name);
    return place == face.variations->end() ? 0 : place->second;
}

} // namespace

std::string ModelOtherCase(std::string text) {
    for (char &c : text) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) c = static_cast<char>(c ^ 0x20);
    }
    return text;
}

Ref<const ValDictionary> ModelRequests::Next() {
    TValMutableDict request;
    const ModelFace &face = AnyFace();
    const bool of_one_face = !random_.OneIn(4);
    const size_t keys = random_.OneIn(60) ? 0 : random_.Between(1, 4);
    for (size_t i = 0; i < keys; ++i) {
        const size_t number = random_.OneIn(20) ? random_.Of(kNumbersThatNeverMatch) : random_.Of(kNumbers);
        const auto value = Value(number, of_one_face ? face : AnyFace());
        request.Set(Key(number, random_).Get(), value.Get());
    }
    return request.Publish();
}

Ref<const void> ModelRequests::Value(size_t number, const ModelFace &face) {
    if (random_.OneIn(25)) return Oddity();
    if (number >= 1 && number <= kModelNameKinds) return Name(number - 1, face);
    switch (number) {
    case 9:
        return Traits(face);
    case 10:
        return URL(face);
    case 13:
        return Characters(face);
    case 14:
        return Axes(face);
    case 15:
        return Variations(face);
    case 16:
        return Languages(face);
    }
    const auto own = face.others.find(number);
    return own == face.others.end() ? Ref<const void>(MakeNumber(int32_t{1})) : own->second;
}

// Of whatever kind.
Ref<const void> ModelRequests::Oddity() {
    switch (random_.Below(8)) {
    case 0:
        return String("");
    case 1:
        return MakeNumber(int32_t{2});
    case 2:
        return Retain(kValBooleanTrue);
    case 3:
        return Adopt(ValArrayCreate(nullptr, 0));
    case 4:
        return Adopt(ValSetCreate(nullptr, 0));
    case 5:
        return Adopt(ValDictionaryCreate(nullptr, nullptr, 0));
    case 6:
        return MakeURL("http://example.org/a.ttf");
    default:
        return String("Unknown of all");
    }
}

Ref<const void> ModelRequests::Name(size_t kind, const ModelFace &face) {
    if (random_.OneIn(5)) kind = random_.Below(4); // a name of another kind
    const auto &names = face.names[kind];
    if (names.empty()) return String("Nameless");
    const ModelName &name =
        face.preferred[kind] && random_.OneIn(2) ? *face.preferred[kind] : random_.Of(names);
    if (random_.OneIn(3)) return name.object;
    if (random_.OneIn(15)) return Array({face.url});
    return String(Respelt(name.text));
}

std::string ModelRequests::Respelt(const std::string &text) {
    if (random_.OneIn(5)) return ModelOtherCase(text);
    return random_.OneIn(12) ? text + " " : text;
}

Ref<const void> ModelRequests::Real(double value) {
    switch (random_.Below(8)) {
    case 0:
        return MakeNumber(static_cast<float>(value));
    case 1:
        return MakeNumber(static_cast<int64_t>(value));
    case 2:
        return random_.OneIn(2) ? Retain(kValBooleanTrue) : Retain(kValBooleanFalse);
    default:
        return MakeNumber(value);
    }
}

Ref<const void> ModelRequests::Symbolic(const ModelFace &face) {
    const uint32_t own = face.traits ? face.traits->symbolic : 0;
    const uint32_t some = own & static_cast<uint32_t>(random_.Below(UINT32_MAX));
    switch (random_.Below(8)) {
    case 0:
        return MakeNumber(int32_t{0});
    case 1:
        return MakeNumber(static_cast<int32_t>(own | 1U << random_.Below(32)));
    case 2:
        return MakeNumber(static_cast<int64_t>(own) | int64_t{1} << 40);
    case 3:
        return MakeNumber(static_cast<double>(static_cast<int32_t>(some)) + 0.5);
    case 4:
        return Retain(random_.OneIn(2) ? kValBooleanTrue : kValBooleanFalse);
    default:
        return MakeNumber(static_cast<int32_t>(random_.OneIn(2) ? own : some));
    }
}

Ref<const void> ModelRequests::Traits(const ModelFace &face) {
    TValMutableDict traits;
    const ModelTraits own = face.traits.value_or(ModelTraits{});
    const auto set = [&](const ValString *key, double value) {
        if (random_.OneIn(2)) traits.Set(key, Real(value + random_.Of(kOffsets)).Get());
    };
    if (random_.OneIn(2)) traits.Set(kVLFontTraitSymbolic, Symbolic(face).Get());
    set(kVLFontTraitWeight, own.weight);
    set(kVLFontTraitWidth, own.width);
    set(kVLFontTraitSlant, own.slant);
    if (random_.OneIn(6)) traits.Set(String("Foo").Get(), kValBooleanTrue);
    return traits.Publish();
}

Ref<const void> ModelRequests::URL(const ModelFace &face) {
    if (random_.OneIn(3)) return face.url;
    if (random_.OneIn(4)) { // relative
        const size_t slash = face.path.rfind('/');
        const auto name = Adopt(ValStringCopyAddingPercentEscapes(String(face.path.substr(slash + 1)).Get(),
                                                                  String("#;?").Get()));
        const auto base = FileURL(face.path.substr(0, slash) + "/other/..//x");
        auto url = Adopt(ValURLCreateWithString(String("../" + TextOf(name)).Get(), base.Get()));
        if (url) return url;
    }
    return NextURL();
}

Ref<const ValURL> ModelRequests::NextURL() {
    const ModelFace &face = AnyFace();
    std::string path = face.path;
    if (random_.OneIn(12)) path = path.substr(0, path.rfind('/')); // the folder
    if (random_.OneIn(30)) path = path.substr(0, path.rfind('/'));
    if (random_.OneIn(10)) path += "/";
    if (random_.OneIn(10)) path.insert(path.rfind('/'), "/.");
    if (random_.OneIn(20)) path += "x";
    if (random_.OneIn(60)) path = "/";
    const auto url = FileURL(path);
    if (random_.OneIn(4)) return url;
    if (random_.OneIn(5)) {
        const auto own = Adopt(ValURLCopyFragment(face.url.Get()));
        return Adopt(ValURLCopyWithFragment(url.Get(), own.Get()));
    }
    const auto escaped =
        Adopt(ValStringCopyAddingPercentEscapes(String(Fragment(face)).Get(), String("%#").Get()));
    return Adopt(ValURLCopyWithFragment(url.Get(), escaped.Get()));
}

std::string ModelRequests::Fragment(const ModelFace &face) {
    std::string fragment;
    const size_t parameters = random_.Below(4);
    for (size_t i = 0; i < parameters; ++i) fragment += (i ? ";" : "") + Parameter(face);
    return fragment;
}

std::string ModelRequests::Parameter(const ModelFace &face) {
    static constexpr const char *kKeys[] = {"postscript-name", "family-name", "full-name",
                                            "subfamily-name"};
    static constexpr const char *kOddities[] = {"",       "foo=bar",    "postscript-name",
                                                "a=b=c",  "=",          "full-name=",
                                                "var:=1", "var:opsz=1", "Postscript-Name=x"};
    if (random_.OneIn(8)) return random_.Of(kOddities);
    if (random_.OneIn(4)) return AxisParameter(face);
    const size_t kind = random_.Below(4);
    const auto &own = random_.OneIn(12) ? AnyFace().preferred[kind] : face.preferred[kind];
    return std::string(kKeys[kind]) + "=" + (own ? Respelt(own->text) : "none");
}

std::string ModelRequests::AxisParameter(const ModelFace &face) {
    if (face.axes.empty()) return "var:wght=400";
    const ModelAxis &axis = random_.Of(face.axes);
    const double own = PlaceOn(face, axis);
    const std::string key = "var:" + (random_.OneIn(2) ? axis.name : axis.tag);
    return key + "=" + (random_.OneIn(15) ? "heavy" : Shortest(own + random_.Of(kAxisOffsets)));
}

Ref<const void> ModelRequests::Characters(const ModelFace &face) {
    if (random_.OneIn(8)) return face.coverage_object;
    const auto set = Adopt(ValCharacterSetCreateMutable());
    const size_t members = random_.Below(6);
    for (size_t i = 0; i < members && !face.coverage.empty(); ++i) {
        const CodeRange range = random_.Of(face.coverage);
        const auto first = static_cast<uint32_t>(random_.Between(range.first, range.second));
        const auto last = static_cast<uint32_t>(random_.Between(first, range.second));
        ValCharacterSetAddRange(set.Get(), first, random_.OneIn(2) ? first : last);
    }
    if (random_.OneIn(8)) {
        const auto other = static_cast<uint32_t>(random_.Below(0x110000));
        ValCharacterSetAddRange(set.Get(), other, other);
    }
    return Ref<const ValCharacterSet>(set);
}

Ref<const void> ModelRequests::Axes(const ModelFace &face) {
    const ModelFace *variable = &face;
    for (size_t i = 0; i < 20 && !variable->axes_object; ++i) variable = &AnyFace();
    if (!variable->axes_object) return String("none");
    if (random_.OneIn(2)) return variable->axes_object;
    TValMutableArray axes; // equal, but another object
    for (const void *axis : Elements(variable->axes_object.Get())) {
        const auto copy = Adopt(ValDictionaryCreateMutableCopy(static_cast<const ValDictionary *>(axis)));
        if (random_.OneIn(6))
            ValDictionarySetValue(copy.Get(), kVLVariationAxisMinValue, MakeNumber(1.5).Get());
        axes.Append(copy.Get());
    }
    return axes.Publish();
}

Ref<const ValDictionary> ModelRequests::Variations(const ModelFace &face) {
    TValMutableDict variations;
    const bool by_name = random_.OneIn(2);
    for (const ModelAxis &axis : face.axes) {
        if (random_.OneIn(3)) continue;
        const auto value = Real(PlaceOn(face, axis) + (random_.OneIn(4) ? 1 : 0));
        const auto key =
            by_name ? Ref<const void>(String(axis.name)) : Ref<const void>(MakeNumber(axis.identifier));
        variations.Set(key.Get(), value.Get());
    }
    if (random_.OneIn(8)) {
        const auto key =
            by_name ? Ref<const void>(String("Depth")) : Ref<const void>(MakeNumber(int32_t{5}));
        variations.Set(key.Get(), MakeNumber(1.0).Get());
    }
    return variations.Publish();
}

Ref<const void> ModelRequests::Languages(const ModelFace &face) {
    std::vector<std::string> chosen;
    const size_t count = random_.Below(4);
    for (size_t i = 0; i < count && face.languages && !face.languages->empty(); ++i)
        chosen.push_back(random_.Of(*face.languages));
    static constexpr const char *kOthers[] = {"xx", "EN", "en-GB", "de-AT", ""};
    if (random_.OneIn(8)) chosen.push_back(random_.Of(kOthers));
    if (random_.OneIn(3)) return String(chosen.empty() ? "en" : chosen.front());
    std::vector<Ref<const void>> items;
    for (const std::string &language : chosen) items.push_back(String(language));
    if (random_.OneIn(15)) items.push_back(MakeNumber(int32_t{1}));
    std::vector<const void *> pointers;
    for (const auto &item : items) pointers.push_back(item.Get());
    if (random_.OneIn(2)) return Adopt(ValSetCreate(pointers.data(), pointers.size()));
    return Adopt(ValArrayCreate(pointers.data(), pointers.size()));
}

} // namespace vellum::test
