// SPDX-License-Identifier: MIT
// From a value to the XML that the reader takes.
#include "platform/app/base64.hpp"
#include "platform/app/property_list.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/val/array.hpp"
#include "platform/val/data.hpp"
#include "platform/val/dictionary.hpp"
#include "platform/val/string.hpp"

#include <charconv>
#include <cmath>
#include <new>
#include <string>

namespace vellum {
namespace {

constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vlist version=\"1.0\">\n";
constexpr std::string_view kTail = "</vlist>\n";

// What XML 1.0 lets stand in a file.
constexpr bool IsXmlCharacter(char32_t c) noexcept {
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
    return IsScalar(c) && c != 0xFFFE && c != 0xFFFF;
}

class Writer {
public:
    // Whether the value could be written.
    bool Write(const void *value) {
        text_ = kHead;
        if (!AppendValue(value)) return false;
        text_ += kTail;
        return text_.size() <= kMaximumPropertyListSize;
    }

    const std::string &Text() const noexcept { return text_; }

private:
    bool AppendValue(const void *value) {
        if (text_.size() > kMaximumPropertyListSize) return false;
        switch (ValGetType(value)) {
        case kValTypeString:
            return AppendText("string", static_cast<const ValString *>(value));
        case kValTypeNumber:
            return AppendNumber(static_cast<const ValNumber *>(value));
        case kValTypeBoolean:
            AppendLine(ValBooleanGetValue(static_cast<const ValBoolean *>(value)) ? "<true/>" : "<false/>");
            return true;
        case kValTypeData:
            AppendLine("<data>" + EncodeBase64(Bytes(static_cast<const ValData *>(value))) + "</data>");
            return true;
        case kValTypeArray:
            return AppendArray(static_cast<const ValArray *>(value));
        case kValTypeDictionary:
            return AppendDictionary(static_cast<const ValDictionary *>(value));
        default:
            return false;
        }
    }

    bool AppendNumber(const ValNumber *number) {
        char digits[64];
        const ValNumberType type = ValNumberGetNumberType(number);
        if (type != kValNumberTypeFloat32 && type != kValNumberTypeFloat64) {
            const auto end = std::to_chars(digits, digits + sizeof digits, ValNumberGetSInt64(number)).ptr;
            AppendLine("<integer>" + std::string(digits, end) + "</integer>");
            return true;
        }
        const double real = ValNumberGetFloat64(number);
        if (std::isnan(real)) return false;
        const auto end = std::to_chars(digits, digits + sizeof digits, real).ptr;
        AppendLine("<real>" + std::string(digits, end) + "</real>");
        return true;
    }

    bool AppendText(std::string_view element, const ValString *string) {
        text_.append(4 * depth_, ' ').append("<").append(element).append(">");
        if (!AppendEscaped(vellum::Text(string))) return false;
        text_.append("</").append(element).append(">\n");
        return true;
    }

    bool AppendEscaped(std::string_view text) {
        while (!text.empty()) {
            const Character character = DecodeCharacter(text);
            if (!IsXmlCharacter(character.value)) return false;
            AppendEscaped(character.value, text.substr(0, character.length));
            text.remove_prefix(character.length);
        }
        return true;
    }

    void AppendEscaped(char32_t character, std::string_view bytes) {
        switch (character) {
        case '&':
            text_ += "&amp;";
            break;
        case '<':
            text_ += "&lt;";
            break;
        case '>':
            text_ += "&gt;";
            break;
        case '\r': // as itself it would be read as a line's end
            text_ += "&#13;";
            break;
        default:
            text_ += bytes;
        }
    }

    bool AppendArray(const ValArray *array) {
        if (array->count == 0) {
            AppendLine("<array/>");
            return depth_ < kMaximumPropertyListNesting;
        }
        if (array->callbacks->retain != ValRetain || !Begin("<array>")) return false;
        for (const void *item : Items(array)) {
            if (!AppendValue(item)) return false;
        }
        End("</array>");
        return true;
    }

    bool AppendDictionary(const ValDictionary *dictionary) {
        if (ValDictionaryGetCount(dictionary) == 0) {
            AppendLine("<dict/>");
            return depth_ < kMaximumPropertyListNesting;
        }
        if (dictionary->key_callbacks->retain != ValRetain ||
            dictionary->value_callbacks->retain != ValRetain || !Begin("<dict>"))
            return false;
        size_t cursor = 0;
        for (const void *key, *value; ValDictionaryNext(dictionary, &cursor, &key, &value);) {
            if (ValGetType(key) != kValTypeString) return false;
            if (!AppendText("key", static_cast<const ValString *>(key)) || !AppendValue(value))
                return false;
        }
        End("</dict>");
        return true;
    }

    // False where it would be nested too deep.
    bool Begin(std::string_view tag) {
        AppendLine(tag);
        return ++depth_ <= kMaximumPropertyListNesting;
    }
    void End(std::string_view tag) {
        --depth_;
        AppendLine(tag);
    }

    void AppendLine(std::string_view line) { text_.append(4 * depth_, ' ').append(line).append("\n"); }

    std::string text_;
    size_t depth_ = 0;
};

} // namespace

Ref<const ValData> WritePropertyList(const void *value) noexcept {
    try {
        Writer writer;
        if (!writer.Write(value)) return nullptr;
        return Adopt(ValDataCreate(writer.Text().data(), writer.Text().size()));
    } catch (const std::bad_alloc &) {
        ++tPassingFailures;
        return nullptr;
    }
}

} // namespace vellum
