// SPDX-License-Identifier: MIT
// The search in the index of font files: a query for the names that a request has, and its run.
//
// A query runs on a thread of its own, whose run loop has nothing else to do: nothing of the program's own
// loops happens within a lookup.
#include "autoactivation/auto_activation_manager.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "platform/beacon/metadata_query.hpp"
#include "platform/loop/private_loop.hpp"
#include "platform/notify/notification_center.hpp"
#include "platform/process/own_thread.hpp"
#include "platform/val/string.hpp"
#include "values/lookup_trace.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_url.hpp"

#include <string>

namespace vellum {

namespace {

// The keys of requests by which fonts are searched, as the text layout framework above the library calls
// them, and what their values are called in the index.
const ValString *const &kLDFontNameAttribute = kVLFontPropertyName;
const ValString *const &kLDFontFamilyNameAttribute = kVLFontPropertyFamilyName;
const ValString *const &kLDFontStyleNameAttribute = kVLFontPropertySubfamilyName;
const ValString *const &kLDFontDisplayNameAttribute = kVLFontPropertyFullName;

struct SearchedName {
    const ValString *const &key;
    std::string_view attribute;
};

constexpr SearchedName kSearchedNames[] = {
    {kLDFontNameAttribute, "com_orrery_fount_name_postscript"},
    {kLDFontFamilyNameAttribute, "com_orrery_fount_name_family"},
    {kLDFontStyleNameAttribute, "com_orrery_fount_name_style"},
    {kLDFontDisplayNameAttribute, "com_orrery_fount_name_full"},
};

// More failures in a row than these end searching.
constexpr uint32_t kMostBeaconErrors = 2;

// A query with the loop that waits for it.
struct WaitedQuery final : MetadataQuery {
    using MetadataQuery::MetadataQuery;

    PrivateLoop mode{"VellumAutoActivationRunLoopMode"};
    bool timed_out = false;
};

// Posted on the thread of the query that has finished, to all that wait just now: another's, which may be
// over, is not looked into.
void ExecuteQueryDone(void *, void *observer, const ValString *, const void *object,
                      const ValDictionary *) {
    if (object == observer) static_cast<WaitedQuery *>(static_cast<MetadataQuery *>(observer))->mode.Stop();
}

void BeaconQueryTimeout(void *waiting) noexcept {
    auto *query = static_cast<WaitedQuery *>(waiting);
    query->timed_out = true;
    query->mode.Stop();
}

// Has `query` gather until it is complete, or has taken too long; false when it could not begin.
bool Gather(WaitedQuery &query) {
    if (!query.mode.IsThere()) return false;
    query.mode.SetTimer(TAutoActivationManager::sPatience.query, BeaconQueryTimeout, &query);
    MetadataQuery *const observer = &query;
    NotificationCenter &center = NotificationCenter::Local();
    center.AddObserver(observer, ExecuteQueryDone, MetadataQuery::FinishNotification());
    const bool has_begun = query.Execute(query.mode.Context());
    while (has_begun && !query.IsGatheringComplete() && !query.timed_out) query.mode.Run();
    center.RemoveObserver(observer);
    query.Stop();
    return has_begun;
}

// The thread's body. What it finds is empty for a query that failed.
void ExecuteQuery(WaitedQuery &query) {
    const bool is_answered = Gather(query) && !query.timed_out;
    std::atomic<uint32_t> &errors = TAutoActivationManager::sNumUnknownBeaconErrors;
    if (is_answered)
        errors = 0;
    else
        ++errors;
    if (errors > kMostBeaconErrors) TAutoActivationManager::sBeaconQueriesDisabled = true;
}

} // namespace

constinit std::atomic<uint32_t> TAutoActivationManager::sNumUnknownBeaconErrors{0};

// Values go in as they are: names that would end their clause make a query that the service can't read,
// and finds nothing for.
std::string TAutoActivationManager::InitQueryStringForRequest(const ValDictionary *request) {
    std::string query;
    for (const SearchedName &name : kSearchedNames) {
        const auto *value = Cast<ValString>(ValDictionaryGetValue(request, name.key));
        if (!value || !IsValidNameToQuery(value, name.key)) continue;
        if (!query.empty()) query += " && ";
        query.append(name.attribute).append(" == \"").append(Text(value)).append("\"");
    }
    return query;
}

Ref<const ValArray> TAutoActivationManager::CopyFontsFromAutoActivation() const {
    if (query_.empty()) return nullptr;
    WaitedQuery query(ServerName(kBeaconName).Get(), query_);
    RunOnOwnThread([&] { ExecuteQuery(query); });
    TValMutableArray files;
    for (const MetadataItem &item : query.Results()) {
        const auto file = TValURL::FromPath(item.path);
        if (file && IsValidFileForAutoActivation(file.Get())) files.Append(file.Get());
    }
    return files.IsEmpty() ? nullptr : files.Publish();
}

} // namespace vellum
