// SPDX-License-Identifier: MIT
// The question as the user reads it. Names and paths in it are strangers' texts.
#pragma once

#include <vellum/values.h>

#include <string>
#include <string_view>

namespace vellum::companion {

// A stranger's text as it can be shown by any dialogue program. Some of these read markup, or escapes: what
// begins either stands in its full-width form. Control characters, those that turn the direction of text,
// and bytes that are no text are left out, and what is longer than `longest` bytes is cut.
std::string Shown(std::string_view text, size_t longest);

// Which font was asked for, which were found for it, and where each comes from. It begins with words of our
// own. Throws std::bad_alloc.
std::string QuestionFor(const ValDictionary *request, const ValArray *fonts);

} // namespace vellum::companion
