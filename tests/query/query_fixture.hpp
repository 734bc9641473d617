// SPDX-License-Identifier: MIT
// A register of a test's own, fonts to put into it, and short ways of asking it.
#pragma once

#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/font_builder.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

using RequestEntries = std::vector<std::pair<const ValString *, Ref<const void>>>;

inline Ref<const ValDictionary> Request(const RequestEntries &entries) {
    TValMutableDict request;
    for (const auto &[key, value] : entries) request.Set(key, value.Get());
    return request.Publish();
}

inline Ref<const ValCharacterSet> Characters(uint32_t first, uint32_t last) {
    return Adopt(ValCharacterSetCreateWithRange(first, last));
}

inline Ref<const ValURL> Face(const Ref<const ValURL> &url, const char *fragment) {
    return Adopt(ValURLCopyWithFragment(url.Get(), String(fragment).Get()));
}

// The PostScript name of the face that a URL names, as its file has it; "(null)" for no URL, and no file.
inline std::string NameIn(const Ref<const ValURL> &url) {
    const auto font = CreateFontFromURL(url.Get());
    return font ? TextOf(TClientFontEntity(font).CopyPostScriptName(false)) : "(null)";
}

// Those of an array of URLs; of null, "(null)" alone.
inline std::vector<std::string> NamesIn(const Ref<const ValArray> &urls) {
    if (!urls) return {"(null)"};
    std::vector<std::string> names;
    for (size_t i = 0; i < ValArrayGetCount(urls.Get()); ++i)
        names.push_back(NameIn(Retain(static_cast<const ValURL *>(ValArrayGetValue(urls.Get(), i)))));
    return names;
}

struct FontNames {
    std::string family;
    std::string subfamily;
    std::string full;
    std::string postscript;
};

inline FontBuilder FontWith(const FontNames &names, uint32_t first = 'A', uint32_t last = 'A') {
    return FontBuilder()
        .Names({WindowsName(1, names.family), WindowsName(2, names.subfamily), WindowsName(4, names.full),
                WindowsName(6, names.postscript)})
        .Characters({{first, last}});
}

// A font that says in every table that it is bold.
inline Bytes BoldFont(const std::string &family, const std::string &postscript) {
    Os2Fields os2;
    os2.weight_class = 700;
    os2.selection = 0x20;
    HeadFields head;
    head.mac_style = 1;
    return FontWith({family, "Bold", family + " Bold", postscript})
        .Table("OS/2", Os2Table(os2))
        .Table("head", HeadTable(head))
        .Build();
}

class QueryTest : public ::testing::Test {
protected:
    Ref<const ValURL> Add(const std::string &name, const Bytes &bytes) {
        auto url = folder.Add(name, bytes);
        EXPECT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
        return url;
    }
    Ref<const ValURL> Add(const std::string &name, const NamedFace &face) {
        return Add(name, MakeFont(face));
    }
    Ref<const ValURL> Add(const std::string &name, const FontNames &names) {
        return Add(name, FontWith(names).Build());
    }

    // The names of the answers to a request, in their order.
    std::vector<std::string> Find(const RequestEntries &entries) const {
        return NamesIn(registry.CopyFontsForRequest(Request(entries).Get(), kVLScopeProcess));
    }

    FontFolder folder;
    TLocalGlypharyImp registry;
};

} // namespace vellum::test
