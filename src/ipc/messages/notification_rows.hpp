// SPDX-License-Identifier: MIT
// The messages between a process and the hub of notifications, the second service of the font server's.
#pragma once

#include "ipc/messages/message_rows.hpp"

namespace vellum {

// The service that passes notifications on.
constexpr char kNotificationHubName[] = "com.orrery.DistributedNotifications";

// Has the hub tell what is posted from now on, on the connection on which this was sent.
inline constexpr MessageRow kObserveRow = {kObserveNotifications, {}, EReply::kNothing};

// The longest notification that is told, in bytes. Some ten thousand fonts have room in it; who would hear
// of more asks again for all.
constexpr uint32_t kLongestNotification = uint32_t{2} << 20;

// Has the hub tell everybody who observes: a dictionary from the name to the user info, flattened; an empty
// one says that anything may have changed. It is answered at once.
inline constexpr MessageRow kPostRow = {kPostNotification, {EArgument::kMemory}, EReply::kNothing};

// What the hub tells, in a message that nobody answers: the same.
inline constexpr MessageRow kTellRow = {kTellNotification, {EArgument::kMemory}, EReply::kNothing};

} // namespace vellum
