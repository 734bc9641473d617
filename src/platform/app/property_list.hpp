// SPDX-License-Identifier: MIT
// Property lists: values as XML that people can write.
//
//     <vlist version="1.0">
//         <dict>
//             <key>Name</key> <string>Foo</string>
//             <key>Weights</key> <array> <integer>400</integer> <real>0.5</real> </array>
//             <key>Hidden</key> <false/>
//             <key>Mark</key> <data>SGVsbG8=</data>
//         </dict>
//     </vlist>
#pragma once

#include <vellum/values.hpp>

#include <cstddef>

namespace vellum {

// What property lists are held to: more than any has that is meant well.
inline constexpr size_t kMaximumPropertyListSize = size_t{1} << 24; // 16 MiB
inline constexpr size_t kMaximumPropertyListNesting = 64;

// The one value of a property list; integers are 64-bit numbers, reals double-precision ones. Of equal
// keys the last value counts. Null for whatever is no property list, is larger or nested deeper than
// stated, declares a document type or uses an entity other than XML's five; and when memory is exhausted.
Ref<const void> ReadPropertyList(const void *bytes, size_t length) noexcept;

// The property list of a value, laid out for people: ReadPropertyList gives an equal value back. Null for
// what has no form there: values other than strings, numbers, booleans, data, arrays and dictionaries; keys
// that are no strings; text that XML cannot hold, such as control characters; what is no number (NaN); what
// is larger or nested deeper than stated; containers with a caller's callbacks. And when memory is
// exhausted.
Ref<const ValData> WritePropertyList(const void *value) noexcept;

} // namespace vellum
