// SPDX-License-Identifier: MIT
// How long it takes to find the languages of a face, by what it covers: nothing, Latin, Latin with Greek
// and Cyrillic, everything.
#include "describe/locale_manager.hpp"
#include "values/val_set.hpp"

#include <benchmark/benchmark.h>

#include <initializer_list>
#include <utility>

using namespace vellum;

namespace {

using TRanges = std::initializer_list<std::pair<uint32_t, uint32_t>>;

Ref<const ValCharacterSet> MakeSet(TRanges ranges) {
    auto set = Adopt(ValCharacterSetCreateMutable());
    for (const auto &[first, last] : ranges) ValCharacterSetAddRange(set.Get(), first, last);
    return set;
}

const TRanges kNothing = {};
const TRanges kLatin = {{0x20, 0x7E},     {0xA0, 0x17F},    {0x218, 0x21B},
                        {0x1E80, 0x1E85}, {0x2010, 0x2044}, {0x20AC, 0x20AC}};
const TRanges kEuropean = {{0x20, 0x7E},   {0xA0, 0x24F},    {0x250, 0x36F},  {0x370, 0x3FF},
                           {0x400, 0x52F}, {0x1E00, 0x1FFF}, {0x2010, 0x2044}};
const TRanges kEverything = {{0, 0x10FFFF}};

void FindLanguages(benchmark::State &state, const TRanges &ranges) {
    const auto set = MakeSet(ranges);
    size_t count = 0;
    for (auto _ : state) {
        const auto languages = TLocaleManager().CopyLanguagesFromCharacterSet(set.Get(), nullptr, nullptr);
        count = ValArrayGetCount(languages.Get());
    }
    state.counters["languages"] = static_cast<double>(count);
}

// As a face asks, with a set of its own beside the array.
void FindLanguagesOfFace(benchmark::State &state, const TRanges &ranges) {
    const auto set = MakeSet(ranges);
    for (auto _ : state) {
        TValMutableSet distinct;
        benchmark::DoNotOptimize(
            TLocaleManager().CopyLanguagesFromCharacterSet(set.Get(), nullptr, distinct.Get()));
    }
}

BENCHMARK_CAPTURE(FindLanguages, nothing, kNothing);
BENCHMARK_CAPTURE(FindLanguages, latin, kLatin);
BENCHMARK_CAPTURE(FindLanguages, european, kEuropean);
BENCHMARK_CAPTURE(FindLanguages, everything, kEverything);
BENCHMARK_CAPTURE(FindLanguagesOfFace, latin, kLatin);
BENCHMARK_CAPTURE(FindLanguagesOfFace, everything, kEverything);

} // namespace
