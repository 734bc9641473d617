// SPDX-License-Identifier: MIT
#include "store/bundle_fonts.hpp"

#include "platform/font/type_identifier.hpp"
#include "platform/fs/directory.hpp"
#include "platform/fs/file_properties.hpp"
#include "platform/fs/folder.hpp"
#include "platform/val/static_string.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_url.hpp"

#include <algorithm>
#include <vector>

namespace vellum {

namespace {

constinit const StaticString kRegisterBundleFonts("LDRegisterBundleFonts");
constinit const StaticString kApplicationFontsPath("FountApplicationFontsPath");

constexpr char kFontsFolder[] = "Fonts";

// The path of what the application names, with its end.
constexpr size_t kLongestPath = 1024;

// The folders that are being walked, without links: one that is in itself is not entered again.
using Walk = std::vector<std::string>;

void RegisterFolder(const TGlypharyProtocol &registry, const std::string &directory, Walk &walk) {
    const std::string real = RealFolderPath(directory);
    if (real.empty() || std::ranges::find(walk, real) != walk.end()) return;
    walk.push_back(real);
    TValMutableArray batch;
    for (const DirectoryEntry &entry : ListDirectory(directory.c_str())) {
        const std::string path = directory + "/" + entry.name;
        const TValURL url = TValURL::FromPath(path);
        if (url && ConformsToTypeTag(url.Get(), "public.font"))
            batch.Append(url.Get());
        else if (LeadsToFolder(path.c_str()))
            RegisterFolder(registry, path, walk);
    }
    walk.pop_back();
    if (!batch.IsEmpty()) registry.RegisterFonts(batch.Get(), nullptr, 0, kVLScopeProcess, nullptr);
}

void RegisterApplicationFonts(const TGlypharyProtocol &registry, const MainBundle &bundle,
                              std::string_view name) {
    const std::string resources = bundle.ResourcePath("");
    if (resources.empty()) return;
    const std::string path = resources + "/" + std::string(name);
    if (path.size() >= kLongestPath) return;
    const auto properties = ReadFileProperties(path);
    if (!properties) return; // who is told of registrations need not hear of what is not there
    if (properties->kind == TFileKind::kFolder)
        RegisterFontsForDirectory(registry, path);
    else if (const TValURL url = TValURL::FromPath(path))
        registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess);
}

} // namespace

void RegisterFontsForDirectory(const TGlypharyProtocol &registry, const std::string &directory) {
    Walk walk;
    RegisterFolder(registry, directory, walk);
}

// Nothing but the boolean itself counts as true.
void RegisterFontsOfBundle(const TGlypharyProtocol &registry, const MainBundle &bundle) {
    const auto *wants = Cast<ValBoolean>(ValDictionaryGetValue(bundle.info.Get(), &kRegisterBundleFonts));
    if (wants && ValBooleanGetValue(wants)) {
        const std::string fonts = bundle.ResourcePath(kFontsFolder);
        if (!fonts.empty()) RegisterFontsForDirectory(registry, fonts);
    }
    const auto *path = Cast<ValString>(ValDictionaryGetValue(bundle.info.Get(), &kApplicationFontsPath));
    if (path) RegisterApplicationFonts(registry, bundle, Text(path));
}

void RegisterBundleFonts(const TGlypharyProtocol &registry) {
    if (const auto bundle = MainBundle::OfProcess()) RegisterFontsOfBundle(registry, *bundle);
}

} // namespace vellum
