// SPDX-License-Identifier: MIT
// The messages between a process and the index of font files.
#pragma once

#include "ipc/messages/message_rows.hpp"

namespace vellum {

// The service that answers.
constexpr char kBeaconName[] = "com.orrery.Beacon";

// Which files have these names: the text of the query; items (platform/beacon/metadata_items.hpp). A query
// that is none finds nothing. MetadataQuery lays this out itself.
inline constexpr MessageRow kFindFilesRow = {kFindFontFiles, {EArgument::kMemory}, EReply::kMemory};

// How the index is: the longest that the answer may be waited for, in milliseconds, and a number of
// changes. The answer comes when all is read and there are other changes than so many, or in that time. A
// dictionary, flattened.
inline constexpr MessageRow kIndexStatusRow = {
    kGetIndexStatus, {EArgument::kWord, EArgument::kWord}, EReply::kMemory};

// Has every file be read again. It is answered when the crawler has been told.
inline constexpr MessageRow kRebuildIndexRow = {kRebuildIndex, {}, EReply::kNothing};

} // namespace vellum
