// SPDX-License-Identifier: MIT
#include "ipc/client/request_cache.hpp"

namespace vellum {

Ref<const void> TRequestCache::CopyResultForRequest(const void *request,
                                                    uint32_t operation) const noexcept {
    const uint64_t hash = ValHash(request);
    const TRequestCacheNode *node = cache_.FindNode(
        [=](const TRequestCacheNode &candidate) { return candidate.Answers(request, hash, operation); });
    return node ? node->Result() : nullptr;
}

void TRequestCache::AddResultForRequest(const void *result, const void *request,
                                        uint32_t operation) const noexcept {
    cache_.Add(TRequestCacheNode(request, operation, result));
}

} // namespace vellum
