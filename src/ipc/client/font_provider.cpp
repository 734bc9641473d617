// SPDX-License-Identifier: MIT
#include "ipc/client/font_provider.hpp"

#include "ipc/client/server_name.hpp"
#include "ipc/client/stubs.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "platform/port/ports.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/per_process.hpp"
#include "platform/process/process.hpp"
#include "platform/val/string.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <algorithm>
#include <mutex>
#include <vector>

namespace vellum {

namespace {

// Tells the font server of a provider by one of the two messages that do; true when it has heard.
bool TellServer(MachCode (*send)(PortName, std::string_view), const std::string &uuid) noexcept {
    try {
        const ServerName name;
        PortName server = kPortNull;
        if (!name.IsValid() || bootstrap_look_up(name.Get(), server) != kMachSuccess) return false;
        const bool is_heard = send(server, uuid) == kMachSuccess;
        mach_port_deallocate(server);
        return is_heard;
    } catch (...) { // memory is exhausted
        return false;
    }
}

// What lives as long as a provider's port: it is announced from the beginning to the end.
class TFontProviderInfo {
public:
    TFontProviderInfo(std::string uuid, const FontProviderBlock &block)
        : uuid_(std::move(uuid)), block_(block), is_registered_(true) {
        Announce();
    }
    TFontProviderInfo(const TFontProviderInfo &) = delete;
    TFontProviderInfo &operator=(const TFontProviderInfo &) = delete;

    const FontProviderBlock &Block() const noexcept { return block_; }

    // At the beginning, and to a server that has been away.
    void Announce() noexcept {
        const auto lock = Lock();
        if (is_registered_ && !has_ended_) TellServer(VLSendAddFontProvider, uuid_);
    }

    void Withdraw() noexcept {
        const auto lock = Lock();
        has_ended_ = true;
        if (is_registered_ && TellServer(VLSendRemoveFontProvider, uuid_)) is_registered_ = false;
    }

private:
    std::unique_lock<std::mutex> Lock() noexcept {
        const OutsideLibrary waiting; // like the one that waits for the server's answer
        return std::unique_lock(mutex_);
    }

    const std::string uuid_;
    const FontProviderBlock block_;
    std::mutex mutex_; // held over what is told, so that the server hears it in its order
    bool is_registered_;
    bool has_ended_ = false;
};

// The providers of one process; a parent's are not its children's. The server forgets them when it ends,
// and another one hears of them.
class LocalProviders {
public:
    // Throws std::bad_alloc.
    void Add(const std::shared_ptr<TFontProviderInfo> &provider) {
        const std::lock_guard lock(mutex_);
        std::erase_if(providers_, [](const auto &one) { return one.expired(); });
        providers_.push_back(provider);
    }

    void AnnounceAgain() {
        std::vector<std::weak_ptr<TFontProviderInfo>> providers;
        {
            const std::lock_guard lock(mutex_);
            providers = providers_;
        }
        for (const auto &provider : providers)
            if (const auto alive = provider.lock()) alive->Announce();
    }

private:
    std::mutex mutex_;
    std::vector<std::weak_ptr<TFontProviderInfo>> providers_;
};

constinit PerProcess<LocalProviders> sProviders;

// The block's answer to one request, which may lack either entry.
Ref<const void> Answer(const FontProviderBlock &block, const ValDictionary *request) {
    const TValDict entries(Retain(request));
    const auto *attributes = entries.Get<ValDictionary>(ProviderKey("attributes").Get());
    const int32_t process = ReadSInt32(entries[ProviderKey("pid").Get()]);
    const OutsideLibrary calling;
    return Adopt(block.callback(block.context.get(), attributes, process));
}

} // namespace

void AnnounceProvidersAgain() noexcept {
    try {
        sProviders.Get().AnnounceAgain();
    } catch (...) { // memory is exhausted
    }
}

Ref<const ValString> ProviderKey(const char *name) {
    return TValStr(name).Ref();
}

Ref<const ValDictionary> TFontProvider::CreateProviderDictionary() const {
    TValMutableDict provider;
    provider.Set(ProviderKey("pid").Get(), MakeNumber(process_).Get());
    provider.Set(ProviderKey("portname").Get(), uuid_.Get());
    return provider.Publish();
}

std::string TFontProvider::Name() const {
    return std::string(Text(Adopt(ValUUIDCopyString(GetUUID()))));
}

TLocalFontProvider::TLocalFontProvider(const FontProviderBlock &block)
    : TFontProvider(static_cast<int32_t>(vellum::GetProcessID()), OrBadAlloc(Adopt(ValUUIDCreate()))),
      block_(block) {}

Ref<VLMessagePort> TLocalFontProvider::CreatePort() const {
    const auto info = std::make_shared<TFontProviderInfo>(Name(), block_);
    auto port = LocalMessagePort::Create(
        Name(), [info](int32_t, const ValData *data) { return AnswerFontRequests(info->Block(), data); });
    if (!port) {
        info->Withdraw();
        return nullptr;
    }
    sProviders.Get().Add(info);
    return MakePortValue(std::move(port), Name(), [info] { info->Withdraw(); });
}

TRemoteFontProvider::TRemoteFontProvider(const ValDictionary *provider)
    : TFontProvider(ReadSInt32(ValDictionaryGetValue(provider, ProviderKey("pid").Get())),
                    Retain(Cast<ValUUID>(ValDictionaryGetValue(provider, ProviderKey("portname").Get())))) {
}

Ref<VLMessagePort> TRemoteFontProvider::CreatePort() const {
    if (!GetUUID()) return nullptr;
    RemoteMessagePort port(GetProcessID(), Name());
    return port.IsValid() ? MakePortValue(std::move(port)) : nullptr;
}

Ref<const ValArray> OpenProviderPorts(const ValArray *providers) {
    if (!providers) return nullptr;
    TValMutableArray ports;
    for (const void *provider : Elements(providers))
        if (const auto port = TRemoteFontProvider(Cast<ValDictionary>(provider)).CreatePort())
            ports.Append(port.Get());
    return ports.Publish();
}

Ref<const ValData> AnswerFontRequests(const FontProviderBlock &block, const ValData *data) {
    const auto request = Resurrected({ValDataGetBytes(data), ValDataGetLength(data)});
    if (const auto *one = Cast<ValDictionary>(request.Get())) {
        const auto answer = Answer(block, one);
        return answer ? FlattenedData(answer.Get()) : nullptr;
    }
    TValMutableArray fonts;
    for (const void *element : Elements(Cast<ValArray>(request.Get()))) {
        const auto answer = Answer(block, Cast<ValDictionary>(element));
        fonts.AppendArray(Cast<ValArray>(answer.Get()));
    }
    return fonts.IsEmpty() ? nullptr : FlattenedData(fonts.Get());
}

} // namespace vellum
