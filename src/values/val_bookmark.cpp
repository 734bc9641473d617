// SPDX-License-Identifier: MIT
#include "values/val_bookmark.hpp"

#include "platform/fs/bookmark.hpp"
#include "values/out_of_memory.hpp"

namespace vellum {

TValBookmark::TValBookmark(const ValURL *url) {
    const TValStr path(Adopt(ValURLCopyFileSystemPath(url)));
    if (!path) return;
    const std::vector<uint8_t> bytes = CreateBookmark(std::string(path.View()));
    if (!bytes.empty()) data_ = OrBadAlloc(Adopt(ValDataCreate(bytes.data(), bytes.size())));
}

TValURL TValBookmark::Resolve() const {
    const auto found = ResolveBookmark({ValDataGetBytes(Get()), ValDataGetLength(Get())});
    return found ? TValURL::FromPath(found->path, found->is_folder) : TValURL();
}

} // namespace vellum
