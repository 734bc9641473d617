// SPDX-License-Identifier: MIT
// Writing of Type 1 fonts: a program in clear text, and one in the format's simple cipher.
#include "support/type1_font.hpp"

#include <string_view>

namespace vellum::test {
namespace {

constexpr uint16_t kProgramKey = 55665;
constexpr uint16_t kGlyphKey = 4330;

// Four bytes stand before the text, as the format wants.
std::string Encrypt(std::string_view text, uint16_t key) {
    std::string cipher;
    for (const char c : "vell" + std::string(text)) {
        const auto byte = static_cast<uint8_t>(static_cast<uint8_t>(c) ^ key >> 8);
        key = static_cast<uint16_t>((byte + key) * 52845 + 22719);
        cipher += static_cast<char>(byte);
    }
    return cipher;
}

// Width 500, nothing drawn: 0 500 hsbw endchar.
std::string Glyph(const std::string &name) {
    const std::string program = Encrypt("\x8B\xF8\x88\x0D\x0E", kGlyphKey);
    return '/' + name + ' ' + std::to_string(program.size()) + " RD " + program + " ND\n";
}

std::string ClearProgram(const Type1Font &font) {
    return font.header + "\n12 dict begin\n/FontInfo 8 dict dup begin\n/version (001.002) readonly def\n" +
           "/Notice (Made for a test) readonly def\n/FullName (" + font.full_name +
           ") readonly def\n/FamilyName (" + font.family + ") readonly def\n/Weight (" + font.weight +
           ") readonly def\n/ItalicAngle " + std::to_string(font.italic_angle) + " def\n/isFixedPitch " +
           (font.fixed_pitch ? "true" : "false") + " def\nend readonly def\n/FontName /" + font.name +
           " def\n/Encoding StandardEncoding def\n/PaintType 0 def\n/FontType 1 def\n" +
           "/FontMatrix [0.001 0 0 0.001 0 0] readonly def\n/FontBBox {0 0 1000 1000} readonly def\n" +
           "currentdict end\ncurrentfile eexec\n";
}

std::string PrivateProgram() {
    return Encrypt(
        "dup /Private 8 dict dup begin\n/RD {string currentfile exch readstring pop} executeonly "
        "def\n/ND {noaccess def} executeonly def\n/NP {noaccess put} executeonly def\n"
        "/BlueValues [] def\n/password 5839 def\n/MinFeature{16 16} def\n"
        "2 index /CharStrings 3 dict dup begin\n" +
            Glyph(".notdef") + Glyph("A") + Glyph("B") +
            "end\nend\nreadonly put\nnoaccess put\ndup/FontName get exch definefont pop\n"
            "mark currentfile closefile\n",
        kProgramKey);
}

std::string Trailer() {
    std::string zeros;
    for (int i = 0; i < 8; ++i) zeros += std::string(64, '0') + '\n';
    return zeros + "cleartomark\n";
}

std::string Hexadecimal(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<uint8_t>(bytes[i]);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
        if (i % 32 == 31) text += '\n';
    }
    return text + '\n';
}

void AddSegment(LittleEndianWriter &file, uint32_t kind, std::string_view bytes) {
    file.U8(0x80).U8(kind);
    file.U32(static_cast<uint32_t>(bytes.size())).Text(bytes);
}

} // namespace

std::string BuildPfa(const Type1Font &font) {
    return ClearProgram(font) + Hexadecimal(PrivateProgram()) + Trailer();
}

Bytes BuildPfb(const Type1Font &font) {
    LittleEndianWriter file;
    AddSegment(file, 1, ClearProgram(font));
    AddSegment(file, 2, PrivateProgram());
    AddSegment(file, 1, Trailer());
    return file.U8(0x80).U8(3);
}

} // namespace vellum::test
