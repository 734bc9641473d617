// SPDX-License-Identifier: MIT
// URLs: making them, and the parts that are no path.
#include "platform/val/url.hpp"

#include "platform/val/letter_case.hpp"
#include "platform/val/percent_escapes.hpp"

#include <unistd.h>

#include <memory>

namespace vellum {
namespace {

void FinalizeURL(ValObject *object) {
    static_cast<ValURL *>(object)->~ValURL();
}

bool EqualURLs(const ValObject *a, const ValObject *b) {
    return AbsoluteText(*static_cast<const ValURL *>(a)) == AbsoluteText(*static_cast<const ValURL *>(b));
}

uint64_t HashURL(const ValObject *object) {
    return ValHash(static_cast<const ValURL *>(object)->absolute.Get());
}

const ValString *CopyPart(std::optional<std::string_view> part) noexcept {
    return part ? MakeString(*part).Release() : nullptr;
}

struct FreeMemory {
    void operator()(char *memory) const noexcept { std::free(memory); }
};

// The current directory with a slash at its end; false when it has no path.
bool AppendCurrentDirectory(TextBuffer &out) noexcept {
    std::unique_ptr<char, FreeMemory> directory(getcwd(nullptr, 0));
    if (!directory || directory.get()[0] != '/') return false;
    std::string_view path = directory.get();
    AppendEscaped(out, path);
    if (!path.ends_with('/')) out.Append("/");
    return true;
}

// What stands before the path in a file URL's text; nothing when the text is relative to `base`.
bool AppendPathStart(TextBuffer &out, std::string_view path, const ValURL *base) noexcept {
    if (path.starts_with('/') || !base) out.Append("file://");
    if (path.starts_with('/')) return true;
    if (!base) return AppendCurrentDirectory(out);
    // "a:b" would be read as a scheme.
    if (path.substr(0, path.find('/')).find(':') != std::string_view::npos) out.Append("./");
    return true;
}

// From "file://" and an escaped path, which are a URL.
Ref<const ValURL> MakeFileURL(Ref<const ValString> text) noexcept {
    if (!text) return nullptr;
    auto absolute = text;
    return Ref<const ValURL>::Adopt(
        AllocateObject<ValURL>(0, std::move(text), nullptr, std::move(absolute)));
}

} // namespace

constinit const ValKind kURLKind{kValTypeURL, "URL", FinalizeURL, EqualURLs, HashURL, nullptr};

bool IsAbsoluteURL(std::string_view text) noexcept {
    return HasScheme(text) && IsURLText(text) && ScanText(text).is_unicode;
}

Ref<const ValURL> MakeURL(Ref<const ValString> text, const ValURL *base) noexcept {
    if (!text || !text.Get()->is_unicode || !IsURLText(Text(text))) return nullptr;
    bool is_absolute = HasScheme(Text(text));
    if (!is_absolute && !base) return nullptr;
    Ref<const ValString> absolute = is_absolute ? text : ResolveURL(AbsoluteText(*base), Text(text));
    if (!absolute) return nullptr;
    return Ref<const ValURL>::Adopt(AllocateObject<ValURL>(
        0, std::move(text), is_absolute ? nullptr : Ref<const ValURL>::Retain(base), std::move(absolute)));
}

} // namespace vellum

using namespace vellum;

const ValURL *ValURLCreateWithString(const ValString *text, const ValURL *base) noexcept {
    return MakeURL(Retain(text), base).Release();
}

const ValURL *ValURLCreateWithBytes(const void *bytes, size_t length, const ValURL *base) noexcept {
    if (!bytes) return nullptr;
    return MakeURL(MakeString({static_cast<const char *>(bytes), length}), base).Release();
}

const ValURL *ValURLCreateWithFileSystemPath(const ValString *path, bool isDirectory,
                                             const ValURL *base) noexcept {
    std::string_view bytes = Text(path);
    if (bytes.empty() || bytes.find('\0') != std::string_view::npos) return nullptr;
    TextBuffer text;
    if (!AppendPathStart(text, bytes, base)) return nullptr;
    AppendEscaped(text, bytes);
    if (isDirectory && !bytes.ends_with('/')) text.Append("/");
    if (base && !bytes.starts_with('/')) return MakeURL(text.MakeString(), base).Release();
    return MakeFileURL(text.MakeString()).Release();
}

const ValString *ValURLGetString(const ValURL *url) noexcept {
    return url ? url->text.Get() : nullptr;
}
const ValURL *ValURLGetBase(const ValURL *url) noexcept {
    return url ? url->base.Get() : nullptr;
}

const ValURL *ValURLCopyAbsolute(const ValURL *url) noexcept {
    if (!url || !url->base) return Retain(url).Release();
    return MakeURL(url->absolute).Release();
}

const ValString *ValURLCopyScheme(const ValURL *url) noexcept {
    if (!url) return nullptr;
    std::string_view scheme = *Parts(*url).scheme;
    auto lower = [scheme](char *out) {
        for (char c : scheme) *out++ = LowerAscii(c);
    };
    return MakeString(scheme.size(), lower).Release();
}

const ValString *ValURLCopyHost(const ValURL *url) noexcept {
    std::string_view host;
    if (url) host = HostOfAuthority(Parts(*url).authority.value_or(std::string_view()));
    return host.empty() ? nullptr : MakeString(host).Release();
}

const ValString *ValURLCopyPath(const ValURL *url) noexcept {
    return url ? MakeString(Parts(*url).path).Release() : nullptr;
}

const ValString *ValURLCopyFragment(const ValURL *url) noexcept {
    return url ? CopyPart(Parts(*url).fragment) : nullptr;
}

const ValString *ValURLCopyDecodedFragment(const ValURL *url) noexcept {
    if (!url) return nullptr;
    auto fragment = Parts(*url).fragment;
    if (!fragment) return nullptr;
    const bool holds_zero = fragment->find("%00") != std::string_view::npos;
    return holds_zero ? ValURLCopyFragment(url) : Unescape(*fragment).Release();
}

const ValURL *ValURLCopyWithFragment(const ValURL *url, const ValString *fragment) noexcept {
    if (!url) return nullptr;
    std::string_view text = AbsoluteText(*url);
    const size_t mark = text.find('#');
    if (!fragment && !url->base && mark == std::string_view::npos) return Retain(url).Release();
    TextBuffer changed;
    changed.Append(text.substr(0, mark));
    if (fragment) {
        changed.Append("#");
        changed.Append(Text(*fragment));
    }
    return MakeURL(changed.MakeString()).Release();
}
