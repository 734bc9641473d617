// SPDX-License-Identifier: MIT
// Exported: registering, unregistering, enabling and disabling.
//
// A change is told to the legacy font service, made with the registers, and posted, in this order; each
// lock is given back before the next step. What is answered is how the second step went: memory that runs
// out afterwards changes no result.
#include "frame/exports/changes.hpp"

#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "frame/exports/lookups.hpp"
#include "ipc/notify/change_notifications.hpp"
#include "platform/font/gx_font.hpp"
#include "platform/val/string.hpp"
#include "store/font_path_index.hpp"
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
        const auto path = CopyPath(Cast<ValURL>(item));
        if (!path) continue;
        files.Append(OrBadAlloc(Adopt(ValURLCreateWithFileSystemPath(path.Get(), false, nullptr))).Get());
    }
    return files.Publish();
}

// What VLCopyFontsWithProperties answers, of which no lookup's trace tells. One register is asked for its
// URLs alone: merging two answers takes their fonts' names, too, which nobody else may ever ask for.
Ref<const ValArray> CopyFonts(const ValDictionary *request, VLScope scope) {
    if (!AsksShared(scope)) return ProcessRegister().CopyFontsForRequest(request, scope);
    if (!AsksProcess(scope)) return SharedRegister().CopyFontsForRequest(request, scope);
    return FindFontsWithProperties(request, scope, kVLActivationNotFromSearch);
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

// Posts that the fonts which `list()` answers became available or went away. When memory is exhausted
// nobody hears of the change: who asks finds it.
template <class List>
void PostUnlessSilent(VLScope scope, const ValString *key, List list) noexcept {
    if (IsSilent(scope)) return;
    Guard([&] {
        const Ref<const ValArray> fonts = list();
        if (ValArrayGetCount(fonts.Get()) > 0) PostNotification(scope, key, fonts.Get());
    });
}

// What the shared register refused, and does not have from before, is taken back from the legacy service.
void WithdrawRefused(const ValArray *files, VLScope scope) {
    TValMutableArray refused;
    for (const void *file : Elements(files))
        if (!SharedRegister().IsFontRegistered(Cast<ValURL>(file))) refused.Append(file);
    if (!refused.IsEmpty()) DoRegisterURLsWithFount(refused.Get(), false, 0, scope);
}

// The process's register tells the legacy service itself, of each file.
bool RegisterOwnFiles(const ValArray *files, VLFontFlags flags, VLScope scope, ErrorArray failed) {
    if (!(scope & kVLScopeLegacyTold)) FindFountFunctions();
    return ProcessRegister().RegisterFonts(files, nullptr, flags, scope, failed);
}

bool RegisterSharedFiles(const ValArray *files, VLFontFlags flags, VLScope scope, ErrorArray failed) {
    const VLScope untold = scope;
    DoRegisterURLsWithFount(files, true, flags, scope);
    const bool registered =
        Guard([&] { return SharedRegister().RegisterFonts(files, nullptr, flags, scope, failed); });
    if (!registered) Guard([&] { WithdrawRefused(*failed ? failed->Get() : files, untold); });
    return registered;
}

bool RegisterFiles(const ValArray *files, VLFontFlags flags, VLScope scope, ErrorArray failed) {
    if (!AsksAny(scope)) {
        *failed = Retain(files);
        return false;
    }
    const bool registered = AsksShared(scope) ? RegisterSharedFiles(files, flags, scope, failed)
                                              : RegisterOwnFiles(files, flags, scope, failed);
    // That files which failed are asked for, too, is deliberate: they may be there already.
    if (ValArrayGetCount(failed->Get()) != ValArrayGetCount(files))
        PostUnlessSilent(scope, kAvailableFontURLsAddedKey,
                         [&] { return CopyFaceURLsForFonts(files, scope); });
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
    Ref<const ValArray> faces;
    if (!IsSilent(scope)) faces = Guard([&] { return CopyFaceURLsForFonts(files, scope); });
    const auto unregister = [&](const TGlypharyProtocol &registry) {
        return registry.UnregisterFonts(files, scope, failed);
    };
    const bool unregistered =
        AsksShared(scope) ? unregister(SharedRegister()) : unregister(ProcessRegister());
    PostUnlessSilent(scope, kAvailableFontURLsRemovedKey,
                     [&] { return FacesWithoutFiles(faces.Get(), failed->Get()); });
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

const ValString *KeyFor(bool enables) noexcept {
    return enables ? kAvailableFontURLsAddedKey : kAvailableFontURLsRemovedKey;
}

// Enabling and disabling are alike. `change(register, scope)` answers the URLs that changed; the process's
// register comes first. That one can't be asked leaves what the other did.
template <class Change>
void ChangeAvailability(const ValArray *urls, bool enables, VLFontFlags flags, VLScope scope,
                        Change change) noexcept {
    if (!urls) return;
    DoEnableURLsWithFount(urls, enables, flags, scope);
    Ref<const ValArray> own, shared;
    if (AsksProcess(scope)) own = Guard([&] { return change(ProcessRegister(), scope); });
    if (AsksShared(scope)) shared = Guard([&] { return change(SharedRegister(), scope); });
    PostUnlessSilent(scope, KeyFor(enables), [&] {
        TValMutableArray changed;
        changed.AppendArray(own.Get());
        changed.AppendArray(shared.Get());
        return changed.Publish();
    });
}

// The single-font forms ask the shared register first, and each with its own part of the scope.
template <class Change>
void ChangeAvailabilityOfOne(const ValURL *url, bool enables, VLFontFlags flags, VLScope scope,
                             Change change) noexcept {
    if (!url) return;
    DoEnableURLWithFount(url, enables, flags, scope);
    bool changed = false;
    if (AsksShared(scope)) changed = Guard([&] { return change(SharedRegister(), scope & kScopeShared); });
    if (AsksProcess(scope) && Guard([&] { return change(ProcessRegister(), kVLScopeProcess); }))
        changed = true;
    if (changed) PostUnlessSilent(scope, KeyFor(enables), [&] { return OneElement(url); });
}

} // namespace

bool VLRegisterFonts(const ValArray *urls, VLFontFlags flags, VLScope scope,
                     const ValArray **errors) noexcept {
    return ChangeFiles(urls, errors, [&](const ValArray *files, ErrorArray failed) {
        return RegisterFiles(files, flags, scope, failed);
    });
}

bool VLRegisterFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept {
    return url && Guard([&] { return VLRegisterFonts(OneElement(url).Get(), flags, scope, nullptr); });
}

bool VLUnregisterFonts(const ValArray *urls, uint32_t, VLScope scope, const ValArray **errors) noexcept {
    return ChangeFiles(urls, errors, [&](const ValArray *files, ErrorArray failed) {
        return UnregisterFiles(files, scope, failed);
    });
}

bool VLUnregisterFont(const ValURL *url, uint32_t reserved, VLScope scope) noexcept {
    return url && Guard([&] { return VLUnregisterFonts(OneElement(url).Get(), reserved, scope, nullptr); });
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

// Directories are the font server's: no other register takes one.

bool VLRegisterFontDirectory(const ValURL *directory, VLFontFlags flags, uint32_t options,
                             VLScope scope) noexcept {
    if (!directory || (scope & kVLScopeAll) != kVLScopeUser) return false;
    return Guard([&] {
        const TValBookmark bookmark(directory);
        return SharedRegister().RegisterFontDirectory(directory, bookmark.Get(), flags, options, scope);
    });
}

bool VLUnregisterFontDirectory(const ValURL *directory, uint32_t, VLScope scope) noexcept {
    if (!directory || (scope & kVLScopeAll) != kVLScopeUser) return false;
    return Guard([&] { return SharedRegister().UnregisterFontDirectory(directory, scope); });
}
