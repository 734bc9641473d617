// SPDX-License-Identifier: MIT
// The parts of a URL's text, and the resolution of relative ones.
#include "platform/val/url_parts.hpp"

#include "platform/val/byte_words.hpp"
#include "platform/val/hash.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr bool IsLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
constexpr bool IsSchemeMark(char c) noexcept {
    return IsLetter(c) || IsDigit(c) || c == '+' || c == '-' || c == '.';
}

// Cuts what follows the first `mark` off the end of a text, with the mark.
std::optional<std::string_view> CutAfter(std::string_view &text, char mark) noexcept {
    size_t at = text.find(mark);
    if (at == std::string_view::npos) return std::nullopt;
    std::string_view after = text.substr(at + 1);
    text = text.substr(0, at);
    return after;
}

std::optional<std::string_view> TakeScheme(std::string_view &text) noexcept {
    if (text.empty() || !IsLetter(text[0])) return std::nullopt;
    auto end = std::ranges::find_if_not(text, IsSchemeMark);
    if (end == text.end() || *end != ':') return std::nullopt;
    std::string_view scheme = text.substr(0, static_cast<size_t>(end - text.begin()));
    text.remove_prefix(scheme.size() + 1);
    return scheme;
}

std::optional<std::string_view> TakeAuthority(std::string_view &text) noexcept {
    if (!text.starts_with("//")) return std::nullopt;
    std::string_view authority = text.substr(2, std::min(text.find('/', 2), text.size()) - 2);
    text.remove_prefix(2 + authority.size());
    return authority;
}

std::string_view WithoutUser(std::string_view authority) noexcept {
    size_t at = authority.rfind('@');
    return at == std::string_view::npos ? authority : authority.substr(at + 1);
}

bool IsAuthority(std::string_view authority) noexcept {
    std::string_view rest = WithoutUser(authority);
    std::string_view host = HostOfAuthority(authority);
    if (host.starts_with('[') && !host.ends_with(']')) return false;
    rest.remove_prefix(host.size());
    return rest.empty() || (rest[0] == ':' && std::ranges::all_of(rest.substr(1), IsDigit));
}

bool HasControlCharacter(std::string_view text) noexcept {
    while (!text.empty()) {
        const size_t count = std::min<size_t>(text.size(), 8);
        uint64_t word = LoadBytes(text.data(), count);
        if (count < 8) word |= RepeatByte(' ') << 8 * count; // behind the end
        if (HasByteBelow(word, 0x20) || HasByte(word, 0x7F)) return true;
        text.remove_prefix(count);
    }
    return false;
}

// Drops the last segment, and the slash before it, of what stands behind `start`.
void DropSegment(TextBuffer &out, size_t start) noexcept {
    size_t slash = out.View().rfind('/');
    out.Truncate(slash == std::string_view::npos ? start : std::max(slash, start));
}

// RFC 3986, 5.2.4: "." and ".." segments are worked off; what is empty between slashes stays.
void AppendWithoutDots(TextBuffer &out, std::string_view path) noexcept {
    const size_t start = out.View().size();
    while (!path.empty()) {
        if (path.starts_with("../"))
            path.remove_prefix(3);
        else if (path.starts_with("./") || path.starts_with("/./"))
            path.remove_prefix(2);
        else if (path == "/.")
            path = "/";
        else if (path == "." || path == "..")
            path = {};
        else if (path.starts_with("/../") || path == "/..") {
            DropSegment(out, start);
            path = path.size() == 3 ? "/" : path.substr(3);
        } else {
            std::string_view segment = path.substr(0, std::min(path.find('/', 1), path.size()));
            out.Append(segment);
            path.remove_prefix(segment.size());
        }
    }
}

// The path of a relative reference that has one, as it stands in the base's directory.
void AppendMergedPath(TextBuffer &out, const URLParts &base, std::string_view relative) noexcept {
    TextBuffer merged;
    if (!relative.starts_with('/')) {
        if (base.path.empty() && base.authority) merged.Append("/");
        merged.Append(base.path.substr(0, base.path.rfind('/') + 1));
    }
    merged.Append(relative);
    TextBuffer path;
    if (merged.Failed()) path.Fail();
    AppendWithoutDots(path, merged.View());
    // A path that begins with two slashes would be read as an authority.
    if (!base.authority && path.View().starts_with("//")) out.Append("/.");
    out.Append(path);
}

void AppendPart(TextBuffer &out, std::string_view mark, std::optional<std::string_view> part) noexcept {
    if (!part) return;
    out.Append(mark);
    out.Append(*part);
}

} // namespace

bool HasScheme(std::string_view text) noexcept {
    return TakeScheme(text).has_value();
}

URLParts SplitURL(std::string_view text) noexcept {
    URLParts parts;
    parts.fragment = CutAfter(text, '#');
    parts.query = CutAfter(text, '?');
    parts.scheme = TakeScheme(text);
    parts.authority = TakeAuthority(text);
    parts.path = text;
    return parts;
}

std::string_view HostOfAuthority(std::string_view authority) noexcept {
    std::string_view host = WithoutUser(authority);
    if (host.starts_with('[')) return host.substr(0, std::min(host.find(']'), host.size() - 1) + 1);
    return host.substr(0, host.find(':'));
}

bool IsURLText(std::string_view text) noexcept {
    if (HasControlCharacter(text)) return false;
    URLParts parts = SplitURL(text);
    return !parts.authority || IsAuthority(*parts.authority);
}

Ref<const ValString> ResolveURL(std::string_view base_text, std::string_view relative_text) noexcept {
    URLParts base = SplitURL(base_text);
    URLParts relative = SplitURL(relative_text);
    TextBuffer out;
    out.Append(base.scheme.value_or(std::string_view()));
    out.Append(":");
    if (relative.authority) {
        AppendPart(out, "//", relative.authority);
        AppendWithoutDots(out, relative.path);
    } else {
        AppendPart(out, "//", base.authority);
        if (relative.path.empty())
            out.Append(base.path);
        else
            AppendMergedPath(out, base, relative.path);
    }
    bool same_document = !relative.authority && relative.path.empty() && !relative.query;
    AppendPart(out, "?", same_document ? base.query : relative.query);
    AppendPart(out, "#", relative.fragment);
    return out.MakeString();
}

} // namespace vellum
