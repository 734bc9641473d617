// SPDX-License-Identifier: MIT
// What was read from any bytes can be written, and what was written is read back. Nulls in arrays are
// lost on the way, which may make two members of a set equal; after that nothing changes any more.
#include "ipc/encoding/flatten_context.hpp"
#include "ipc/encoding/flattened_size.hpp"
#include "ipc/encoding/resurrect_context.hpp"
#include "ipc/encoding/vm_flatten_context.hpp"
#include "platform/log/log.hpp"

#include <vellum/values.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace vellum;

namespace {

void Swallow(void *, LogLevel, std::string_view, std::span<const LogField>) {}

void Check(bool holds) {
    if (!holds) std::abort();
}

Ref<const void> Read(const ValData *bytes) {
    return TValResurrectContext(ValDataGetBytes(bytes), ValDataGetLength(bytes)).Resurrect();
}

Ref<const ValData> Write(const void *value) {
    auto bytes = Adopt(ValDataCreateMutable(0));
    TValFlattenContext context(bytes.Get(), false);
    context.Flatten(value);
    Check(context.IsOk());
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    SetLogSink({Swallow, nullptr});
    const Ref<const void> first = TValResurrectContext(bytes, size).Resurrect();
    if (!first) return 0;
    const auto written = Write(first.Get());
    Check(ValDataGetLength(written.Get()) <= EstimateFlattenedSize(first.Get()));
    const Ref<const void> second = Read(written.Get());
    Check(static_cast<bool>(second));
    const auto again = Write(second.Get());
    Check(ValDataGetLength(again.Get()) <= ValDataGetLength(written.Get()));
    const Ref<const void> third = Read(again.Get());
    Check(ValEqual(third.Get(), second.Get()));
    Check(ValEqual(Write(third.Get()).Get(), again.Get()));
    if (bytes[size - 1] & 1) return 0; // a memory file takes longer than all of the rest
    const TValVMFlattenContext context(first.Get());
    Check(context.GetLength() == ValDataGetLength(written.Get()) &&
          std::memcmp(context.GetBuffer(), ValDataGetBytes(written.Get()), context.GetLength()) == 0);
    return 0;
}
