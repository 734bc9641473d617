// SPDX-License-Identifier: MIT
#include "tools/fontinfo.hpp"

#include "tools/file_faces.hpp"
#include "tools/progress.hpp"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

namespace fs = std::filesystem;

struct Options {
    std::vector<std::string> paths;
    std::string folder;
    bool dry_run = false;
};

struct FontInfo {
    std::string name;
    Ref<const ValData> content;
};

std::optional<FontInfo> MakeFontInfo(const std::string &path) {
    const ValString *name = nullptr;
    auto content = Adopt(VLCreateFontInfoForFontFile(FileURL(path).Get(), &name));
    const auto owned = Adopt(name);
    if (!content) return std::nullopt;
    return FontInfo{Bytes(owned.Get()), std::move(content)};
}

// Whole or not at all: readers never see half a file.
void WriteWhole(const fs::path &path, const ValData *content) {
    const fs::path unfinished = path.native() + ".part";
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char *>(ValDataGetBytes(content)),
               static_cast<std::streamsize>(ValDataGetLength(content)));
    file.close();
    std::error_code error;
    if (file) fs::rename(unfinished, path, error);
    if (file && !error) return;
    const std::string reason = file ? error.message() : "it could not be written";
    fs::remove(unfinished, error);
    throw std::runtime_error(path.native() + ": " + reason);
}

// Writes the font info of one font file after the other.
class Builder {
public:
    explicit Builder(const Options &options) : options_(options) {}

    void Build(const std::string &path) {
        const auto info = MakeFontInfo(path);
        if (!info) return refusals_.push_back(ExplainRefusal(path));
        const auto [known, is_new] = written_.emplace(info->name, path);
        if (!is_new)
            return refusals_.push_back({path, "a font info of the same name was made of " +
                                                  Printable(known->second) + " already"});
        const fs::path target = fs::path(options_.folder) / info->name;
        if (!options_.dry_run) WriteWhole(target, info->content.Get());
        std::cout << Printable(target.native()) << '\n';
    }

    Outcome Finish() && { return {written_.size(), std::move(refusals_)}; }
    void Refuse(const std::vector<Refusal> &refusals) { refusals_ = refusals; }

private:
    const Options &options_;
    std::map<std::string, std::string> written_; // from name to font file
    std::vector<Refusal> refusals_;
};

int BuildAll(const Options &options) {
    const FontFiles files = FindFontFiles(options.paths);
    if (!options.dry_run) fs::create_directories(options.folder);
    Builder builder(options);
    builder.Refuse(files.refusals);
    Progress progress(files.paths.size(), ::isatty(STDERR_FILENO) != 0);
    for (const std::string &path : files.paths) {
        builder.Build(path);
        progress.Advance(1);
    }
    const Outcome outcome = std::move(builder).Finish();
    Report(outcome.refusals);
    return Judge(outcome);
}

} // namespace

void AddFontInfo(CLI::App &app, int &result) {
    CLI::App *verb = app.add_subcommand("fontinfo", "Make the font-info files of a system's fonts.");
    verb->require_subcommand(1);
    auto options = std::make_shared<Options>();
    CLI::App *build = verb->add_subcommand("build", "Derive all properties of fonts and write them down.");
    build->add_option("DIR", options->paths, "font files, or folders to look through")->required();
    build
        ->add_option("-o,--output", options->folder,
                     "the folder for the font-info files; made when missing")
        ->required()
        ->type_name("OUT");
    build->add_flag("--dry-run", options->dry_run, "only say what would be written");
    build->footer(
        "The library looks for font-info files in the folder FontInfo of its framework's resources.\n"
        "One is used as long as its font file has the size that it had.\n\n"
        "Exit codes: 0 all were made; 1 some were not, or there were no fonts;\n"
        "2 wrong usage; 4 a file may not be read; 5 what was named is no font.\n\n"
        "Example:\n"
        "  vellum fontinfo build /usr/share/fonts -o build/FontInfo\n");
    build->callback([options, &result] { result = BuildAll(*options); });
    verb->footer("Example:\n  vellum fontinfo build /usr/share/fonts -o build/FontInfo\n");
}

} // namespace vellum::tool
