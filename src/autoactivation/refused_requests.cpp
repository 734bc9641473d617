// SPDX-License-Identifier: MIT
// The requests whose fonts the user refused: they are not asked about again.
#include "autoactivation/auto_activation_manager.hpp"
#include "values/out_of_memory.hpp"

#include <memory>

namespace vellum {

namespace {

// One state of the refused set. The next one takes its place and keeps it: who reads one has it for ever,
// without a lock, and people refuse few requests.
struct RefusedRequests {
    Ref<const ValSet> requests;
    const RefusedRequests *former;
};

constinit std::atomic<const RefusedRequests *> sRefusedRequests{nullptr};

Ref<const ValSet> WithRequest(const ValSet *requests, const ValDictionary *request) {
    auto copy = OrBadAlloc(requests ? Adopt(ValSetCreateMutableCopy(requests))
                                    : Adopt(ValSetCreateMutable(0, nullptr)));
    OrBadAlloc(ValSetAdd(copy.Get(), request));
    return copy;
}

} // namespace

bool TAutoActivationManager::IsRequestDisallowed(const ValDictionary *request) noexcept {
    const RefusedRequests *refused = sRefusedRequests.load(std::memory_order_acquire);
    return refused && request && ValSetContains(refused->requests.Get(), request);
}

// One attempt: whoever lost it asked at the same moment as another, and will ask once more at the worst.
void TAutoActivationManager::DisallowRequestInTheFuture(const ValDictionary *request) {
    if (!request || IsRequestDisallowed(request)) return;
    const RefusedRequests *former = sRefusedRequests.load(std::memory_order_acquire);
    auto next = std::make_unique<RefusedRequests>(
        RefusedRequests{WithRequest(former ? former->requests.Get() : nullptr, request), former});
    if (sRefusedRequests.compare_exchange_strong(former, next.get(), std::memory_order_acq_rel))
        static_cast<void>(next.release());
}

} // namespace vellum
