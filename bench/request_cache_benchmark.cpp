// SPDX-License-Identifier: MIT
// What a thread's cache of answers takes: a hit in front, in the middle and at the end of its 40 entries,
// a miss, an insertion; for a name, the same object or an equal one, and for a request dictionary.
#include "ipc/client/request_cache.hpp"

#include <vellum/vellum.hpp>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

using namespace vellum;

namespace {

using TRequest = Ref<const void>;

TRequest Name(int number) {
    const std::string text = "NotoSans-SemiCondensedLight" + std::to_string(number);
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

TRequest Dictionary(int number) {
    const void *keys[] = {kVLFontPropertyFamilyName, kVLFontPropertySubfamilyName, kVLFontPropertyEnabled};
    const TRequest family = Name(number);
    const TRequest style = Name(-number);
    const void *values[] = {family.Get(), style.Get(), kValBooleanTrue};
    return Adopt(ValDictionaryCreate(keys, values, 3));
}

std::vector<TRequest> Make(TRequest (*make)(int)) {
    std::vector<TRequest> requests;
    for (int i = 0; i < static_cast<int>(TRequestCache::kEntries); ++i) requests.push_back(make(i));
    return requests;
}

// Hits that each go to an entry so far behind the one in front: with all 40 in turn, always to the last.
void Hit(benchmark::State &state, TRequest (*make)(int), bool same_object) {
    const std::vector<TRequest> requests = Make(make);
    const std::vector<TRequest> equal = same_object ? requests : Make(make);
    for (const TRequest &request : requests)
        TRequestCache().AddResultForRequest(kValBooleanTrue, request.Get(), 0);
    const auto used = static_cast<size_t>(state.range(0));
    size_t next = requests.size() - used;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TRequestCache().CopyResultForRequest(equal[next].Get(), 0));
        if (++next == requests.size()) next -= used;
    }
}

void HitSameName(benchmark::State &state) {
    Hit(state, Name, true);
}
void HitEqualName(benchmark::State &state) {
    Hit(state, Name, false);
}
void HitEqualDictionary(benchmark::State &state) {
    Hit(state, Dictionary, false);
}
BENCHMARK(HitSameName)->Arg(1)->Arg(20)->Arg(40);
BENCHMARK(HitEqualName)->Arg(1)->Arg(20)->Arg(40);
BENCHMARK(HitEqualDictionary)->Arg(1)->Arg(20)->Arg(40);

void Miss(benchmark::State &state) {
    const std::vector<TRequest> requests = Make(Name);
    for (const TRequest &request : requests)
        TRequestCache().AddResultForRequest(kValBooleanTrue, request.Get(), 0);
    const TRequest other = Name(99);
    for (auto _ : state) benchmark::DoNotOptimize(TRequestCache().CopyResultForRequest(other.Get(), 0));
}
BENCHMARK(Miss);

void Insertion(benchmark::State &state) {
    const std::vector<TRequest> requests = Make(Name);
    size_t next = 0;
    for (auto _ : state) {
        TRequestCache().AddResultForRequest(kValBooleanTrue, requests[next].Get(), 0);
        if (++next == requests.size()) next = 0;
    }
}
BENCHMARK(Insertion);

} // namespace
