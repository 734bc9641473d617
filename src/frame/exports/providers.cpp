// SPDX-License-Identifier: MIT
// Exported: being a provider of fonts, and reaching those that there are.
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "ipc/client/font_provider.hpp"
#include "ipc/client/message_port_value.hpp"
#include "ipc/notify/distributed_center.hpp"
#include "platform/process/fork_gate.hpp"
#include "values/val_str.hpp"

#include <atomic>
#include <memory>

using namespace vellum;

namespace {

// Without a user info, something may have been missed: the server has been away.
void HearOfServer(void *, void *, const ValString *, const void *, const ValDictionary *user_info) {
    const InLibrary inside;
    if (!user_info) AnnounceProvidersAgain();
}

// Adding the observer waits for the hub, and two that are added do no harm.
void ListenForServer() {
    static char observer;
    static constinit std::atomic<bool> listens{false};
    if (TGlobalGlyphary::IsServerIgnored() || listens.load(std::memory_order_acquire)) return;
    DistributedCenter::Shared().AddObserver(&observer, HearOfServer,
                                            kVLFontsChangedDistributedNotification);
    listens.store(true, std::memory_order_release);
}

// Releases the context with its last owner, whatever happens.
std::shared_ptr<void> SharedContext(void *context, void (*release)(void *)) {
    return {context, [release](void *last) {
                if (release) release(last);
            }};
}

} // namespace

VLMessagePort *VLCreateFontProviderLocalPort(VLFontProviderCallback callback, void *context,
                                             void (*release)(void *)) noexcept {
    return GuardCopy([&]() -> Ref<VLMessagePort> {
        const FontProviderBlock block = {callback, SharedContext(context, release)};
        if (!callback) return nullptr;
        ListenForServer();
        return SharedRegister().CreateFontProviderPort(block);
    });
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
