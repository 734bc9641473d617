// SPDX-License-Identifier: MIT
// TGlobalGlypharyImp: the shared register as this process sees it. Each operation is a message to the font
// server.
//
// Changes are defined in proxy_changes.cpp, everything that asks in proxy_queries.cpp; how the server is
// found, and found again, in server_contact.cpp.
#pragma once

#include "frame/registry/glyphary_imp.hpp"
#include "ipc/client/kept_replies.hpp"
#include "ipc/client/stubs.hpp"

#include <atomic>

namespace vellum {

// What the server hears of a scope.
constexpr VLScope kScopeOnTheWire = 0x4003;

// Two kinds of lookup always ask for what all processes share.
constexpr VLScope kScopeOfSharedLookups = 6;

// As in every register, operations are called with the mutex held, which waits with them for the server.
// When the server cannot be reached, or answers nonsense, they answer that there is nothing. A child that
// was forked has a proxy of its own: its parent's may be locked for ever.
class TGlobalGlypharyImp final : public TGlypharyImp {
public:
    // Meets the server.
    TGlobalGlypharyImp() { RendezvousWithServer(); }

    Ref<const ValArray> CopyPropertiesForFontsMatchingRequest(const ValDictionary *request,
                                                              const ValSet *keys,
                                                              VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertiesForFontMatchingRequest(const ValDictionary *request,
                                                                  const ValSet *keys,
                                                                  VLScope scope) const override;
    Ref<const ValArray> CopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertiesForFonts(const ValArray *urls, const ValSet *keys,
                                                    VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertyForFonts(const ValArray *urls, const ValString *key,
                                                  VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                   VLScope scope) const override;
    Ref<const ValDictionary> ExperimentalDataFunnel(const ValDictionary *query,
                                                    VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontNames(VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontFamilyNames(VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontURLs(VLScope scope) const override;
    Ref<const ValArray> CopyFamilyNamesForLanguage(const ValString *language, VLScope options,
                                                   uint32_t reserved) const override;
    Ref<const ValURL> CopyFontForName(const ValString *name, VLScope scope) const override;
    Ref<const ValArray> CopyFontsForURL(const ValURL *url, VLScope scope) const override;
    Ref<const ValURL> CopyFontForRequest(const ValDictionary *request, VLScope scope) const override;
    Ref<const ValArray> CopyFontsForRequest(const ValDictionary *request, VLScope scope) const override;
    Ref<const ValURL> CopyFontForCharacter(uint32_t character, uint32_t options,
                                           uint32_t reserved) const override;

    // `properties` is a ready-made registration: a dictionary from URLs to their registration properties.
    // Without one, it is made here, and fonts of which nothing can be read count as failed.
    bool RegisterFonts(const ValArray *urls, const ValDictionary *properties, VLFontFlags flags,
                       VLScope scope, ErrorArray errors) const override;
    bool RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                      VLScope scope) const override;
    bool UnregisterFont(const ValURL *url, VLScope scope) const override;
    bool UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const override;
    bool EnableFont(const ValURL *url, VLScope scope) const override;
    bool DisableFont(const ValURL *url, VLScope scope) const override;
    Ref<const ValArray> EnableFonts(const ValArray *urls, VLScope scope) const override;
    Ref<const ValArray> DisableFonts(const ValArray *urls, VLScope scope) const override;
    bool RegisterFontDirectory(const ValURL *directory, const ValData *bookmark, uint32_t flags,
                               uint32_t options, VLScope scope, bool reserved) const override;
    bool UnregisterFontDirectory(const ValURL *directory, VLScope scope) const override;

    Ref<VLMessagePort> CreateFontProviderPort(const FontProviderBlock &block) const override;
    Ref<const ValArray> CopyRemoteFontProviders() const override;

    bool IsFontRegistered(const ValURL *url) const override;
    bool IsFontEnabled(const ValURL *url) const override;
    VLScope GetFontScope(const ValURL *url) const override;
    uint32_t GetFontPriority(const ValURL *url) const override;
    uint32_t GetFontReference(const ValURL *url) const override;

    // Always null: what is asked for is a font reference, which is no URL. Deliberate.
    Ref<const ValURL> CopyFontDirectoryURL(const ValURL *url) const override;

    // The proxy keeps no indexes.
    Ref<const ValSet> SearchIndexedFontsForName(uint16_t, const ValString *) const override {
        return nullptr;
    }
    uint16_t GetIndexCount(uint16_t &) const override { return 0; }
    TFontIndex *GetIndex(uint16_t) const override { return nullptr; }
    TFontIndex *GetIndexForProperty(const ValString *) const override { return nullptr; }

    // Who has it locked may wait for the server, and who waits for that one waits outside, too.
    std::unique_lock<std::mutex> Lock() const override;

    // The server's port, looked up when there is none; kPortNull when there is no server.
    PortName GetServerPort() const noexcept;

private:
    // Asks the server for the answers about the common fonts, which seed the calling thread's cache.
    void RendezvousWithServer() const noexcept;

    // Whether to send again what was sent to `port` and gave `code`. When nobody is there any more, the
    // server is met again; the third time nothing is.
    bool SetupForIPCRetry(MachCode code, PortName port, uint32_t &retries) const noexcept;

    // Sends until it is done, or not worth another try; `send(port)` gives a code. True when it succeeded.
    template <class Send>
    bool Converse(const char *operation, Send send) const;

    // The value in the reply of `send(port, memory)`; null without one.
    template <class T, class Send>
    Ref<const T> Ask(const char *operation, Send send) const;

    // The items of that kind in the array that the reply brings; null without one.
    template <class T, class Send>
    Ref<const ValArray> AskForList(const char *operation, Send send) const;

    // The URL in the reply of `send(port, text)`.
    template <class Send>
    Ref<const ValURL> AskForURL(const char *operation, Send send) const;

    Ref<const ValArray> AskForFonts(const char *operation, const ValDictionary *request) const;
    Ref<const void> AskForProperty(const ValURL *url, const ValString *key) const;

    // What the server made of a change of many fonts; nothing of one that it has not heard of.
    struct ChangedFonts {
        bool is_heard = false;
        bool is_done = false;
        Ref<const ValArray> fonts; // as the message has it: those that failed, or that changed
    };

    // Changes many fonts by `send(port, memory, scope, batch)`.
    template <class Send>
    ChangedFonts ChangeFonts(const char *operation, const void *value, VLScope scope, Send send) const;

    // Changes one font or folder by `send(port, url, result)`. True when the server says that it is done;
    // false, with nothing sent, for a URL that does not fit.
    template <class Send>
    bool ChangeOne(const char *operation, const ValURL *url, Send send) const;

    mutable std::atomic<PortName> server_{kPortNull};
    mutable KeptReplies kept_;
};

} // namespace vellum
