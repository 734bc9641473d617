// SPDX-License-Identifier: MIT
#include "server/kept_names.hpp"

#include "frame/registry/generation_seed.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/process/random.hpp"

#include <cstring>
#include <utility>

namespace vellum {

namespace {

struct EntryHeader {
    uint32_t name_size, url_size;
};

EntryHeader HeaderAt(std::string_view entry) noexcept {
    EntryHeader header;
    std::memcpy(&header, entry.data(), sizeof header);
    return header;
}

std::string_view NameAt(std::string_view entry) noexcept {
    return entry.substr(sizeof(EntryHeader), HeaderAt(entry).name_size);
}

std::string_view URLAt(std::string_view entry) noexcept {
    const EntryHeader header = HeaderAt(entry);
    return entry.substr(sizeof header + header.name_size, header.url_size);
}

} // namespace

KeptNames::KeptNames() noexcept {
    FillRandom(seeds_.data(), sizeof seeds_);
}

std::string KeptNames::Get(std::string_view name, const std::function<std::string()> &make) {
    const uint32_t generation = TGenerationSeed::GetGeneration();
    if (std::exchange(generation_, generation) != generation) Forget();
    if (slots_.empty()) slots_.resize(kSlots);
    if (const uint32_t at = SlotOf(name))
        return std::string(URLAt(std::string_view(entries_).substr(at - 1)));
    const uint32_t failures = tPassingFailures;
    std::string url = make();
    if (!url.empty() && failures == tPassingFailures) Keep(name, url);
    return url;
}

void KeptNames::Forget() noexcept {
    slots_.clear();
    entries_.clear();
    count_ = 0;
}

// The name's, or a free one for it.
uint32_t &KeptNames::SlotOf(std::string_view name) noexcept {
    const std::string_view entries = entries_;
    for (uint64_t slot = HashBytes(name, seeds_);; ++slot) {
        uint32_t &at = slots_[slot % kSlots];
        if (at == 0 || NameAt(entries.substr(at - 1)) == name) return at;
    }
}

void KeptNames::Keep(std::string_view name, std::string_view url) {
    const EntryHeader header = {static_cast<uint32_t>(name.size()), static_cast<uint32_t>(url.size())};
    const size_t size = sizeof header + name.size() + url.size();
    if (count_ == kSlots / 2 || entries_.size() + size > kMostBytes) {
        Forget();
        slots_.resize(kSlots);
    }
    const auto at = static_cast<uint32_t>(entries_.size());
    entries_.reserve(kMostBytes); // so that nothing fails half done
    entries_.append(reinterpret_cast<const char *>(&header), sizeof header).append(name).append(url);
    SlotOf(name) = at + 1;
    ++count_;
}

} // namespace vellum
