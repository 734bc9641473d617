// SPDX-License-Identifier: MIT
// Fonts that other programs offer: each is asked for those that it has for the request.
#include "autoactivation/auto_activation_manager.hpp"
#include "autoactivation/found_fonts.hpp"
#include "frame/handles/registers.hpp"
#include "ipc/client/font_provider.hpp"
#include "ipc/client/message_port_value.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <unistd.h>

namespace vellum {

namespace {

// The message in which a provider is asked.
constexpr int32_t kFontRequestMessage = 1;

// More fonts for one request are no answer to it, and would keep the register from everybody else.
constexpr size_t kMostOffered = 4096;

// What is said to be fonts, the first so many. A provider may say anything.
Ref<const ValArray> URLsIn(const ValArray *answer) {
    TValMutableArray urls;
    for (const void *element : Elements(answer))
        if (Cast<ValURL>(element) && urls.Count() < kMostOffered) urls.Append(element);
    return urls.IsEmpty() ? nullptr : urls.Publish();
}

// A provider answers on its main loop: a main thread that waits for its own process waits in vain.
bool WouldWaitForItself(const VLMessagePort *port) noexcept {
    return ProcessOf(port) == ::getpid() && ::gettid() == ::getpid();
}

} // namespace

Ref<const ValData> TAutoActivationManager::CreateFlattenedRequest(const ValDictionary *request) {
    TValMutableDict entries;
    entries.Set(ProviderKey("pid").Get(), MakeNumber(static_cast<int32_t>(::getpid())).Get());
    entries.Set(ProviderKey("attributes").Get(), request);
    return FlattenedData(entries.Get());
}

Ref<const ValArray> TAutoActivationManager::CopyFontsFromFontProvider(const VLMessagePort *port) const {
    const RemoteMessagePort *provider = RemotePort(port);
    if (!flattened_request_ || !provider || WouldWaitForItself(port)) return nullptr;
    Ref<const ValData> reply;
    if (provider->Send(kFontRequestMessage, flattened_request_.Get(), sPatience.provider_takes_request,
                       sPatience.provider_replies, reply) != MessagePortResult::kDone)
        return nullptr;
    const auto answer =
        Resurrected<ValArray>({ValDataGetBytes(reply.Get()), ValDataGetLength(reply.Get())});
    return URLsIn(answer.Get());
}

// A provider may offer what the font server has: whoever serves it, the process need not register it.
Ref<const ValArray> TAutoActivationManager::CopyFontsOfProviders() const {
    for (const void *element : Elements(provider_ports_.Get())) {
        const auto offered = CopyFontsFromFontProvider(static_cast<const VLMessagePort *>(element));
        if (!offered) continue;
        auto fonts = SharedRegister().CopyFontsForRequest(request_.Get(), kVLScopeAll);
        if (ValArrayGetCount(fonts.Get()) > 0) return fonts;
        ProcessRegister().RegisterFonts(offered.Get(), nullptr, 0, kVLScopeProcess, nullptr);
        fonts = CopyFontsOfProcess();
        if (ValArrayGetCount(fonts.Get()) > 0) return fonts;
    }
    return nullptr;
}

Ref<const ValArray> TAutoActivationManager::CopyActivatableFontsOfProviders() const {
    for (const void *element : Elements(provider_ports_.Get())) {
        const auto offered = CopyFontsFromFontProvider(static_cast<const VLMessagePort *>(element));
        if (auto fonts = CopyFittingFaces(offered.Get(), request_.Get())) return fonts;
    }
    return nullptr;
}

} // namespace vellum
