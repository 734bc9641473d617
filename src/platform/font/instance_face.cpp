// SPDX-License-Identifier: MIT
// Names of instances: their subfamily name is their own, the full name follows from it.
#include "platform/font/instance_face.hpp"

#include "platform/font/instance_naming.hpp"
#include "platform/val/string.hpp"

#include <string>

namespace vellum {
namespace {

constexpr uint16_t kPostScriptPrefix = 25;

Ref<const ValString> JoinNames(const Ref<const ValString> &family, const Ref<const ValString> &subfamily) {
    if (!family || !subfamily) return family ? family : subfamily;
    return MakeString(std::string(Text(family)) + ' ' + std::string(Text(subfamily)));
}

} // namespace

Ref<const ValString> TInstanceFace::CopySubfamilyName() const {
    return face_->Names().Copy(instance_.subfamily_name);
}

Ref<const ValString> TInstanceFace::CopyFullName() const {
    const std::lock_guard lock(mutex_);
    if (!full_name_) full_name_ = MakeFullName();
    return full_name_;
}

Ref<const ValString> TInstanceFace::MakeFullName() const {
    return JoinNames(CopyFamilyName(), CopySubfamilyName());
}

Ref<const ValString> TInstanceFace::CopyPostScriptName() const {
    const std::lock_guard lock(mutex_);
    if (!postscript_name_) postscript_name_ = MakePostScriptName();
    return postscript_name_;
}

Ref<const ValString> TInstanceFace::MakePostScriptName() const {
    if (instance_.postscript_name != TNamedInstance::kNoName) {
        if (auto stated = face_->Names().Copy(instance_.postscript_name)) return stated;
    }
    auto prefix = face_->Names().Copy(kPostScriptPrefix);
    if (!prefix) prefix = CopyFamilyName();
    const auto subfamily = CopySubfamilyName();
    std::string name = NamedInstancePostScriptName(Text(prefix), Text(subfamily));
    if (name.empty()) name = UnnamedInstancePostScriptName(Text(prefix), Axes(), Coordinates());
    return name.empty() ? nullptr : MakeString(name);
}

Ref<const ValString> TInstanceFace::CopyName(GxNameKey key) const {
    switch (key) {
    case GxNameKey::kSubfamily:
    case GxNameKey::kPreferredSubfamily:
        return CopySubfamilyName();
    case GxNameKey::kFull:
        return CopyFullName();
    case GxNameKey::kPostScript:
        return CopyPostScriptName();
    default:
        return face_->CopyName(key);
    }
}

Ref<const ValString> TInstanceFace::CopyLocalizedName(GxNameKey key, std::string_view language) const {
    const TNames &names = face_->Names();
    switch (key) {
    case GxNameKey::kSubfamily:
    case GxNameKey::kPreferredSubfamily:
        return names.CopyInLanguage(instance_.subfamily_name, language);
    case GxNameKey::kFull:
        return CopyLocalizedFullName(language);
    case GxNameKey::kPostScript:
        if (instance_.postscript_name == TNamedInstance::kNoName) return nullptr;
        return names.CopyInLanguage(instance_.postscript_name, language);
    default:
        return face_->CopyLocalizedName(key, language);
    }
}

// Only where the font states both parts in the language.
Ref<const ValString> TInstanceFace::CopyLocalizedFullName(std::string_view language) const {
    auto family = face_->CopyLocalizedName(GxNameKey::kPreferredFamily, language);
    if (!family) family = face_->CopyLocalizedName(GxNameKey::kFamily, language);
    const auto subfamily = face_->Names().CopyInLanguage(instance_.subfamily_name, language);
    return family && subfamily ? JoinNames(family, subfamily) : nullptr;
}

} // namespace vellum
