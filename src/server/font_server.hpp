// SPDX-License-Identifier: MIT
// The font server: it answers the messages about the register that a user's processes share.
#pragma once

#include "ipc/messages/message_codec.hpp"
#include "server/kept_answers.hpp"
#include "server/kept_names.hpp"
#include "server/provider_list.hpp"
#include "server/shared_register.hpp"
#include "service/event_loop.hpp"
#include "service/peer.hpp"

#include <memory>
#include <vector>

namespace vellum {

class FontFolders;

// What a request has come from, and where its reply goes.
struct Errand {
    std::shared_ptr<Peer> peer;
    const MessageRow *row;
    MachHeader header;

    void Reply(const OutgoingReply &reply) const noexcept { peer->Reply(row, header, reply); }
};

// Queries are answered at once. Changes wait their turn and are made in slices, between which queries are
// answered. As long as not all fonts have been taken in, nothing is answered but that one should ask again:
// a client that finds the system's fonts missing would do without the server from then on.
class FontServer {
public:
    // What one descriptor of a request may bring.
    static constexpr uint32_t kMostMemory = uint32_t{32} << 20;

    FontServer(EventLoop &loop, SharedRegister &fonts, FontFolders &folders)
        : loop_(loop), register_(fonts), folders_(folders) {}

    // What MessageService calls for each message.
    void Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message);

    // All fonts are there: from now on there are answers.
    void BeginToAnswer();

    SharedRegister &Register() noexcept { return register_; }
    const TLocalGlypharyImp &Fonts() const noexcept { return register_.Fonts(); }
    FontFolders &Folders() noexcept { return folders_; }
    KeptAnswers &Kept() noexcept { return kept_; }
    KeptNames &Names() noexcept { return names_; }
    ProviderList &Providers() noexcept { return providers_; }
    EventLoop &Loop() noexcept { return loop_; }

private:
    void Hold(Errand errand);
    void HaveAllAskAgain();

    EventLoop &loop_;
    SharedRegister &register_;
    FontFolders &folders_;
    KeptAnswers kept_;
    KeptNames names_;
    ProviderList providers_;
    bool has_all_fonts_ = false;
    std::vector<Errand> held_; // by those who will be told to ask again
};

} // namespace vellum
