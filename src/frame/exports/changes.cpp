// SPDX-License-Identifier: MIT
// Exported: registering, unregistering, enabling and disabling.
//
// A change is told to the legacy font service, made with the registers, and posted, in this order; each
// lock is given back before the next step.
#include "frame/exports/changes.hpp"

#include "frame/exports/guard.hpp"
#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/scope.hpp"
#include "ipc/notify/change_notifications.hpp"
#include "platform/font/gx_font.hpp"
#include "platform/val/string.hpp"
#include "store/legacy_bridge.hpp"
#include "values/val_array.hpp"
#include "values/val_bookmark.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

using namespace vellum;

namespace {

// The file URLs of an array, absolute and without fragments: a file is registered whole. URLs
// without a path, those of fonts in memory among them, are dropped.
Ref<const ValArray> CreateAbsolutePathURLArray(const ValArray *urls) {
    TValMutableArray files;
    for (const void *item : Elements(urls)) {
        const auto path = Adopt(ValURLCopyFileSystemPath(Cast<ValURL>(item)));
        const auto file = Adopt(ValURLCreateWithFileSystemPath(path.Get(), false, nullptr));
        if (file) files.Append(file.Get());
    }
    return files.Publish();
}

// What VLCopyFontsWithProperties answers. One register is asked for its URLs alone: merging two answers
// takes their fonts' names, too, which nobody else may ever ask for.
Ref<const ValArray> CopyFonts(const ValDictionary *request, VLScope scope) {
    if (!AsksShared(scope)) return TLocalGlyphary().CopyFontsForRequest(request, scope);
    if (!AsksProcess(scope)) return TGlobalGlyphary().CopyFontsForRequest(request, scope);
    return Adopt(VLCopyFontsWithProperties(request, scope, kVLActivationNotFromSearch));
}

// The URLs of every face that the registers have under files, in the order of the files.
Ref<const ValArray> CopyFaceURLsForFonts(const ValArray *files, VLScope scope) {
    TValMutableArray faces;
    for (const void *file : Elements(files)) {
        TValMutableDict request;
        request.Set(kVLFontPropertyURL, file);
        faces.AppendArray(CopyFonts(request.Get(), scope).Get());
    }
    return faces.Publish();
}

// The faces but those of files that failed, each once.
Ref<const ValArray> FacesWithoutFiles(const ValArray *faces, const ValArray *failed) {
    const auto path_of = [](const void *url) { return Adopt(ValURLCopyFileSystemPath(Cast<ValURL>(url))); };
    TValMutableSet failed_paths;
    for (const void *file : Elements(failed)) failed_paths.Add(path_of(file).Get());
    TValMutableSet seen;
    TValMutableArray left;
    for (const void *face : Elements(faces)) {
        if (failed_paths.Contains(path_of(face).Get()) || seen.Contains(face)) continue;
        seen.Add(face);
        left.Append(face);
    }
    return left.Publish();
}

constexpr bool IsSilent(VLScope scope) noexcept {
    return (scope & kVLScopeSilent) != 0;
}

void PostUnlessSilent(VLScope scope, const ValString *key, const ValArray *fonts) {
    if (ValArrayGetCount(fonts) > 0 && !IsSilent(scope)) PostNotification(scope, key, fonts);
}

// Makes a change of files with exactly one register, the shared one when the scope asks for it; what failed
// goes to the caller of the exported function.
template <class Change>
bool ChangeOneRegister(VLScope scope, Change change) {
    return AsksShared(scope) ? change(TGlobalGlyphary()) : change(TLocalGlyphary());
}

bool RegisterFiles(const ValArray *files, VLFontFlags flags, VLScope scope, ErrorArray failed) {
    if (!AsksAny(scope)) {
        *failed = Retain(files);
        return false;
    }
    // The process's register tells the legacy service itself, of each file.
    if (AsksShared(scope)) DoRegisterURLsWithFount(files, true, flags, scope);
    const bool registered = ChangeOneRegister(scope, [&](const TGlypharyProtocol &registry) {
        return registry.RegisterFonts(files, nullptr, flags, scope, failed);
    });
    // That files which failed are asked for, too, is deliberate: they may be there already.
    if (!IsSilent(scope) && ValArrayGetCount(failed->Get()) != ValArrayGetCount(files))
        PostUnlessSilent(scope, kAvailableFontURLsAddedKey, CopyFaceURLsForFonts(files, scope).Get());
    return registered;
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

bool UnregisterFiles(const ValArray *files, VLScope scope, ErrorArray failed) {
    DoRegisterURLsWithFount(files, false, 0, scope);
    if (!AsksAny(scope)) {
        *failed = Retain(files);
        return false;
    }
    const auto faces = IsSilent(scope) ? nullptr : CopyFaceURLsForFonts(files, scope);
    const bool unregistered = ChangeOneRegister(scope, [&](const TGlypharyProtocol &registry) {
        return registry.UnregisterFonts(files, scope, failed);
    });
    PostUnlessSilent(scope, kAvailableFontURLsRemovedKey,
                     FacesWithoutFiles(faces.Get(), failed->Get()).Get());
    PurgeParser(files);
    return unregistered;
}

// The frame of a change of files: what failed is handed out, even when memory runs out meanwhile.
template <class Change>
bool ChangeFiles(const ValArray *urls, const ValArray **errors, Change change) {
    if (errors) *errors = nullptr;
    if (!urls) return false;
    Ref<const ValArray> failed;
    const bool changed = Guard([&] { return change(CreateAbsolutePathURLArray(urls).Get(), &failed); });
    if (errors) *errors = failed.Release();
    return changed;
}

Ref<const ValArray> OneElement(const ValURL *url) {
    const void *const item = url;
    return Adopt(ValArrayCreate(&item, 1));
}

// Enabling and disabling are alike. `change(register, scope)` answers the URLs that changed; the process's
// register comes first.
template <class Change>
void ChangeAvailability(const ValArray *urls, bool enables, VLFontFlags flags, VLScope scope,
                        Change change) {
    if (!urls) return;
    Guard([&] {
        DoEnableURLsWithFount(urls, enables, flags, scope);
        TValMutableArray changed;
        if (AsksProcess(scope)) changed.AppendArray(change(TLocalGlyphary(), scope).Get());
        if (AsksShared(scope)) changed.AppendArray(change(TGlobalGlyphary(), scope).Get());
        PostUnlessSilent(scope, enables ? kAvailableFontURLsAddedKey : kAvailableFontURLsRemovedKey,
                         changed.Get());
    });
}

// The single-font forms ask the shared register first, and each with its own part of the scope.
template <class Change>
void ChangeAvailabilityOfOne(const ValURL *url, bool enables, VLFontFlags flags, VLScope scope,
                             Change change) {
    if (!url) return;
    Guard([&] {
        DoEnableURLWithFount(url, enables, flags, scope);
        bool changed = AsksShared(scope) && change(TGlobalGlyphary(), scope & kScopeShared);
        if (AsksProcess(scope) && change(TLocalGlyphary(), kVLScopeProcess)) changed = true;
        if (changed)
            PostUnlessSilent(scope, enables ? kAvailableFontURLsAddedKey : kAvailableFontURLsRemovedKey,
                             OneElement(url).Get());
    });
}

} // namespace

bool VLRegisterFonts(const ValArray *urls, VLFontFlags flags, VLScope scope,
                     const ValArray **errors) noexcept {
    return ChangeFiles(urls, errors, [&](const ValArray *files, ErrorArray failed) {
        return RegisterFiles(files, flags, scope, failed);
    });
}

bool VLRegisterFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept {
    return url && VLRegisterFonts(OneElement(url).Get(), flags, scope, nullptr);
}

bool VLUnregisterFonts(const ValArray *urls, uint32_t, VLScope scope, const ValArray **errors) noexcept {
    return ChangeFiles(urls, errors, [&](const ValArray *files, ErrorArray failed) {
        return UnregisterFiles(files, scope, failed);
    });
}

bool VLUnregisterFont(const ValURL *url, uint32_t reserved, VLScope scope) noexcept {
    return url && VLUnregisterFonts(OneElement(url).Get(), reserved, scope, nullptr);
}

void VLEnableFonts(const ValArray *urls, VLFontFlags flags, VLScope scope) noexcept {
    ChangeAvailability(urls, true, flags, scope, [urls](const auto &registry, VLScope asked) {
        return registry.EnableFonts(urls, asked);
    });
}

void VLDisableFonts(const ValArray *urls, VLFontFlags flags, VLScope scope) noexcept {
    ChangeAvailability(urls, false, flags, scope, [urls](const auto &registry, VLScope asked) {
        return registry.DisableFonts(urls, asked);
    });
}

void VLEnableFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept {
    ChangeAvailabilityOfOne(url, true, flags, scope, [url](const auto &registry, VLScope asked) {
        return registry.EnableFont(url, asked);
    });
}

void VLDisableFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept {
    ChangeAvailabilityOfOne(url, false, flags, scope, [url](const auto &registry, VLScope asked) {
        return registry.DisableFont(url, asked);
    });
}

// Directories are the font server's, and there is no client of it yet: the shared register refuses.

bool VLRegisterFontDirectory(const ValURL *directory, VLFontFlags flags, uint32_t options,
                             VLScope scope) noexcept {
    if (!directory || (scope & kVLScopeAll) != kVLScopeUser) return false;
    return Guard([&] {
        const TValBookmark bookmark(directory);
        return TGlobalGlyphary().RegisterFontDirectory(directory, bookmark.Get(), flags, options, scope);
    });
}

bool VLUnregisterFontDirectory(const ValURL *directory, uint32_t, VLScope scope) noexcept {
    if (!directory || (scope & kVLScopeAll) != kVLScopeUser) return false;
    return Guard([&] { return TGlobalGlyphary().UnregisterFontDirectory(directory, scope); });
}
