// SPDX-License-Identifier: MIT
// Exported: being a provider of fonts, and reaching those that there are.
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "ipc/client/font_provider.hpp"
#include "ipc/client/message_port_value.hpp"
#include "ipc/notify/distributed_center.hpp"
#include "values/val_str.hpp"

using namespace vellum;

namespace {

// Without a user info, something may have been missed: the server has been away.
void HearOfServer(void *, void *, const ValString *, const void *, const ValDictionary *user_info) {
    if (!user_info) AnnounceProvidersAgain();
}

void ListenForServer() {
    static const bool listens = [] {
        static char observer;
        DistributedCenter::Shared().AddObserver(&observer, HearOfServer,
                                                kVLFontsChangedDistributedNotification);
        return true;
    }();
    static_cast<void>(listens);
}

} // namespace

VLMessagePort *VLCreateFontProviderLocalPort(VLFontProviderCallback callback, void *context,
                                             void (*release)(void *)) noexcept {
    if (!callback) return nullptr;
    Ref<VLMessagePort> port;
    Guard([&] {
        ListenForServer();
        port = SharedRegister().CreateFontProviderPort({callback, context, release});
    });
    return port.Release();
}

const ValArray *VLCopyFontProviderRemotePorts() noexcept {
    return GuardCopy([&] { return SharedRegister().CopyRemoteFontProviderPorts(); });
}

int32_t VLGetMessagePortProcess(const VLMessagePort *port) noexcept {
    return port ? ProcessOf(port) : 0;
}

const ValString *VLCopyMessagePortName(const VLMessagePort *port) noexcept {
    return GuardCopy([&] { return port ? TValStr(NameOf(port)).Ref() : nullptr; });
}
