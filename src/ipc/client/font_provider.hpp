// SPDX-License-Identifier: MIT
// Font providers: processes that have fonts to give, each reached by a message port of its own.
#pragma once

#include "frame/registry/glyphary_imp.hpp"
#include "ipc/client/message_port_value.hpp"

namespace vellum {

// The keys of a provider's dictionary, and of a request to one.
Ref<const ValString> ProviderKey(const char *name);

// What is known of a provider, in its own process or in another.
class TFontProvider {
public:
    virtual ~TFontProvider() = default;

    int32_t GetProcessID() const noexcept { return process_; }
    const ValUUID *GetUUID() const noexcept { return uuid_.Get(); } // borrowed

    // A port to answer or to ask by; null when there is none to be had.
    virtual Ref<VLMessagePort> CreatePort() const = 0;

    // The form in which the server lists it: "pid" and "portname".
    Ref<const ValDictionary> CreateProviderDictionary() const;

protected:
    TFontProvider(int32_t process, Ref<const ValUUID> uuid) noexcept
        : process_(process), uuid_(std::move(uuid)) {}

    std::string Name() const; // of the port

private:
    const int32_t process_;
    const Ref<const ValUUID> uuid_;
};

// This process, under a UUID of its own. Its port announces it to the font server, and withdraws it when it
// ends; a server that cannot be reached is no reason to have no port.
class TLocalFontProvider final : public TFontProvider {
public:
    explicit TLocalFontProvider(const FontProviderBlock &block);
    Ref<VLMessagePort> CreatePort() const override;

private:
    const FontProviderBlock block_;
};

// Has a server that has been away hear of this process's providers.
void AnnounceProvidersAgain() noexcept;

// Another process, as the server lists it.
class TRemoteFontProvider final : public TFontProvider {
public:
    explicit TRemoteFontProvider(const ValDictionary *provider);
    Ref<VLMessagePort> CreatePort() const override;
};

// The ports of those that answer, of the providers that the server lists; null for null. No lock is to be
// held: one that takes nobody in is waited for.
Ref<const ValArray> OpenProviderPorts(const ValArray *providers);

// What a provider answers to the data of a message, as `block` says: one request, or an array of them.
Ref<const ValData> AnswerFontRequests(const FontProviderBlock &block, const ValData *data);

} // namespace vellum
