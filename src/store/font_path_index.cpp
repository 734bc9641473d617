// SPDX-License-Identifier: MIT
#include "store/font_path_index.hpp"

#include "describe/gx_font_wrapper.hpp"
#include "platform/val/string.hpp"
#include "values/val_str.hpp"

#include <algorithm>
#include <climits>
#include <new>

namespace vellum {

namespace {

// File names are bytes, and need not be text.
Ref<const ValString> PathKey(std::string_view path) {
    auto key = Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size()));
    if (!key) throw std::bad_alloc();
    return key;
}

// Whether normalizing leaves a path as it is. Nearly all are so.
bool IsNormal(std::string_view path) noexcept {
    if (!path.starts_with('/')) return false;
    for (size_t at = 0; at < path.size();) {
        const size_t end = std::min(path.find('/', at + 1), path.size());
        const std::string_view component = path.substr(at + 1, end - at - 1);
        if (component.empty() || component == "." || component == "..") return false;
        at = end;
    }
    return true;
}

// CopyNormalizedPath as a key: empty, not null, for a URL that has none.
Ref<const ValString> PathKeyOf(const ValURL *url) {
    if (!TGxFont::IsInMemoryURL(url)) {
        auto path = CopyPath(url);
        if (IsNormal(Text(path))) return path;
    }
    return PathKey(CopyNormalizedPath(url));
}

// Calls visit(key) for the path and for each folder above it but the root, innermost first. What
// has no components, the root itself, is its own key.
template <class Visit>
void ForEachPathKey(const ValURL *url, Visit visit) {
    const auto file = PathKeyOf(url);
    const std::string_view path = Text(file);
    // Every face lies somewhere: that there is no path to be had means that memory is exhausted.
    if (url && path.empty()) throw std::bad_alloc();
    if (path.empty()) return;
    visit(file.Get());
    for (size_t at = path.rfind('/'); at != 0 && at != std::string_view::npos; at = path.rfind('/', at - 1))
        visit(PathKey(path.substr(0, at)).Get());
}

} // namespace

Ref<const ValString> CopyPath(const ValURL *url) {
    auto path = Adopt(ValURLCopyFileSystemPath(url));
    char buffer[PATH_MAX];
    if (!path && ValURLGetFileSystemRepresentation(url, buffer, sizeof buffer)) throw std::bad_alloc();
    return path;
}

std::string NormalizePath(std::string_view path) {
    const bool absolute = path.starts_with('/');
    std::string normalized;
    normalized.reserve(path.size());
    for (size_t at = 0; at < path.size();) {
        const size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        if (component == "..") {
            const size_t last = normalized.rfind('/');
            normalized.resize(last == std::string::npos ? 0 : last);
        } else if (!component.empty() && component != ".") {
            if (absolute || !normalized.empty()) normalized += '/';
            normalized += component;
        }
        at = end + 1;
    }
    return normalized.empty() && absolute ? "/" : normalized;
}

std::string CopyNormalizedPath(const ValURL *url) {
    if (TGxFont::IsInMemoryURL(url)) return std::string(TValStr(Adopt(ValURLCopyHost(url))).View());
    const TValStr path(CopyPath(url));
    return NormalizePath(path.View());
}

void TFontPathIndex::AddFontForKey(FontReference font, const void *key) {
    ForEachPathKey(Cast<ValURL>(key),
                   [&](const ValString *path) { TFontIndex::AddFontForKey(font, path); });
}

void TFontPathIndex::RemoveFontForKey(FontReference font, const void *key) {
    ForEachPathKey(Cast<ValURL>(key),
                   [&](const ValString *path) { TFontIndex::RemoveFontForKey(font, path); });
}

Ref<const ValSet> TFontPathIndex::CopyFontsForKey(const void *key) const {
    const auto *url = Cast<ValURL>(key);
    if (IsEmpty() || !url) return nullptr;
    return TFontIndex::CopyFontsForKey(PathKeyOf(url).Get());
}

std::vector<FontReference> TFontPathIndex::FontsForKey(const void *key) const {
    const auto *url = Cast<ValURL>(key);
    if (IsEmpty() || !url) return {};
    return TFontIndex::FontsForKey(PathKeyOf(url).Get());
}

} // namespace vellum
