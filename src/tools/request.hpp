// SPDX-License-Identifier: MIT
// Requests as people write them on a command line: words such as family=Inter, bold, lang=ja.
#pragma once

#include <vellum/vellum.hpp>

#include <string>
#include <vector>

namespace vellum::tool {

// One thing that is wanted of a font: a property, and the value that it must have.
struct Wish {
    std::string words;      // as it was written
    const ValString *key;   // the property
    const ValString *trait; // with traits: which of them; else null
    Ref<const void> value;
};

// The wishes of a request, in the order in which they were written; words for a bit of the symbolic traits
// and values of one kind may stand several times. Throws CLI::ValidationError for what can't be understood.
std::vector<Wish> ReadWishes(const std::vector<std::string> &words);

// The dictionary that the library is asked with. Of two wishes for one thing, bits and characters and
// languages add up; of anything else the last one counts.
Ref<const ValDictionary> MakeRequest(const std::vector<Wish> &wishes);

// What can be asked for, for a verb's help.
std::string RequestHelp();

// The characters of a text; and one character as people write it: itself, or U+00E9.
Ref<const ValCharacterSet> CharactersOf(const std::string &text);
uint32_t ReadCharacter(const std::string &argument, const std::string &text);

// The characters (Unicode scalar values) of UTF-8. Throws CLI::ValidationError, which names the argument,
// for what is none of it.
std::u32string Decode(const std::string &argument, const std::string &text);

} // namespace vellum::tool
