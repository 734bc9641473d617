// SPDX-License-Identifier: MIT
// The environment of a test is set before fontconfig first looks at it: each test has a process of its own.
#include "service_fixture.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace vellum::test {
namespace {

void *Look(void *bundle, const char *name) {
    void *function = dlsym(bundle, name);
    if (!function) throw std::runtime_error(std::string("no function ") + name);
    return function;
}

template <class Function>
void Look(void *bundle, const char *name, Function *&function) {
    function = reinterpret_cast<Function *>(Look(bundle, name));
}

std::string ConfigurationOf(const std::string &fonts, const std::string &cache) {
    return "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM "
           "\"urn:fontconfig:fonts.dtd\"><fontconfig><dir>" +
           fonts + "</dir><cachedir>" + cache +
           "</cachedir><include ignore_missing=\"yes\" "
           "prefix=\"xdg\">fontconfig/conf.d</include></fontconfig>";
}

void AddNames(const FcFontSet *set, Names &names) {
    for (int i = 0; set && i < set->nfont; ++i) {
        FcChar8 *name = nullptr;
        if (FcPatternGetString(set->fonts[i], FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch)
            names.emplace_back(reinterpret_cast<const char *>(name));
    }
}

Ref<const ValURL> URLOf(const std::string &path, std::string_view fragment) {
    auto url = FileURL(path);
    if (fragment.empty()) return url;
    const auto text = Adopt(ValStringCreateWithUTF8(fragment.data(), fragment.size()));
    return Adopt(ValURLCopyWithFragment(url.Get(), text.Get()));
}

} // namespace

LegacyService::LegacyService() {
    void *bundle = dlopen(VELLUM_FOUNT, RTLD_NOW | RTLD_LOCAL);
    if (!bundle) throw std::runtime_error(dlerror());
    Look(bundle, "FountRegisterURLs", register_urls);
    Look(bundle, "FountEnableURLs", enable_urls);
    Look(bundle, "FountRegisterData", register_data);
    Look(bundle, "FountFontNotify", font_notify);
    Look(bundle, "FountFontFindFromContainer", find_from_container);
    Look(bundle, "FountFontGetContainer", get_container);
}

LegacyTest::LegacyTest() {
    setenv("HOME", home_.Path().c_str(), 1);
    setenv("XDG_CONFIG_HOME", home_.MakeFolder("config").c_str(), 1);
    setenv("XDG_DATA_HOME", home_.MakeFolder("data").c_str(), 1);
    setenv("XDG_CACHE_HOME", home_.MakeFolder("cache").c_str(), 1);
    const std::string text = ConfigurationOf(system_.Path(), home_.MakeFolder("font-cache"));
    setenv("FONTCONFIG_FILE", home_.Write("fonts.conf", text).c_str(), 1);
    unsetenv("FONTCONFIG_PATH");
    unsetenv("FONTCONFIG_SYSROOT");
}

void LegacyTest::Register(const std::string &path, VLScope scope) const {
    service_.register_urls(FileURL(path).Get(), 0, 1, 0, 0, scope);
}

void LegacyTest::Withdraw(const std::string &path, VLScope scope) const {
    service_.register_urls(FileURL(path).Get(), 0, 0, 0, 0, scope);
}

void LegacyTest::Enable(const std::string &path, VLScope scope, std::string_view fragment) const {
    service_.enable_urls(URLOf(path, fragment).Get(), 0, 1, 0, scope);
}

void LegacyTest::Disable(const std::string &path, VLScope scope, std::string_view fragment) const {
    service_.enable_urls(URLOf(path, fragment).Get(), 0, 0, 0, scope);
}

Names LegacyTest::Fonts() {
    Names names;
    FcConfig *config = FcConfigGetCurrent();
    AddNames(FcConfigGetFonts(config, FcSetSystem), names);
    AddNames(FcConfigGetFonts(config, FcSetApplication), names);
    std::sort(names.begin(), names.end());
    return names;
}

Names LegacyTest::ApplicationFonts() {
    Names names;
    AddNames(FcConfigGetFonts(FcConfigGetCurrent(), FcSetApplication), names);
    return names;
}

Names LegacyTest::FontsElsewhere() {
    const std::unique_ptr<FILE, decltype(&pclose)> output(popen("exec '" VELLUM_FONT_LISTER "'", "r"),
                                                          pclose);
    Names names;
    std::array<char, 1024> line{};
    while (output && std::fgets(line.data(), line.size(), output.get())) {
        names.emplace_back(line.data());
        names.back().pop_back();
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string LegacyTest::ReadText(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::string LegacyTest::MatchFamily(const char *family) {
    FcPattern *pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family));
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, pattern, &result);
    FcChar8 *name = nullptr;
    std::string found;
    if (match && FcPatternGetString(match, FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch)
        found = reinterpret_cast<const char *>(name);
    if (match) FcPatternDestroy(match);
    FcPatternDestroy(pattern);
    return found;
}

void LegacyTest::AddByProgram(const std::string &path) {
    FcConfigAppFontAddFile(FcConfigGetCurrent(), reinterpret_cast<const FcChar8 *>(path.c_str()));
}

void LegacyTest::AddByHand(const std::string &name, const std::string &path) {
    FcPattern *font = FcPatternCreate();
    FcPatternAddString(font, FC_POSTSCRIPT_NAME, reinterpret_cast<const FcChar8 *>(name.c_str()));
    if (!path.empty()) FcPatternAddString(font, FC_FILE, reinterpret_cast<const FcChar8 *>(path.c_str()));
    FcFontSetAdd(FcConfigGetFonts(FcConfigGetCurrent(), FcSetApplication), font);
}

} // namespace vellum::test
