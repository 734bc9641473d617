// SPDX-License-Identifier: MIT
#include "beacon/search_service.hpp"

#include "beacon/crawl_roots.hpp"
#include "beacon/name_index.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/index_rows.hpp"
#include "platform/log/log.hpp"
#include "service/service_process.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <unistd.h>

#include <algorithm>
#include <exception>

namespace vellum {

namespace {

constexpr MessageRow kRows[] = {kFindFilesRow, kIndexStatusRow, kRebuildIndexRow};

// Who does not take an answer by then is cut off.
constexpr std::chrono::seconds kTakingPatience(3);

constexpr uint32_t kLongestStatusWait = 3000; // milliseconds

// A status that is waited for may be that of the index: all that there was is read, or cannot be kept.
bool IsAtRest(CrawlState state) noexcept {
    return state == CrawlState::kIdle || state == CrawlState::kNoRoom;
}

const char *NameOf(CrawlState state) noexcept {
    switch (state) {
    case CrawlState::kCrawling:
        return "crawling";
    case CrawlState::kIdle:
        return "idle";
    case CrawlState::kNoRoom:
        return "no room";
    default:
        return "starting";
    }
}

OutgoingReply Refuse(MachCode code) {
    OutgoingReply reply;
    reply.code = code;
    return reply;
}

OutgoingReply ReplyWith(std::span<const uint8_t> bytes) {
    OutgoingReply reply;
    reply.memory = {
        std::make_shared<const MemoryBlock>(MemoryBlock::CreateCopy(bytes.data(), bytes.size())),
        bytes.size()};
    return reply.memory.block->Bytes() ? reply : Refuse(kMachNoMemory);
}

void Set(TValMutableDict &entries, std::string_view key, uint64_t number) {
    entries.Set(TValStr(key).Get(), MakeNumber(static_cast<int64_t>(number)).Get());
}

} // namespace

SearchService::SearchService(EventLoop &loop, TDescriptor listener, bool is_in_foreground)
    : loop_(loop), index_(NameIndexPath()),
      crawler_(loop, is_in_foreground, [this] { TellThoseWhoWait(); }),
      service_(loop, std::move(listener), MakeServiceInstance(), kMostMemory,
               {[this](const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
                   Answer(peer, message);
               }}) {}

void SearchService::Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
    try {
        AnswerAsTheRowSays(peer, message);
    } catch (const std::exception &problem) { // memory is exhausted
        Log(LogLevel::kError, "Message %d could not be answered: %s", static_cast<int>(message.Header().id),
            problem.what());
        Reply(peer, nullptr, message.Header(), Refuse(kMachNoMemory));
    }
}

void SearchService::AnswerAsTheRowSays(const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
    const MachHeader header = message.Header();
    const auto *row =
        std::ranges::find(kRows, header.id, [](const MessageRow &any) { return int32_t{any.id}; });
    if (row == std::end(kRows)) return Reply(peer, nullptr, header, Refuse(kMachBadID));
    ReceivedArguments arguments;
    if (!ReadRequest(*row, message, arguments)) {
        Reply(peer, row, header, Refuse(kMachBadArguments));
        return peer->CutOff();
    }
    switch (row->id) {
    case kFindFontFiles: {
        const auto text = arguments[0].memory;
        return Reply(peer, row, header, Find({reinterpret_cast<const char *>(text.data()), text.size()}));
    }
    case kGetIndexStatus:
        return TellStatusLater(peer, header, arguments[0].word, arguments[1].word);
    default:
        crawler_.ReadEverything();
        return Reply(peer, row, header, {});
    }
}

void SearchService::Reply(const std::shared_ptr<Peer> &peer, const MessageRow *row,
                          const MachHeader &header, const OutgoingReply &reply) {
    peer->Reply(row, header, reply);
    if (!peer->HasWaiting()) return;
    loop_.CallLater(kTakingPatience, [this, weak = std::weak_ptr<Peer>(peer)] {
        if (const auto slow = weak.lock(); slow && slow->HasWaiting()) service_.Dismiss(slow);
    });
}

// What the index cannot say is not there; the crawler sees to it that it can, once for each state of the
// index.
OutgoingReply SearchService::Find(std::string_view query) {
    std::vector<MetadataItem> files;
    const auto clauses = ParseQuery(query);
    try {
        if (clauses) files = index_.Find(*clauses);
        if (index_.IsThere()) return ReplyWith(WriteMetadataItems(files));
    } catch (const DatabaseError &problem) {
        if (looked_again_at_ != crawler_.Progress().changes)
            Log(LogLevel::kError, "The index of font files cannot be read: %s", problem.what());
    }
    if (std::exchange(looked_again_at_, crawler_.Progress().changes) != looked_again_at_)
        crawler_.LookAgain();
    return ReplyWith(WriteMetadataItems({}));
}

bool SearchService::IsWhatIsWaitedFor(uint32_t changes) const noexcept {
    const CrawlProgress &progress = crawler_.Progress();
    return IsAtRest(progress.state) && static_cast<uint32_t>(progress.changes) != changes;
}

void SearchService::TellStatusLater(const std::shared_ptr<Peer> &peer, const MachHeader &header,
                                    uint32_t time, uint32_t changes) {
    if (time == 0 || IsWhatIsWaitedFor(changes)) return Reply(peer, &kIndexStatusRow, header, Status());
    const uint64_t number = ++last_number_;
    askers_.push_back({peer, header, changes, number});
    loop_.CallLater(std::chrono::milliseconds(std::min(time, kLongestStatusWait)), [this, number] {
        const auto asker = std::ranges::find(askers_, number, &Asker::number);
        if (asker == askers_.end()) return; // it was told in time
        const auto waiting = asker->peer.lock();
        if (waiting) Reply(waiting, &kIndexStatusRow, asker->header, Status());
        askers_.erase(asker);
    });
}

void SearchService::TellThoseWhoWait() {
    for (auto asker = askers_.begin(); asker != askers_.end();) {
        if (!IsWhatIsWaitedFor(asker->changes)) {
            ++asker;
            continue;
        }
        if (const auto peer = asker->peer.lock()) Reply(peer, &kIndexStatusRow, asker->header, Status());
        asker = askers_.erase(asker);
    }
}

OutgoingReply SearchService::Status() const {
    const CrawlProgress &progress = crawler_.Progress();
    TValMutableDict entries;
    entries.Set(TValStr("state").Get(), TValStr(NameOf(progress.state)).Get());
    Set(entries, "files", progress.files);
    Set(entries, "faces", progress.faces);
    Set(entries, "folders-read", progress.folders_read);
    Set(entries, "folders-waiting", progress.folders_waiting);
    Set(entries, "files-read", progress.files_read);
    Set(entries, "changes", progress.changes);
    Set(entries, "rebuilds", progress.rebuilds);
    Set(entries, "process", static_cast<uint64_t>(::getpid()));
    Set(entries, "crawler", static_cast<uint64_t>(crawler_.Process()));
    TValMutableArray roots;
    for (const CrawlRoot &root : FindCrawlRoots().roots)
        roots.Append(TValStr(root.path.empty() ? std::string("/") : root.path).Get());
    entries.Set(TValStr("roots").Get(), roots.Get());
    auto memory = Flattened(entries.Publish().Get());
    if (!memory) return Refuse(kMachNoMemory);
    OutgoingReply reply;
    reply.memory = std::move(*memory);
    return reply;
}

} // namespace vellum
