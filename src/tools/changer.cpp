// SPDX-License-Identifier: MIT
#include "tools/changer.hpp"

#include "tools/server.hpp"

#include <iterator>

namespace vellum::tool {

namespace {

const ValURL *FirstOf(const ValArray *urls) {
    return static_cast<const ValURL *>(ValArrayGetValue(urls, 0));
}

Ref<const ValArray> OneURL(const Ref<const ValURL> &url) {
    const void *const item = url.Get();
    return Adopt(ValArrayCreate(&item, 1));
}

Ref<const ValArray> URLsOf(const std::vector<FoundFont> &faces) {
    std::vector<Ref<const ValURL>> urls;
    std::vector<const void *> items;
    for (const FoundFont &face : faces) items.push_back(urls.emplace_back(ParseURL(face.url)).Get());
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

} // namespace

Changer::Changer(Action action, const ChangeOptions &options)
    : action_(action), options_(options), scope_(ScopeOf(options.scope)) {}

Changed Changer::Change(const std::string &path, const FileContents &contents) const {
    Changed file{path, {}, {}};
    const std::vector<FoundFont> faces = contents.FacesOf(path, options_.face);
    for (const FoundFont &face : faces) file.faces.push_back(NameOf(face));
    const Refusal *unreadable = contents.WhyUnreadable(path);
    if (faces.empty() && !unreadable && !options_.face.empty()) {
        file.problem = Refusal{path, "has no face " + Printable(options_.face)};
        return file;
    }
    const auto targets = TargetsIn(path, faces);
    Rehearse(targets.Get());
    file.problem = Obstacle(file, FirstOf(targets.Get()), unreadable);
    if (!file.problem && !options_.dry_run) file.problem = Apply(path, targets.Get());
    return file;
}

// A register may have a face of a file that cannot be read any more: it is named as the register names it.
Ref<const ValArray> Changer::TargetsIn(const std::string &path, const std::vector<FoundFont> &faces) const {
    if (options_.face.empty()) return OneURL(FileURL(path));
    return faces.empty() ? OneURL(FaceURL(path, options_.face)) : URLsOf(faces);
}

// A register of this run alone begins empty: what is to be taken out of it must be in it.
void Changer::Rehearse(const ValArray *targets) const {
    const VLScope silent = kVLScopeProcess | kVLScopeLegacyTold | kVLScopeSilent;
    if (scope_ != kVLScopeProcess || action_ == Action::kRegister) return;
    VLRegisterFonts(targets, 0, silent, nullptr);
    if (action_ == Action::kEnable) VLDisableFonts(targets, 0, silent);
}

// Why the change cannot be made; nothing when it can.
std::optional<Refusal> Changer::Obstacle(const Changed &file, const ValURL *font,
                                         const Refusal *unreadable) const {
    if (action_ == Action::kRegister) {
        if (IsRegisteredForAsLong(font)) return Refusal{file.path, "is registered already"};
        return unreadable ? std::optional(*unreadable) : std::nullopt;
    }
    const Standing standing = StandingOf(font);
    if (standing == Standing::kUnknown) return WhyUnknown(file.path, unreadable);
    if (action_ == Action::kDisable && standing == Standing::kDisabled)
        return Refusal{file.path, "is disabled already"};
    return std::nullopt;
}

Refusal Changer::WhyUnknown(const std::string &path, const Refusal *unreadable) const {
    if (!unreadable) return {path, "is not registered"};
    Refusal refusal = *unreadable;
    refusal.reason = "is not registered: " + refusal.reason;
    return refusal;
}

// What is left of the reasons once there was no obstacle: the register's own.
std::optional<Refusal> Changer::Apply(const std::string &path, const ValArray *targets) const {
    bool is_done = false;
    switch (action_) {
    case Action::kRegister:
        is_done = VLRegisterFonts(targets, 0, scope_, nullptr);
        break;
    case Action::kUnregister:
        is_done = VLUnregisterFonts(targets, 0, scope_, nullptr);
        break;
    case Action::kEnable:
        VLEnableFonts(targets, 0, scope_);
        is_done = StandingOf(FirstOf(targets)) == Standing::kEnabled;
        break;
    case Action::kDisable:
        VLDisableFonts(targets, 0, scope_);
        is_done = StandingOf(FirstOf(targets)) != Standing::kEnabled;
        break;
    }
    if (is_done) return std::nullopt;
    return Refusal{path, "the register refused this; it may have the font for another scope (--scope)"};
}

// Of a file, it is enabled as long as one of its faces is. Files that are gone are known, too.
Changer::Standing Changer::StandingOf(const ValURL *font) const {
    const void *const key[] = {kVLFontPropertyEnabled};
    const auto keys = Adopt(ValSetCreate(key, std::size(key)));
    const auto properties = Adopt(VLCopyPropertiesForFont(font, keys.Get(), scope_));
    if (!properties) return Standing::kUnknown;
    return NumberAt(properties.Get(), kVLFontPropertyEnabled) != 0 ? Standing::kEnabled
                                                                   : Standing::kDisabled;
}

// What is registered for the session alone can still be registered for good.
bool Changer::IsRegisteredForAsLong(const ValURL *font) const {
    if (StandingOf(font) == Standing::kUnknown) return false;
    const VLScope lasting = VLGetScopeForFont(font) & (kVLScopeUser | kVLScopeSession);
    return scope_ != kVLScopeUser || lasting != kVLScopeSession;
}

} // namespace vellum::tool
