// SPDX-License-Identifier: MIT
// Small caches of a thread: the answers that it had lately, until a font changes anywhere.
//
// No lock guards them, as each belongs to one thread, and nothing is allocated once a thread has its
// cache. What is kept is a type of node derived from TLRUCacheNode.
#pragma once

#include "frame/registry/generation_seed.hpp"
#include "platform/process/per_thread.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace vellum {

// What every entry has: the next one in the order of use.
class TLRUCacheNode {
public:
    TLRUCacheNode() noexcept = default;
    virtual ~TLRUCacheNode() = default;

    // An entry that is overwritten keeps its place.
    TLRUCacheNode(const TLRUCacheNode &) noexcept {}
    TLRUCacheNode &operator=(const TLRUCacheNode &) noexcept { return *this; }

private:
    template <class Node, size_t kCount>
    friend class TLRUCacheImp;

    TLRUCacheNode *next_ = nullptr; // a pointer, and no index, as every lookup goes from one to the next
};

// `kCount` entries in a ring: from the one that was used last (the head) over those before it to the one
// that was not used for longest (the tail), and back to the head.
template <class Node, size_t kCount>
class TLRUCacheImp {
    static_assert(kCount >= 2);

public:
    TLRUCacheImp() noexcept { LinkInOrder(); }
    TLRUCacheImp(const TLRUCacheImp &) = delete;
    TLRUCacheImp &operator=(const TLRUCacheImp &) = delete;

    // The number of the changes that the cache has seen.
    uint32_t Generation() const noexcept { return generation_; }

    // The entry (borrowed) of which `matches` is true, sought from the head; it becomes the head. Null
    // when there is none, and when `matches` itself has used the cache.
    template <class Matching>
    const Node *FindNode(Matching matches) noexcept {
        const size_t moves = moves_;
        TLRUCacheNode *before = tail_;
        TLRUCacheNode *at = head_;
        while (!matches(*static_cast<const Node *>(at))) {
            if (at == tail_) return nullptr;
            before = at;
            at = at->next_;
        }
        if (moves_ != moves) return nullptr;
        MoveToHead(before, at);
        return static_cast<const Node *>(at);
    }

    // Puts an entry in place of the tail; it becomes the head. An older entry that matches the same stays
    // behind it, where it is not found any more: deliberate, as looking for it would cost more than it
    // takes up.
    //
    // What the former entry held is released when all is done: that may call back, and use the cache.
    void Add(Node node) noexcept {
        std::swap(*static_cast<Node *>(tail_), node);
        TLRUCacheNode *before = head_;
        while (before->next_ != tail_) before = before->next_;
        MoveToHead(before, tail_);
    }

    // Empties every entry, and notes the present generation.
    void RemoveAll() noexcept {
        std::array<Node, kCount> former; // released when all is done, as above
        former.swap(entries_);
        generation_ = TGenerationSeed::GetGeneration();
        LinkInOrder();
    }

private:
    void LinkInOrder() noexcept {
        ++moves_;
        head_ = &entries_.front();
        tail_ = &entries_.back();
        for (size_t i = 0; i < kCount; ++i)
            static_cast<TLRUCacheNode &>(entries_[i]).next_ = &entries_[(i + 1) % kCount];
    }

    // Takes the entry at `at` out from behind `before` and puts it in front of the head.
    void MoveToHead(TLRUCacheNode *before, TLRUCacheNode *at) noexcept {
        ++moves_;
        if (at == head_) return;
        if (at == tail_) {
            tail_ = before; // the ring stays as it is: the tail comes right before the head
        } else {
            before->next_ = at->next_;
            at->next_ = head_;
            tail_->next_ = at;
        }
        head_ = at;
    }

    uint32_t generation_ = TGenerationSeed::GetGeneration();
    size_t moves_ = 0;
    std::array<Node, kCount> entries_;
    TLRUCacheNode *head_;
    TLRUCacheNode *tail_;
};

// A handle on the calling thread's cache, which the first handle makes. A cache that a font has changed
// since is emptied. To be made before a question is asked, and used by the thread that made it.
template <class Node, size_t kCount>
class TPerThreadLRUCache {
    using Imp = TLRUCacheImp<Node, kCount>;

public:
    TPerThreadLRUCache() noexcept
        : imp_(TPerThread<Imp>::Get()), generation_(TGenerationSeed::GetGeneration()) {
        if (!imp_)
            imp_ = TPerThread<Imp>::Set(std::unique_ptr<Imp>(new (std::nothrow) Imp));
        else if (imp_->Generation() != generation_)
            imp_->RemoveAll();
    }

    // As TLRUCacheImp has it.
    template <class Matching>
    const Node *FindNode(Matching matches) const noexcept {
        return imp_ ? imp_->FindNode(matches) : nullptr;
    }

    // Adds an answer that was asked for after this handle was made; unless a font has changed meanwhile,
    // for then nobody knows whether the answer is from before.
    void Add(Node node) const noexcept {
        if (!imp_ || TGenerationSeed::GetGeneration() != generation_) return;
        imp_->Add(std::move(node));
    }

private:
    Imp *imp_; // null when there was no memory for one
    const uint32_t generation_;
};

} // namespace vellum
