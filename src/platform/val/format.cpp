// SPDX-License-Identifier: MIT
// printf's conversions and "%@". Numbers are left to snprintf, one at a time and in the C locale; text,
// padding and the walk through the arguments are done here.
#include "platform/val/format.hpp"

#include "platform/val/format_arguments.hpp"

#include <locale.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>

namespace vellum {
namespace {

struct LengthName {
    std::string_view name;
    FormatLength length;
};

// A name stands before its own beginning.
constexpr LengthName kLengths[] = {
    {"hh", FormatLength::kChar},      {"h", FormatLength::kShort},      {"ll", FormatLength::kLongLong},
    {"l", FormatLength::kLong},       {"j", FormatLength::kMax},        {"z", FormatLength::kSize},
    {"t", FormatLength::kDifference}, {"L", FormatLength::kLongDouble},
};

constexpr std::string_view kFlags = "-+ #0'";
// A width or a precision. No number has more digits, and it keeps a format from taking all memory.
constexpr int kMaximumCount = 1 << 16;

constexpr std::string_view kNull = "(null)";
constexpr char32_t kReplacement = 0xFFFD;

// From "%" to its letter, with what its "*" stood for.
struct Conversion {
    std::string_view text;
    bool has_flag[kFlags.size()] = {};
    int width = 0;
    int precision = -1; // none
    FormatLength length = FormatLength::kNone;
    char letter = '\0'; // the format ended

    bool &IsLeft() noexcept { return has_flag[0]; }
    bool IsLeft() const noexcept { return has_flag[0]; }
};

// This thread's locale is C meanwhile. That one is a constant: getting it neither allocates nor fails.
class InCLocale {
public:
    InCLocale() noexcept : locale_(::newlocale(LC_ALL_MASK, "C", nullptr)), former_(::uselocale(locale_)) {}
    ~InCLocale() {
        ::uselocale(former_);
        if (locale_) ::freelocale(locale_);
    }
    InCLocale(const InCLocale &) = delete;
    InCLocale &operator=(const InCLocale &) = delete;

private:
    const locale_t locale_;
    const locale_t former_;
};

struct FreeMemory {
    void operator()(char *memory) const noexcept { std::free(memory); }
};

char32_t CharacterOf(wint_t wide) noexcept {
    auto c = static_cast<char32_t>(wide);
    return IsScalar(c) ? c : kReplacement;
}

class Formatter {
public:
    Formatter(TextBuffer &out, size_t limit, const char *format, va_list arguments) noexcept
        : out_(out), limit_(limit), start_(out.View().size()), rest_(format ? format : ""),
          arguments_(arguments) {}

    void Run() noexcept {
        while (!rest_.empty() && Room() > 0) {
            const size_t plain = std::min(rest_.find('%'), rest_.size());
            Emit(rest_.substr(0, plain));
            rest_.remove_prefix(plain);
            if (!rest_.empty() && Room() > 0) Write(ReadConversion());
        }
    }

private:
    // ---- the format ----

    bool Skip(std::string_view prefix) noexcept {
        if (!rest_.starts_with(prefix)) return false;
        rest_.remove_prefix(prefix.size());
        return true;
    }

    // Digits, which may be none, or the argument of a "*".
    int ReadCount() noexcept {
        if (Skip("*")) return arguments_.Next<int>();
        int64_t count = 0;
        for (; !rest_.empty() && rest_[0] >= '0' && rest_[0] <= '9'; rest_.remove_prefix(1))
            count = std::min<int64_t>(count * 10 + (rest_[0] - '0'), INT_MAX);
        return static_cast<int>(count);
    }

    void ReadFlags(Conversion &conversion) noexcept {
        for (; !rest_.empty(); rest_.remove_prefix(1)) {
            const size_t flag = kFlags.find(rest_[0]);
            if (flag == std::string_view::npos) return;
            conversion.has_flag[flag] = true;
        }
    }

    void ReadWidth(Conversion &conversion) noexcept {
        const int width = ReadCount();
        if (width < 0) conversion.IsLeft() = true;
        conversion.width =
            width > -kMaximumCount ? std::min(std::abs(width), kMaximumCount) : kMaximumCount;
    }

    void ReadPrecision(Conversion &conversion) noexcept {
        const int precision = ReadCount();
        if (precision >= 0) conversion.precision = std::min(precision, kMaximumCount);
    }

    Conversion ReadConversion() noexcept {
        const std::string_view all = rest_;
        Conversion conversion;
        Skip("%");
        ReadFlags(conversion);
        ReadWidth(conversion);
        if (Skip(".")) ReadPrecision(conversion);
        const auto *length =
            std::ranges::find_if(kLengths, [this](const LengthName &row) { return Skip(row.name); });
        if (length != std::end(kLengths)) conversion.length = length->length;
        if (!rest_.empty()) {
            conversion.letter = rest_[0];
            rest_.remove_prefix(1);
        }
        conversion.text = all.substr(0, all.size() - rest_.size());
        return conversion;
    }

    // ---- the text ----

    size_t Room() const noexcept { return limit_ - (out_.View().size() - start_); }

    void Emit(std::string_view text) noexcept { out_.Append(text.substr(0, Room())); }

    void EmitSpaces(size_t count) noexcept {
        constexpr std::string_view kSpaces = "                                ";
        for (; count > 0 && Room() > 0 && !out_.Failed(); count -= std::min(count, kSpaces.size()))
            Emit(kSpaces.substr(0, count));
    }

    void EmitPadded(const Conversion &conversion, std::string_view text) noexcept {
        const auto width = static_cast<size_t>(conversion.width);
        const size_t padding = width > text.size() ? width - text.size() : 0;
        if (!conversion.IsLeft()) EmitSpaces(padding);
        Emit(text);
        if (conversion.IsLeft()) EmitSpaces(padding);
    }

    // ---- the arguments ----

    void Write(const Conversion &conversion) noexcept {
        switch (conversion.letter) {
        case 'd':
        case 'i':
            return WriteNumber(conversion, "j", arguments_.NextSigned(conversion.length));
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return WriteNumber(conversion, "j", arguments_.NextUnsigned(conversion.length));
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            if (conversion.length == FormatLength::kLongDouble)
                return WriteNumber(conversion, "L", arguments_.Next<long double>());
            return WriteNumber(conversion, "", arguments_.Next<double>());
        case 'p':
            return WriteNumber(conversion, "", arguments_.Next<void *>());
        case 'c':
            return WriteCharacter(conversion);
        case 's':
            return conversion.length == FormatLength::kLong ? WriteWideText(conversion)
                                                            : WriteText(conversion);
        case '@':
            return WriteValue(conversion);
        case '%':
            return Emit("%");
        case 'n':
            static_cast<void>(arguments_.Next<void *>());
            return Emit(conversion.text);
        default:
            return Emit(conversion.text);
        }
    }

    template <class Number>
    void WriteNumber(const Conversion &conversion, std::string_view length, Number number) noexcept {
        char format[2 * kFlags.size() + 2]; // "%", flags, "*.*", length, letter and the zero
        char *end = format;
        *end++ = '%';
        for (size_t flag = 0; flag < kFlags.size(); ++flag)
            if (conversion.has_flag[flag]) *end++ = kFlags[flag];
        end = std::ranges::copy(std::string_view("*.*"), end).out;
        end = std::ranges::copy(length, end).out;
        *end++ = conversion.letter;
        *end = '\0';
        auto print = [&](char *out, size_t size) {
            const InCLocale c;
            return std::snprintf(out, size, format, conversion.width, conversion.precision, number);
        };
        char text[128];
        const int printed = print(text, sizeof text);
        if (printed < 0) return out_.Fail();
        const auto needed = static_cast<size_t>(printed);
        if (needed < sizeof text) return Emit({text, needed});
        const std::unique_ptr<char, FreeMemory> large(static_cast<char *>(std::malloc(needed + 1)));
        if (!large || print(large.get(), needed + 1) != printed) return out_.Fail();
        Emit({large.get(), needed});
    }

    void WriteCharacter(const Conversion &conversion) noexcept {
        if (conversion.length == FormatLength::kLong) {
            char encoded[4];
            const size_t size = EncodeCharacter(CharacterOf(arguments_.Next<wint_t>()), encoded);
            return EmitPadded(conversion, {encoded, size});
        }
        const auto byte = static_cast<char>(arguments_.Next<int>());
        EmitPadded(conversion, {&byte, 1});
    }

    // How much of a text is seen at most, and so may be read.
    size_t MaximumLength(const Conversion &conversion) const noexcept {
        return conversion.precision < 0 ? limit_ : static_cast<size_t>(conversion.precision);
    }

    // A text with a precision need not end in a zero.
    void WriteText(const Conversion &conversion) noexcept {
        const char *text = arguments_.Next<const char *>();
        const size_t maximum = MaximumLength(conversion);
        EmitPadded(conversion,
                   text ? std::string_view(text, ::strnlen(text, maximum)) : kNull.substr(0, maximum));
    }

    // Whole characters, as many as the precision has bytes for.
    void WriteWideText(const Conversion &conversion) noexcept {
        const wchar_t *wide = arguments_.Next<const wchar_t *>();
        const size_t maximum = MaximumLength(conversion);
        if (!wide) return EmitPadded(conversion, kNull.substr(0, maximum));
        TextBuffer text;
        while (text.View().size() < maximum && *wide && !text.Failed()) {
            const size_t before = text.View().size();
            text.AppendCharacter(CharacterOf(static_cast<wint_t>(*wide++)));
            if (text.View().size() <= maximum) continue;
            text.Truncate(before);
            break;
        }
        if (text.Failed()) return out_.Fail();
        EmitPadded(conversion, text.View());
    }

    void WriteValue(const Conversion &conversion) noexcept {
        const void *value = arguments_.Next<const void *>();
        const size_t maximum = MaximumLength(conversion);
        if (!value) return EmitPadded(conversion, kNull.substr(0, maximum));
        if (ValGetType(value) == kValTypeString) {
            const std::string_view text = Text(static_cast<const ValString *>(value));
            return EmitPadded(conversion, text.substr(0, maximum));
        }
        const Ref<const ValString> description = Adopt(ValCopyDescription(value));
        if (!description) return out_.Fail();
        EmitPadded(conversion, Text(description).substr(0, maximum));
    }

    TextBuffer &out_;
    const size_t limit_;
    const size_t start_; // of what is written here
    std::string_view rest_;
    FormatArguments arguments_;
};

} // namespace

void AppendFormatV(TextBuffer &out, size_t limit, const char *format, va_list arguments) noexcept {
    Formatter(out, limit, format, arguments).Run();
}

Ref<const ValString> FormatStringV(const char *format, va_list arguments) noexcept {
    TextBuffer text;
    AppendFormatV(text, SIZE_MAX, format, arguments);
    return text.MakeString();
}

Ref<const ValString> FormatString(const char *format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    Ref<const ValString> text = FormatStringV(format, arguments);
    va_end(arguments);
    return text;
}

} // namespace vellum
