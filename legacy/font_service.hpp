// SPDX-License-Identifier: MIT
// What the six functions do: fontconfig is kept in step with a font register.
//
// Registered fonts. They become application fonts of the program's configuration, unless the system has the
// file already (then it would be listed twice) or the program has added it; withdrawn from every register
// that they were for, they go again. With kVLScopeUser a link in a folder of ours shows the file to every
// other program as well, if fontconfig finds a font in it. Files with kVLFontFlagSystem are fontconfig's
// already.
//
// Disabled fonts. With kVLScopeUser they are rejected in the user's fontconfig files, for every program:
// others see it when their fontconfig next looks for changes, this one at once (current_configuration.hpp).
// fontconfig rejects nothing among application fonts: a registered file that is disabled is taken out of
// them, a single face of one is not, for want of a way. Without kVLScopeUser only this process is meant:
// there a registered file is taken out and put back; a face alone cannot be disabled, and enabling one
// enables its file; of the system's files nothing can be hidden from one process alone.
//
// A folder's path stands for all below it when fonts are withdrawn, disabled or enabled.
//
// What is so is written down here, and the configuration made to fit whenever the service is called: the
// program may have replaced its configuration, or cleared its application fonts.
#pragma once

#include "application_fonts.hpp"
#include "font_url.hpp"
#include "memory_fonts.hpp"
#include "registered_files.hpp"
#include "user_fonts.hpp"

#include <vellum/vellum.h>

#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace vellum::legacy {

class TFontService {
public:
    // The process's own; made when it is first asked for and never destroyed.
    static TFontService &Get();

    void RegisterFiles(const std::vector<FontURL> &urls, VLScope scope);
    void WithdrawFiles(const std::vector<FontURL> &urls, VLScope scope);
    void EnableFonts(const std::vector<FontURL> &urls, bool enables, VLScope scope);

    // The id of the container, or 0 when fontconfig finds no font.
    uint32_t RegisterMemory(std::span<const uint8_t> bytes);

    // The id, or 0 when there is no such container.
    uint32_t WithdrawMemory(uint32_t container);

    // As many ids as there is room for; how many there are.
    uint32_t FontsOf(uint32_t container, std::span<uint32_t> fonts);
    uint32_t ContainerOf(uint32_t font);

    // Changes are made as they are told; all that is left is to look whether the program's configuration
    // still has them.
    void Settle();

private:
    // These hold the mutex of those who call them.
    bool IsWanted(FcConfig *config, const std::string &path);
    void SettleIn(FcConfig *config, std::vector<std::string> changed);
    void SettleNow(std::vector<std::string> changed);
    std::vector<std::string> FilesOf(const std::vector<FontURL> &urls) const;
    void EnableHere(const std::vector<SelectedFont> &fonts, bool enables);

    // These hold the user's mutex of those who call them, and take the other for moments.
    ConfigurationRef LockedConfiguration();
    bool ReplaceConfiguration();
    void ReadConfigurationAnew();
    void UnlinkFiles(const std::vector<FontURL> &urls);
    bool ChangeForUser(const std::vector<SelectedFont> &fonts, bool enables);

    // Held over changes of the user's files and over the reading of a new configuration: those may wait for
    // other processes, for seconds. Never taken for a change of this process alone, which the library tells
    // while queries wait for it. Taken before the other.
    std::mutex user_mutex_;

    std::mutex mutex_; // guards all below, and that calls see fontconfig one after the other
    TRegisteredFiles files_;
    TMemoryFonts memory_;
    TUserFonts user_;
    TApplicationFonts application_;
};

} // namespace vellum::legacy
