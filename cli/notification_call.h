#pragma once

#include "cli/dbus_library.h"
#include "cli/notification.h"

#include <memory>

namespace cli {

// Who shows notifications on a desktop.
inline constexpr const char* NOTIFICATIONS = "org.freedesktop.Notifications";
inline constexpr const char* NOTIFICATIONS_OBJECT = "/org/freedesktop/Notifications";

struct DropBusMessage {
    void operator()(DBusMessage* message) const { dbus_library().message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, DropBusMessage>;

// The call that has it shown.
[[nodiscard]] BusMessage notification_call(const Notification& notification);

} // namespace cli
