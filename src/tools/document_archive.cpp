// SPDX-License-Identifier: MIT
#include "tools/document_archive.hpp"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <memory>

namespace vellum::tool {

namespace {

// Together, unpacked.
constexpr size_t kMostBytes = size_t{256} << 20;

struct Free {
    void operator()(archive *reader) const { archive_read_free(reader); }
};

bool MayNameFonts(std::string_view part) {
    constexpr std::string_view kParts[] = {"content.xml", "styles.xml", "word/fontTable.xml",
                                           "xl/styles.xml", "xl/sharedStrings.xml"};
    if (std::ranges::count(kParts, part) != 0) return true;
    return part.ends_with(".xml") &&
           (part.starts_with("ppt/slides/") || part.starts_with("ppt/slideMasters/") ||
            part.starts_with("ppt/theme/") || part.starts_with("ppt/slideLayouts/"));
}

bool ReadAll(archive *reader, size_t &left, std::string &content) {
    for (;;) {
        char bytes[65536];
        const la_ssize_t length = archive_read_data(reader, bytes, sizeof bytes);
        if (length == 0) return true;
        if (length < 0 || static_cast<size_t>(length) > left) return false;
        left -= static_cast<size_t>(length);
        content.append(bytes, static_cast<size_t>(length));
    }
}

} // namespace

bool IsArchive(std::string_view first_bytes) {
    return first_bytes.starts_with("PK\x03\x04");
}

bool ReadParts(const std::string &path,
               const std::function<void(std::string_view, std::string_view)> &read) {
    const std::unique_ptr<archive, Free> reader(archive_read_new());
    archive_read_support_format_zip(reader.get());
    if (archive_read_open_filename(reader.get(), path.c_str(), 65536) != ARCHIVE_OK) return false;
    size_t left = kMostBytes;
    for (archive_entry *entry = nullptr;;) {
        const int result = archive_read_next_header(reader.get(), &entry);
        if (result == ARCHIVE_EOF) return true;
        if (result < ARCHIVE_WARN) return false;
        const char *name = archive_entry_pathname(entry);
        if (!name || !MayNameFonts(name)) continue;
        std::string content;
        if (!ReadAll(reader.get(), left, content)) return false;
        read(name, content);
    }
}

} // namespace vellum::tool
