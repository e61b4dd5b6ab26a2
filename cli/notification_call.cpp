#include "cli/notification_call.h"

#include <cstdint>

namespace cli {
namespace {

constexpr const char* NAME_OF_PROGRAM = "zvRenew";

// A text that a bus takes, and that no service takes for markup.
std::string plain(std::string text) {
    for (char& c : text)
        if (c == '<' || c == '>' || c == '&') c = '?';
    if (dbus_library().validate_utf8(text.c_str(), nullptr) == FALSE)
        for (char& c : text)
            if (static_cast<unsigned char>(c) > 0x7F) c = '?';
    return text;
}

void append_text(DBusMessageIter* out, const std::string& text) {
    const char* value = text.c_str();
    dbus_library().message_iter_append_basic(out, DBUS_TYPE_STRING, &value);
}

void append_hint(DBusMessageIter* hints, const char* name, const char* type, const void* of_type) {
    DBusMessageIter hint, value;
    dbus_library().message_iter_open_container(hints, DBUS_TYPE_DICT_ENTRY, nullptr, &hint);
    append_text(&hint, name);
    dbus_library().message_iter_open_container(&hint, DBUS_TYPE_VARIANT, type, &value);
    dbus_library().message_iter_append_basic(&value, type[0], of_type);
    dbus_library().message_iter_close_container(&hint, &value);
    dbus_library().message_iter_close_container(hints, &hint);
}

void append_hints(DBusMessageIter* out, const Notification& notification) {
    DBusMessageIter hints;
    const unsigned char urgency = notification.urgent ? 2 : 1;
    dbus_library().message_iter_open_container(out, DBUS_TYPE_ARRAY, "{sv}", &hints);
    append_hint(&hints, "urgency", DBUS_TYPE_BYTE_AS_STRING, &urgency);
    dbus_library().message_iter_close_container(out, &hints);
}

// A click on the notification does the same as its button.
void append_actions(DBusMessageIter* out, const std::string& action) {
    DBusMessageIter actions;
    dbus_library().message_iter_open_container(out, DBUS_TYPE_ARRAY, "s", &actions);
    if (!action.empty())
        for (const char* name : {"default", "open"}) {
            append_text(&actions, name);
            append_text(&actions, plain(action));
        }
    dbus_library().message_iter_close_container(out, &actions);
}

} // namespace

// Name of the program, what it replaces, icon, summary, body, actions, hints, how long it is shown.
BusMessage notification_call(const Notification& notification) {
    constexpr std::uint32_t nothing = 0;
    constexpr std::int32_t until_closed = 0;
    BusMessage call(
        dbus_library().message_new_method_call(NOTIFICATIONS, NOTIFICATIONS_OBJECT, NOTIFICATIONS, "Notify"));
    DBusMessageIter out;
    dbus_library().message_iter_init_append(call.get(), &out);
    append_text(&out, NAME_OF_PROGRAM);
    dbus_library().message_iter_append_basic(&out, DBUS_TYPE_UINT32, &nothing);
    append_text(&out, "dialog-warning");
    append_text(&out, plain(notification.summary));
    append_text(&out, plain(notification.body));
    append_actions(&out, notification.action);
    append_hints(&out, notification);
    dbus_library().message_iter_append_basic(&out, DBUS_TYPE_INT32, &until_closed);
    return call;
}

} // namespace cli
