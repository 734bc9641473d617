// SPDX-License-Identifier: MIT
// Writing and matching of face-selecting fragments. Numbers do not depend on the locale.
#include "platform/font/face_fragment.hpp"

#include "platform/font/instance_naming.hpp"
#include "platform/val/static_string.hpp"
#include "platform/val/string.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace vellum {
namespace {

constexpr char kParameterSeparator = ';';
constexpr char kValueSeparator = '=';
constexpr std::string_view kPostScriptNameKey = "postscript-name";
constexpr std::string_view kAxisPrefix = "var:";
constexpr double kTolerance = 0.01;

constinit const StaticString kAlsoEscaped("#%;=");

std::string Escaped(const ValString *text) {
    return std::string(Text(Adopt(ValStringCopyAddingPercentEscapes(text, kAlsoEscaped.Get()))));
}

Ref<const ValString> Unescaped(std::string_view text) {
    return Adopt(ValStringCopyRemovingPercentEscapes(MakeString(text).Get()));
}

std::string TagText(GxTag tag) {
    return {static_cast<char>(tag >> 24), static_cast<char>(tag >> 16), static_cast<char>(tag >> 8),
            static_cast<char>(tag)};
}

// Everything up to the separator, which is taken off `rest` with it.
std::string_view TakePiece(std::string_view &rest, char separator) {
    const size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return piece;
}

double ReadNumber(std::string_view text) noexcept {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    static_cast<void>(end);
    return error == std::errc() ? number : 0;
}

std::optional<size_t> FindAxis(std::span<const GxAxis> axes, std::string_view axis) {
    for (size_t i = 0; i < axes.size(); ++i) {
        if (Text(axes[i].name) == axis) return i;
    }
    for (size_t i = 0; i < axes.size(); ++i) {
        if (TagText(axes[i].tag) == axis) return i;
    }
    return std::nullopt;
}

} // namespace

std::string MakeFaceFragment(const TFace &face) {
    std::string fragment;
    if (const auto name = face.CopyPostScriptName()) {
        fragment = std::string(kPostScriptNameKey) + kValueSeparator + Escaped(name.Get());
    }
    if (!face.IsInstance()) return fragment;
    for (size_t i = 0; i < face.Axes().size(); ++i) {
        if (!fragment.empty()) fragment += kParameterSeparator;
        fragment += kAxisPrefix;
        fragment += Escaped(MakeString(TagText(face.Axes()[i].tag)).Get());
        fragment += kValueSeparator;
        fragment += ShortestNumber(face.Coordinates()[i]);
    }
    return fragment;
}

TFaceSelector::TFaceSelector(std::string_view fragment) {
    while (!fragment.empty()) {
        std::string_view parameter = TakePiece(fragment, kParameterSeparator);
        // Exactly two pieces, or it is no parameter.
        if (std::count(parameter.begin(), parameter.end(), kValueSeparator) != 1) continue;
        const std::string_view key = TakePiece(parameter, kValueSeparator);
        AddParameter(key, parameter);
    }
}

void TFaceSelector::AddParameter(std::string_view key, std::string_view value) {
    const auto key_text = Unescaped(key);
    const auto value_text = Unescaped(value);
    if (!key_text || !value_text) return;
    const std::string_view name = Text(key_text);
    if (name == kPostScriptNameKey) {
        names_.push_back(value_text);
    } else if (name.starts_with(kAxisPrefix)) {
        axes_.push_back({std::string(name.substr(kAxisPrefix.size())), ReadNumber(Text(value_text))});
    }
}

bool TFaceSelector::Fits(const TFace &face) const {
    const auto has_name = [&](const Ref<const ValString> &name) {
        const auto own = face.CopyPostScriptName();
        return own && ValStringCompare(own.Get(), name.Get(), kValCompareCaseInsensitive) == 0;
    };
    const auto stands_there = [&](const TAxisValue &wanted) {
        const auto axis = FindAxis(face.Axes(), wanted.axis);
        return axis && std::abs(face.Coordinates()[*axis] - wanted.value) < kTolerance;
    };
    return std::all_of(names_.begin(), names_.end(), has_name) &&
           std::all_of(axes_.begin(), axes_.end(), stands_there);
}

} // namespace vellum
