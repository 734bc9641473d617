// SPDX-License-Identifier: MIT
// Reading of a resource map: a header, and far behind it a list of the types of the resources.
#include "platform/font/resource_fork.hpp"

#include "platform/font/gx_font.hpp"
#include "platform/fs/file_fork.hpp"

#include <algorithm>
#include <vector>

namespace vellum {
namespace {

constexpr size_t kForkBytes = 16u << 20;
constexpr size_t kHeaderSize = 16;
constexpr size_t kMapBytes = 64u << 10;

// In the map: where the list of types stands.
constexpr size_t kTypeListOffset = 24;
constexpr size_t kTypeSize = 8;

constexpr GxTag kSuitcaseTypes[] = {MakeTag("FOND"), MakeTag("sfnt"), MakeTag("NFNT"), MakeTag("FONT")};
constexpr GxTag kOutlineType = MakeTag("POST");

// The fork as a round of reading of its own; false without one.
class TFork {
public:
    TFork(const TReading &reading, const std::string &path)
        : attribute_(reading.CopyAttribute(kForkAttribute, kForkBytes)) {
        if (attribute_.Size() != 0) {
            fork_ = TReading(attribute_.View(), nullptr);
            return;
        }
        TFileIdentity identity;
        TDescriptor descriptor = OpenRegularFile(ForkFileOf(path).c_str(), &identity);
        if (descriptor.IsOpen()) fork_ = TReading(std::move(descriptor), identity.size);
    }

    const TReading &Reading() const noexcept { return fork_; }

private:
    TBuffer attribute_;
    TReading fork_;
};

// The count of types stands in the list as one less, as all of the map's counts do.
std::vector<GxTag> ReadTypes(const TReading &fork) {
    const TBuffer header = fork.Copy(0, kHeaderSize);
    const TBuffer map = fork.Copy(ReadU32(header.View(), 4), kMapBytes);
    const TBytes list = Slice(map.View(), ReadU16(map.View(), kTypeListOffset), map.Size());
    if (header.Size() < kHeaderSize || list.size() < 2) return {};
    const size_t count = std::min<size_t>((ReadU16(list, 0) + 1u) & 0xFFFF, (list.size() - 2) / kTypeSize);
    std::vector<GxTag> types(count);
    for (size_t i = 0; i < count; ++i) types[i] = ReadU32(list, 2 + i * kTypeSize);
    return types;
}

} // namespace

TForkContent ReadForkContent(const TReading &reading, const std::string &path) {
    const TFork fork(reading, path);
    if (!fork.Reading()) return TForkContent::kNothing;
    const std::vector<GxTag> types = ReadTypes(fork.Reading());
    const auto has = [&types](GxTag type) {
        return std::find(types.begin(), types.end(), type) != types.end();
    };
    if (std::any_of(std::begin(kSuitcaseTypes), std::end(kSuitcaseTypes), has))
        return TForkContent::kSuitcase;
    return has(kOutlineType) ? TForkContent::kPostScriptOutlines : TForkContent::kNothing;
}

} // namespace vellum
