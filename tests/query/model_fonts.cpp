// SPDX-License-Identifier: MIT
// The pools are small on purpose: what matters are faces that share a part and differ in another.
#include "query/model_fonts.hpp"

#include "support/bitmap_fonts.hpp"
#include "support/font_builder.hpp"
#include "support/packed_fonts.hpp"
#include "support/type1_font.hpp"

#include <string>

namespace vellum::test {
namespace {

// Foundries, names that only look like one, digits, twins in letter case, and names of other kinds.
constexpr std::u16string_view kFamilies[] = {u"Garnet",
                                             u"GARNET",
                                             u"Garnet 2",
                                             u"Garnet 10",
                                             u"Linotype Garnet",
                                             u"linotype Garnet",
                                             u"Adobe Garnet",
                                             u"#Garnet",
                                             u"# Garnet",
                                             u"Adobeish",
                                             u"Beryl",
                                             u"ITC Beryl",
                                             u"Bauer Beryl",
                                             u"Berthold Beryl",
                                             u"PMN Beryl",
                                             u"Opal9",
                                             u"Opal12",
                                             u"opal 12",
                                             u"URW Opal",
                                             u"WTC Opal",
                                             u"Monotype Opal",
                                             u"Bitstream Jade",
                                             u"Simoncini Jade",
                                             u"Stempel Jade",
                                             u"Orrery Jade",
                                             u"Linotype",
                                             u"\u00C4rger",
                                             u"\u00E4rger",
                                             u"\u039F\u0394\u039F\u03A3",
                                             u"\u039F\u03B4\u03BF\u03C2",
                                             u"Stra\u00DFe",
                                             u"STRASSE",
                                             u"\u0130zmir",
                                             u"Bold",
                                             u"Regular",
                                             u"Garnet Bold",
                                             u"Garnet-Bold",
                                             u"Dup-One",
                                             u"A;B=C#%25",
                                             u"Beryl Light"};

constexpr std::u16string_view kStyles[] = {u"Regular",  u"Regular",  u"Bold",       u"BOLD",  u"Light",
                                           u"Light 2",  u"Light 10", u"Italic",     u"Heavy", u"Condensed",
                                           u"Expanded", u"Display",  u"W3",         u"W12",   u"Thin",
                                           u"Oblique",  u"Garnet",   u"Garnet-Bold"};

constexpr std::string_view kPostScriptNames[] = {
    "Dup-One", "dup-one", "Garnet-Bold", "GARNET-BOLD", "Bold",     "Garnet", "Endstop",
    "endstop", "Beryl",   "Regular",     "Opal12",      "A;B=C%25", "Light"};

constexpr std::string_view kVersions[] = {"Version 1.0", "version 1.0", "Version 2.0"};
constexpr std::string_view kCopyrights[] = {"Nobody", "NOBODY", "Somebody", "Garnet"};

const std::vector<CharacterRange> kCoverages[] = {
    {{'A', 'A'}},
    {{'A', 'Z'}},
    {{0x20, 0x7E}},
    {{0x20, 0x7E}, {0xA0, 0xFF}},
    {{0x20, 0x7E}, {0xA0, 0xFF}, {0x100, 0x17F}},
    {{0x20, 0x7E}, {0x401, 0x45F}},
    {{0x20, 0x7E}, {0x384, 0x3CE}},
    {{0x5B0, 0x5EA}},
    {{'a', 'z'}, {0x5D0, 0x5EA}, {0xE000, 0xE00F}},
    {{0x4E00, 0x4E3F}},
    {{0x1F600, 0x1F61F}},
    {{0xFFF0, 0xFFFD}, {0x10000, 0x1000F}},
};

constexpr uint16_t kWeightClasses[] = {100, 200, 250, 300, 350, 400, 400, 400,
                                       400, 450, 500, 500, 600, 700, 800, 900};
constexpr uint16_t kWidthClasses[] = {1, 3, 4, 5, 5, 5, 5, 5, 5, 6, 7, 9};

constexpr double kAngles[] = {0, 0, 0, 0, 0, -12, -12.01, -12.02, -12.03, 12, 12.01, -9.5, 3};
constexpr std::string_view kFolders[] = {"", "a/", "a/b/", "a b/", "\xC3\xBC/", "a/b/c/"};

constexpr uint16_t kFirstOwnName = 256;

class FaceMaker {
public:
    explicit FaceMaker(ModelRandom &random) : random_(random) {}

    FontBuilder Face() {
        names_.clear();
        AddNames();
        FontBuilder font;
        font.Names(names_).Characters(random_.Of(kCoverages));
        const bool stated = !random_.OneIn(6); // else only names tell the traits
        if (stated) font.Table("OS/2", Os2Table(Os2()));
        PostFields post;
        post.italic_angle = random_.Of(kAngles);
        post.fixed_pitch = random_.OneIn(8);
        HeadFields head;
        head.mac_style = random_.OneIn(3) ? static_cast<uint16_t>(random_.Below(0x80)) : uint16_t{0};
        return font.Table("post", PostTable(post)).Table("head", HeadTable(head));
    }

    // With the axes wght and wdth, which sometimes have each other's tag for a name.
    FontBuilder VariableFace() {
        FontBuilder font = Face();
        const bool crossed = random_.OneIn(3);
        uint16_t next = kFirstOwnName;
        const auto add = [&](std::string_view text) {
            names_.push_back(WindowsName(next, text));
            return next++;
        };
        const FvarAxis weight = {"wght", 100, 400, 900, add(crossed ? "wdth" : "Weight")};
        const FvarAxis width = {"wdth", 50, 100, 200, add(crossed ? "wght" : "Width")};
        std::vector<FvarInstance> instances;
        const size_t count = random_.Between(1, 3);
        for (size_t i = 0; i < count; ++i) {
            static constexpr double kWeights[] = {100, 250, 400, 699.9, 699.995, 700, 900};
            static constexpr double kWidths[] = {75, 100, 100, 150};
            const std::string style = random_.OneIn(2) ? "Bold" : "Light " + std::to_string(i);
            instances.push_back({add(style), {random_.Of(kWeights), random_.Of(kWidths)}});
        }
        return font.Names(names_).Table("fvar", FvarTable({weight, width}, instances));
    }

private:
    void AddNames() {
        const std::u16string family(random_.Of(kFamilies));
        const std::u16string style(random_.Of(kStyles));
        names_.push_back(WindowsName(1, family));
        const bool styled = !random_.OneIn(10);
        if (styled) names_.push_back(WindowsName(2, style));
        AddFullName(family, style, styled);
        names_.push_back(WindowsName(6, PostScriptName(family, style)));
        if (random_.OneIn(4)) names_.push_back(WindowsName(16, random_.Of(kFamilies)));
        if (random_.OneIn(6)) names_.push_back(WindowsName(17, random_.Of(kStyles)));
        if (random_.OneIn(6)) names_.push_back(WindowsName(1, random_.Of(kFamilies), 0x407));
        if (random_.OneIn(2)) names_.push_back(WindowsName(5, random_.Of(kVersions)));
        if (random_.OneIn(2)) names_.push_back(WindowsName(0, random_.Of(kCopyrights)));
        if (random_.OneIn(6)) names_.push_back(MacintoshName(4, random_.Of(kCopyrights)));
    }

    // Without a style, a full name of the family and a dash leaves nothing that one could be made of.
    void AddFullName(const std::u16string &family, const std::u16string &style, bool styled) {
        if (random_.OneIn(12)) return;
        if (random_.OneIn(8))
            names_.push_back(WindowsName(4, random_.Of(kFamilies)));
        else
            names_.push_back(WindowsName(4, family + (styled ? u" " + style : u" -")));
    }

    // Of ASCII: what is not is left out.
    std::string PostScriptName(const std::u16string &family, const std::u16string &style) {
        if (random_.OneIn(4)) return std::string(random_.Of(kPostScriptNames));
        std::string name;
        for (const char16_t c : family + u"-" + style) {
            if (c > 0x20 && c < 0x7F) name += static_cast<char>(c);
        }
        return name;
    }

    Os2Fields Os2() {
        Os2Fields fields;
        fields.weight_class = random_.Of(kWeightClasses);
        fields.width_class = random_.Of(kWidthClasses);
        if (random_.OneIn(2)) fields.family_class = static_cast<int16_t>(random_.Below(14) << 8);
        if (random_.OneIn(2)) {
            fields.panose[0] = static_cast<uint8_t>(random_.Below(6));
            fields.panose[1] = static_cast<uint8_t>(random_.Below(16));
            fields.panose[3] = static_cast<uint8_t>(random_.Below(10));
        }
        if (random_.OneIn(4)) fields.selection = static_cast<uint16_t>(random_.Below(0x400));
        return fields;
    }

    ModelRandom &random_;
    std::vector<NameRecord> names_;
};

// A file of a kind that has no name table.
Bytes MakeOtherKind(ModelRandom &random) {
    if (random.OneIn(2)) {
        Type1Font font;
        font.name = random.Of(kPostScriptNames);
        font.family = random.OneIn(2) ? "Garnet" : "Beryl";
        font.full_name = font.family + (random.OneIn(2) ? " Bold" : "");
        font.fixed_pitch = random.OneIn(2);
        return BuildPfb(font);
    }
    BitmapFont font;
    font.family = random.OneIn(2) ? "Garnet" : "";
    font.weight = random.OneIn(2) ? "Bold" : "Medium";
    const std::string text = BuildBdf(font);
    return Bytes(text.begin(), text.end());
}

} // namespace

std::vector<Ref<const ValURL>> MakeModelFonts(const FontFolder &folder, size_t faces, ModelRandom &random) {
    FaceMaker maker(random);
    std::vector<Ref<const ValURL>> urls;
    const auto add = [&](const char *extension, const Bytes &bytes) {
        const std::string name = std::to_string(urls.size() % 40) + "-" + std::to_string(urls.size());
        urls.push_back(folder.Add(std::string(random.Of(kFolders)) + name + extension, bytes));
    };
    for (size_t made = 0; made < faces;) {
        const size_t kind = random.Below(100);
        std::vector<FontBuilder> fonts;
        if (kind < 12) {
            for (size_t n = random.Between(2, 4); n > 0; --n) fonts.push_back(maker.Face());
            add(".ttc", BuildCollection(fonts));
        } else if (kind < 24) {
            add(".ttf", maker.VariableFace().Build());
        } else if (kind < 28) {
            const Bytes bytes = MakeOtherKind(random);
            add(bytes[0] == 0x80 ? ".pfb" : ".bdf", bytes);
        } else if (kind < 32) {
            add(".woff", BuildWoff(maker.Face().Build()));
        } else {
            add(".ttf", maker.Face().Build());
        }
        made += fonts.empty() ? 1 : fonts.size(); // instances come on top
    }
    return urls;
}

} // namespace vellum::test
