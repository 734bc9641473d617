// SPDX-License-Identifier: MIT
// Exported: registering, unregistering, enabling and disabling.
#include "frame/exports/changes.hpp"

#include "frame/exports/guard.hpp"
#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/scope.hpp"
#include "platform/font/gx_font.hpp"
#include "platform/val/string.hpp"
#include "values/val_array.hpp"

using namespace vellum;

namespace {

// The file URLs of an array, absolute and without fragments: a file is registered whole. URLs
// without a path, those of fonts in memory among them, are dropped.
Ref<const ValArray> CreateAbsolutePathURLArray(const ValArray *urls) {
    TValMutableArray files;
    for (size_t i = 0; i < ValArrayGetCount(urls); ++i) {
        const auto *url = Cast<ValURL>(ValArrayGetValue(urls, i));
        const auto path = Adopt(ValURLCopyFileSystemPath(url));
        const auto file = Adopt(ValURLCreateWithFileSystemPath(path.Get(), false, nullptr));
        if (file) files.Append(file.Get());
    }
    return files.Publish();
}

// Makes a change with exactly one register: the shared one when the scope asks for it.
template <class Change>
bool ChangeOneRegister(VLScope scope, Change change) {
    return AsksShared(scope) ? change(TGlobalGlyphary()) : change(TLocalGlyphary());
}

// The frame of a batch change: what failed is handed out; with no register asked, that is all.
template <class Change>
bool ChangeFiles(const ValArray *urls, VLScope scope, const ValArray **errors, Change change) {
    if (errors) *errors = nullptr;
    if (!urls) return false;
    return Guard([&] {
        const auto files = CreateAbsolutePathURLArray(urls);
        Ref<const ValArray> failed;
        const bool changed =
            AsksAny(scope) && ChangeOneRegister(scope, [&](const TGlypharyProtocol &registry) {
                return change(registry, files.Get(), &failed);
            });
        if (!AsksAny(scope)) failed = files;
        if (errors) *errors = failed.Release();
        return changed;
    });
}

Ref<const ValArray> OneElement(const ValURL *url) {
    const void *const item = url;
    return Adopt(ValArrayCreate(&item, 1));
}

// A path longer than this is not looked for in the parser's cache: everything is forgotten instead.
constexpr size_t kLongestPurgedPath = 1024;

// What the parser keeps of files that were unregistered is stale: of one file, or of everything.
void PurgeParser(const ValArray *files) {
    Ref<const ValString> path;
    if (ValArrayGetCount(files) == 1)
        path = Adopt(ValURLCopyFileSystemPath(Cast<ValURL>(ValArrayGetValue(files, 0))));
    FacetFontPurgeCaches(Text(path).size() <= kLongestPurgedPath ? path.Get() : nullptr);
}

} // namespace

bool VLRegisterFonts(const ValArray *urls, VLFontFlags flags, VLScope scope,
                     const ValArray **errors) noexcept {
    return ChangeFiles(urls, scope, errors,
                       [&](const TGlypharyProtocol &registry, const ValArray *files, ErrorArray failed) {
                           return registry.RegisterFonts(files, nullptr, flags, scope, failed);
                       });
}

bool VLRegisterFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept {
    return url && VLRegisterFonts(OneElement(url).Get(), flags, scope, nullptr);
}

bool VLUnregisterFonts(const ValArray *urls, uint32_t, VLScope scope, const ValArray **errors) noexcept {
    const bool unregistered =
        ChangeFiles(urls, scope, errors,
                    [&](const TGlypharyProtocol &registry, const ValArray *files, ErrorArray failed) {
                        return registry.UnregisterFonts(files, scope, failed);
                    });
    if (urls && AsksAny(scope)) Guard([&] { PurgeParser(CreateAbsolutePathURLArray(urls).Get()); });
    return unregistered;
}

bool VLUnregisterFont(const ValURL *url, uint32_t reserved, VLScope scope) noexcept {
    return url && VLUnregisterFonts(OneElement(url).Get(), reserved, scope, nullptr);
}

void VLEnableFonts(const ValArray *urls, VLFontFlags, VLScope scope) noexcept {
    if (!urls) return;
    Guard([&] {
        if (AsksProcess(scope)) TLocalGlyphary().EnableFonts(urls, scope);
        if (AsksShared(scope)) TGlobalGlyphary().EnableFonts(urls, scope);
    });
}

void VLDisableFonts(const ValArray *urls, VLFontFlags, VLScope scope) noexcept {
    if (!urls) return;
    Guard([&] {
        if (AsksProcess(scope)) TLocalGlyphary().DisableFonts(urls, scope);
        if (AsksShared(scope)) TGlobalGlyphary().DisableFonts(urls, scope);
    });
}

// The single-font forms ask the shared register first, the array forms the process's own.

void VLEnableFont(const ValURL *url, VLFontFlags, VLScope scope) noexcept {
    if (!url) return;
    Guard([&] {
        if (AsksShared(scope)) TGlobalGlyphary().EnableFont(url, scope & kScopeShared);
        if (AsksProcess(scope)) TLocalGlyphary().EnableFont(url, kVLScopeProcess);
    });
}

void VLDisableFont(const ValURL *url, VLFontFlags, VLScope scope) noexcept {
    if (!url) return;
    Guard([&] {
        if (AsksShared(scope)) TGlobalGlyphary().DisableFont(url, scope & kScopeShared);
        if (AsksProcess(scope)) TLocalGlyphary().DisableFont(url, kVLScopeProcess);
    });
}

// Directories are the font server's, and there is no client of it yet: the shared register refuses.

bool VLRegisterFontDirectory(const ValURL *directory, VLFontFlags flags, uint32_t options,
                             VLScope scope) noexcept {
    if (!directory || (scope & kVLScopeAll) != kVLScopeUser) return false;
    return Guard(
        [&] { return TGlobalGlyphary().RegisterFontDirectory(directory, nullptr, flags, options, scope); });
}

bool VLUnregisterFontDirectory(const ValURL *directory, uint32_t, VLScope scope) noexcept {
    if (!directory || (scope & kVLScopeAll) != kVLScopeUser) return false;
    return Guard([&] { return TGlobalGlyphary().UnregisterFontDirectory(directory, scope); });
}
