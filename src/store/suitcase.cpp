// SPDX-License-Identifier: MIT
// Reading of family resources: a family has a table of fonts, each for a size and a style, and another
// one of the parts that the PostScript name of each style is put together from.
#include "store/suitcase.hpp"

#include "platform/font/guarded.hpp"
#include "platform/font/resource_map.hpp"
#include "platform/process/passing_failures.hpp"
#include "store/printer_font_name.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum {
namespace {

constexpr GxTag kFamilyType = MakeTag("FOND");

// In the resource. The count of entries stands there as one less.
constexpr size_t kStyleTable = 24; // where it is, 0 for none
constexpr size_t kEntryCount = 52;
constexpr size_t kEntries = 54;

// In an entry: the size, the style, the id of the font.
constexpr size_t kEntrySize = 6;
constexpr size_t kEntryStyle = 3; // the low byte

// In the table of styles: for each style the number of a string, and the strings.
constexpr size_t kStyleStrings = 10;
constexpr size_t kStyles = 48;
constexpr size_t kStrings = kStyleStrings + kStyles;

// Strings are numbered from 1, in bytes. The first is the family's own name.
constexpr size_t kAddressableStrings = 255;
constexpr uint8_t kFamilyName = 1;

// A PostScript name is a string with its length in a byte itself.
constexpr size_t kMaximumNameLength = 255;

// Bold and italic are the lowest bits in both; underlining has a bit in the entry's style only, since
// underlined glyphs have no outlines of their own.
constexpr size_t StyleIndex(size_t style) noexcept {
    return ((style & 3) | (style >> 3) << 2) % kStyles;
}

// The strings that stand behind a count, as many of them as are whole and can be asked for.
std::vector<std::string_view> ReadStrings(TBytes bytes) {
    std::vector<std::string_view> strings(std::min<size_t>(ReadU16(bytes, 0), kAddressableStrings));
    size_t at = sizeof(uint16_t);
    for (size_t i = 0; i < strings.size(); ++i) {
        if (at >= bytes.size() || bytes.size() - at - 1 < bytes[at]) {
            strings.resize(i);
            break;
        }
        strings[i] = {reinterpret_cast<const char *>(bytes.data()) + at + 1, bytes[at]};
        at += 1 + strings[i].size();
    }
    return strings;
}

// A family resource. Its bytes outlive it.
class TFamily {
public:
    explicit TFamily(TBytes bytes)
        : bytes_(bytes), styles_(Slice(bytes, ReadU32(bytes, kStyleTable), bytes.size())),
          strings_(ReadStrings(Slice(styles_, kStrings, styles_.size()))) {}

    // Families of bitmaps alone have no names for outlines.
    bool HasNames() const noexcept { return ReadU32(bytes_, kStyleTable) != 0; }
    bool HasEntryTable() const noexcept { return bytes_.size() >= kEntries; }

    size_t EntryCount() const noexcept { return (ReadU16(bytes_, kEntryCount) + 1u) & 0xFFFF; }

    // The PostScript name of an entry: empty when it would be too long, none when the resource is
    // malformed. Only for a family with names.
    std::optional<std::string> NameOfEntry(size_t entry) const {
        const TBytes fields = Slice(bytes_, kEntries + entry * kEntrySize, kEntrySize);
        if (fields.size() < kEntrySize) return std::nullopt;
        return NameOfStyle(StyleIndex(fields[kEntryStyle]));
    }

private:
    const std::string_view *String(uint8_t number) const noexcept {
        return number != 0 && number <= strings_.size() ? &strings_[number - 1u] : nullptr;
    }

    std::optional<std::string> NameOfStyle(size_t style) const {
        const std::string_view *part = String(kFamilyName);
        if (!part) return std::nullopt;
        std::string name(*part);
        const uint8_t number = styles_[kStyleStrings + style]; // it stands in front of all strings
        if (number <= kFamilyName) return name;
        const std::string_view *suffixes = String(number);
        if (!suffixes) return std::nullopt;
        for (const char suffix : *suffixes) {
            part = String(static_cast<uint8_t>(suffix));
            if (!part) return std::nullopt;
            if (part->size() > kMaximumNameLength - name.size()) return std::string();
            name += *part;
        }
        return name;
    }

    const TBytes bytes_;
    const TBytes styles_;
    const std::vector<std::string_view> strings_;
};

// The list of files in the making.
class TPlatenFonts {
public:
    explicit TPlatenFonts(const ValURL *folder) : folder_(folder) {}

    // False when the list ends here.
    bool AppendFamily(const TFamily &family) {
        if (!family.HasEntryTable()) return false;
        const size_t count = family.HasNames() ? family.EntryCount() : 0;
        for (size_t i = 0; i < count; ++i) {
            if (entries_++ == kMaximumSuitcaseEntries) return false;
            const auto name = family.NameOfEntry(i);
            if (!name) return false;
            AppendFile(PrinterFontName(*name));
        }
        return true;
    }

    Ref<const ValArray> Publish() noexcept { return urls_.Publish(); }

private:
    // The name comes from the file: one that leads out of the folder is dropped.
    void AppendFile(const std::string &name) {
        if (!IsPlainFileName(name)) return;
        const auto path =
            OrBadAlloc(Adopt(ValStringCreateWithFileSystemRepresentation(name.data(), name.size())));
        const TValURL url(OrBadAlloc(Adopt(ValURLCreateWithFileSystemPath(path.Get(), false, folder_))));
        urls_.Append(OrBadAlloc(url.Absolute()).Get());
    }

    const ValURL *const folder_;
    size_t entries_ = 0;
    TValMutableArray urls_;
};

Ref<const ValArray> ReadFork(const TReading &fork, const ValURL *folder) {
    TPlatenFonts fonts(folder);
    TResourceMap map(fork);
    for (const TResource &resource : map.Find(kFamilyType)) {
        const auto bytes = map.Copy(resource);
        if (!bytes || !fonts.AppendFamily(TFamily(bytes->View()))) break;
    }
    return fonts.Publish();
}

// The fork of a file; false for what is no file, has none, or cannot be opened.
TReading OpenForkAt(const std::string &path) {
    TFileIdentity identity;
    TDescriptor descriptor = OpenRegularFile(path.c_str(), &identity);
    if (descriptor.IsOpen()) return OpenFork(TReading(std::move(descriptor), identity.size), path);
    ++tPassingFailures; // as for every font file that is not there
    return TReading();
}

} // namespace

Ref<const ValArray> CreatePlatenFontURLsFromFork(const TReading &fork, const ValURL *folder) noexcept {
    return Guarded([&] { return ReadFork(fork, folder); });
}

Ref<const ValArray> CreatePlatenFontURLsFromSuitcase(const ValURL *suitcase) noexcept {
    return Guarded([&] {
        const TValStr path(Adopt(ValURLCopyFileSystemPath(suitcase)));
        if (!path) return TValMutableArray().Publish();
        const auto folder = OrBadAlloc(Adopt(ValURLCopyDeletingLastPathComponent(suitcase)));
        return ReadFork(OpenForkAt(std::string(path.View())), folder.Get());
    });
}

} // namespace vellum
