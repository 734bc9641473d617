// SPDX-License-Identifier: MIT
// TGlobalGlypharyImp: everything that has the server change something.
#include "describe/registration_info.hpp"
#include "frame/registry/generation_seed.hpp"
#include "ipc/client/conversation.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

namespace vellum {

namespace {

// What the server has acknowledged makes this process's caches stale at once: who changed something reads
// what has changed.
bool NoteChange(bool is_acknowledged) noexcept {
    if (is_acknowledged) TGenerationSeed::UpdateGeneration();
    return is_acknowledged;
}

// The registration properties of fonts, read here, and the fonts that have none.
struct Registration {
    TValMutableDict fonts;
    TValMutableArray unreadable;
};

Registration Read(const ValArray *urls) {
    Registration registration;
    for (const void *item : Elements(urls)) {
        const auto *url = Cast<ValURL>(item);
        const auto properties = url ? CopyRegistrationInfo(url, false) : nullptr;
        if (properties)
            registration.fonts.Set(url, properties.Get());
        else
            registration.unreadable.Append(item);
    }
    return registration;
}

Ref<const ValArray> OneElement(const ValURL *url) {
    const void *const item = url;
    return OrBadAlloc(Adopt(ValArrayCreate(&item, 1)));
}

void HandOut(ErrorArray errors, Ref<const ValArray> failed) {
    if (errors) *errors = std::move(failed);
}

} // namespace

template <class Send>
bool TGlobalGlypharyImp::ChangeFonts(const char *operation, const void *value, Send send,
                                     Ref<const ValArray> &fonts, uint32_t &result) const {
    const auto memory = Flattened(value);
    BatchReply reply;
    const bool is_done =
        memory && Converse(operation, [&](PortName port) { return send(port, *memory, reply); });
    if (!NoteChange(is_done)) return false;
    fonts = Resurrected<ValArray>(reply.failed.bytes);
    result = reply.result;
    return true;
}

bool TGlobalGlypharyImp::RegisterFonts(const ValArray *urls, const ValDictionary *properties,
                                       VLFontFlags flags, VLScope scope, ErrorArray errors) const {
    Registration read;
    if (!properties) {
        read = Read(urls);
        if (read.fonts.IsEmpty()) {
            HandOut(errors, Retain(urls));
            return false;
        }
    }
    Ref<const ValArray> failed;
    uint32_t result = 0;
    const bool is_done = ChangeFonts(
        "RegisterFonts", properties ? properties : read.fonts.Get(),
        [&](PortName port, const OutgoingMemory &memory, BatchReply &reply) {
            return VLSendRegisterFonts(port, memory, scope & kScopeOnTheWire, flags, reply);
        },
        failed, result);
    if (is_done && !read.unreadable.IsEmpty()) {
        read.unreadable.AppendArray(failed.Get());
        failed = Retain<const ValArray>(read.unreadable.Get());
    }
    HandOut(errors, std::move(failed));
    return is_done && result != 0 && read.unreadable.IsEmpty();
}

bool TGlobalGlypharyImp::RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                                      VLScope scope) const {
    TValMutableDict registration;
    if (properties) registration.Set(url, properties);
    return RegisterFonts(OneElement(url).Get(), properties ? registration.Get() : nullptr, flags, scope,
                         nullptr);
}

bool TGlobalGlypharyImp::UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const {
    Ref<const ValArray> failed;
    uint32_t result = 0;
    ChangeFonts(
        "UnregisterFonts", urls,
        [&](PortName port, const OutgoingMemory &memory, BatchReply &reply) {
            return VLSendUnregisterFonts(port, memory, scope & kScopeOnTheWire, reply);
        },
        failed, result);
    HandOut(errors, std::move(failed));
    return result != 0;
}

bool TGlobalGlypharyImp::UnregisterFont(const ValURL *url, VLScope scope) const {
    return UnregisterFonts(OneElement(url).Get(), scope, nullptr);
}

Ref<const ValArray> TGlobalGlypharyImp::EnableFonts(const ValArray *urls, VLScope scope) const {
    Ref<const ValArray> enabled;
    uint32_t result = 0;
    ChangeFonts(
        "EnableFonts", urls,
        [&](PortName port, const OutgoingMemory &memory, BatchReply &reply) {
            return VLSendEnableFonts(port, memory, scope & kScopeOnTheWire, reply);
        },
        enabled, result);
    return enabled;
}

Ref<const ValArray> TGlobalGlypharyImp::DisableFonts(const ValArray *urls, VLScope scope) const {
    Ref<const ValArray> disabled;
    uint32_t result = 0;
    ChangeFonts(
        "DisableFonts", urls,
        [&](PortName port, const OutgoingMemory &memory, BatchReply &reply) {
            return VLSendDisableFonts(port, memory, scope & kScopeOnTheWire, reply);
        },
        disabled, result);
    return disabled;
}

bool TGlobalGlypharyImp::EnableFont(const ValURL *url, VLScope) const {
    const auto text = TextOnTheWire(url);
    uint32_t result = 0;
    return text &&
           NoteChange(Converse("EnableFont",
                               [&](PortName port) { return VLSendEnableFont(port, *text, result); })) &&
           result != 0;
}

bool TGlobalGlypharyImp::DisableFont(const ValURL *url, VLScope) const {
    const auto text = TextOnTheWire(url);
    uint32_t result = 0;
    return text &&
           NoteChange(Converse("DisableFont",
                               [&](PortName port) { return VLSendDisableFont(port, *text, result); })) &&
           result != 0;
}

bool TGlobalGlypharyImp::RegisterFontDirectory(const ValURL *directory, const ValData *bookmark,
                                               uint32_t flags, uint32_t options, VLScope scope,
                                               bool) const {
    const auto text = TextOnTheWire(directory);
    const auto memory = Flattened(bookmark);
    uint32_t result = 0;
    return text && memory &&
           NoteChange(Converse("RegisterFontDirectory",
                               [&](PortName port) {
                                   return VLSendRegisterFontDirectory(port, *text, *memory, flags, options,
                                                                      scope & kScopeOnTheWire, result);
                               })) &&
           result != 0;
}

bool TGlobalGlypharyImp::UnregisterFontDirectory(const ValURL *directory, VLScope scope) const {
    const auto text = TextOnTheWire(directory);
    uint32_t result = 0;
    return text &&
           NoteChange(Converse("UnregisterFontDirectory",
                               [&](PortName port) {
                                   return VLSendUnregisterFontDirectory(port, *text,
                                                                        scope & kScopeOnTheWire, result);
                               })) &&
           result != 0;
}

} // namespace vellum
