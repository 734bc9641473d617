// SPDX-License-Identifier: MIT
// What a thread asked the font server lately, and the answers: text layout asks the same few questions
// over and over, and each costs a message there and back.
#pragma once

#include "ipc/client/lru_cache.hpp"

#include <vellum/values.hpp>

namespace vellum {

// One question and its answer.
class TRequestCacheNode : public TLRUCacheNode {
public:
    // An empty one.
    TRequestCacheNode() noexcept = default;
    TRequestCacheNode(const void *request, uint32_t operation, const void *result) noexcept
        : request_(Ref<const void>::Retain(request)), result_(Ref<const void>::Retain(result)),
          hash_(ValHash(request)), operation_(operation) {}

    // Whether it answers this request, whose ValHash is `hash`: the same object, or an equal value.
    bool Answers(const void *request, uint64_t hash, uint32_t operation) const noexcept {
        if (operation_ != operation) return false;
        return request_.Get() == request || (hash_ == hash && ValEqual(request_.Get(), request));
    }

    const Ref<const void> &Result() const noexcept { return result_; }

private:
    Ref<const void> request_; // a name, a request dictionary, a URL; or null
    Ref<const void> result_;  // or null
    uint64_t hash_ = 0;       // of the request
    uint32_t operation_ = 0;
};

// Operations tell apart questions that look the same. To be made before the server is asked:
//
//     const TRequestCache cache;
//     if (auto cached = cache.CopyResultForRequest(name, 0)) return cached;
//     auto answer = ...;
//     cache.AddResultForRequest(answer.Get(), name, 0);
class TRequestCache {
public:
    static constexpr size_t kEntries = 40;

    // The cached answer, whatever its kind; null when there is none. A null answer is kept like any other,
    // but nobody can tell it from none: it is asked for, and added, again.
    Ref<const void> CopyResultForRequest(const void *request, uint32_t operation) const noexcept;

    // Keeps an answer, in place of the one that was not used for longest; not, if a font has changed since
    // this was made.
    void AddResultForRequest(const void *result, const void *request, uint32_t operation) const noexcept;

private:
    TPerThreadLRUCache<TRequestCacheNode, kEntries> cache_;
};

} // namespace vellum
