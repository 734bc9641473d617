// SPDX-License-Identifier: MIT
// A search for files by what is known of them: the whole computer, as far as the service that keeps the
// index looks through it.
//
// A query is sent, and its results are gathered by a GLib main context while that runs. Nothing waits for
// the service but sending to it, and that no longer than kSendPatience; one that hangs never finishes, and
// one that ends, or says what is no result, finishes without results.
#pragma once

#include "platform/beacon/metadata_items.hpp"
#include "platform/fs/file.hpp"
#include "platform/port/packet.hpp"

#include <vellum/values.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct _GMainContext;
struct _GSource;

namespace vellum {

// One thread at a time, and that which runs the context.
class MetadataQuery {
public:
    // `service` is what the service is called in this session. Throws std::bad_alloc.
    MetadataQuery(std::string service, std::string text);
    ~MetadataQuery();
    MetadataQuery(const MetadataQuery &) = delete;
    MetadataQuery &operator=(const MetadataQuery &) = delete;

    // Posted to NotificationCenter::Local() when the gathering is complete, from within the context, with
    // this query as the sender. Not for a query that was stopped. The name is constant.
    static const ValString *FinishNotification() noexcept;

    // Sends the query; its results come when `context` runs, null meaning the thread's default one. False
    // when it could not be sent: nobody is there, it is another user's, it takes nobody in. A query is
    // executed once.
    bool Execute(_GMainContext *context) noexcept;

    // True from the finish notification on.
    bool IsGatheringComplete() const noexcept { return is_complete_; }

    // Ends the gathering; what has come stays. Nothing for one that is not under way.
    void Stop() noexcept;

    // The files, by the time of their last change; empty until the gathering is complete.
    const std::vector<MetadataItem> &Results() const noexcept { return results_; }

    // The same in one call, for who has no loop: sends, and runs a context of its own until all is gathered
    // or so much time has passed. Nothing when it could not be sent or did not finish. Throws
    // std::bad_alloc.
    static std::optional<std::vector<MetadataItem>> Run(std::string service, std::string text,
                                                        std::chrono::milliseconds patience);

private:
    // Called by the context; false when no more is to come.
    bool Receive() noexcept;
    void Complete(std::vector<MetadataItem> results) noexcept;

    const std::string service_, text_;
    TDescriptor socket_;
    PacketReceiver receiver_;
    _GSource *source_ = nullptr; // owned
    std::vector<MetadataItem> results_;
    bool is_complete_ = false;
};

} // namespace vellum
