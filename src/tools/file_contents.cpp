// SPDX-License-Identifier: MIT
#include "tools/file_contents.hpp"

#include <cctype>
#include <iterator>
#include <new>

namespace vellum::tool {

namespace {

Ref<const ValSet> KeysOfFaces() {
    const void *const keys[] = {kVLFontPropertyURL, kVLFontPropertyName, kVLFontPropertyFullName};
    return Adopt(ValSetCreate(keys, std::size(keys)));
}

FoundFont FaceOf(const ValDictionary *properties) {
    const ValURL *url = URLAt(properties, kVLFontPropertyURL);
    FoundFont face;
    face.url = Bytes(ValURLGetString(url));
    face.path = PathOf(url);
    face.postscript_name = Text(StringAt(properties, kVLFontPropertyName)).value_or("");
    face.full_name = Text(StringAt(properties, kVLFontPropertyFullName)).value_or("");
    return face;
}

// All but letters and digits is escaped: nothing of a name is taken for a part of the URL.
std::string PercentEscaped(const std::string &text) {
    constexpr const char *kDigits = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && std::isalnum(byte))
            escaped += c;
        else
            escaped += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return escaped;
}

} // namespace

FileContents::FileContents(const std::vector<std::string> &paths) {
    const auto keep = [this](const ValDictionary *properties) {
        FoundFont face = FaceOf(properties);
        faces_[face.path].push_back(std::move(face));
    };
    const Outcome outcome = ForEachFace({paths, {}}, KeysOfFaces().Get(), keep);
    for (const Refusal &refusal : outcome.refusals) refusals_.emplace(refusal.path, refusal);
}

std::vector<FoundFont> FileContents::FacesOf(const std::string &path,
                                             const std::string &postscript_name) const {
    std::vector<FoundFont> wanted;
    if (const auto found = faces_.find(path); found != faces_.end())
        for (const FoundFont &face : found->second)
            if (postscript_name.empty() || face.postscript_name == postscript_name) wanted.push_back(face);
    return wanted;
}

const Refusal *FileContents::WhyUnreadable(const std::string &path) const {
    const auto found = refusals_.find(path);
    return found == refusals_.end() ? nullptr : &found->second;
}

Ref<const ValURL> ParseURL(const std::string &text) {
    const auto string = Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
    auto url = Adopt(ValURLCreateWithString(string.Get(), nullptr));
    if (!url) throw std::bad_alloc();
    return url;
}

Ref<const ValURL> FaceURL(const std::string &path, const std::string &postscript_name) {
    const std::string file = Bytes(ValURLGetString(FileURL(path).Get()));
    return ParseURL(file + "#postscript-name=" + PercentEscaped(postscript_name));
}

} // namespace vellum::tool
