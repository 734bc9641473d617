// SPDX-License-Identifier: MIT
#include "tools/document_names.hpp"

#include "tools/document_archive.hpp"
#include "tools/document_markup.hpp"
#include "tools/name_list.hpp"
#include "tools/text.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>

namespace vellum::tool {

namespace {

// A text that is longer names no fonts for people.
constexpr off_t kMostBytes = off_t{64} << 20;

std::string Contents(const std::string &path) {
    struct stat file = {};
    if (::stat(path.c_str(), &file) != 0) throw UnreadableDocument(std::strerror(errno), errno == EACCES);
    if (!S_ISREG(file.st_mode)) throw UnreadableDocument("is no file");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw UnreadableDocument(std::strerror(errno), errno == EACCES);
    char first[4] = {};
    in.read(first, sizeof first);
    if (IsArchive({first, static_cast<size_t>(in.gcount())})) return {first, sizeof first};
    if (file.st_size > kMostBytes) throw UnreadableDocument("is larger than any document that names fonts");
    in.clear();
    in.seekg(0);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void AddNamesInArchive(const std::string &path, NameList &names) {
    bool is_document = false, is_whole = true;
    const bool is_read = ReadParts(path, [&](std::string_view, std::string_view content) {
        is_document = true;
        is_whole = AddNamesInXML(content, names) && is_whole;
    });
    if (!is_read || !is_whole) throw UnreadableDocument("is damaged");
    if (!is_document) throw UnreadableDocument("is an archive, but no document that is understood");
}

void AddLines(std::string_view text, NameList &names) {
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        names.Add(line.substr(0, line.find('#')));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

// Markup is recognised by its beginning. HTML is seldom XML; its styles are found without.
void AddNamesInText(std::string_view text, NameList &names) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    const size_t begin = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    const bool is_markup = text.substr(begin).starts_with('<');
    if (is_markup && AddNamesInXML(text.substr(begin), names)) return;
    if (is_markup || text.find('{') != text.npos)
        names.AddStyles(text);
    else
        AddLines(text, names);
}

} // namespace

std::vector<std::string> NamesInDocument(const std::string &path) {
    const std::string contents = Contents(path);
    NameList names;
    if (IsArchive(contents))
        AddNamesInArchive(path, names);
    else if (contents.starts_with("%PDF-"))
        throw UnreadableDocument(
            "is a PDF, which mostly carries its fonts; 'pdffonts' lists those that it lacks");
    else if (contents.find('\0') != contents.npos ||
             !Adopt(ValStringCreateWithUTF8(contents.data(), contents.size())))
        throw UnreadableDocument("is no document that is understood");
    else
        AddNamesInText(contents, names);
    return std::move(names).Names();
}

} // namespace vellum::tool
