// SPDX-License-Identifier: MIT
// The flags of a live face: how much of the system depends on it, and whether people get to see it.
#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

namespace vellum {

namespace {

struct FlagKey {
    const ValString &key;
    uint32_t flags;
};

// Each level of the system's fonts includes those below it.
constexpr FlagKey kFlagKeys[] = {
    {metadata::kIsMeridianFont, kVLFontFlagSystem},
    {metadata::kIsCoreSystemFont, kVLFontFlagSystem},
    {metadata::kIsCriticalSystemFont, kVLFontFlagSystem | kVLFontFlagCritical},
    {metadata::kIsSuperCriticalSystemFont,
     kVLFontFlagSystem | kVLFontFlagCritical | kVLFontFlagSuperCritical},
    {metadata::kIsUIFont, kVLFontFlagUserInterface},
};

bool IsHiddenName(Ref<const void> name) {
    return TValStr(Retain(Cast<ValString>(name.Get()))).HasPrefix(".");
}

// Two faces are known by their names: the font of last resort, and the one that keyboards are drawn with.
uint32_t FlagsOfName(std::string_view postscript_name) noexcept {
    if (postscript_name == "Endstop") return kVLFontFlagHidden | kVLFontFlagLastResort;
    if (postscript_name == ".Keyboard") return kVLFontFlagHidden | kVLFontFlagKeyboard;
    return 0;
}

} // namespace

uint32_t TClientFontEntity::DeriveFlags() const {
    uint32_t flags = 0;
    const auto metadata = Metadata();
    for (const FlagKey &row : kFlagKeys) {
        if (metadata::IsTrue(metadata.Get(), row.key)) flags |= row.flags;
    }
    const TValStr name(Retain(Cast<ValString>(CopyPostScriptName(false).Get())));
    if (const uint32_t known = FlagsOfName(name.View())) {
        flags |= known;
    } else if (metadata::IsTrue(metadata.Get(), metadata::kIsInvisible) ||
               IsHiddenName(CopyFamilyName(false)) || IsHiddenName(CopyFullName(false))) {
        flags |= kVLFontFlagHidden;
    }
    if (TGxFont::IsInMemoryURL(CopyURL().Get())) flags |= kVLFontFlagHidden;
    return flags;
}

Ref<const ValNumber> TClientFontEntity::CopyFlags() const {
    return Keep(Fact::kFlags, [this] { return MakeNumber(static_cast<int32_t>(DeriveFlags())); });
}

uint32_t TClientFontEntity::GetFlags() const {
    return static_cast<uint32_t>(ReadSInt32(CopyFlags().Get()));
}

} // namespace vellum
