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

void HandOut(ErrorArray errors, Ref<const ValArray> failed) {
    if (errors) *errors = std::move(failed);
}

} // namespace

template <class Send>
TGlobalGlypharyImp::ChangedFonts TGlobalGlypharyImp::ChangeFonts(const char *operation, const void *value,
                                                                 VLScope scope, Send send) const {
    const auto memory = Flattened(value);
    BatchReply reply;
    const bool is_heard = memory && Converse(operation, [&](PortName port) {
                              return send(port, *memory, scope & kScopeOnTheWire, reply);
                          });
    if (!NoteChange(is_heard)) return {};
    return {true, reply.result != 0, OnlyOfKind<ValURL>(Resurrected<ValArray>(reply.failed.bytes))};
}

template <class Send>
bool TGlobalGlypharyImp::ChangeOne(const char *operation, const ValURL *url, Send send) const {
    const auto text = TextOnTheWire(url);
    uint32_t result = 0;
    return text &&
           NoteChange(Converse(operation, [&](PortName port) { return send(port, *text, result); })) &&
           result != 0;
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
    ChangedFonts changed = ChangeFonts(
        "RegisterFonts", properties ? properties : read.fonts.Get(), scope,
        [flags](PortName port, const OutgoingMemory &memory, uint32_t sent_scope, BatchReply &reply) {
            return VLSendRegisterFonts(port, memory, sent_scope, flags, reply);
        });
    if (changed.is_heard && !read.unreadable.IsEmpty()) {
        read.unreadable.AppendArray(changed.fonts.Get());
        changed.fonts = Retain<const ValArray>(read.unreadable.Get());
    }
    HandOut(errors, std::move(changed.fonts));
    return changed.is_done && read.unreadable.IsEmpty();
}

bool TGlobalGlypharyImp::RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                                      VLScope scope) const {
    TValMutableDict registration;
    if (properties) registration.Set(url, properties);
    return RegisterFonts(OneElement(url).Get(), properties ? registration.Get() : nullptr, flags, scope,
                         nullptr);
}

bool TGlobalGlypharyImp::UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const {
    ChangedFonts changed = ChangeFonts("UnregisterFonts", urls, scope, VLSendUnregisterFonts);
    HandOut(errors, std::move(changed.fonts));
    return changed.is_done;
}

bool TGlobalGlypharyImp::UnregisterFont(const ValURL *url, VLScope scope) const {
    return UnregisterFonts(OneElement(url).Get(), scope, nullptr);
}

Ref<const ValArray> TGlobalGlypharyImp::EnableFonts(const ValArray *urls, VLScope scope) const {
    return ChangeFonts("EnableFonts", urls, scope, VLSendEnableFonts).fonts;
}

Ref<const ValArray> TGlobalGlypharyImp::DisableFonts(const ValArray *urls, VLScope scope) const {
    return ChangeFonts("DisableFonts", urls, scope, VLSendDisableFonts).fonts;
}

bool TGlobalGlypharyImp::EnableFont(const ValURL *url, VLScope) const {
    return ChangeOne("EnableFont", url, VLSendEnableFont);
}

bool TGlobalGlypharyImp::DisableFont(const ValURL *url, VLScope) const {
    return ChangeOne("DisableFont", url, VLSendDisableFont);
}

bool TGlobalGlypharyImp::RegisterFontDirectory(const ValURL *directory, const ValData *bookmark,
                                               uint32_t flags, uint32_t options, VLScope scope,
                                               bool) const {
    const auto memory = Flattened(bookmark);
    return memory && ChangeOne("RegisterFontDirectory", directory,
                               [&](PortName port, std::string_view url, uint32_t &result) {
                                   return VLSendRegisterFontDirectory(port, url, *memory, flags, options,
                                                                      scope & kScopeOnTheWire, result);
                               });
}

bool TGlobalGlypharyImp::UnregisterFontDirectory(const ValURL *directory, VLScope scope) const {
    return ChangeOne("UnregisterFontDirectory", directory,
                     [scope](PortName port, std::string_view url, uint32_t &result) {
                         return VLSendUnregisterFontDirectory(port, url, scope & kScopeOnTheWire, result);
                     });
}

} // namespace vellum
