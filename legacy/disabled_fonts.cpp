// SPDX-License-Identifier: MIT
// The list of disabled fonts. Whoever may have written the text, reading it fails at no more than a line.
#include "disabled_fonts.hpp"

#include "folders.hpp"
#include "percent_text.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr std::string_view kScheme = "file://";
constexpr std::string_view kHeading =
    "# Fonts that are disabled for the user, a line each. Vellum writes this file, and "
    "fontconfig/conf.d/50-vellum.conf from it.";

int ReadIndex(const std::string &text) noexcept {
    int index = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    return error == std::errc() && end == text.data() + text.size() ? index : -1;
}

FontFace ReadFace(std::string_view fragment) {
    FontFace face;
    for (auto &[key, value] : ReadParameters(fragment)) {
        if (key == "postscript-name")
            face.postscript_name = std::move(value);
        else if (key == "index")
            face.index = ReadIndex(value);
    }
    return face;
}

std::string FaceText(const FontFace &face) {
    std::string text;
    if (!face.postscript_name.empty()) text = "postscript-name=" + PercentEscape(face.postscript_name);
    if (face.index < 0) return text;
    return text + (text.empty() ? "index=" : ";index=") + std::to_string(face.index);
}

void AddFace(std::vector<FontFace> &faces, const FontFace &face) {
    if (!Holds(faces, face)) faces.push_back(face);
}

} // namespace

TDisabledFonts::TDisabledFonts(std::string_view text) {
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        if (!line.empty() && !ReadLine(line)) other_lines_.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

bool TDisabledFonts::ReadLine(std::string_view line) {
    if (!line.starts_with(kScheme)) return false;
    line.remove_prefix(kScheme.size());
    const size_t sign = std::min(line.find('#'), line.size());
    const auto path = PercentUnescape(line.substr(0, sign));
    if (!path || !path->starts_with('/')) return false;
    if (sign == line.size()) {
        files_[*path] = {true, {}};
        return true;
    }
    const FontFace face = ReadFace(line.substr(sign + 1));
    if (face.index < 0 && face.postscript_name.empty()) return false;
    if (File &file = files_[*path]; !file.is_whole) AddFace(file.faces, face);
    return true;
}

std::string TDisabledFonts::Text() const {
    std::string text;
    for (const std::string &line : other_lines_) text += line + '\n';
    if (other_lines_.empty()) text = std::string(kHeading) + '\n';
    for (const auto &[path, file] : files_) {
        const std::string url = std::string(kScheme) + PercentEscape(path);
        if (file.is_whole) text += url + '\n';
        for (const FontFace &face : file.faces) text += url + '#' + FaceText(face) + '\n';
    }
    return text;
}

void TDisabledFonts::Disable(const SelectedFont &font) {
    if (IsFileDisabled(font.path)) return;
    if (font.is_whole_file) {
        EraseBelow(files_, font.path);
        files_[font.path] = {true, {}};
    } else if (!font.faces.empty()) {
        File &file = files_[font.path];
        for (const FontFace &face : font.faces) AddFace(file.faces, face);
        if (HoldsAll(file.faces, font.all)) file = {true, {}};
    }
}

void TDisabledFonts::Enable(const SelectedFont &font) {
    OpenFoldersAbove(font.path);
    if (font.is_whole_file) EraseBelow(files_, font.path);
    const auto found = files_.find(font.path);
    if (found == files_.end()) return;
    File &file = found->second;
    std::vector<FontFace> faces;
    if (!font.is_whole_file) {
        faces = file.is_whole ? font.all : file.faces;
        std::erase_if(faces, [&](const FontFace &face) { return Holds(font.faces, face); });
    }
    if (faces.empty())
        files_.erase(found);
    else if (!file.is_whole || !HoldsAll(faces, font.all))
        file = {false, std::move(faces)};
}

void TDisabledFonts::DisableAllIn(const std::string &folder) {
    for (const std::string &name : NamesIn(folder)) files_[folder + '/' + name] = {true, {}};
}

// Afterwards no folder above is disabled as a whole; what lies in those that were is, the path with it.
void TDisabledFonts::OpenFoldersAbove(const std::string &path) {
    std::vector<std::string> closed; // from the innermost to the outermost
    size_t outermost = 0;
    for (std::string_view folder = FolderAbove(path); !folder.empty(); folder = FolderAbove(folder)) {
        closed.emplace_back(folder);
        if (IsWhole(folder)) outermost = closed.size();
    }
    for (size_t i = outermost; i-- > 0;) {
        DisableAllIn(closed[i]);
        files_.erase(closed[i]);
        files_[i == 0 ? path : closed[i - 1]] = {true, {}};
    }
}

bool TDisabledFonts::IsWhole(std::string_view path) const {
    const auto found = files_.find(path);
    return found != files_.end() && found->second.is_whole;
}

bool TDisabledFonts::IsFileDisabled(std::string_view path) const {
    for (; !path.empty(); path = FolderAbove(path)) {
        if (IsWhole(path)) return true;
    }
    return false;
}

} // namespace vellum::legacy
