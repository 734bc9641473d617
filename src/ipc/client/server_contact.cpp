// SPDX-License-Identifier: MIT
// How the proxy meets the server: at the beginning, and when the server has gone and come again.
#include "ipc/client/conversation.hpp"
#include "ipc/client/request_cache.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/session/tally_log.hpp"
#include "platform/port/ports.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/fork_gate.hpp"
#include "values/val_dictionary.hpp"

#include <time.h>

#include <array>

namespace vellum {

namespace {

constexpr uint32_t kMostRetries = 2;
constexpr uint32_t kMeetings = 2;

// A socket without a server behind it may belong to one that is just starting.
bool IsServerInstalled() noexcept {
    const ServerName name;
    return name.IsValid() && ServiceHasSocket(name.Get());
}

void SleepASecond() noexcept {
    const OutsideLibrary waiting;
    timespec left = {1, 0};
    while (::nanosleep(&left, &left) != 0) {
    }
}

// The first meetings with a server, until one brought something.
struct Meetings {
    uint32_t retries = 0; // after the first
    std::array<MachCode, kMeetings> codes = {};
    ReplyMemory common_fonts;

    bool Succeeded() const noexcept { return !common_fonts.bytes.empty(); }

    void Log() const noexcept {
        TTallyLog log("com.orrery.glyphary.client.getcommonfonts", "find common fonts");
        log.SetResult(Succeeded() ? TTallyLog::Result::kSuccess : TTallyLog::Result::kFailure);
        log.SetValue(static_cast<int>(retries));
        // Two meetings, three places: the last is always 0.
        log.Log("retry:%d common fonts return value[0,1,2]:%lX,%lX,%lX", static_cast<int>(retries),
                Printed(codes[0]), Printed(codes[1]), 0L);
    }

private:
    static long Printed(MachCode code) noexcept { return static_cast<int32_t>(code); }
};

// Answers of the server that this thread need not ask for.
void SeedRequestCache(const TRequestCache &cache, const ValDictionary *answers) noexcept {
    for (const auto &[request, answer] : TValDict(Retain(answers)))
        cache.AddResultForRequest(answer, request, 0);
}

} // namespace

std::unique_lock<std::mutex> TGlobalGlypharyImp::Lock() const {
    const OutsideLibrary waiting;
    return TGlypharyImp::Lock();
}

PortName TGlobalGlypharyImp::GetServerPort() const noexcept {
    PortName port = server_.load(std::memory_order_acquire);
    if (IsPort(port)) return port;
    const ServerName name;
    PortName found = kPortNull;
    if (!name.IsValid() || bootstrap_look_up(name.Get(), found) != kMachSuccess) return port;
    if (server_.compare_exchange_strong(port, found, std::memory_order_acq_rel)) return found;
    mach_port_deallocate(found); // another thread was first
    return port;
}

bool TGlobalGlypharyImp::SetupForIPCRetry(MachCode code, PortName port, uint32_t &retries) const noexcept {
    if (code != kMachSendInvalidDestination || retries >= kMostRetries) return false;
    Log(LogLevel::kError, "Invalid font server IPC destination! Namespace changed? Retrying (%d)...",
        static_cast<int>(retries));
    if (server_.compare_exchange_strong(port, kPortNull, std::memory_order_acq_rel) && IsPort(port)) {
        mach_port_deallocate(port);
        RendezvousWithServer();
    }
    ++retries;
    return true;
}

void TGlobalGlypharyImp::RendezvousWithServer() const noexcept {
    const TRequestCache cache; // made before the server is asked
    Meetings meetings;
    const bool is_installed = IsServerInstalled();
    for (uint32_t i = 0; i < kMeetings && !meetings.Succeeded(); ++i) {
        meetings.retries = i;
        meetings.codes[i] = is_installed ? VLSendRendezvous(GetServerPort(), meetings.common_fonts)
                                         : kMachSendInvalidDestination;
        // Nobody waits for a server that is not there at all.
        if (is_installed && !meetings.Succeeded()) SleepASecond();
    }
    if (meetings.retries > 0 || !meetings.Succeeded()) meetings.Log();
    SeedRequestCache(cache, Resurrected<ValDictionary>(meetings.common_fonts.bytes).Get());
}

} // namespace vellum
