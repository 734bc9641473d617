// SPDX-License-Identifier: MIT
// Values as plain C++: what a value is to whoever sees it from outside, so that what two readers made
// of the same bytes can be compared.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace vellum::test {

enum class ModelKind {
    kNull,
    kString,
    kNumber,
    kBoolean,
    kData,
    kUUID,
    kURL,
    kArray,
    kDictionary,
    kSet,
    kCharacterSet,
};

// The types of numbers; they are numbered as in the flattened form.
enum class ModelNumberType : uint32_t {
    kNone = 0,
    kSInt8 = 1,
    kSInt16 = 2,
    kSInt32 = 3,
    kSInt64 = 4,
    kFloat32 = 5,
    kFloat64 = 6,
};

// Both ends are members.
struct CodePointRange {
    uint32_t first;
    uint32_t last;
    bool operator==(const CodePointRange &) const = default;
};

// Every kind uses the fields that are its own and leaves the others as they are.
struct Model {
    ModelKind kind = ModelKind::kNull;
    std::string bytes;    // of a string (as they are stored), of data, of a UUID; the text of a URL
    std::string absolute; // the text of a URL's absolute form
    ModelNumberType type = ModelNumberType::kNone;
    uint64_t bits = 0;        // an integer in two's complement, an IEEE number, or a boolean's 0 or 1
    std::vector<Model> items; // of an array or a set; of a dictionary key, value, key, value...
    std::vector<CodePointRange> ranges; // ascending, and none touches the next

    // Exact: numbers by type and bits, members of sets and dictionaries in their order, URLs by the
    // text that they were made from too.
    bool operator==(const Model &other) const;

    bool IsNull() const { return kind == ModelKind::kNull; }
};

Model StringModel(std::string text);
Model DataModel(std::string bytes);
Model UUIDModel(std::string bytes);
Model URLModel(std::string text, std::string absolute);
Model BooleanModel(bool value);
Model CharacterSetModel(std::vector<CodePointRange> ranges);
Model IntegerModel(ModelNumberType type, int64_t value);

// A number in single precision is seen from outside only as one in double precision, which makes a
// signalling not-a-number a quiet one: so does this.
Model Float32Model(uint32_t bits);
Model Float64Model(uint64_t bits);
Model EmptyModel(ModelKind kind);

// Equal as keys and members are: numbers by numeric value whatever their type, URLs by their absolute
// form, sets and dictionaries in any order.
bool AreEqualValues(const Model &a, const Model &b);

// Adds a member to a set, or a pair to a dictionary. Of equal members the first stays; of equal keys
// the first stays, with the last one's value.
void AddMember(Model &set, Model member);
void AddPair(Model &dictionary, Model key, Model value);

// For whoever reads a failed test.
std::ostream &operator<<(std::ostream &out, const Model &model);

} // namespace vellum::test
