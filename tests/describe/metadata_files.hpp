// SPDX-License-Identifier: MIT
// Metadata of font files, written as a test wants it, and asked for.
#pragma once

#include "describe/font_metadata.hpp"
#include "support/framework_resources.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vellum::test {

// --- parts of a property list -------------------------------------------------------------------

inline std::string Text(std::string_view text) {
    return "<string>" + std::string(text) + "</string>";
}

inline std::string Integer(int64_t number) {
    return "<integer>" + std::to_string(number) + "</integer>";
}

inline std::string Key(std::string_view key, std::string_view value) {
    return "<key>" + std::string(key) + "</key>" + std::string(value);
}

inline std::string Dict(std::string_view pairs) {
    return "<dict>" + std::string(pairs) + "</dict>";
}

inline std::string Array(std::string_view items) {
    return "<array>" + std::string(items) + "</array>";
}

inline std::string List(std::string_view value) {
    return "<vlist version=\"1.0\">" + std::string(value) + "</vlist>";
}

// A face that tests know by its mark.
inline std::string Face(std::string_view mark, std::string_view sfnt_name = "",
                        std::string_view fount_name = "") {
    std::string pairs = Key("Mark", Text(mark));
    if (!sfnt_name.empty()) pairs += Key("MTD_Typeface_ID_sfnt_PostscriptName", Text(sfnt_name));
    if (!fount_name.empty()) pairs += Key("MTD_Typeface_ID_Fount_PostscriptName", Text(fount_name));
    return Dict(pairs);
}

inline std::string Faces(std::string_view faces) {
    return Key("MTD_Typeface_List", Array(faces));
}

inline std::string FileName(std::string_view name) {
    return Key("MTD_FontFile_FileName", Text(name));
}

inline std::string Location(std::string_view folder) {
    return Key("MTD_FontFile_MeridianInstallLocation", Text(folder));
}

inline std::string DataSize(std::string_view value) {
    return Key("MTD_FontFile_DataForkSize", value);
}

inline std::string ForkSizeIs(std::string_view value) {
    return Key("MTD_FontFile_ResourceForkSize", value);
}

// --- asking -------------------------------------------------------------------------------------

inline constexpr char kNone[] = "(null)";

inline std::string MarkOf(const ValURL *url, bool verify = false) {
    static const Ref<const ValString> kMark = String("Mark");
    const auto face = TFontMetadata::CreateMetadataForFontURL(url, verify);
    return TextOf(ValDictionaryGetValue(face.Get(), kMark.Get()));
}

class FontMetadata : public testing::Test {
protected:
    // Writes what the metadata of a font file holds.
    void Write(std::string_view font_name, std::string_view list) const {
        resources_.Folder().Write("FontMetadata/" + std::string(font_name) + ".vlist", list);
    }

    // Writes the metadata of Foo.ttf, with one entry of these faces.
    void WriteFaces(std::string_view faces) const {
        Write("Foo.ttf", List(Array(Dict(FileName("Foo.ttf") + Faces(faces)))));
    }

    // The mark of the face of Foo.ttf that a fragment chooses.
    static std::string Choose(std::string_view fragment) {
        return MarkOf(MakeURL("file:///somewhere/Foo.ttf" + std::string(fragment)).Get());
    }

    const FrameworkResources resources_;
};

} // namespace vellum::test
