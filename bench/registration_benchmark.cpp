// SPDX-License-Identifier: MIT
// What it costs to make font files known to a process, and how that grows: Vellum beside fontconfig's
// application fonts. Each file is registered by a call of its own and its family is asked for right
// after it.
//
//     registration_benchmark [FOLDER...]
//
// Both sides begin a round with files that they have never seen, at paths of their own, and each finds the
// pages in memory. The files are small whole fonts: fontconfig takes none without its glyphs.
#include "many_faces.hpp"
#include "rotation.hpp"

#include <vellum/vellum.hpp>

#include <fontconfig/fontconfig.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace vellum;
using namespace vellum::bench;

namespace {

namespace fs = std::filesystem;

// How many files of each size come, and how often: one file alone is soon over, and is hit by whatever else
// the machine does.
struct Size {
    size_t files;
    int rounds;
};
constexpr Size kSizes[] = {{1, 201}, {100, 21}, {2000, 7}};

constexpr uintmax_t kLargestFile = 48 * 1024;

struct NewFile {
    std::string path;
    std::string family;
};

[[noreturn]] void Fail(const char *side, const std::string &what) {
    std::fprintf(stderr, "%s does not find %s\n", side, what.c_str());
    std::exit(1);
}

// Font files with names of their own, in a folder that goes away.
class NewFiles {
public:
    explicit NewFiles(const TFiles &files) {
        char path[] = "/tmp/vellum-bench-XXXXXX";
        folder_ = ::mkdtemp(path);
        for (const std::string &file : files)
            if (fs::file_size(file) <= kLargestFile)
                if (auto font = TakeApart(file, EKept::EveryTable)) fonts_.push_back(std::move(*font));
        if (fonts_.empty()) Fail("this benchmark", "a small font among the files");
    }
    NewFiles(const NewFiles &) = delete;
    NewFiles &operator=(const NewFiles &) = delete;
    ~NewFiles() { fs::remove_all(folder_); }

    std::vector<NewFile> Make(size_t count) {
        std::vector<NewFile> files;
        for (size_t i = 0; i < count; ++i, ++made_) {
            const std::string number = std::to_string(made_), family = "Bench " + number;
            const TNames names{family, "Regular", family, "Bench-" + number};
            const std::string path = folder_ + "/" + number + ".ttf";
            const std::string bytes = PutTogether(fonts_[made_ % fonts_.size()], names);
            std::ofstream(path, std::ios::binary) << bytes;
            files.push_back({path, family});
        }
        return files;
    }

    // Removes the files that were made.
    void Remove() {
        for (const auto &entry : fs::directory_iterator(folder_)) fs::remove(entry);
    }

private:
    std::string folder_;
    std::vector<TFont> fonts_;
    size_t made_ = 0;
};

Ref<const ValString> Text(const std::string &text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

void RegisterWithVellum(const NewFile &file) {
    const auto url = Adopt(ValURLCreateWithFileSystemPath(Text(file.path).Get(), false, nullptr));
    VLRegisterFont(url.Get(), 0, kVLScopeProcess);
    const auto family = Text(file.family);
    const void *const keys[] = {kVLFontPropertyFamilyName}, *const values[] = {family.Get()};
    const auto request = Adopt(ValDictionaryCreate(keys, values, 1));
    const auto found = Adopt(VLCopyFontWithProperties(
        request.Get(), kVLScopeProcess, kVLActivationNotFromProviders | kVLActivationNotFromSearch));
    if (!found) Fail("vellum", file.family);
}

// The family's fonts among those of the program, without a configuration's substitutions.
void RegisterWithFontconfig(FcConfig *config, const NewFile &file) {
    FcConfigAppFontAddFile(config, reinterpret_cast<const FcChar8 *>(file.path.c_str()));
    FcPattern *pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8 *>(file.family.c_str()));
    FcFontSet *set = FcConfigGetFonts(config, FcSetApplication);
    FcResult result;
    FcPattern *found = FcFontSetMatch(config, &set, 1, pattern, &result);
    FcChar8 *family = nullptr; // the best of the fonts, whether it is the one or not
    if (!found || FcPatternGetString(found, FC_FAMILY, 0, &family) != FcResultMatch ||
        file.family != reinterpret_cast<const char *>(family))
        Fail("fontconfig", file.family);
    FcPatternDestroy(found);
    FcPatternDestroy(pattern);
}

// The same without the question.
void AddToFontconfig(FcConfig *config, const NewFile &file) {
    if (!FcConfigAppFontAddFile(config, reinterpret_cast<const FcChar8 *>(file.path.c_str())))
        Fail("fontconfig", file.path);
}

using Clock = std::chrono::steady_clock;

template <class Work>
double MicrosecondsEach(const std::vector<NewFile> &files, Work work) {
    const auto begin = Clock::now();
    for (const NewFile &file : files) work(file);
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count() /
           static_cast<double>(files.size());
}

void ForgetVellum(const std::vector<NewFile> &files) {
    std::vector<Ref<const ValURL>> urls;
    std::vector<const void *> items;
    for (const NewFile &file : files) {
        urls.push_back(Adopt(ValURLCreateWithFileSystemPath(Text(file.path).Get(), false, nullptr)));
        items.push_back(urls.back().Get());
    }
    const auto array = Adopt(ValArrayCreate(items.data(), items.size()));
    VLUnregisterFonts(array.Get(), 0, kVLScopeProcess, nullptr);
    VLDeliverNotifications();
}

double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// One row: so many files from an empty register on.
void Measure(NewFiles &source, const Size &size) {
    const size_t count = size.files;
    std::vector<double> ours, theirs, theirs_alone, last_of_ours, last_of_theirs;
    for (int round = 0; round < size.rounds; ++round) {
        FcConfig *config = FcConfigCreate();
        FcConfig *other = FcConfigCreate();
        auto files = source.Make(count);
        auto their_files = source.Make(count), added_files = source.Make(count);
        const auto tail = [](const std::vector<NewFile> &all) {
            return std::vector<NewFile>(all.end() - static_cast<std::ptrdiff_t>((all.size() + 9) / 10),
                                        all.end());
        };
        const auto vellum = [&] { ours.push_back(MicrosecondsEach(files, RegisterWithVellum)); };
        const auto fontconfig = [&] {
            theirs.push_back(MicrosecondsEach(
                their_files, [config](const NewFile &file) { RegisterWithFontconfig(config, file); }));
        };
        if (round % 2 == 0)
            vellum(), fontconfig();
        else
            fontconfig(), vellum();
        theirs_alone.push_back(
            MicrosecondsEach(added_files, [other](const NewFile &file) { AddToFontconfig(other, file); }));
        // The tenth that comes when the others are there.
        auto more = source.Make(tail(files).size()), their_more = source.Make(tail(files).size());
        last_of_ours.push_back(MicrosecondsEach(more, RegisterWithVellum));
        last_of_theirs.push_back(MicrosecondsEach(
            their_more, [config](const NewFile &file) { RegisterWithFontconfig(config, file); }));
        ForgetVellum(files);
        ForgetVellum(more);
        FcConfigDestroy(config);
        FcConfigDestroy(other);
        source.Remove();
    }
    std::printf("%6zu files, %3d rounds  vellum %7.1f us a file, %7.1f when all are there   fontconfig "
                "%8.1f, %8.1f   "
                "without the question %7.1f   times as fast %6.1f, of that without %5.1f\n",
                count, size.rounds, Median(ours), Median(last_of_ours), Median(theirs),
                Median(last_of_theirs), Median(theirs_alone), Median(theirs) / Median(ours),
                Median(theirs_alone) / Median(ours));
}

} // namespace

int main(int count, char **arguments) {
    ::setenv("VL_FRAMEWORK_RESOURCES_PATH", "", 1);
    NewFiles files(FindFontFiles({arguments + 1, arguments + count}));
    std::printf("Registering a file and asking for its family, medians:\n");
    for (const Size &size : kSizes) Measure(files, size);
}
