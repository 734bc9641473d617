// SPDX-License-Identifier: MIT
// What the tests of the legacy font service have in common: the bundle, loaded by name as libvellum loads
// it; a home and a fontconfig of the test's own; and what fontconfig sees, here and in another process.
#pragma once

#include "support/named_font.hpp"
#include "support/temp_dir.hpp"

#include <vellum/fount.h>
#include <vellum/values.hpp>

#include <fontconfig/fontconfig.h>
#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

using Names = std::vector<std::string>;

// The six functions.
struct LegacyService {
    LegacyService();

    FountRegisterURLsFunction *register_urls;
    FountEnableURLsFunction *enable_urls;
    FountRegisterDataFunction *register_data;
    FountFontNotifyFunction *font_notify;
    FountFontFindFromContainerFunction *find_from_container;
    FountFontGetContainerFunction *get_container;
};

class LegacyTest : public ::testing::Test {
protected:
    LegacyTest();

    // fontconfig ends a process in which somebody still holds a configuration, or a part of one.
    ~LegacyTest() override { FcFini(); }

    // A font with a PostScript name, in a folder that fontconfig does not know.
    std::string WriteFont(std::string_view file, const std::string &name) const {
        return fonts_.Write(file, FontNamed(name));
    }

    // The same in the folder of the system's fonts. To be written before fontconfig is first asked.
    std::string WriteSystemFont(std::string_view file, const std::string &name) const {
        return system_.Write(file, FontNamed(name));
    }

    static Bytes FontNamed(const std::string &name) { return MakeFont({name, "Regular", name}); }

    // Tell the service of one file, or of a face: the path may have a fragment, given by itself.
    void Register(const std::string &path, VLScope scope = kVLScopeProcess) const;
    void Withdraw(const std::string &path, VLScope scope = kVLScopeProcess) const;
    void Enable(const std::string &path, VLScope scope, std::string_view fragment = "") const;
    void Disable(const std::string &path, VLScope scope, std::string_view fragment = "") const;

    // PostScript names of all fonts in this process's configuration, sorted, each as often as it is there.
    static Names Fonts();
    static Names ApplicationFonts();

    // What fontconfig takes for a family, by its usual way of matching.
    static std::string MatchFamily(const char *family);

    // What another program finds that begins now, sorted.
    static Names FontsElsewhere();

    std::string ConfigFile(std::string_view name) const {
        return home_.File("config/" + std::string(name));
    }

    static std::string ReadText(const std::string &path);
    static void AddByProgram(const std::string &path);

    // As a program does that makes fonts without files. There is an application font already.
    static void AddByHand(const std::string &name, const std::string &path = "");

    const TempDir home_;
    const TempDir system_;
    const FontFolder fonts_;
    const LegacyService service_;
};

} // namespace vellum::test
