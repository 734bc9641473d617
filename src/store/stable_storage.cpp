// SPDX-License-Identifier: MIT
#include "store/stable_storage.hpp"

#include "platform/font/limits.hpp"
#include "platform/font/type_identifier.hpp"
#include "platform/fs/copy_file.hpp"
#include "platform/fs/file_properties.hpp"
#include "platform/fs/private_folder.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "store/local_glyphary_imp.hpp"
#include "store/suitcase.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <cerrno>
#include <cstring>
#include <set>
#include <string_view>

namespace vellum {

namespace {

constexpr char kSharedTemporaryFolder[] = "/tmp";

std::string LastComponent(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

// Copies the outlines of a suitcase's fonts along. Those that are not there are none. A suitcase names a
// file as often as it likes, and files of any size: each is copied once, and all together are no more than
// a font file may be.
void CopyOutlines(const ValURL *suitcase, const std::string &folder) {
    const auto outlines = CreatePlatenFontURLsFromSuitcase(suitcase);
    std::set<std::string> met;
    uint64_t room = limits::kFileSize;
    for (const void *item : Elements(outlines.Get())) {
        const TValURL outline(Retain(Cast<ValURL>(item)));
        const std::string path(outline.Path().View()), name = LastComponent(path);
        if (!met.insert(name).second) continue;
        const auto properties = ReadFileProperties(path).value_or(TFileProperties());
        const uint64_t size = properties.size + properties.fork_size;
        if (size > room) continue;
        VLCopyURLToURL(outline.Get(), TValURL::FromPath(folder + "/" + name).Get());
        room -= size;
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
    const std::string name = LastComponent(path);
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

    const bool is_there = AreSameFile(path, folder + "/" + name); // a copy, registered by its own URL
    const int32_t result = is_there ? 0 : VLCopyURLToURL(source, destination.Get());
    if (result < 0) return false;
    if (result > 0) RemoveFile(folder + "/" + name); // an older copy must not pass for this font
    copy = destination.Ref();
    if (!is_there && ConformsToTypeTag(source, "com.orrery.font-suitcase")) CopyOutlines(source, folder);
    return true;
}

} // namespace vellum
