// SPDX-License-Identifier: MIT
// Creation of GxFont objects from files and buffers, and the parser's cache.
#include "platform/font/gx_font.hpp"

#include "platform/font/face_fragment.hpp"
#include "platform/font/face_loader.hpp"
#include "platform/font/font_cache.hpp"
#include "platform/font/font_object.hpp"
#include "platform/font/guarded.hpp"
#include "platform/font/live_data_fonts.hpp"
#include "platform/font/woff.hpp"
#include "platform/val/string.hpp"

#include <climits>
#include <new>
#include <optional>
#include <utility>

namespace vellum {
namespace {

std::optional<TFontFileKey> KeyOf(const ValURL *url) {
    char path[PATH_MAX];
    if (!ValURLGetFileSystemRepresentation(url, path, sizeof path)) return std::nullopt;
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    auto file = Adopt(ValURLCopyWithFragment(absolute.Get(), nullptr));
    if (!file) throw std::bad_alloc(); // a font without its file's URL is one in memory
    return TFontFileKey{path, std::move(file)};
}

// A file without faces gives null, and is looked at again when it is asked for again.
Ref<const ValArray> ReadFonts(const TFontFileKey &key) {
    TFileIdentity identity;
    const TReading reading = OpenFontFile(key.path.c_str(), &identity);
    if (!reading) return nullptr;
    const auto source = std::make_shared<const TFileSource>(key.path, identity);
    const std::vector<TFacePtr> faces = LoadFaces(source, reading);
    if (faces.empty()) return nullptr;
    auto fonts = Adopt(ValArrayCreateMutable(faces.size(), nullptr));
    for (const TFacePtr &face : faces) {
        const auto font = MakeFont(face, key.url, faces.size() == 1);
        if (!font || !ValArrayAppend(fonts.Get(), font.Get())) return nullptr;
    }
    return KeepFonts(key, identity, std::move(fonts));
}

Ref<const ValArray> CopyAllFonts(const ValURL *url) {
    const auto key = KeyOf(url);
    if (!key) return nullptr;
    auto known = CopyCachedFonts(*key);
    return known ? known : ReadFonts(*key);
}

Ref<const ValArray> SelectFont(const Ref<const ValArray> &fonts, const TFaceSelector &selector) {
    for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i) {
        const void *font = ValArrayGetValue(fonts.Get(), i);
        if (selector.Fits(*static_cast<const GxFont *>(font)->face)) return Adopt(ValArrayCreate(&font, 1));
    }
    return nullptr;
}

} // namespace

Ref<const ValArray> GxFontCreateFontsWithURL(const ValURL *url) noexcept {
    return Guarded([&]() -> Ref<const ValArray> {
        auto fonts = CopyAllFonts(url);
        const auto fragment = Adopt(ValURLCopyFragment(url));
        if (!fonts || !fragment) return fonts;
        const TFaceSelector selector(Text(fragment));
        return selector ? SelectFont(fonts, selector) : fonts;
    });
}

Ref<const GxFont> GxFontCreateWithData(const ValData *data) noexcept {
    return Guarded([&]() -> Ref<const GxFont> {
        if (!data) return nullptr;
        const auto source = std::make_shared<const TDataSource>(data);
        const std::vector<TFacePtr> faces = LoadFaces(source, source->Open());
        if (faces.empty()) return nullptr;
        auto font = MakeFont(faces.front(), nullptr, true);
        if (font) RememberLiveDataFont(font.Get());
        return font;
    });
}

void FacetFontPurgeCaches(const ValString *path) noexcept {
    Guarded([&] {
        ForgetUnpackedFont();
        const std::string text(Text(path));
        ForgetFonts(path ? &text : nullptr);
    });
}

} // namespace vellum
