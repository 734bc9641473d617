// SPDX-License-Identifier: MIT
// Reading of font URLs. Paths are any bytes; fontconfig's own spelling of them is what they are compared
// in.
#include "font_url.hpp"

#include "fontconfig.hpp"
#include "percent_text.hpp"

#include <vellum/values.hpp>

#include <charconv>

namespace vellum::legacy {
namespace {

std::string_view BytesOf(const Ref<const ValString> &string) noexcept {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(string.Get(), &length);
    return bytes ? std::string_view(bytes, length) : std::string_view();
}

// The file that a URL names; empty for a URL of another kind, such as that of a font in memory.
std::string PathOf(const ValURL *url) {
    const auto host = Adopt(ValURLCopyHost(url));
    if (host && BytesOf(host) != "localhost") return {};
    const auto path = Adopt(ValURLCopyFileSystemPath(url));
    const std::string_view bytes = BytesOf(path);
    return bytes.starts_with('/') ? NormalPath(std::string(bytes)) : std::string();
}

FaceSelector SelectorOf(const ValURL *url) {
    FaceSelector selector;
    const auto fragment = Adopt(ValURLCopyFragment(url));
    for (auto &[key, value] : ReadParameters(BytesOf(fragment))) {
        if (key == "postscript-name") {
            selector.postscript_name = std::move(value);
        } else if (key.starts_with("var:")) {
            double number = 0;
            if (std::from_chars(value.data(), value.data() + value.size(), number).ec == std::errc())
                selector.axes.emplace_back(key.substr(4), number);
        }
    }
    return selector;
}

void AddURL(const void *item, std::vector<FontURL> &urls) {
    if (ValGetType(item) != kValTypeURL) return;
    const auto *url = static_cast<const ValURL *>(item);
    if (std::string path = PathOf(url); !path.empty()) urls.push_back({std::move(path), SelectorOf(url)});
}

} // namespace

std::vector<FontURL> ReadFontURLs(const void *fonts, bool is_array) {
    std::vector<FontURL> urls;
    if (!is_array) {
        AddURL(fonts, urls);
    } else if (ValGetType(fonts) == kValTypeArray) {
        const auto *array = static_cast<const ValArray *>(fonts);
        for (size_t i = 0; i < ValArrayGetCount(array); ++i) AddURL(ValArrayGetValue(array, i), urls);
    }
    return urls;
}

} // namespace vellum::legacy
