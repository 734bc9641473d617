// SPDX-License-Identifier: MIT
#include "tools/fontinfo.hpp"

#include "tools/arguments.hpp"
#include "tools/file_faces.hpp"
#include "tools/progress.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
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

// A file that is taken away again unless it has been put in its place.
class UnfinishedFile {
public:
    explicit UnfinishedFile(const fs::path &folder) : path_((folder / ".vellum-XXXXXX").native()) {
        descriptor_ = ::mkstemp(path_.data());
    }
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;
    ~UnfinishedFile() {
        if (descriptor_ < 0) return;
        ::close(descriptor_);
        if (!placed_) ::unlink(path_.c_str());
    }

    // Writes all of it and puts it in its place. False, with errno, when that fails.
    bool Place(const ValData *content, const fs::path &place) {
        constexpr mode_t kReadByAll = 0644;
        const auto *bytes = ValDataGetBytes(content);
        for (size_t done = 0; done < ValDataGetLength(content);) {
            const ssize_t written = ::write(descriptor_, bytes + done, ValDataGetLength(content) - done);
            if (written < 0 && errno != EINTR) return false;
            done += static_cast<size_t>(std::max<ssize_t>(written, 0));
        }
        placed_ = ::fchmod(descriptor_, kReadByAll) == 0 && ::rename(path_.c_str(), place.c_str()) == 0;
        return placed_;
    }

    bool IsOpen() const { return descriptor_ >= 0; }

private:
    std::string path_;
    int descriptor_;
    bool placed_ = false;
};

// Whole or not at all: readers never see half a file, and two who write the same one do not meet.
bool WriteWhole(const fs::path &path, const ValData *content) {
    UnfinishedFile file(path.parent_path());
    return file.IsOpen() && file.Place(content, path);
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
        if (!options_.dry_run && !WriteWhole(target, info->content.Get()))
            return RefuseToWrite(path, target);
        std::cout << Printable(target.native()) << '\n';
    }

    Outcome Finish() && { return {written_.size(), std::move(refusals_)}; }
    void Refuse(const std::vector<Refusal> &refusals) { refusals_ = refusals; }

private:
    void RefuseToWrite(const std::string &path, const fs::path &target) {
        const int error = errno;
        written_.erase(target.filename().native());
        refusals_.push_back({path,
                             Printable(target.native()) + " cannot be written: " + std::strerror(error),
                             true, error == EACCES || error == EPERM || error == EROFS});
    }

    const Options &options_;
    std::map<std::string, std::string> written_; // from name to font file
    std::vector<Refusal> refusals_;
};

int BuildAll(const Options &options) {
    const FontFiles files = FindFontFiles(options.paths);
    std::error_code error;
    if (!options.dry_run) fs::create_directories(options.folder, error); // or somebody else does
    if (!options.dry_run && !fs::is_directory(options.folder)) {
        std::cerr << "vellum: " << Printable(options.folder) << ": this folder cannot be made: "
                  << (error ? error.message() : "something else is there") << '\n';
        return error == std::errc::permission_denied ? kRefused : kNothingFound;
    }
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
    build->add_option("DIR", options->paths, "font files, or folders to look through")
        ->required()
        ->check(IsPath());
    build
        ->add_option("-o,--output", options->folder,
                     "the folder for the font-info files; made when missing")
        ->required()
        ->check(IsPath())
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
