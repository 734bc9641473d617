// SPDX-License-Identifier: MIT
// The table behind dictionaries and sets: entries in the order in which they were added, and an
// index of their positions, open-addressed by hash, once there are more than a few.
//
// A removed entry stays as a gap, in the entries and in the index, until the table next runs out of
// room; then the entries close up, or move to a larger block. So every index slot belongs to one
// entry, live or not, there is always a free slot, and every probe ends, whatever the callbacks say.
#pragma once

#include "platform/val/callbacks.hpp"
#include "platform/val/hash.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace vellum {

struct SetEntry {
    const void *key;
    uint32_t hash;
    bool live;
};

struct DictionaryEntry {
    const void *key;
    const void *value;
    uint32_t hash;
    bool live;
};

// Callers' hashes may be poor, such as an address: spread over all bits.
inline uint32_t SpreadHash(uint64_t hash) noexcept {
    return static_cast<uint32_t>(HashInteger(hash) >> 32);
}
inline uint32_t HashKey(const ValCallbacks &callbacks, const void *key) noexcept {
    return SpreadHash(HashItem(callbacks, key));
}

template <class Entry>
class HashTable {
public:
    // Tables of this capacity and less have no index: their entries are looked through.
    static constexpr size_t kUnindexed = 8;
    static constexpr size_t kMaximumCapacity = std::min<size_t>(size_t{1} << 30, SIZE_MAX / 64);

    // The memory for a table; `capacity` is at most kMaximumCapacity.
    static size_t BytesFor(size_t capacity) noexcept {
        return capacity * sizeof(Entry) + IndexSize(capacity) * sizeof(uint32_t);
    }

    // Makes an empty table in memory that belongs to the container.
    void Place(void *memory, size_t capacity) noexcept {
        entries_ = static_cast<Entry *>(memory);
        capacity_ = static_cast<uint32_t>(capacity);
        used_ = live_ = 0;
        ClearIndex();
    }

    void FreeMemory() noexcept {
        if (on_heap_) std::free(entries_);
    }

    size_t Count() const noexcept { return live_; }

    Entry *Find(const ValCallbacks &callbacks, const void *key, uint32_t hash) const noexcept {
        if (live_ == 0) return nullptr;
        return FindMatching(hash, [&](const void *other) { return EqualItems(callbacks, other, key); });
    }

    // The entry with this hash of whose key `matches(key)` is true, or null.
    template <class Matching>
    Entry *FindMatching(uint32_t hash, Matching matches) const noexcept {
        auto fits = [&](const Entry &entry) {
            return entry.live && entry.hash == hash && matches(entry.key);
        };
        return IndexSize(capacity_) ? FindIndexed(hash, fits) : FindInOrder(fits);
    }

    // A new entry at the end, of which the caller sets the rest; null when memory is exhausted.
    Entry *Append(const void *key, uint32_t hash) noexcept {
        if (used_ == capacity_ && !MakeRoom()) return nullptr;
        Entry *entry = AppendEntry(key, hash);
        AddToIndex(used_ - 1);
        return entry;
    }

    // The entry with an equal key, or a new one for `key`, in a table that has room for it. Null once
    // `patience` has come to 0, of which each other entry on the way takes one: keys out of other
    // processes may have been chosen to collide.
    Entry *FindOrAppend(const ValCallbacks &callbacks, const void *key, uint32_t hash,
                        size_t &patience) noexcept {
        size_t size = IndexSize(capacity_);
        if (!size) {
            Entry *found = Find(callbacks, key, hash);
            return patience == 0 ? nullptr : found ? found : Append(key, hash);
        }
        for (size_t slot = hash & (size - 1);; slot = (slot + 1) & (size - 1)) {
            if (!Index()[slot]) return AppendAt(slot, key, hash);
            Entry *entry = &entries_[Index()[slot] - 1];
            if (entry->hash == hash && EqualItems(callbacks, entry->key, key)) return entry;
            if (patience > 0) --patience;
            if (patience == 0) return nullptr;
        }
    }

    void Remove(Entry *entry) noexcept {
        entry->live = false;
        --live_;
    }

    // Forgets all entries; the memory is kept.
    void Clear() noexcept {
        used_ = live_ = 0;
        ClearIndex();
    }

    // The live entry at `cursor` or after it, or null; the cursor moves behind it.
    Entry *Next(size_t &cursor) const noexcept {
        while (cursor < used_) {
            Entry *entry = &entries_[cursor++];
            if (entry->live) return entry;
        }
        return nullptr;
    }

private:
    static size_t IndexSize(size_t capacity) noexcept {
        return capacity <= kUnindexed ? 0 : std::bit_ceil(capacity + capacity / 2);
    }

    // The slots hold positions plus one; 0 is a free slot.
    uint32_t *Index() const noexcept { return reinterpret_cast<uint32_t *>(entries_ + capacity_); }

    void ClearIndex() noexcept {
        if (size_t size = IndexSize(capacity_)) std::memset(Index(), 0, size * sizeof(uint32_t));
    }

    Entry *AppendEntry(const void *key, uint32_t hash) noexcept {
        Entry *entry = &entries_[used_++];
        *entry = Entry{};
        entry->key = key;
        entry->hash = hash;
        entry->live = true;
        ++live_;
        return entry;
    }

    // The same for a free slot of the index that is known already.
    Entry *AppendAt(size_t slot, const void *key, uint32_t hash) noexcept {
        Entry *entry = AppendEntry(key, hash);
        Index()[slot] = used_;
        return entry;
    }

    void AddToIndex(uint32_t position) noexcept {
        size_t size = IndexSize(capacity_);
        if (!size) return;
        size_t slot = entries_[position].hash & (size - 1);
        while (Index()[slot]) slot = (slot + 1) & (size - 1);
        Index()[slot] = position + 1;
    }

    template <class Fits>
    Entry *FindInOrder(Fits fits) const noexcept {
        for (uint32_t i = 0; i < used_; ++i) {
            if (fits(entries_[i])) return &entries_[i];
        }
        return nullptr;
    }

    template <class Fits>
    Entry *FindIndexed(uint32_t hash, Fits fits) const noexcept {
        size_t mask = IndexSize(capacity_) - 1;
        for (size_t slot = hash & mask; Index()[slot]; slot = (slot + 1) & mask) {
            Entry *entry = &entries_[Index()[slot] - 1];
            if (fits(*entry)) return entry;
        }
        return nullptr;
    }

    // With a quarter of gaps it is enough to close them.
    bool MakeRoom() noexcept { return capacity_ - live_ > capacity_ / 4 ? CloseGaps() : Grow(); }

    bool CloseGaps() noexcept {
        CopyLiveEntries(entries_);
        return true;
    }

    bool Grow() noexcept {
        size_t capacity = std::max<size_t>(size_t{capacity_} * 2, 4);
        if (capacity > kMaximumCapacity) return false;
        void *memory = Allocate(BytesFor(capacity));
        if (!memory) return false;
        Entry *old = entries_;
        bool was_on_heap = std::exchange(on_heap_, true);
        entries_ = static_cast<Entry *>(memory);
        capacity_ = static_cast<uint32_t>(capacity);
        CopyLiveEntries(old);
        if (was_on_heap) std::free(old);
        return true;
    }

    // Moves the live ones of the used entries at `from` (which may be the table's own) to the front.
    void CopyLiveEntries(const Entry *from) noexcept {
        uint32_t kept = 0;
        for (uint32_t i = 0; i < used_; ++i) {
            if (from[i].live) entries_[kept++] = from[i];
        }
        used_ = kept;
        ClearIndex();
        for (uint32_t i = 0; i < used_; ++i) AddToIndex(i);
    }

    Entry *entries_ = nullptr;
    uint32_t capacity_ = 0;
    uint32_t used_ = 0; // entries with those that were removed
    uint32_t live_ = 0;
    bool on_heap_ = false;
};

} // namespace vellum
