// SPDX-License-Identifier: MIT
// How long it takes to open font files and read the names of all of their faces: Vellum's parser
// beside bare HarfBuzz, which maps the files, and beside a bare reader of the tables' bytes.
//
//     names_benchmark [FOLDER...]
//
#include "font_files.hpp"
#include "platform/font/big_endian.hpp"
#include "platform/font/gx_font.hpp"
#include "rotation.hpp"

#include <fcntl.h>
#include <hb-ot.h>
#include <hb.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace vellum;
using namespace vellum::bench;

namespace {

constexpr int kRounds = 25;
constexpr size_t kHeadBytes = 4096;
constexpr hb_ot_name_id_t kNames[] = {HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_OT_NAME_ID_FONT_FAMILY,
                                      HB_OT_NAME_ID_FULL_NAME, HB_OT_NAME_ID_FONT_SUBFAMILY};

// Each side gives the bytes of the names that it saw, so that nothing is optimised away.
size_t ReadWithHarfBuzz(const TFiles &files) {
    size_t seen = 0;
    for (const std::string &file : files) {
        hb_blob_t *blob = hb_blob_create_from_file_or_fail(file.c_str());
        for (unsigned int i = 0, count = hb_face_count(blob); i < count; ++i) {
            hb_face_t *face = hb_face_create(blob, i);
            for (const hb_ot_name_id_t name : kNames) {
                char text[256];
                unsigned int size = sizeof text;
                hb_ot_name_get_utf8(face, name, HB_LANGUAGE_INVALID, &size, text);
                seen += size;
            }
            hb_face_destroy(face);
        }
        hb_blob_destroy(blob);
    }
    return seen;
}

// What the system takes for the bytes alone: the first page and the name table of the first face.
size_t ReadBytes(const TFiles &files) {
    static std::array<uint8_t, kHeadBytes> head;
    static std::array<uint8_t, 1u << 17> names;
    size_t seen = 0;
    for (const std::string &file : files) {
        const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status;
        fstat(descriptor, &status);
        const ssize_t got = pread(descriptor, head.data(), head.size(), 0);
        const TBytes bytes(head.data(), static_cast<size_t>(std::max<ssize_t>(got, 0)));
        const size_t tables = ReadU16(bytes, 4);
        for (size_t i = 0; i < tables; ++i) {
            if (ReadU32(bytes, 12 + 16 * i) != MakeTag("name")) continue;
            const size_t length = std::min<size_t>(ReadU32(bytes, 24 + 16 * i), names.size());
            const ssize_t read = pread(descriptor, names.data(), length, ReadU32(bytes, 20 + 16 * i));
            seen += static_cast<size_t>(std::max<ssize_t>(read, 0));
        }
        close(descriptor);
    }
    return seen;
}

size_t LengthOf(const Ref<const ValString> &text) {
    size_t length = 0;
    ValStringGetBytes(text.Get(), &length);
    return length;
}

size_t ReadWithVellum(const TFiles &files) {
    FacetFontPurgeCaches(nullptr);
    size_t seen = 0;
    for (const std::string &file : files) {
        const auto path = Adopt(ValStringCreateWithFileSystemRepresentation(file.data(), file.size()));
        const auto url = Adopt(ValURLCreateWithFileSystemPath(path.Get(), false, nullptr));
        const auto fonts = GxFontCreateFontsWithURL(url.Get());
        for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i) {
            const auto *font = static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), i));
            seen += LengthOf(GxFontCopyPostScriptName(font)) + LengthOf(GxFontCopyFamilyName(font)) +
                    LengthOf(GxFontCopyFullName(font)) +
                    LengthOf(GxFontCopyName(font, GxNameKey::kSubfamily));
        }
    }
    return seen;
}

} // namespace

int main(int count, char **arguments) {
    const TFiles files = FindFontFiles({arguments + 1, arguments + count});
    std::vector<TSide> sides = {{"HarfBuzz, mapped", [&] { return ReadWithHarfBuzz(files); }},
                                {"the bytes alone", [&] { return ReadBytes(files); }},
                                {"Vellum", [&] { return ReadWithVellum(files); }}};
    Rotate(sides, kRounds);
    std::printf("%zu files, %d rounds\n", files.size(), kRounds);
    Print(sides);
    return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
