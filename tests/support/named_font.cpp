// SPDX-License-Identifier: MIT
#include "support/named_font.hpp"

#include "support/font_builder.hpp"

namespace vellum::test {

namespace {

// Names that no table of ours uses are numbered from here.
constexpr uint16_t kFirstOwnName = 256;

std::vector<NameRecord> NamesOf(const NamedFace &face) {
    std::vector<NameRecord> names = {WindowsName(1, face.family), WindowsName(2, face.style),
                                     WindowsName(4, face.FullName())};
    if (!face.postscript_name.empty()) names.push_back(WindowsName(6, face.postscript_name));
    return names;
}

FontBuilder Builder(const NamedFace &face) {
    return FontBuilder().Names(NamesOf(face)).Characters({{'A', 'A'}});
}

} // namespace

Bytes MakeFont(const NamedFace &face) {
    return Builder(face).Build();
}

Bytes MakeCollection(const std::vector<NamedFace> &faces) {
    std::vector<FontBuilder> fonts;
    for (const NamedFace &face : faces) fonts.push_back(Builder(face));
    return BuildCollection(fonts);
}

Bytes MakeVariableFont(const NamedFace &face, const std::vector<int> &instance_weights) {
    auto names = NamesOf(face);
    uint16_t next = kFirstOwnName;
    const auto add = [&](const std::string &text) {
        names.push_back(WindowsName(next, text));
        return next++;
    };
    const FvarAxis axis = {"wght", 100, 400, 900, add("Weight")};
    std::vector<FvarInstance> instances;
    for (const int weight : instance_weights)
        instances.push_back({add("W" + std::to_string(weight)), {static_cast<double>(weight)}});
    return Builder(face).Names(names).Table("fvar", FvarTable({axis}, instances)).Build();
}

Ref<const ValData> AsData(const Bytes &bytes) {
    return Adopt(ValDataCreate(bytes.data(), bytes.size()));
}

} // namespace vellum::test
