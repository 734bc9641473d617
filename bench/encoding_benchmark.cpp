// SPDX-License-Identifier: MIT
// How long it takes to flatten what a listing answers, and to read it back: an array of 1,000 property
// dictionaries, with and without a coverage bitmap each, beside msgpack-c and beside a copy of the
// same bytes.
//
//     encoding_benchmark [plain|families|random]...
//
// The same work is compared: from values to bytes, and from bytes to values that can be asked and
// kept. msgpack-c's part of it alone, its own tree of objects instead of values and bitmaps made
// beforehand, is told beside it.
#include "ipc/encoding/flatten_context.hpp"
#include "ipc/encoding/resurrect_context.hpp"
#include "ipc/encoding/vm_flatten_context.hpp"
#include "rotation.hpp"
#include "values/val_cast.hpp"

#include <vellum/vellum.hpp>

#include <fcntl.h>
#define MSGPACK_NO_BOOST
#include <msgpack.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <msgpack.hpp>
#include <random>
#include <string>
#include <vector>

using namespace vellum;
using namespace vellum::bench;

namespace {

constexpr int kRounds = 51;
constexpr int kFaces = 1'000;
constexpr size_t kBitmapBytes = 8'192;

enum class TCoverage { kNone, kOfFamilies, kRandom };

Ref<const void> Text(const std::string &text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}
Ref<const void> Word(int32_t value) {
    return Adopt(ValNumberCreateSInt32(value));
}
Ref<const void> LongWord(int64_t value) {
    return Adopt(ValNumberCreateSInt64(value));
}

// A face of a text font covers a few dozen stretches of some hundred characters, the same as the other
// three of its family; random bits, another bitmap for each face, are the worst that can be.
Ref<const void> Coverage(TCoverage coverage, std::mt19937 &random) {
    std::vector<uint8_t> bytes(kBitmapBytes);
    if (coverage == TCoverage::kRandom) {
        for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(random());
        return Adopt(ValCharacterSetCreateWithBitmap(bytes.data(), bytes.size()));
    }
    auto set = Adopt(ValCharacterSetCreateMutable());
    ValCharacterSetAddRange(set.Get(), 0x20, 0x17F);
    for (int i = 0; i < 24; ++i) {
        const auto first = static_cast<uint32_t>(random() % 0xFF00);
        ValCharacterSetAddRange(set.Get(), first, first + static_cast<uint32_t>(random() % 200));
    }
    return set;
}

Ref<const void> MakeFace(int number, TCoverage coverage, std::mt19937 &random) {
    static const char *const kStyles[] = {"Regular", "Bold", "Italic", "Bold Italic"};
    const std::string family = "Vellum Sample " + std::to_string(number / 4);
    const std::string style = kStyles[number % 4];
    const std::string file =
        "file:///usr/share/fonts/truetype/sample/Sample" + std::to_string(number) + ".ttf";
    std::vector<std::pair<const ValString *, Ref<const void>>> pairs = {
        {kVLFontPropertyName, Text("VellumSample-" + std::to_string(number))},
        {kVLFontPropertyFamilyName, Text(family)},
        {kVLFontPropertyFullName, Text(family + " " + style)},
        {kVLFontPropertySubfamilyName, Text(style)},
        {kVLFontPropertyURL, Adopt(ValURLCreateWithBytes(file.data(), file.size(), nullptr))},
        {kVLFontPropertyEnabled, Word(1)},
        {kVLFontPropertyPriority, LongWord(500)},
        {kVLFontPropertyFormat, Word(number % 3)},
        {kVLFontPropertyStringEncoding, Word(0x100)},
        {kVLFontPropertyScope, LongWord(1)},
        {kVLFontPropertyFlags, Word(number & 0xFF)},
        {kVLFontPropertyFontRef, Word(number * 0x10000)},
    };
    static Ref<const void> sCoverage;
    if (number % 4 == 0 || coverage == TCoverage::kRandom) sCoverage = Coverage(coverage, random);
    if (coverage != TCoverage::kNone) pairs.emplace_back(kVLFontPropertyCharacterSet, sCoverage);
    std::vector<const void *> keys, values;
    for (const auto &[key, value] : pairs) {
        keys.push_back(key);
        values.push_back(value.Get());
    }
    return Adopt(ValDictionaryCreate(keys.data(), values.data(), keys.size()));
}

Ref<const ValArray> MakeFaces(TCoverage coverage) {
    std::mt19937 random(1);
    auto faces = Adopt(ValArrayCreateMutable(kFaces, nullptr));
    for (int i = 0; i < kFaces; ++i) ValArrayAppend(faces.Get(), MakeFace(i, coverage, random).Get());
    return faces;
}

// ---- msgpack-c ------------------------------------------------------------------------------------

void PackText(msgpack_packer *packer, const ValString *string) {
    size_t length = 0;
    const char *text = ValStringGetUTF8(string, &length);
    msgpack_pack_str_with_body(packer, text, length);
}

void PackBytes(msgpack_packer *packer, const ValData *data) {
    msgpack_pack_bin_with_body(packer, ValDataGetBytes(data), ValDataGetLength(data));
}

// What a program that keeps its coverage as msgpack wants it would have at hand; empty for one that
// has values.
using TBitmaps = std::vector<Ref<const ValData>>;

TBitmaps CopyBitmaps(const ValArray *faces) {
    TBitmaps bitmaps;
    for (size_t i = 0; i < ValArrayGetCount(faces); ++i) {
        const auto *face = Cast<ValDictionary>(ValArrayGetValue(faces, i));
        const auto *set = Cast<ValCharacterSet>(ValDictionaryGetValue(face, kVLFontPropertyCharacterSet));
        bitmaps.push_back(Adopt(ValCharacterSetCopyBitmap(set)));
    }
    return bitmaps;
}

void PackValue(msgpack_packer *packer, const void *value, const ValData *bitmap) {
    switch (ValGetType(value)) {
    case kValTypeString:
        return PackText(packer, Cast<ValString>(value));
    case kValTypeURL:
        return PackText(packer, ValURLGetString(Cast<ValURL>(value)));
    case kValTypeNumber:
        msgpack_pack_int64(packer, ValNumberGetSInt64(Cast<ValNumber>(value)));
        return;
    case kValTypeCharacterSet:
        if (bitmap) return PackBytes(packer, bitmap);
        return PackBytes(packer, Adopt(ValCharacterSetCopyBitmap(Cast<ValCharacterSet>(value))).Get());
    default:
        std::abort();
    }
}

void Pack(msgpack_packer *packer, const ValArray *faces, const TBitmaps &bitmaps) {
    msgpack_pack_array(packer, ValArrayGetCount(faces));
    for (size_t i = 0; i < ValArrayGetCount(faces); ++i) {
        const auto *face = Cast<ValDictionary>(ValArrayGetValue(faces, i));
        msgpack_pack_map(packer, ValDictionaryGetCount(face));
        size_t cursor = 0;
        for (const void *key, *value; ValDictionaryNext(face, &cursor, &key, &value);) {
            PackText(packer, Cast<ValString>(key));
            PackValue(packer, value, bitmaps.empty() ? nullptr : bitmaps[i].Get());
        }
    }
}

struct TSbuffer {
    TSbuffer() {
        msgpack_sbuffer_init(&buffer);
        msgpack_packer_init(&packer, &buffer, msgpack_sbuffer_write);
    }
    TSbuffer(const TSbuffer &) = delete;
    TSbuffer &operator=(const TSbuffer &) = delete;
    ~TSbuffer() { msgpack_sbuffer_destroy(&buffer); }

    msgpack_sbuffer buffer;
    msgpack_packer packer;
};

size_t WriteWithMsgpack(const ValArray *faces, const TBitmaps &bitmaps) {
    TSbuffer packed;
    Pack(&packed.packer, faces, bitmaps);
    Keep(packed.buffer.data);
    return packed.buffer.size;
}

// The same, moved to where a message could take it from.
size_t WriteWithMsgpackToMemoryFile(const ValArray *faces, const TBitmaps &bitmaps) {
    TSbuffer packed;
    Pack(&packed.packer, faces, bitmaps);
    const int file = memfd_create("msgpack", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    const ssize_t written = write(file, packed.buffer.data, packed.buffer.size);
    fcntl(file, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL);
    close(file);
    return static_cast<size_t>(written);
}

// msgpack-c's own objects, whose texts and blobs stay in the buffer.
class TUnpacked {
public:
    explicit TUnpacked(const std::string &bytes) {
        msgpack_unpacked_init(&result_);
        if (msgpack_unpack_next(&result_, bytes.data(), bytes.size(), nullptr) != MSGPACK_UNPACK_SUCCESS)
            std::abort();
    }
    TUnpacked(const TUnpacked &) = delete;
    TUnpacked &operator=(const TUnpacked &) = delete;
    ~TUnpacked() { msgpack_unpacked_destroy(&result_); }

    const msgpack_object_array &Array() const { return result_.data.via.array; }

private:
    msgpack_unpacked result_;
};

size_t ReadObjects(const std::string &bytes) {
    const TUnpacked objects(bytes);
    Keep(&objects);
    return objects.Array().size;
}

Ref<const void> ValueOf(const msgpack_object &object, bool is_url) {
    switch (object.type) {
    case MSGPACK_OBJECT_STR:
        if (is_url) return Adopt(ValURLCreateWithBytes(object.via.str.ptr, object.via.str.size, nullptr));
        return Adopt(ValStringCreateWithUTF8(object.via.str.ptr, object.via.str.size));
    case MSGPACK_OBJECT_POSITIVE_INTEGER:
        return LongWord(static_cast<int64_t>(object.via.u64));
    case MSGPACK_OBJECT_BIN:
        return Adopt(ValCharacterSetCreateWithBitmap(object.via.bin.ptr, object.via.bin.size));
    default:
        std::abort();
    }
}

size_t ReadWithMsgpack(const std::string &bytes) {
    const TUnpacked unpacked(bytes);
    const msgpack_object_array &objects = unpacked.Array();
    auto faces = Adopt(ValArrayCreateMutable(objects.size, nullptr));
    for (uint32_t i = 0; i < objects.size; ++i) {
        const msgpack_object_map &map = objects.ptr[i].via.map;
        auto face = Adopt(ValDictionaryCreateMutable(map.size, nullptr, nullptr));
        for (uint32_t k = 0; k < map.size; ++k) {
            const auto key = ValueOf(map.ptr[k].key, false);
            const bool is_url = ValEqual(key.Get(), kVLFontPropertyURL);
            ValDictionarySetValue(face.Get(), key.Get(), ValueOf(map.ptr[k].val, is_url).Get());
        }
        ValArrayAppend(faces.Get(), face.Get());
    }
    return ValArrayGetCount(faces.Get());
}

// ---- Vellum ---------------------------------------------------------------------------------------

size_t WriteWithVellum(const ValArray *faces) {
    TValFlattenContext context(ValDataCreateMutable(0), true);
    context.Flatten(faces);
    Keep(context.GetBytePtr());
    return context.GetLength();
}

size_t WriteWithVellumToMemoryFile(const ValArray *faces) {
    const TValVMFlattenContext context(faces);
    Keep(context.GetBuffer());
    return context.GetLength();
}

size_t ReadWithVellum(const std::string &bytes) {
    const auto value =
        TValResurrectContext(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size()).Resurrect();
    return ValArrayGetCount(Cast<ValArray>(value.Get()));
}

size_t Copy(const std::string &bytes, std::string &target) {
    std::memcpy(target.data(), bytes.data(), bytes.size());
    Keep(target.data());
    return bytes.size();
}

// The least ratio of msgpack-c's time to Vellum's, in both directions, that is asked for.
void Compare(const char *title, TCoverage coverage, double goal) {
    const auto faces = MakeFaces(coverage);
    const TBitmaps bitmaps = CopyBitmaps(faces.Get());
    TValFlattenContext context(ValDataCreateMutable(0), true);
    context.Flatten(faces.Get());
    const std::string flattened(reinterpret_cast<const char *>(context.GetBytePtr()), context.GetLength());
    TSbuffer packed;
    Pack(&packed.packer, faces.Get(), bitmaps);
    const std::string message(packed.buffer.data, packed.buffer.size);
    std::string target(flattened.size(), '\0');

    const TBitmaps none;
    std::vector<TSide> writers = {
        {"memcpy", [&] { return Copy(flattened, target); }},
        {"msgpack-c", [&] { return WriteWithMsgpack(faces.Get(), none); }},
        {"Vellum", [&] { return WriteWithVellum(faces.Get()); }},
        {"msgpack-c, bitmaps made before", [&] { return WriteWithMsgpack(faces.Get(), bitmaps); }},
        {"msgpack-c, sealed memory file", [&] { return WriteWithMsgpackToMemoryFile(faces.Get(), none); }},
        {"Vellum, sealed memory file", [&] { return WriteWithVellumToMemoryFile(faces.Get()); }}};
    std::vector<TSide> readers = {
        {"memcpy", [&] { return Copy(flattened, target); }},
        {"msgpack-c", [&] { return ReadWithMsgpack(message); }},
        {"Vellum", [&] { return ReadWithVellum(flattened); }},
        {"msgpack-c, its own objects in place", [&] { return ReadObjects(message); }}};
    Rotate(writers, kRounds);
    Rotate(readers, kRounds);
    std::printf("%s: %zu bytes, as msgpack %zu; %d rounds; goal: %.1f times as fast as msgpack-c\n", title,
                flattened.size(), message.size(), kRounds, goal);
    std::printf(" writing: %.2f times as fast\n", writers[1].Median() / writers[2].Median());
    Print(writers);
    std::printf(" reading: %.2f times as fast\n", readers[1].Median() / readers[2].Median());
    Print(readers);
}

} // namespace

int main(int count, char **arguments) {
    const std::vector<std::string> wanted(arguments + 1, arguments + count);
    const auto run = [&wanted](const char *name, const char *title, TCoverage coverage, double goal) {
        if (wanted.empty() || std::count(wanted.begin(), wanted.end(), name))
            Compare(title, coverage, goal);
    };
    run("plain", "1,000 dictionaries", TCoverage::kNone, 1.5);
    run("families", "1,000 dictionaries, each with a bitmap as families have it", TCoverage::kOfFamilies,
        4);
    run("random", "1,000 dictionaries, each with a bitmap of random bits", TCoverage::kRandom, 4);
    return EXIT_SUCCESS;
}
