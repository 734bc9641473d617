// SPDX-License-Identifier: MIT
#include "store/font_path_index.hpp"

#include "describe/gx_font_wrapper.hpp"
#include "values/val_str.hpp"

#include <algorithm>
#include <climits>
#include <new>
#include <vector>

namespace vellum {

namespace {

// File names are bytes, and need not be text.
Ref<const ValString> PathKey(std::string_view path) {
    auto key = Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size()));
    if (!key) throw std::bad_alloc();
    return key;
}

// Calls visit(key) for the path and for each folder above it but the root, innermost first. What
// has no components, the root itself, is its own key.
template <class Visit>
void ForEachPathKey(const ValURL *url, Visit visit) {
    const std::string path = CopyNormalizedPath(url);
    // Every face lies somewhere: that there is no path to be had means that memory is exhausted.
    if (url && path.empty()) throw std::bad_alloc();
    size_t length = path.size();
    while (length > 0) {
        visit(PathKey(std::string_view(path).substr(0, length)).Get());
        const size_t slash = path.rfind('/', length - 1);
        length = slash == std::string::npos ? 0 : slash;
    }
}

// Whether there is nothing to take out, as in most paths. One with a hidden folder is looked at closely.
bool IsNormalized(std::string_view path) noexcept {
    for (size_t slash = 0; slash < path.size(); slash = std::min(path.find('/', slash + 1), path.size())) {
        const char next = slash + 1 < path.size() ? path[slash + 1] : '/';
        if (next == '/' || next == '.') return false;
    }
    return path.starts_with('/');
}

} // namespace

Ref<const ValString> CopyPath(const ValURL *url) {
    auto path = Adopt(ValURLCopyFileSystemPath(url));
    char buffer[PATH_MAX];
    if (!path && ValURLGetFileSystemRepresentation(url, buffer, sizeof buffer)) throw std::bad_alloc();
    return path;
}

std::string NormalizePath(std::string_view path) {
    if (IsNormalized(path)) return std::string(path);
    const bool absolute = path.starts_with('/');
    std::vector<std::string_view> components;
    for (size_t at = 0; at < path.size();) {
        const size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        if (component == "..") {
            if (!components.empty()) components.pop_back();
        } else if (!component.empty() && component != ".") {
            components.push_back(component);
        }
        at = end + 1;
    }
    std::string normalized;
    for (const std::string_view component : components) {
        if (absolute || !normalized.empty()) normalized += '/';
        normalized += component;
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
    return TFontIndex::CopyFontsForKey(PathKey(CopyNormalizedPath(url)).Get());
}

} // namespace vellum
