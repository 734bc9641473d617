// SPDX-License-Identifier: MIT
#include "platform/beacon/metadata_query.hpp"

#include "platform/late/glib.hpp"
#include "platform/loop/private_loop.hpp"
#include "platform/notify/notification_center.hpp"
#include "platform/port/service_address.hpp"
#include "platform/val/static_string.hpp"

#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace vellum {

namespace {

constinit const StaticString kFinished("VLMetadataQueryDidFinishGatheringNotification");

// The message, as docs/messages.md has it.
constexpr int32_t kFindFontFilesID = 15000;
constexpr int32_t kReplyOffset = 100;

OutgoingMessage RequestFor(const std::string &text) {
    OutgoingMessage message;
    const MachHeader header = {kMachSimpleBits | kMachComplexBit, 0, 1, 1, 0, kFindFontFilesID};
    const auto length = static_cast<uint32_t>(text.size());
    MachDescriptor descriptor;
    descriptor.size = length;
    message.Append(header);
    message.Append(uint32_t{1});
    message.Append(descriptor);
    message.Append(MachDataRepresentation());
    message.Append(length);
    message.SetHeader(header);
    auto block = std::make_shared<const MemoryBlock>(MemoryBlock::CreateCopy(text.data(), text.size()));
    if (block->Bytes())
        message.AppendMemory({std::move(block), text.size()});
    else
        message.Spoil(); // there is no text, or no memory
    return message;
}

// The results in a reply, or nothing when it is none to such a request.
std::optional<std::vector<MetadataItem>> ResultsIn(const IncomingMessage &message) {
    // Behind the header: how many descriptors, one of them, how numbers are written, how much memory there
    // is.
    constexpr size_t kRepresentation = sizeof(MachHeader) + sizeof(uint32_t) + sizeof(MachDescriptor);
    constexpr size_t kLength = kRepresentation + sizeof(MachDataRepresentation);
    if (message.bytes.size() != kLength + sizeof(uint32_t) || message.memory_count != 1)
        return std::nullopt;
    uint32_t length = 0;
    std::memcpy(&length, message.bytes.data() + kLength, sizeof length);
    const MachDataRepresentation ours;
    if (message.Header().id != kFindFontFilesID + kReplyOffset || length != message.memory[0].size() ||
        std::memcmp(message.bytes.data() + kRepresentation, ours.bytes, sizeof ours.bytes) != 0)
        return std::nullopt;
    return ReadMetadataItems(message.memory[0]);
}

} // namespace

MetadataQuery::MetadataQuery(std::string service, std::string text)
    : service_(std::move(service)), text_(std::move(text)), receiver_(kMostMetadataBytes) {}

MetadataQuery::~MetadataQuery() {
    Stop();
}

const ValString *MetadataQuery::FinishNotification() noexcept {
    return kFinished.Get();
}

bool MetadataQuery::Execute(GMainContext *context) noexcept {
    if (source_ || is_complete_ || service_.empty() || !sGLib.Open()) return false;
    try {
        socket_ = ConnectToService(service_.c_str());
        if (!socket_.IsOpen() || PeerProcess(socket_.Get()) == 0) return false;
        const OutgoingMessage message = RequestFor(text_);
        if (!message.IsWhole() || SendPacket(socket_.Get(), 0, message, true) != PacketResult::kDone)
            return false;
    } catch (const std::bad_alloc &) {
        return false;
    }
    source_ = g_unix_fd_source_new(socket_.Get(), static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR));
    const GUnixFDSourceFunc receive = [](gint, GIOCondition, gpointer self) -> gboolean {
        return static_cast<MetadataQuery *>(self)->Receive();
    };
    g_source_set_callback(source_, reinterpret_cast<GSourceFunc>(reinterpret_cast<void *>(receive)), this,
                          nullptr);
    g_source_attach(source_, context ? context : g_main_context_get_thread_default());
    return true;
}

void MetadataQuery::Stop() noexcept {
    if (source_) {
        g_source_destroy(source_);
        g_source_unref(std::exchange(source_, nullptr));
    }
    socket_ = TDescriptor();
}

bool MetadataQuery::Receive() noexcept {
    std::vector<MetadataItem> results;
    try {
        IncomingMessage message;
        uint64_t instance = 0;
        const PacketResult result = receiver_.Receive(socket_.Get(), false, message, instance);
        if (result == PacketResult::kWouldBlock) return G_SOURCE_CONTINUE;
        if (result == PacketResult::kDone)
            results = ResultsIn(message).value_or(std::vector<MetadataItem>());
    } catch (const std::bad_alloc &) {
    }
    Complete(std::move(results));
    return G_SOURCE_REMOVE;
}

// Who is told may end the query.
void MetadataQuery::Complete(std::vector<MetadataItem> results) noexcept {
    results_ = std::move(results);
    is_complete_ = true;
    Stop();
    try {
        NotificationCenter::Local().Post(kFinished.Get(), nullptr, this);
    } catch (const std::bad_alloc &) { // nobody was told: IsGatheringComplete says it
    }
}

std::optional<std::vector<MetadataItem>> MetadataQuery::Run(std::string service, std::string text,
                                                            std::chrono::milliseconds patience) {
    PrivateLoop loop("VLMetadataQuery");
    if (!loop.IsThere()) return std::nullopt;
    MetadataQuery query(std::move(service), std::move(text));
    if (!query.Execute(loop.Context())) return std::nullopt;
    bool is_over = false;
    const TimerAction end = [](void *over) noexcept { *static_cast<bool *>(over) = true; };
    loop.SetTimer(patience, end, &is_over);
    while (!query.IsGatheringComplete() && !is_over) g_main_context_iteration(loop.Context(), TRUE);
    if (!query.IsGatheringComplete()) return std::nullopt;
    return std::move(query.results_);
}

} // namespace vellum
