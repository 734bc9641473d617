// SPDX-License-Identifier: MIT
// The messages between a process and the hub of notifications, the second service of the font server's.
#pragma once

#include "ipc/messages/message_rows.hpp"

namespace vellum {

// The service that passes notifications on.
constexpr char kNotificationHubName[] = "com.orrery.DistributedNotifications";

// Has the hub tell what is posted from now on, on the connection on which this was sent.
inline constexpr MessageRow kObserveRow = {kObserveNotifications, {}, EReply::kNothing};

// Has the hub tell everybody who observes: a dictionary from the name to the user info, flattened. It is
// answered when everybody has been told.
inline constexpr MessageRow kPostRow = {kPostNotification, {EArgument::kMemory}, EReply::kNothing};

// What the hub tells, in a message that nobody answers: the same.
inline constexpr MessageRow kTellRow = {kTellNotification, {EArgument::kMemory}, EReply::kNothing};

} // namespace vellum
