// SPDX-License-Identifier: MIT
// Unpacking of WOFF fonts, refused where the header promises more than limits.hpp allows.
#include "platform/font/woff.hpp"

#include "platform/font/freetype_library.hpp"
#include "platform/font/freetype_stream.hpp"
#include "platform/font/limits.hpp"
#include "platform/font/sfnt_loader.hpp"
#include "platform/font/woff_header.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace vellum {
namespace {

// A larger font is unpacked for every round rather than kept.
constexpr size_t kKeptBytes = 2u << 20;

// An unpacked font; `faces` is how many the packed file claims.
struct TUnpacked {
    TBuffer bytes;
    size_t faces = 0;
};

using TUnpackedPtr = std::shared_ptr<const TUnpacked>;

// FreeType has the whole unpacked font as the stream of its face; table 0 stands for all of it.
// The packed font is in memory: see TFreeTypeStream::Arguments.
TUnpackedPtr Unpack(const TReading &packed, uint32_t index) {
    const TFreeType freetype;
    if (!freetype.Library()) return nullptr;
    TFreeTypeStream stream(packed);
    const auto face = OpenFreeTypeFace(freetype.Library(), stream, index, nullptr);
    FT_ULong length = 0;
    if (!face || FT_Load_Sfnt_Table(face.get(), 0, 0, nullptr, &length) != 0) return nullptr;
    if (length > limits::kWoffBytes) return nullptr;
    auto unpacked = std::make_shared<TUnpacked>();
    unpacked->bytes = TBuffer(length);
    if (FT_Load_Sfnt_Table(face.get(), 0, 0, unpacked->bytes.Writable().data(), &length) != 0)
        return nullptr;
    unpacked->faces = static_cast<size_t>(std::max<FT_Long>(face->num_faces, 0));
    return unpacked;
}

// The last unpacked font, by the serial number of its source.
struct TLastUnpacked {
    std::mutex mutex;
    uint64_t serial = 0; // guarded by mutex, as is:
    TUnpackedPtr font;
};

TLastUnpacked &LastUnpacked() {
    static TLastUnpacked &sLast = *new TLastUnpacked;
    return sLast;
}

TUnpackedPtr RecallUnpacked(uint64_t serial) {
    TLastUnpacked &last = LastUnpacked();
    const std::lock_guard lock(last.mutex);
    return last.serial == serial ? last.font : nullptr;
}

void RememberUnpacked(uint64_t serial, TUnpackedPtr font) {
    TLastUnpacked &last = LastUnpacked();
    const std::lock_guard lock(last.mutex);
    last.serial = serial;
    last.font.swap(font);
}

uint64_t NextSerial() noexcept {
    static constinit std::atomic<uint64_t> sSerial = 0;
    return ++sSerial;
}

// One face of a packed file, unpacked for each round.
class TWoffSource final : public TFontSource {
public:
    TWoffSource(TFontSourcePtr packed, uint32_t index) : packed_(std::move(packed)), index_(index) {}

    TReading Open() const override {
        const TReading reading = packed_->Open();
        return ReadingOf(reading ? CopyUnpacked(reading) : nullptr);
    }

    TUnpackedPtr CopyUnpacked(const TReading &reading) const {
        if (auto known = RecallUnpacked(serial_)) return known;
        const TBuffer copy = reading.Memory().empty() ? reading.Copy(0, reading.Size()) : TBuffer();
        const TReading memory(copy.Size() ? copy.View() : reading.Memory(), nullptr);
        auto font = Unpack(memory, index_);
        if (font && font->bytes.Size() <= kKeptBytes) RememberUnpacked(serial_, font);
        return font;
    }

    static TReading ReadingOf(const TUnpackedPtr &font) {
        return font ? TReading(font->bytes.View(), font) : TReading();
    }

private:
    const TFontSourcePtr packed_;
    const uint32_t index_;
    const uint64_t serial_ = NextSerial();
};

} // namespace

void LoadWoffFaces(const TFontSourcePtr &source, const TReading &reading, std::vector<TFacePtr> &faces,
                   std::vector<TFacePtr> &instances) {
    const std::optional<uint64_t> size = BelievableWoffSize(reading);
    if (!size) return;
    size_t count = 1;
    for (uint32_t i = 0; i < count; ++i) {
        const auto face = std::make_shared<const TWoffSource>(source, i);
        const TUnpackedPtr font = face->CopyUnpacked(reading);
        if (!font) continue;
        if (i == 0) count = font->faces;
        if (count > limits::kFaces || count * *size > limits::kWoffBytesOfFile) return;
        const TReading unpacked = TWoffSource::ReadingOf(font);
        LoadSfntFaces(face, unpacked, unpacked.Memory(), faces, instances);
    }
}

void ForgetUnpackedFont() noexcept {
    RememberUnpacked(0, nullptr);
}

} // namespace vellum
