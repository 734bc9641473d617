// SPDX-License-Identifier: MIT
// Writing of fontconfig's XML.
//
// A whole file is a <glob>, compared byte by byte and as exact as XmlGlob can be. One more is for all that
// is below it: not for what is a file now, which has nothing below it, but for a folder, and for what is
// not there, which may have been one. fontconfig compares what stands in a <pattern> without regard to
// letter case, paths too: it is for faces, which have no other way.
#include "configuration_text.hpp"

#include "folders.hpp"
#include "freetype_faces.hpp"
#include "registered_links.hpp"
#include "xml_text.hpp"

namespace vellum::legacy {
namespace {

constexpr std::string_view kOurs = "<!-- Vellum writes this file";

std::string TextElement(const char *property, const std::string &xml) {
    return std::string("<patelt name=\"") + property + "\"><string>" + xml + "</string></patelt>";
}

// What tells a face from the others of its file. The font that stands for all instances of a variable font
// has no name, and the number of the first of them.
std::string FaceElements(const FontFace &face) {
    const auto name = XmlText(face.postscript_name);
    if (name && !name->empty()) return TextElement("postscriptname", *name);
    if (face.index < 0) return {};
    return "<patelt name=\"index\"><int>" + std::to_string(face.index) +
           "</int></patelt><patelt name=\"variable\"><bool>false</bool></patelt>";
}

// Nothing when XML can't hold the path, which no pattern can then be for.
std::string FacePattern(const std::string &path, const FontFace &face) {
    const auto file = XmlText(path);
    const std::string elements = FaceElements(face);
    if (!file || elements.empty()) return {};
    return "      <pattern>" + TextElement("file", *file) + elements + "</pattern>\n";
}

std::string Glob(const std::string &path, const char *below = "") {
    return "      <glob>" + XmlGlob(path) + below + "</glob>\n";
}

std::string Rejections(const std::string &path, const TDisabledFonts::File &file) {
    if (file.is_whole) return Glob(path);
    std::string text;
    for (const FontFace &face : file.faces) text += FacePattern(path, face);
    return text;
}

std::string AllRejections(const TDisabledFonts &fonts) {
    std::string rejected;
    for (const auto &[path, file] : fonts.Files()) {
        rejected += Rejections(path, file);
        if (const std::string link = LinkPathOf(path); !link.empty()) rejected += Rejections(link, file);
        if (file.is_whole && !IsFontFile(path)) rejected += Glob(path, "/*");
    }
    for (const RegisteredLink &link : RegisteredLinks()) {
        if (fonts.IsFileDisabled(FolderAbove(link.target))) rejected += Glob(link.path);
    }
    return rejected;
}

} // namespace

std::string ConfigurationText(const TDisabledFonts &fonts) {
    const std::string rejected = AllRejections(fonts);
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">\n";
    text +=
        std::string(kOurs) + " anew with every change: what is edited here is lost. -->\n<fontconfig>\n";
    text += std::string("  <dir prefix=\"xdg\">") + kRegisteredFontsFolder + "</dir>\n";
    if (!rejected.empty())
        text += "  <selectfont>\n    <rejectfont>\n" + rejected + "    </rejectfont>\n  </selectfont>\n";
    return text + "</fontconfig>\n";
}

bool IsOurConfiguration(std::string_view text) noexcept {
    return text.find(kOurs) != std::string_view::npos;
}

} // namespace vellum::legacy
