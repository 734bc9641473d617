// SPDX-License-Identifier: MIT
// The answers to those who ask the index of font files.
#pragma once

#include "beacon/crawler_process.hpp"
#include "beacon/name_lookup.hpp"
#include "ipc/messages/message_codec.hpp"
#include "service/message_service.hpp"

#include <cstdint>
#include <list>
#include <memory>

namespace vellum {

class SearchService {
public:
    // What one piece of memory in a request may be.
    static constexpr uint32_t kMostMemory = uint32_t{64} << 10;

    // Throws std::runtime_error.
    SearchService(EventLoop &loop, TDescriptor listener, bool is_in_foreground);

private:
    // Who asked for the status, and for which one.
    struct Asker {
        std::weak_ptr<Peer> peer;
        MachHeader header;
        uint32_t changes;
        uint64_t number;
    };

    void Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message);
    void AnswerAsTheRowSays(const std::shared_ptr<Peer> &peer, const IncomingMessage &message);
    OutgoingReply Find(std::string_view query);
    void TellStatusLater(const std::shared_ptr<Peer> &peer, const MachHeader &header, uint32_t time,
                         uint32_t changes);
    bool IsWhatIsWaitedFor(uint32_t changes) const noexcept;
    void TellThoseWhoWait();
    OutgoingReply Status() const;
    void Reply(const std::shared_ptr<Peer> &peer, const MessageRow *row, const MachHeader &header,
               const OutgoingReply &reply);

    EventLoop &loop_;
    NameLookup index_;
    CrawlerProcess crawler_;
    std::list<Asker> askers_;
    uint64_t last_number_ = 0;
    uint64_t looked_again_at_ = ~uint64_t{0}; // changes when the crawler was last told to look
    MessageService service_;                  // ends first
};

} // namespace vellum
