// SPDX-License-Identifier: MIT
#include "tools/document_markup.hpp"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <string>

namespace vellum::tool {

namespace {

struct Reader {
    NameList &names;
    bool is_in_style = false;
    std::string style; // the content of an element with styles
};

// Without the prefix of its namespace: documents use the usual ones, and mean the same by them.
std::string_view Local(std::string_view name) {
    return name.substr(name.rfind(':') + 1);
}

// In a table of fonts, in a theme, in text, in the styles of a spreadsheet.
bool IsName(std::string_view element, std::string_view attribute) {
    if (attribute == "typeface") return true;
    if (element == "font") return attribute == "name" || attribute == "face";
    if (element == "name" || element == "rFont") return attribute == "val";
    return element == "rFonts" &&
           (attribute == "ascii" || attribute == "hAnsi" || attribute == "cs" || attribute == "eastAsia");
}

void Begin(void *reader, const char *element_name, const char **attributes) {
    auto *mine = static_cast<Reader *>(reader);
    const std::string_view element = Local(element_name);
    for (; *attributes; attributes += 2) {
        const std::string_view attribute = Local(attributes[0]), value = attributes[1];
        if (attribute == "font-family")
            mine->names.AddFamilies(value);
        else if (attribute == "style" && value.find(':') != value.npos)
            mine->names.AddStyles(value);
        else if (IsName(element, attribute))
            mine->names.Add(value);
    }
    if (element == "style") mine->is_in_style = true;
}

void End(void *reader, const char *element_name) {
    auto *mine = static_cast<Reader *>(reader);
    if (Local(element_name) != "style") return;
    mine->names.AddStyles(mine->style);
    mine->style.clear();
    mine->is_in_style = false;
}

void Characters(void *reader, const char *text, int length) {
    auto *mine = static_cast<Reader *>(reader);
    if (mine->is_in_style) mine->style.append(text, static_cast<size_t>(length));
}

struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

} // namespace

bool AddNamesInXML(std::string_view xml, NameList &names) {
    const std::unique_ptr<XML_ParserStruct, Free> parser(XML_ParserCreate(nullptr));
    if (!parser || xml.size() > INT_MAX) return false;
    Reader reader{names, false, {}};
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), Begin, End);
    XML_SetCharacterDataHandler(parser.get(), Characters);
    return XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
}

} // namespace vellum::tool
