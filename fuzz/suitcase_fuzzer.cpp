// SPDX-License-Identifier: MIT
// Any bytes as the second fork of a suitcase: its resources are read, and no file that it names lies
// outside of the suitcase's folder.
#include "platform/font/resource_map.hpp"
#include "store/printer_font_name.hpp"
#include "store/suitcase.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace vellum;

namespace {

constexpr std::string_view kFolder = "file:///a/b/";

void Check(bool holds) {
    if (!holds) std::abort();
}

void ReadResources(const TReading &fork) {
    for (const GxTag type :
         {MakeTag("FOND"), MakeTag("sfnt"), MakeTag("NFNT"), MakeTag("vers"), GxTag{0}}) {
        TResourceMap map(fork);
        const auto resources = map.Find(type);
        Check(resources.size() <= kMaximumResources && (resources.empty() || map.HasType(type)));
        uint64_t read = 0;
        for (const TResource &resource : resources)
            if (const auto data = map.Copy(resource)) read += data->Size();
        Check(read <= fork.Size());
    }
}

void CheckFile(const ValURL *url, const ValURL *folder) {
    const auto holder = Adopt(ValURLCopyDeletingLastPathComponent(url));
    const auto name = Adopt(ValURLCopyLastPathComponent(url));
    size_t length = 0;
    const char *bytes = ValStringGetBytes(name.Get(), &length);
    Check(ValEqual(holder.Get(), folder) && !ValURLGetBase(url));
    Check(IsPlainFileName({bytes, length}) && length <= 32 && bytes[0] >= 'A' && bytes[0] <= 'Z');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const TReading fork(TBytes(bytes, size), nullptr);
    ReadResources(fork);
    const auto folder = Adopt(ValURLCreateWithBytes(kFolder.data(), kFolder.size(), nullptr));
    const auto urls = CreatePlatenFontURLsFromFork(fork, folder.Get());
    Check(urls && ValArrayGetCount(urls.Get()) <= kMaximumSuitcaseEntries);
    for (size_t i = 0; i < ValArrayGetCount(urls.Get()); ++i)
        CheckFile(static_cast<const ValURL *>(ValArrayGetValue(urls.Get(), i)), folder.Get());
    return 0;
}
