// SPDX-License-Identifier: MIT
// What the model knows of a face: plain values, read once of the face and never asked for again.
#pragma once

#include "platform/font/gx_font.hpp"

#include <vellum/values.hpp>
#include <vellum/vellum.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

// A name as it stands, in lower case, and as the object that the face hands out.
struct ModelName {
    std::string text;
    std::string key;
    Ref<const ValString> object;
};

struct ModelTraits {
    uint32_t symbolic;
    double weight;
    double width;
    double slant;
};

struct ModelAxis {
    std::string name;
    std::string tag;
    int32_t identifier;
};

// The kinds of names, from the first property on.
constexpr size_t kModelNameKinds = 6;
enum ModelNameKind : size_t {
    kModelPostScript = 0,
    kModelFamily = 1,
    kModelFull = 2,
    kModelSubfamily = 3,
};

using CodeRange = std::pair<uint32_t, uint32_t>;

struct ModelFace {
    Ref<const GxFont> font; // for comparison with what an entity of it answers by itself
    Ref<const ValURL> url;
    std::string url_text;
    std::string path; // of the file, as it is known everywhere
    std::array<std::vector<ModelName>, kModelNameKinds> names;
    std::array<std::optional<ModelName>, kModelNameKinds> preferred;
    std::optional<ModelTraits> traits;
    std::vector<CodeRange> coverage; // ascending runs
    Ref<const ValCharacterSet> coverage_object;
    std::optional<std::vector<std::string>> languages;
    std::vector<ModelAxis> axes;
    Ref<const ValArray> axes_object;
    std::optional<std::map<std::string, double>> variations; // from the axis' name

    // Values of which no request can make use, by the numbers of their properties.
    std::map<size_t, Ref<const void>> others;
};

// The 27 property keys; the number of a key is its place from 1, that of any other key 0.
const ValString *ModelKey(size_t number);
size_t ModelNumberOfKey(const ValString *key);

ModelFace ReadModelFace(const Ref<const GxFont> &font);

// All faces of a file, in its order.
std::vector<ModelFace> ReadModelFaces(const ValURL *file);

// How the model reads texts and numbers.
std::string ModelLowercase(const ValString *string);
std::vector<CodeRange> ModelRanges(const ValCharacterSet *set);
uint32_t ModelBits(const void *value);
double ModelReal(const void *value);

// An absolute path without ".", "..", doubled and trailing slashes; of a URL, empty when it names no file.
std::string ModelNormalPath(const std::string &path);
std::string ModelPathOf(const ValURL *url);

// The POSIX path of a URL's absolute form as it stands; none when it has none.
std::optional<std::string> ModelPlainPathOf(const ValURL *url);

// The decoded fragment of a URL's absolute form; none without one.
std::optional<std::string> ModelFragmentOf(const ValURL *url);

} // namespace vellum::test
