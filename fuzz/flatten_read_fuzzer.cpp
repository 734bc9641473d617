// SPDX-License-Identifier: MIT
// Any bytes as flattened values: whatever they are, reading them must be harmless, must go forward, and
// must give whole values.
#include "ipc/encoding/resurrect_context.hpp"
#include "platform/log/log.hpp"
#include "platform/val/object.hpp"

#include <vellum/values.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace vellum;

namespace {

unsigned sLines = 0;

void CountLine(void *, LogLevel, std::string_view, std::span<const LogField>) {
    ++sLines;
}

void Check(bool holds) {
    if (!holds) std::abort();
}

// Asks every value that is in `value`, so that a sanitizer sees what is wrong with it.
void Walk(const void *value, size_t nesting) {
    Check(nesting <= 64);
    Check(ValEqual(value, value) && (!value || ValHash(value) == ValHash(value)));
    if (const ValType type = ValGetType(value); type == kValTypeArray) {
        const auto *array = static_cast<const ValArray *>(value);
        for (size_t i = 0; i < ValArrayGetCount(array); ++i) Walk(ValArrayGetValue(array, i), nesting + 1);
    } else if (type == kValTypeSet) {
        size_t cursor = 0;
        for (const void *member; ValSetNext(static_cast<const ValSet *>(value), &cursor, &member);)
            Walk(member, nesting + 1);
    } else if (type == kValTypeDictionary) {
        size_t cursor = 0;
        const auto *dictionary = static_cast<const ValDictionary *>(value);
        for (const void *key, *item; ValDictionaryNext(dictionary, &cursor, &key, &item);) {
            Check(key && item && ValDictionaryGetValue(dictionary, key) == item);
            Walk(key, nesting + 1);
            Walk(item, nesting + 1);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    SetLogSink({CountLine, nullptr});
    sLines = 0;
    const std::vector<uint8_t> copy(bytes, bytes + size); // not a byte more than there are
    TValResurrectContext context(copy.data(), copy.size());
    while (context.BytesLeft() && !context.IsRefused()) {
        const size_t left = context.BytesLeft();
        const Ref<const void> value = context.Resurrect();
        Check(context.BytesLeft() < left || context.IsRefused());
        Check(!context.IsRefused() || !value);
        Walk(value.Get(), 0);
        static_cast<void>(Adopt(ValCopyDescription(value.Get())));
    }
    Check(sLines <= TValResurrectContext::kMaximumLogLines + 1);
    return 0;
}
