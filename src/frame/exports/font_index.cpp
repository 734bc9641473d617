// SPDX-License-Identifier: MIT
// Exported: the index of the font files in the user's folders.
#include "ipc/client/font_index.hpp"

#include "frame/exports/guard.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "platform/beacon/metadata_query.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

using namespace vellum;

namespace {

constexpr std::chrono::seconds kPatience(5);

Ref<const ValDictionary> AsDictionary(const MetadataItem &item) {
    TValMutableDict entries;
    entries.Set(TValStr("url").Get(), TValURL::FromPath(item.path).Get());
    entries.Set(TValStr("type").Get(), TValStr(item.content_type).Get());
    entries.Set(
        TValStr("modified").Get(),
        MakeNumber(static_cast<double>(item.modified.seconds) + item.modified.nanoseconds * 1e-9).Get());
    return entries.Publish();
}

} // namespace

const ValDictionary *VLCopyFontIndexStatus(uint32_t patience, uint32_t changes) noexcept {
    return GuardCopy([&] { return CopyFontIndexStatus(patience, changes); });
}

const ValArray *VLCopyIndexedFontFiles(const ValString *query) noexcept {
    return GuardCopy([&]() -> Ref<const ValArray> {
        const TValStr text(Retain(query));
        const auto items =
            MetadataQuery::Run(ServerName(kBeaconName).Get(), std::string(text.View()), kPatience);
        if (!items) return nullptr;
        TValMutableArray files;
        for (const MetadataItem &item : *items) files.Append(AsDictionary(item).Get());
        return files.Publish();
    });
}

bool VLRebuildFontIndex() noexcept {
    return Guard([] { return RebuildFontIndex(); });
}
