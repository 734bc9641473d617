// SPDX-License-Identifier: MIT
// The path of a URL: its components, and the POSIX path that it stands for.
#include "platform/val/percent_escapes.hpp"
#include "platform/val/url.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

bool IsFileScheme(std::string_view scheme) noexcept {
    constexpr std::string_view kFile = "file";
    return std::ranges::equal(scheme, kFile, [](char a, char b) { return (a | 0x20) == b; });
}

// Without slashes at its end; the root stays.
std::string_view WithoutTrailingSlashes(std::string_view path) noexcept {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return path;
}

// The last component, escaped, without slashes; "/" for the root.
std::string_view LastComponent(std::string_view path) noexcept {
    path = WithoutTrailingSlashes(path);
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

// The POSIX path, decoded, into `out`.
bool AppendFileSystemPath(TextBuffer &out, const ValURL *url) noexcept {
    if (!url) return false;
    URLParts parts = Parts(*url);
    if (!IsFileScheme(*parts.scheme) || !parts.path.starts_with('/')) return false;
    return AppendUnescaped(out, WithoutTrailingSlashes(parts.path), "/");
}

// The URL with another escaped path, and nothing behind it.
const ValURL *CopyWithPath(const ValURL &url, std::string_view directory, std::string_view component,
                           bool is_directory) noexcept {
    std::string_view text = AbsoluteText(url);
    const char *path = Parts(url).path.data();
    TextBuffer changed;
    changed.Append(text.substr(0, static_cast<size_t>(path - text.data())));
    changed.Append(directory);
    AppendEscaped(changed, component);
    if (is_directory) changed.Append("/");
    return MakeURL(changed.MakeString()).Release();
}

} // namespace
} // namespace vellum

using namespace vellum;

const ValString *ValURLCopyFileSystemPath(const ValURL *url) noexcept {
    TextBuffer path;
    return AppendFileSystemPath(path, url) ? path.MakeString().Release() : nullptr;
}

bool ValURLGetFileSystemRepresentation(const ValURL *url, char *buffer, size_t size) noexcept {
    TextBuffer path;
    if (!buffer || !AppendFileSystemPath(path, url) || path.Failed() || path.View().size() >= size)
        return false;
    std::memcpy(buffer, path.View().data(), path.View().size());
    buffer[path.View().size()] = '\0';
    return true;
}

bool ValURLHasDirectoryPath(const ValURL *url) noexcept {
    return url && Parts(*url).path.ends_with('/');
}

const ValString *ValURLCopyLastPathComponent(const ValURL *url) noexcept {
    if (!url) return nullptr;
    std::string_view component = LastComponent(Parts(*url).path);
    return component.empty() ? nullptr : Unescape(component).Release();
}

const ValString *ValURLCopyPathExtension(const ValURL *url) noexcept {
    Ref<const ValString> component = Adopt(ValURLCopyLastPathComponent(url));
    std::string_view name = Text(component);
    size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size()) return nullptr;
    return MakeString(name.substr(dot + 1)).Release();
}

const ValURL *ValURLCopyDeletingLastPathComponent(const ValURL *url) noexcept {
    if (!url) return nullptr;
    std::string_view path = WithoutTrailingSlashes(Parts(*url).path);
    size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return nullptr;
    return CopyWithPath(*url, path.substr(0, slash + 1), {}, false);
}

const ValURL *ValURLCopyAppendingPathComponent(const ValURL *url, const ValString *component,
                                               bool isDirectory) noexcept {
    std::string_view name = Text(component);
    name.remove_prefix(std::min(name.find_first_not_of('/'), name.size()));
    if (!url || name.empty() || name.find('\0') != std::string_view::npos) return nullptr;
    TextBuffer directory;
    directory.Append(Parts(*url).path);
    if (!directory.View().ends_with('/')) directory.Append("/");
    if (directory.Failed()) return nullptr;
    return CopyWithPath(*url, directory.View(), name, isDirectory && !name.ends_with('/'));
}
