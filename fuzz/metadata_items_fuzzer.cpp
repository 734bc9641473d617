// SPDX-License-Identifier: MIT
// Results of a search as they may come from any service: what is read, written again, is what came.
#include "platform/beacon/metadata_items.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace vellum;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const auto items = ReadMetadataItems({data, size});
    if (items && !std::ranges::equal(WriteMetadataItems(*items), std::span(data, size))) std::abort();
    return 0;
}
