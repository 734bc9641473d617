// SPDX-License-Identifier: MIT
// Texts about values, for logs and debuggers: `["Noto Sans", 12.5, true, {"a": 1}]`.
#include "platform/val/description.hpp"

#include "platform/val/array.hpp"
#include "platform/val/data.hpp"
#include "platform/val/dictionary.hpp"
#include "platform/val/number.hpp"
#include "platform/val/set.hpp"
#include "platform/val/url.hpp"

#include <charconv>

namespace vellum {
namespace {

constexpr size_t kMaximumText = 256;   // bytes of one string
constexpr size_t kMaximumData = 16;    // bytes of data
constexpr size_t kMaximumItems = 16;   // of one container, and ranges of a character set
constexpr unsigned kMaximumDepth = 4;  // of nested containers
constexpr size_t kMaximumTotal = 4096; // bytes; where it is passed, no more items are begun
constexpr std::string_view kMore = "…";

template <class Number>
void AppendNumber(TextBuffer &out, Number number, int base_or_nothing = 10) noexcept {
    char text[64];
    std::to_chars_result result;
    if constexpr (std::is_integral_v<Number>) {
        result = std::to_chars(text, text + sizeof text, number, base_or_nothing);
    } else {
        result = std::to_chars(text, text + sizeof text, number);
    }
    out.Append({text, static_cast<size_t>(result.ptr - text)});
}

// Lone surrogates and bytes that are no text are written out; a long text is cut.
void AppendText(TextBuffer &out, std::string_view text) noexcept {
    for (size_t at = 0; at < text.size();) {
        if (at >= kMaximumText) return out.Append(kMore);
        Character c = DecodeCharacter(text.substr(at));
        if (IsScalar(c.value) && c.value >= 0x20) {
            out.Append(text.substr(at, c.length));
        } else {
            out.Append(c.value < kRawByte ? "\\u{" : "\\x{");
            AppendNumber(out, static_cast<uint32_t>(c.value < kRawByte ? c.value : c.value - kRawByte), 16);
            out.Append("}");
        }
        at += c.length;
    }
}

void AppendQuoted(TextBuffer &out, std::string_view text) noexcept {
    out.Append("\"");
    AppendText(out, text);
    out.Append("\"");
}

void AppendData(TextBuffer &out, const ValData *data) noexcept {
    out.Append("<");
    AppendNumber(out, data->length);
    out.Append(data->length ? " bytes: " : " bytes");
    for (char c : Bytes(data).substr(0, kMaximumData)) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 16) out.Append("0");
        AppendNumber(out, byte, 16);
    }
    if (data->length > kMaximumData) out.Append(kMore);
    out.Append(">");
}

void AppendCharacterSet(TextBuffer &out, const ValCharacterSet *set) noexcept {
    out.Append("<");
    AppendNumber(out, ValCharacterSetGetCount(set));
    out.Append(" characters:");
    uint32_t first = 0;
    uint32_t last = UINT32_MAX;
    for (size_t i = 0; ValCharacterSetNextRange(set, &first, &last); ++i) {
        out.Append(" ");
        if (i == kMaximumItems) {
            out.Append(kMore);
            break;
        }
        AppendNumber(out, first, 16);
        if (last == first) continue;
        out.Append("-");
        AppendNumber(out, last, 16);
    }
    out.Append(">");
}

void AppendAddress(TextBuffer &out, const void *item) noexcept {
    out.Append("0x");
    AppendNumber(out, reinterpret_cast<uintptr_t>(item), 16);
}

// A kind without words of its own: its name and address.
void AppendObject(TextBuffer &out, const ValObject *object) noexcept {
    if (Ref<const ValString> text =
            object->kind->describe ? Adopt(object->kind->describe(object)) : nullptr) {
        return out.Append(Text(text));
    }
    out.Append("<");
    out.Append(object->kind->name);
    out.Append(" ");
    AppendAddress(out, object);
    out.Append(">");
}

class Describer {
public:
    explicit Describer(TextBuffer &out) noexcept : out_(out) {}

    void Append(const void *value) noexcept {
        switch (ValGetType(value)) {
        case kValTypeNone:
            return out_.Append("null");
        case kValTypeString:
            return AppendQuoted(out_, Text(static_cast<const ValString *>(value)));
        case kValTypeNumber:
            return AppendValue(*static_cast<const ValNumber *>(value));
        case kValTypeBoolean:
            return out_.Append(value == kValBooleanTrue ? "true" : "false");
        case kValTypeData:
            return AppendData(out_, static_cast<const ValData *>(value));
        case kValTypeUUID:
            return AppendUUID(static_cast<const ValUUID *>(value));
        case kValTypeURL:
            return AppendURL(*static_cast<const ValURL *>(value));
        case kValTypeArray:
            return AppendItems(*static_cast<const ValArray *>(value));
        case kValTypeDictionary:
            return AppendItems(*static_cast<const ValDictionary *>(value));
        case kValTypeSet:
            return AppendItems(*static_cast<const ValSet *>(value));
        case kValTypeCharacterSet:
            return AppendCharacterSet(out_, static_cast<const ValCharacterSet *>(value));
        default:
            return AppendObject(out_, AsObject(value));
        }
    }

private:
    void AppendValue(const ValNumber &number) noexcept {
        if (number.type == kValNumberTypeFloat32)
            AppendNumber(out_, static_cast<float>(number.real));
        else if (number.IsReal())
            AppendNumber(out_, number.real);
        else
            AppendNumber(out_, number.integer);
    }

    void AppendUUID(const ValUUID *uuid) noexcept {
        out_.Append("<");
        out_.Append(Text(Adopt(ValUUIDCopyString(uuid))));
        out_.Append(">");
    }

    void AppendURL(const ValURL &url) noexcept {
        out_.Append("<");
        AppendText(out_, AbsoluteText(url));
        out_.Append(">");
    }

    void AppendItem(const ValCallbacks &callbacks, const void *item) noexcept {
        if (callbacks.retain == ValRetain) return Append(item);
        Ref<const ValString> text = callbacks.describe ? Adopt(callbacks.describe(item)) : nullptr;
        if (text)
            AppendText(out_, Text(text));
        else
            AppendAddress(out_, item);
    }

    void AppendItems(const ValArray &array) noexcept {
        AppendList("[", "]", array.count,
                   [&, i = size_t{0}]() mutable { AppendItem(*array.callbacks, array.items[i++]); });
    }

    void AppendItems(const ValSet &set) noexcept {
        AppendList("{", "}", set.table.Count(), [&, cursor = size_t{0}]() mutable {
            AppendItem(*set.callbacks, set.table.Next(cursor)->key);
        });
    }

    void AppendItems(const ValDictionary &dictionary) noexcept {
        std::string_view open = dictionary.table.Count() ? "{" : "{:"; // unlike an empty set
        AppendList(open, "}", dictionary.table.Count(), [&, cursor = size_t{0}]() mutable {
            const DictionaryEntry *entry = dictionary.table.Next(cursor);
            AppendItem(*dictionary.key_callbacks, entry->key);
            out_.Append(": ");
            AppendItem(*dictionary.value_callbacks, entry->value);
        });
    }

    template <class AppendOne>
    void AppendList(std::string_view open, std::string_view close, size_t count,
                    AppendOne append_one) noexcept {
        out_.Append(open);
        ++depth_;
        for (size_t i = 0; i < count; ++i) {
            if (i) out_.Append(", ");
            if (i == kMaximumItems || depth_ > kMaximumDepth || out_.View().size() > kMaximumTotal) {
                out_.Append(kMore);
                break;
            }
            append_one();
        }
        --depth_;
        out_.Append(close);
    }

    TextBuffer &out_;
    unsigned depth_ = 0;
};

} // namespace

void AppendDescription(TextBuffer &out, const void *value) noexcept {
    Describer(out).Append(value);
}

} // namespace vellum

using namespace vellum;

const ValString *ValCopyDescription(const void *value) noexcept {
    TextBuffer text;
    AppendDescription(text, value);
    return text.MakeString().Release();
}
