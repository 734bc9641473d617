// SPDX-License-Identifier: MIT
// Making, comparing and printing models.
#include "ipc/encoding/reference_model.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <utility>

namespace vellum::test {
namespace {

Model BytesModel(ModelKind kind, std::string bytes) {
    Model model;
    model.kind = kind;
    model.bytes = std::move(bytes);
    return model;
}

Model NumberModel(ModelNumberType type, uint64_t bits) {
    Model model;
    model.kind = ModelKind::kNumber;
    model.type = type;
    model.bits = bits;
    return model;
}

bool IsInteger(const Model &number) {
    return number.type <= ModelNumberType::kSInt64;
}

int64_t IntegerOf(const Model &number) {
    return static_cast<int64_t>(number.bits);
}

double RealOf(const Model &number) {
    if (number.type == ModelNumberType::kFloat64) return std::bit_cast<double>(number.bits);
    return static_cast<double>(std::bit_cast<float>(static_cast<uint32_t>(number.bits)));
}

// Without a rounding: most 64-bit integers have no neighbour in double precision.
bool IsSameNumber(int64_t integer, double real) {
    constexpr double kLimit = 9223372036854775808.0; // one more than the largest integer
    if (!(real >= -kLimit && real < kLimit) || real != std::trunc(real)) return false;
    return static_cast<int64_t>(real) == integer;
}

bool AreEqualNumbers(const Model &a, const Model &b) {
    if (IsInteger(a) && IsInteger(b)) return a.bits == b.bits;
    if (IsInteger(a)) return IsSameNumber(IntegerOf(a), RealOf(b));
    if (IsInteger(b)) return IsSameNumber(IntegerOf(b), RealOf(a));
    if (std::isnan(RealOf(a))) return std::isnan(RealOf(b));
    return RealOf(a) == RealOf(b);
}

const Model *FindMember(const Model &set, const Model &member) {
    for (const Model &other : set.items) {
        if (AreEqualValues(other, member)) return &other;
    }
    return nullptr;
}

// The index of the key's value; 0 when the key is not there, for no value stands there.
size_t FindValue(const Model &dictionary, const Model &key) {
    for (size_t i = 0; i < dictionary.items.size(); i += 2) {
        if (AreEqualValues(dictionary.items[i], key)) return i + 1;
    }
    return 0;
}

// Members differ from each other, so that as many in both are the same ones if each of one is in the
// other.
bool AreEqualSets(const Model &a, const Model &b) {
    return a.items.size() == b.items.size() &&
           std::all_of(a.items.begin(), a.items.end(),
                       [&b](const Model &member) { return FindMember(b, member) != nullptr; });
}

bool AreEqualDictionaries(const Model &a, const Model &b) {
    if (a.items.size() != b.items.size()) return false;
    for (size_t i = 0; i < a.items.size(); i += 2) {
        const size_t found = FindValue(b, a.items[i]);
        if (found == 0 || !AreEqualValues(a.items[i + 1], b.items[found])) return false;
    }
    return true;
}

bool AreEqualArrays(const Model &a, const Model &b) {
    return std::equal(a.items.begin(), a.items.end(), b.items.begin(), b.items.end(), AreEqualValues);
}

std::string Quoted(std::string_view bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        char escape[5];
        std::snprintf(escape, sizeof escape, c >= ' ' && c <= '~' ? "%c" : "\\x%02x",
                      static_cast<unsigned char>(c));
        text += escape;
    }
    return text + '"';
}

std::string Number(const Model &number) {
    char text[64];
    if (IsInteger(number)) {
        std::snprintf(text, sizeof text, "%lld (", static_cast<long long>(IntegerOf(number)));
    } else {
        std::snprintf(text, sizeof text, "%.17g (bits %llx, ", RealOf(number),
                      static_cast<unsigned long long>(number.bits));
    }
    return text + ("type " + std::to_string(static_cast<uint32_t>(number.type))) + ')';
}

void PrintItems(std::ostream &out, const Model &container) {
    out << '(';
    for (size_t i = 0; i < container.items.size(); ++i) out << (i == 0 ? "" : ", ") << container.items[i];
    out << ')';
}

void PrintRanges(std::ostream &out, const Model &set) {
    for (const auto &[first, last] : set.ranges) out << ' ' << first << '-' << last;
}

} // namespace

bool Model::operator==(const Model &other) const {
    return kind == other.kind && bytes == other.bytes && absolute == other.absolute && type == other.type &&
           bits == other.bits && items == other.items && ranges == other.ranges;
}

Model StringModel(std::string text) {
    return BytesModel(ModelKind::kString, std::move(text));
}
Model DataModel(std::string bytes) {
    return BytesModel(ModelKind::kData, std::move(bytes));
}
Model UUIDModel(std::string bytes) {
    return BytesModel(ModelKind::kUUID, std::move(bytes));
}
Model URLModel(std::string text, std::string absolute) {
    Model model = BytesModel(ModelKind::kURL, std::move(text));
    model.absolute = std::move(absolute);
    return model;
}
Model BooleanModel(bool value) {
    Model model = EmptyModel(ModelKind::kBoolean);
    model.bits = value;
    return model;
}
Model CharacterSetModel(std::vector<CodePointRange> ranges) {
    Model model = EmptyModel(ModelKind::kCharacterSet);
    model.ranges = std::move(ranges);
    return model;
}
Model IntegerModel(ModelNumberType type, int64_t value) {
    return NumberModel(type, static_cast<uint64_t>(value));
}
Model Float32Model(uint32_t bits) {
    constexpr uint32_t kQuiet = 0x00400000;
    const bool is_nan = std::isnan(std::bit_cast<float>(bits));
    return NumberModel(ModelNumberType::kFloat32, is_nan ? bits | kQuiet : bits);
}
Model Float64Model(uint64_t bits) {
    return NumberModel(ModelNumberType::kFloat64, bits);
}
Model EmptyModel(ModelKind kind) {
    Model model;
    model.kind = kind;
    return model;
}

bool AreEqualValues(const Model &a, const Model &b) {
    if (a.kind != b.kind) return false;
    switch (a.kind) {
    case ModelKind::kNumber:
        return AreEqualNumbers(a, b);
    case ModelKind::kURL:
        return a.absolute == b.absolute;
    case ModelKind::kArray:
        return AreEqualArrays(a, b);
    case ModelKind::kDictionary:
        return AreEqualDictionaries(a, b);
    case ModelKind::kSet:
        return AreEqualSets(a, b);
    default:
        return a == b;
    }
}

void AddMember(Model &set, Model member) {
    if (!FindMember(set, member)) set.items.push_back(std::move(member));
}

void AddPair(Model &dictionary, Model key, Model value) {
    if (const size_t found = FindValue(dictionary, key)) {
        dictionary.items[found] = std::move(value);
        return;
    }
    dictionary.items.push_back(std::move(key));
    dictionary.items.push_back(std::move(value));
}

std::ostream &operator<<(std::ostream &out, const Model &model) {
    static constexpr const char *kNames[] = {"null",       "string", "number",       "boolean",
                                             "data",       "uuid",   "url",          "array",
                                             "dictionary", "set",    "character-set"};
    out << kNames[static_cast<size_t>(model.kind)];
    switch (model.kind) {
    case ModelKind::kNull:
        return out;
    case ModelKind::kNumber:
        return out << ' ' << Number(model);
    case ModelKind::kBoolean:
        return out << (model.bits ? " true" : " false");
    case ModelKind::kURL:
        return out << ' ' << Quoted(model.bytes) << " = " << Quoted(model.absolute);
    case ModelKind::kCharacterSet:
        PrintRanges(out, model);
        return out;
    case ModelKind::kArray:
    case ModelKind::kDictionary:
    case ModelKind::kSet:
        PrintItems(out, model);
        return out;
    default:
        return out << ' ' << Quoted(model.bytes);
    }
}

} // namespace vellum::test
