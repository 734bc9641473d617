// SPDX-License-Identifier: MIT
#include "store/stable_storage.hpp"

#include "platform/font/type_identifier.hpp"
#include "platform/fs/copy_file.hpp"
#include "platform/fs/private_folder.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "store/local_glyphary_imp.hpp"
#include "store/suitcase.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <cerrno>
#include <cstring>

namespace vellum {

namespace {

constexpr char kSharedTemporaryFolder[] = "/tmp";

// Copies the outlines of a suitcase's fonts along. Those that are not there are none.
void CopyOutlines(const ValURL *suitcase, const std::string &folder) {
    const auto outlines = CreatePlatenFontURLsFromSuitcase(suitcase);
    for (const void *item : Elements(outlines.Get())) {
        const TValURL outline(Retain(Cast<ValURL>(item)));
        const TValStr path = outline.Path();
        const std::string name(path.View().substr(path.View().rfind('/') + 1));
        VLCopyURLToURL(outline.Get(), TValURL::FromPath(folder + "/" + name).Get());
    }
}

} // namespace

std::string StableStorageFolder() {
    std::string folder = UserTemporaryFolder();
    if (folder.empty()) folder = kSharedTemporaryFolder;
    folder += "/autoactivatedfonts-" + std::to_string(GetProcessID());
    const int error = MakePrivateFolder(folder);
    if (error == 0) return folder;
    Log(LogLevel::kInfo, "Auto-activation can't create temp directory %@ (%d -- %s)",
        static_cast<const void *>(TValURL::FromPath(folder, true).Get()), error, std::strerror(error));
    return {};
}

int32_t VLCopyURLToURL(const ValURL *source, const ValURL *destination) noexcept {
    try {
        const TValStr from = TValURL(Retain(source)).Path(), to = TValURL(Retain(destination)).Path();
        if (from.IsEmpty() || to.IsEmpty()) return kCopyHasNoPath;
        const int error = CopyFile(std::string(from.View()), std::string(to.View()));
        if (error != 0)
            Log(LogLevel::kError, "Could not copy %@ to %@ -- %s (%d)", static_cast<const void *>(source),
                static_cast<const void *>(destination), std::strerror(error), error);
        return error;
    } catch (...) {
        return ENOMEM;
    }
}

// Whether faces of a file are registered, enabled or not. The index of disabled ones is looked into where
// it is made already: what it holds at first depends on when that is.
bool TLocalGlypharyImp::IsInUse(const ValURL *url) const {
    return !ReferencesForURL(kPathIndex, url).empty() ||
           (indexes_[kDisabledPathIndex] && !ReferencesForURL(kDisabledPathIndex, url).empty());
}

// A copy that is in use is never overwritten, since fonts are read from it: a file of the same name goes
// into a folder of its own, unless it is the same file. That the copy failed is no failure here, by design:
// there is nothing then that could be opened.
bool TLocalGlypharyImp::MoveFileToStableStorage(const ValURL *source, Ref<const ValURL> &copy) const {
    copy = nullptr;
    const std::string root = StableStorageFolder();
    const std::string path(TValURL(Retain(source)).Path().View());
    const std::string name = path.substr(path.rfind('/') + 1);
    if (root.empty() || name.empty()) return false;

    std::string folder = root;
    TValURL destination = TValURL::FromPath(folder + "/" + name);
    for (int number = 1; IsInUse(destination.Get()); ++number) {
        if (HaveEqualBytes(path, folder + "/" + name)) {
            copy = destination.Ref();
            return true;
        }
        folder = root + "/" + std::to_string(number);
        if (MakePrivateFolder(folder) != 0) return false;
        destination = TValURL::FromPath(folder + "/" + name);
    }

    const int32_t result = VLCopyURLToURL(source, destination.Get());
    if (result < 0) return false;
    if (result > 0) RemoveFile(folder + "/" + name); // an older copy must not pass for this font
    copy = destination.Ref();
    if (ConformsToTypeTag(source, "com.orrery.font-suitcase")) CopyOutlines(source, folder);
    return true;
}

} // namespace vellum
