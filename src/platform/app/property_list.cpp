// SPDX-License-Identifier: MIT
#include "platform/app/property_list.hpp"

#include "platform/app/base64.hpp"
#include "platform/late/expat.hpp"
#include "platform/process/passing_failures.hpp"

#include <charconv>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace vellum {
namespace {

constexpr std::string_view kSpaces = " \t\r\n";

std::string_view Trim(std::string_view text) noexcept {
    const size_t first = text.find_first_not_of(kSpaces);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

// A number that is all of the text; white space around it and a plus sign are let pass.
template <class Number>
bool Parse(std::string_view text, Number &number) noexcept {
    text = Trim(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

Ref<const void> MakeString(std::string_view text) noexcept {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}
Ref<const void> MakeInteger(std::string_view text) noexcept {
    int64_t number = 0;
    return Parse(text, number) ? Adopt(ValNumberCreateSInt64(number)) : nullptr;
}
Ref<const void> MakeReal(std::string_view text) noexcept {
    double number = 0;
    return Parse(text, number) ? Adopt(ValNumberCreateFloat64(number)) : nullptr;
}
Ref<const void> MakeTrue(std::string_view text) noexcept {
    return Trim(text).empty() ? Ref<const void>::Retain(kValBooleanTrue) : nullptr;
}
Ref<const void> MakeFalse(std::string_view text) noexcept {
    return Trim(text).empty() ? Ref<const void>::Retain(kValBooleanFalse) : nullptr;
}
Ref<const void> MakeData(std::string_view text) noexcept {
    return DecodeBase64(text);
}

enum class Role { kRoot, kKey, kArray, kDictionary, kLeaf };

// The elements there are. `make` gives a leaf's value from its text, or null for a text that is none.
struct ElementKind {
    std::string_view name;
    Role role;
    Ref<const void> (*make)(std::string_view text) noexcept;
};

constexpr ElementKind kElements[] = {
    {"vlist", Role::kRoot, nullptr},     {"key", Role::kKey, MakeString},
    {"array", Role::kArray, nullptr},    {"dict", Role::kDictionary, nullptr},
    {"string", Role::kLeaf, MakeString}, {"integer", Role::kLeaf, MakeInteger},
    {"real", Role::kLeaf, MakeReal},     {"true", Role::kLeaf, MakeTrue},
    {"false", Role::kLeaf, MakeFalse},   {"data", Role::kLeaf, MakeData},
};

const ElementKind *FindElement(std::string_view name) noexcept {
    for (const ElementKind &kind : kElements) {
        if (kind.name == name) return &kind;
    }
    return nullptr;
}

bool HoldsText(const ElementKind &kind) noexcept {
    return kind.role == Role::kKey || kind.role == Role::kLeaf;
}

// An element that has begun, and what has been read of it.
struct OpenElement {
    const ElementKind *kind;
    std::string text;              // of a key or a leaf
    Ref<ValArray> array;           // of an array
    Ref<ValDictionary> dictionary; // of a dictionary
    Ref<const void> key;           // of a dictionary, between a key and its value
    Ref<const void> value;         // of the root
};

struct ParserDeleter {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
};

class Reader {
public:
    Ref<const void> Read(const char *bytes, size_t length) {
        const std::unique_ptr<XML_ParserStruct, ParserDeleter> parser(
            sExpat.Open() ? XML_ParserCreate("UTF-8") : nullptr);
        if (!parser) {
            ++tPassingFailures;
            return nullptr;
        }
        parser_ = parser.get();
        XML_SetUserData(parser_, this);
        XML_SetElementHandler(parser_, Start, End);
        XML_SetCharacterDataHandler(parser_, Characters);
        XML_SetStartDoctypeDeclHandler(parser_, Doctype);
        const XML_Status status = XML_Parse(parser_, bytes, static_cast<int>(length), XML_TRUE);
        if (XML_GetErrorCode(parser_) == XML_ERROR_NO_MEMORY) ++tPassingFailures;
        return status == XML_STATUS_OK && !refused_ ? std::move(value_) : nullptr;
    }

private:
    // Expat is C: nothing may be thrown through it.
    template <class Work>
    static void Guarded(void *self, Work work) noexcept {
        auto *reader = static_cast<Reader *>(self);
        if (reader->refused_) return;
        bool done = false;
        try {
            done = work(*reader);
        } catch (const std::bad_alloc &) {
            ++tPassingFailures;
        }
        if (done) return;
        reader->refused_ = true;
        XML_StopParser(reader->parser_, XML_FALSE);
    }

    static void Start(void *self, const char *name, const char **) noexcept {
        Guarded(self, [name](Reader &reader) { return reader.StartElement(name); });
    }
    static void End(void *self, const char *) noexcept {
        Guarded(self, [](Reader &reader) { return reader.EndElement(); });
    }
    static void Characters(void *self, const char *text, int length) noexcept {
        Guarded(self, [=](Reader &reader) { return reader.AddText({text, static_cast<size_t>(length)}); });
    }
    static void Doctype(void *self, const char *, const char *, const char *, int) noexcept {
        Guarded(self, [](Reader &) { return false; });
    }

    bool StartElement(std::string_view name) {
        const ElementKind *kind = FindElement(name);
        if (!kind || (kind->role == Role::kRoot) != open_.empty()) return false;
        if (!open_.empty() && !Takes(open_.back(), *kind)) return false;
        if (!HoldsText(*kind) && open_.size() > kMaximumPropertyListNesting) return false;
        OpenElement element{kind, {}, {}, {}, {}, {}};
        if (kind->role == Role::kArray) element.array = Adopt(ValArrayCreateMutable(0, nullptr));
        if (kind->role == Role::kDictionary) {
            element.dictionary = Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
        }
        open_.push_back(std::move(element));
        return true;
    }

    // Whether an element may stand next in another one.
    static bool Takes(const OpenElement &outer, const ElementKind &inner) noexcept {
        switch (outer.kind->role) {
        case Role::kRoot:
            return inner.role != Role::kKey && !outer.value;
        case Role::kArray:
            return inner.role != Role::kKey;
        case Role::kDictionary:
            return (inner.role == Role::kKey) == !outer.key;
        default:
            return false;
        }
    }

    bool AddText(std::string_view text) {
        if (open_.empty() || !HoldsText(*open_.back().kind)) return Trim(text).empty();
        open_.back().text.append(text);
        return true;
    }

    bool EndElement() {
        OpenElement element = std::move(open_.back());
        open_.pop_back();
        Ref<const void> value = Finish(element);
        if (!value) return false;
        if (element.kind->role == Role::kRoot)
            value_ = std::move(value);
        else
            return Give(open_.back(), element.kind->role, std::move(value));
        return true;
    }

    // The element's value; null when it has none, or not all of it.
    static Ref<const void> Finish(OpenElement &element) noexcept {
        switch (element.kind->role) {
        case Role::kRoot:
            return std::move(element.value);
        case Role::kArray:
            return std::move(element.array);
        case Role::kDictionary:
            return element.key ? nullptr : Ref<const void>(std::move(element.dictionary));
        default:
            return element.kind->make(element.text);
        }
    }

    static bool Give(OpenElement &outer, Role role, Ref<const void> value) noexcept {
        if (role == Role::kKey) {
            outer.key = std::move(value);
            return true;
        }
        if (outer.array) return ValArrayAppend(outer.array.Get(), value.Get());
        if (outer.dictionary) {
            const Ref<const void> key = std::exchange(outer.key, nullptr);
            return ValDictionarySetValue(outer.dictionary.Get(), key.Get(), value.Get());
        }
        outer.value = std::move(value);
        return true;
    }

    XML_Parser parser_ = nullptr;
    std::vector<OpenElement> open_;
    Ref<const void> value_;
    bool refused_ = false;
};

} // namespace

Ref<const void> ReadPropertyList(const void *bytes, size_t length) noexcept {
    if (!bytes || length > kMaximumPropertyListSize) return nullptr;
    return Reader().Read(static_cast<const char *>(bytes), length);
}

} // namespace vellum
