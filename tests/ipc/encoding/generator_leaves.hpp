// SPDX-License-Identifier: MIT
// Random values that hold no others, a function a kind. A URL may be null, if the one that was thought
// of is none.
#pragma once

#include "ipc/encoding/generator.hpp"

namespace vellum::test {

Ref<const void> RandomString(Random &random);
Ref<const void> RandomNumber(Random &random);
Ref<const void> RandomBoolean(Random &random);
Ref<const void> RandomData(Random &random);
Ref<const void> RandomUUID(Random &random);
Ref<const void> RandomURL(Random &random);
Ref<const void> RandomCharacterSet(Random &random);

Ref<const void> LargeData(Random &random, size_t length);
Ref<const void> LongString(Random &random, size_t characters);

} // namespace vellum::test
