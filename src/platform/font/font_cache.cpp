// SPDX-License-Identifier: MIT
// A short list of files, the last used at its end.
#include "platform/font/font_cache.hpp"

#include "platform/font/limits.hpp"

#include <algorithm>
#include <functional>
#include <mutex>
#include <vector>

namespace vellum {
namespace {

struct TEntry {
    size_t hash;
    TFontFileKey key;
    TFileIdentity identity;
    Ref<const ValArray> fonts;
};

struct TCache {
    std::mutex mutex;
    std::vector<TEntry> entries; // guarded by mutex; least recently used first
};

// Never destroyed: programs ask for fonts until they end.
TCache &Cache() {
    static TCache &sCache = *new TCache;
    return sCache;
}

size_t HashOf(const std::string &path) {
    return std::hash<std::string>()(path);
}

auto FindEntry(std::vector<TEntry> &entries, const TFontFileKey &key) {
    const size_t hash = HashOf(key.path);
    return std::find_if(entries.begin(), entries.end(), [&](const TEntry &entry) {
        return entry.hash == hash && entry.key.path == key.path &&
               ValEqual(entry.key.url.Get(), key.url.Get());
    });
}

bool IsStill(const std::string &path, const TFileIdentity &identity) noexcept {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && TFileIdentity::Of(status) == identity;
}

} // namespace

// The file is looked at without the lock: its file system may be slow to answer.
Ref<const ValArray> CopyCachedFonts(const TFontFileKey &key) {
    TCache &cache = Cache();
    Ref<const ValArray> fonts;
    TFileIdentity identity;
    {
        const std::lock_guard lock(cache.mutex);
        const auto found = FindEntry(cache.entries, key);
        if (found == cache.entries.end()) return nullptr;
        identity = found->identity;
        fonts = found->fonts;
        std::rotate(found, found + 1, cache.entries.end());
    }
    return IsStill(key.path, identity) ? fonts : nullptr;
}

// What leaves the list dies outside of the lock, here and below.
Ref<const ValArray> KeepFonts(const TFontFileKey &key, const TFileIdentity &identity,
                              Ref<const ValArray> fonts) {
    TCache &cache = Cache();
    Ref<const ValArray> evicted;
    const std::lock_guard lock(cache.mutex);
    const auto found = FindEntry(cache.entries, key);
    if (found != cache.entries.end() && found->identity == identity) return found->fonts;
    if (found != cache.entries.end()) {
        evicted = std::move(found->fonts);
        cache.entries.erase(found);
    } else if (cache.entries.size() >= limits::kCachedFiles) {
        evicted = std::move(cache.entries.front().fonts);
        cache.entries.erase(cache.entries.begin());
    }
    cache.entries.push_back({HashOf(key.path), key, identity, fonts});
    return fonts;
}

void ForgetFonts(const std::string *path) {
    TCache &cache = Cache();
    std::vector<TEntry> forgotten;
    const std::lock_guard lock(cache.mutex);
    if (!path) return cache.entries.swap(forgotten);
    const auto kept = std::stable_partition(cache.entries.begin(), cache.entries.end(),
                                            [&](const TEntry &entry) { return entry.key.path != *path; });
    std::move(kept, cache.entries.end(), std::back_inserter(forgotten));
    cache.entries.erase(kept, cache.entries.end());
}

} // namespace vellum
