// SPDX-License-Identifier: MIT
// A batch of changes: each URL in turn, with the ones that failed kept for the caller.
#pragma once

#include "frame/registry/glyphary_protocol.hpp"
#include "values/val_array.hpp"

namespace vellum {

// Calls change(url) for each; true when all succeeded. What failed, and what is no URL, goes into
// *errors, or null when nothing did. One for which memory does not suffice has failed, and leaves the
// others alone; for the errors there is room from the beginning. May throw std::bad_alloc before anything
// changes.
template <class Change>
bool ChangeEach(const ValArray *urls, ErrorArray errors, Change change) {
    TValMutableArray failed(kValValueCallbacks, ValArrayGetCount(urls));
    for (const void *item : Elements(urls)) {
        const auto *url = Cast<ValURL>(item);
        bool succeeded = false;
        try {
            succeeded = url && change(url);
        } catch (...) {
        }
        if (!succeeded) failed.Append(item);
    }
    const bool succeeded = failed.IsEmpty();
    if (errors) *errors = succeeded ? nullptr : failed.Publish();
    return succeeded;
}

} // namespace vellum
