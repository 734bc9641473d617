// SPDX-License-Identifier: MIT
// What the proxy's operations are made of: sending until it is done, values out of replies, values into
// requests. Included by the files that define TGlobalGlypharyImp.
#pragma once

#include "ipc/client/global_glyphary_imp.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "platform/log/log.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/val/string.hpp"
#include "values/val_array.hpp"
#include "values/val_cast.hpp"
#include "values/val_url.hpp"

#include <algorithm>
#include <optional>

namespace vellum {

// The text of a URL as it stands in a message; nothing when it does not fit or there is none.
inline std::optional<std::string_view> TextOnTheWire(const ValURL *url) noexcept {
    const std::string_view text = vellum::Text(ValURLGetString(url));
    if (text.empty() || text.size() >= kLongestURL) return std::nullopt;
    return text;
}

inline void LogFailure(const char *operation, MachCode code) noexcept {
    Log(LogLevel::kError, "Laydown %s received mig IPC error (%lX) from font server", operation,
        static_cast<long>(static_cast<int32_t>(code)));
}

// The array without what is no T: whoever gets it asks no item of what kind it is. Of an honest server's
// answer that is the array itself. May throw std::bad_alloc.
template <class T>
Ref<const ValArray> OnlyOfKind(Ref<const ValArray> array) {
    const auto is_other = [](const void *item) { return Cast<T>(item) == nullptr; };
    if (std::ranges::none_of(Elements(array.Get()), is_other)) return array;
    TValMutableArray kept;
    for (const void *item : Elements(array.Get()))
        if (!is_other(item)) kept.Append(item);
    return kept.Publish();
}

template <class Send>
bool TGlobalGlypharyImp::Converse(const char *operation, Send send) const {
    for (uint32_t retries = 0;;) {
        const PortName port = GetServerPort();
        const MachCode code = send(port);
        if (code) LogFailure(operation, code);
        if (SetupForIPCRetry(code, port, retries)) continue;
        if (code) ++tPassingFailures;
        return code == kMachSuccess;
    }
}

template <class T, class Send>
Ref<const T> TGlobalGlypharyImp::Ask(const char *operation, Send send) const {
    ReplyMemory reply;
    if (!Converse(operation, [&](PortName port) { return send(port, reply); })) return nullptr;
    return Retain(Cast<T>(kept_.Read(std::move(reply)).Get()));
}

template <class T, class Send>
Ref<const ValArray> TGlobalGlypharyImp::AskForList(const char *operation, Send send) const {
    return OnlyOfKind<T>(Ask<ValArray>(operation, send));
}

template <class Send>
Ref<const ValURL> TGlobalGlypharyImp::AskForURL(const char *operation, Send send) const {
    std::string text;
    if (!Converse(operation, [&](PortName port) { return send(port, text); })) return nullptr;
    return TValURL::FromText(text).Ref();
}

} // namespace vellum
