// SPDX-License-Identifier: MIT
// Matching and ordering, as data: each case of each file in cases/ is a test, named by its sentence.
//
// A file is {"about": ..., "cases": [...]}. A case has these parts:
//
//   says             the behaviour, one sentence; its words make the test's name
//   faces            from label to the face's properties, in the order in which a sort finds them
//   request, keys    a request (null: none), or instead a set of property keys; each makes a context
//   answers          the labels of the faces that match the request, in their order under its context
//   order            the labels of all faces in that order, whether or not they match
//   compare          rows of two labels and what comparing them gives under the context
//   fits             the labels of the faces that fit `fragment`, or `traits`, or `variations`; the latter
//                    two are sought in `among` (null or absent: nothing is given)
//   compareTraits    rows of two traits dictionaries and what comparing them gives
//   familyNames, postScriptNames   rows of two names and the sign of what comparing them gives
//   objects          values by a name, made once; see "$object"
//
// Keys of properties, of traits and of axes are written as the constants are called, without their prefix
// ("FamilyName", "Weight", "Identifier"); "=FamilyName" is another string object that is equal. Any other
// name is a key of that text. Values are JSON's, an integer being of 32 bits and any other number a double,
// and besides:
//
//   {"$int64": 1}  {"$float": 0.4}  {"$double": "nan"}   numbers of other types, and those JSON lacks
//   {"$bits": "80000000"}  {"$tag": "wght"}              a 32-bit integer by its bits, or as a tag
//   {"$url": "file:///a.ttf"}  {"$data": "text"}
//   {"$characters": ["0041-005A", "1F600"]}              a character set
//   {"$set": [...]}  {"$pairs": [[key, value], ...]}     a set; a dictionary with keys that are no strings
//   {"$object": "name"}                                  always the same object, of those in `objects`
#include "case_runner.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace vellum::test {
namespace {

// "a font's 2 names" is "AFonts2Names".
std::string CamelOf(const std::string &sentence) {
    std::string name;
    bool begins = true;
    for (const char c : sentence) {
        if (c == '\'') continue;
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte)) name += begins ? static_cast<char>(std::toupper(byte)) : c;
        begins = !std::isalnum(byte);
    }
    return name;
}

class CaseTest : public ::testing::Test {
public:
    explicit CaseTest(Json json) : json_(std::move(json)) {}
    void TestBody() override { RunCase(json_); }

private:
    const Json json_;
};

void RegisterFile(const std::filesystem::path &path) {
    std::ifstream file(path);
    const Json json = Json::parse(file);
    const std::string suite = "CasesOf" + CamelOf(path.stem().string());
    for (const Json &one : json.at("cases")) {
        const auto name = CamelOf(one.at("says").get<std::string>());
        ::testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, path.c_str(), 1,
                                [one]() -> CaseTest * { return new CaseTest(one); });
    }
}

void RegisterFiles() {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(VELLUM_CASES_DIR)) {
        if (entry.path().extension() == ".json") paths.push_back(entry.path());
    }
    std::ranges::sort(paths);
    for (const auto &path : paths) RegisterFile(path);
}

} // namespace
} // namespace vellum::test

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    try {
        vellum::test::RegisterFiles();
    } catch (const std::exception &error) { // a file that is no case file: no test may pass then
        std::cerr << error.what() << '\n';
        return 1;
    }
    return RUN_ALL_TESTS();
}
