// SPDX-License-Identifier: MIT
#include "values/json.hpp"

#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"
#include "values/val_str.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace vellum {

namespace {

constexpr int kMaximumDepth = 32;
constexpr size_t kMaximumRanges = 32;
constexpr size_t kMaximumLength = size_t{16} << 20;
constexpr size_t kMaximumString = 4096;

// The text's beginning, when it is long; cut between two characters.
std::string_view Shortened(std::string_view text) {
    if (text.size() <= kMaximumString) return text;
    size_t end = kMaximumString;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

class JsonWriter {
public:
    std::string Take() { return std::move(text_); }

    void Write(const void *value) {
        if (depth_ == kMaximumDepth || text_.size() > kMaximumLength) return Append("null");
        ++depth_;
        WriteByKind(value);
        --depth_;
    }

private:
    void WriteByKind(const void *value) {
        switch (ValGetType(value)) {
        case kValTypeString:
            return WriteString(Cast<ValString>(value));
        case kValTypeURL:
            return WriteString(ValURLGetString(Cast<ValURL>(value)));
        case kValTypeBoolean:
            return Append(ValBooleanGetValue(Cast<ValBoolean>(value)) ? "true" : "false");
        case kValTypeNumber:
            return WriteNumber(Cast<ValNumber>(value));
        case kValTypeArray:
            return WriteItems(Elements(Cast<ValArray>(value)));
        case kValTypeSet:
            return WriteSet(Cast<ValSet>(value));
        case kValTypeDictionary:
            return WriteDictionary(Cast<ValDictionary>(value));
        case kValTypeCharacterSet:
            return WriteCharacters(Cast<ValCharacterSet>(value));
        case kValTypeData:
            return WriteCount("bytes", ValDataGetLength(Cast<ValData>(value)));
        case kValTypeUUID:
            return WriteString(Adopt(ValCopyDescription(value)).Get());
        default:
            return Append("null");
        }
    }

    void Append(std::string_view text) { text_ += text; }

    void WriteEscape(unsigned char control) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", control);
        text_ += escape;
    }

    void WriteText(std::string_view text) {
        text_ += '"';
        for (const char c : text) {
            if (c == '"' || c == '\\') text_ += '\\';
            if (static_cast<unsigned char>(c) < 0x20)
                WriteEscape(static_cast<unsigned char>(c));
            else
                text_ += c;
        }
        text_ += '"';
    }

    // A string that is no Unicode, such as a file's name may be, has bytes that no reader would take.
    void WriteString(const ValString *string) {
        if (!string) return Append("null");
        const TValStr text(Retain(string));
        const std::string_view shown = Shortened(text.View());
        if (ValStringGetUTF8(string, nullptr)) return WriteText(shown);
        std::string ascii;
        for (const char c : shown) ascii += static_cast<unsigned char>(c) < 0x80 ? c : '?';
        WriteText(ascii);
    }

    template <class Number>
    void WriteDigits(Number number) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        text_.append(digits, end);
    }

    void WriteNumber(const ValNumber *number) {
        const ValNumberType type = ValNumberGetNumberType(number);
        if (type < kValNumberTypeFloat32) return WriteDigits(ValNumberGetSInt64(number));
        const double value = ValNumberGetFloat64(number);
        if (!std::isfinite(value)) return Append("null");
        if (type == kValNumberTypeFloat32) return WriteDigits(static_cast<float>(value));
        WriteDigits(value);
    }

    template <class Items>
    void WriteItems(const Items &items) {
        text_ += '[';
        bool first = true;
        for (const void *item : items) {
            if (text_.size() > kMaximumLength) break;
            if (!std::exchange(first, false)) text_ += ',';
            Write(item);
        }
        text_ += ']';
    }

    void WriteSet(const ValSet *set) { WriteItems(TValSet(Retain(set))); }

    void WriteKey(const void *key) {
        const auto described = Cast<ValString>(key) ? nullptr : Adopt(ValCopyDescription(key));
        WriteString(described ? described.Get() : Cast<ValString>(key));
        text_ += ':';
    }

    void WriteDictionary(const ValDictionary *dictionary) {
        text_ += '{';
        bool first = true;
        for (const auto &[key, value] : TValDict(Retain(dictionary))) {
            if (!std::exchange(first, false)) text_ += ',';
            WriteKey(key);
            Write(value);
        }
        text_ += '}';
    }

    void WriteCount(std::string_view key, size_t count) {
        text_ += '{';
        WriteText(key);
        text_ += ':';
        WriteDigits(count);
        text_ += '}';
    }

    void WriteCharacters(const ValCharacterSet *characters) {
        WriteCount("characters", ValCharacterSetGetCount(characters));
        text_.back() = ','; // there is more in this object
        WriteText("ranges");
        text_ += ":[";
        uint32_t first = UINT32_MAX, last = UINT32_MAX;
        for (size_t i = 0; i < kMaximumRanges && ValCharacterSetNextRange(characters, &first, &last); ++i) {
            char range[32];
            std::snprintf(range, sizeof range, "%s\"U+%04X-%04X\"", i ? "," : "", first, last);
            text_ += range;
        }
        text_ += "]}";
    }

    std::string text_;
    int depth_ = 0;
};

} // namespace

std::string ToJson(const void *value) {
    JsonWriter writer;
    writer.Write(value);
    return writer.Take();
}

} // namespace vellum
