// SPDX-License-Identifier: MIT
// Values as the case files write them; the notation is told at the top of cases_test.cpp.
#pragma once

#include <vellum/values.hpp>

#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace vellum::test {

using Json = nlohmann::ordered_json; // a dictionary's order counts

// Which names stand for exported keys in a dictionary; all other keys stand for themselves.
enum class CaseKeys { kPlain, kProperties, kTraits, kAxes };

// Makes the values of one case. Whatever is no notation is an exception: a case never means less than it
// says.
class CaseValues {
public:
    // `objects`: the values of which a case needs one and the same object in several places; may be null.
    explicit CaseValues(const Json &objects);

    Ref<const void> Make(const Json &json, CaseKeys keys = CaseKeys::kPlain) const;

    // Null for null.
    Ref<const ValDictionary> Dictionary(const Json &json, CaseKeys keys) const;
    Ref<const ValString> Text(const Json &json) const;

    // A set of property keys, from their names.
    Ref<const ValSet> PropertyKeys(const Json &json) const;

private:
    Ref<const void> MakeNoted(const std::string &kind, const Json &json) const;
    Ref<const void> MakeDictionary(const Json &json, CaseKeys keys) const;
    Ref<const ValDictionary> MakePairs(const Json &json) const;
    Ref<const ValSet> MakeSet(const Json &json) const;

    std::map<std::string, Ref<const void>> objects_;
};

} // namespace vellum::test
