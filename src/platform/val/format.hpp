// SPDX-License-Identifier: MIT
// Text made as printf makes it, with values among the arguments. It is the same in every locale.
//
// The conversions are d i u o x X c s p f F e E g G a A and %, with printf's flags, width, precision
// and lengths, and "@": a value (const void *, borrowed), of which a string gives its own text, any
// other value its description and null "(null)". Everything else, "%n" among it, is written as it
// stands: it takes no argument, except that "%n" and each "*" pass over theirs. Bytes that are no
// UTF-8 stay as they are; widths and precisions of text count bytes, and above 65,536 count as that.
#pragma once

#include "platform/val/text_buffer.hpp"

#include <cstdarg>

namespace vellum {

// Null when memory is exhausted.
Ref<const ValString> FormatString(const char *format, ...) noexcept;
Ref<const ValString> FormatStringV(const char *format, va_list arguments) noexcept;

// Appends the first `limit` bytes of such a text, and takes no more memory than these and one number do,
// at most 64 KiB or so for the latter.
void AppendFormatV(TextBuffer &out, size_t limit, const char *format, va_list arguments) noexcept;

} // namespace vellum
