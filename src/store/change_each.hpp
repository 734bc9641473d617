// SPDX-License-Identifier: MIT
// A batch of changes: each URL in turn, with the ones that failed kept for the caller.
#pragma once

#include "frame/registry/glyphary_protocol.hpp"
#include "values/val_array.hpp"

namespace vellum {

// Calls change(url) for each; true when all succeeded. What failed, and what is no URL, goes into
// *errors, or null when nothing did.
template <class Change>
bool ChangeEach(const ValArray *urls, ErrorArray errors, Change change) {
    TValMutableArray failed;
    for (size_t i = 0; i < ValArrayGetCount(urls); ++i) {
        const void *item = ValArrayGetValue(urls, i);
        const auto *url = Cast<ValURL>(item);
        if (!url || !change(url)) failed.Append(item);
    }
    const bool succeeded = failed.IsEmpty();
    if (errors) *errors = succeeded ? nullptr : failed.Publish();
    return succeeded;
}

} // namespace vellum
