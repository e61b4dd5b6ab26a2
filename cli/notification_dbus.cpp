#include "cli/dbus_library.h"
#include "cli/notification.h"

#include <cstdint>

namespace cli {
namespace {

constexpr const char* SERVICE = "org.freedesktop.Notifications";
constexpr const char* OBJECT = "/org/freedesktop/Notifications";
constexpr const char* NAME_OF_PROGRAM = "zvRenew";
constexpr int LONGEST_NOTIFYING = 20000; // milliseconds; the service may have to be started

class BusError {
  public:
    BusError() { dbus_library().error_init(&error_); }
    ~BusError() { dbus_library().error_free(&error_); }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;

    [[nodiscard]] DBusError* get() { return &error_; }
    [[nodiscard]] std::string text() const {
        return error_.message != nullptr ? error_.message : "no reason given";
    }

  private:
    DBusError error_{};
};

struct DropMessage {
    void operator()(DBusMessage* message) const { dbus_library().message_unref(message); }
};
using Message = std::unique_ptr<DBusMessage, DropMessage>;

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

void append_hints(DBusMessageIter* out, bool urgent) {
    DBusMessageIter hints, hint, value;
    const unsigned char urgency = urgent ? 2 : 1;
    dbus_library().message_iter_open_container(out, DBUS_TYPE_ARRAY, "{sv}", &hints);
    dbus_library().message_iter_open_container(&hints, DBUS_TYPE_DICT_ENTRY, nullptr, &hint);
    append_text(&hint, "urgency");
    dbus_library().message_iter_open_container(&hint, DBUS_TYPE_VARIANT, "y", &value);
    dbus_library().message_iter_append_basic(&value, DBUS_TYPE_BYTE, &urgency);
    dbus_library().message_iter_close_container(&hint, &value);
    dbus_library().message_iter_close_container(&hints, &hint);
    dbus_library().message_iter_close_container(out, &hints);
}

// Name of the program, what it replaces, icon, summary, body, actions, hints, how long it is shown.
void append_arguments(DBusMessage* call, const Notification& notification) {
    constexpr std::uint32_t nothing = 0;
    constexpr std::int32_t until_closed = 0;
    DBusMessageIter out, actions;
    dbus_library().message_iter_init_append(call, &out);
    append_text(&out, NAME_OF_PROGRAM);
    dbus_library().message_iter_append_basic(&out, DBUS_TYPE_UINT32, &nothing);
    append_text(&out, "dialog-warning");
    append_text(&out, plain(notification.summary));
    append_text(&out, plain(notification.body));
    dbus_library().message_iter_open_container(&out, DBUS_TYPE_ARRAY, "s", &actions);
    dbus_library().message_iter_close_container(&out, &actions);
    append_hints(&out, notification.urgent);
    dbus_library().message_iter_append_basic(&out, DBUS_TYPE_INT32, &until_closed);
}

} // namespace

// A connection of its own: the shared one would end the program along with the session.
struct Desktop::Bus {
    explicit Bus(DBusConnection* opened) : connection(opened) {
        dbus_library().connection_set_exit_on_disconnect(opened, FALSE);
    }
    ~Bus() {
        dbus_library().connection_close(connection);
        dbus_library().connection_unref(connection);
    }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    DBusConnection* connection;
};

Desktop::Desktop() : problem_(dbus_library().problem) {
    if (!problem_.empty()) return;
    BusError error;
    if (DBusConnection* connection = dbus_library().bus_get_private(DBUS_BUS_SESSION, error.get()))
        bus_ = std::make_unique<Bus>(connection);
    else
        problem_ = error.text();
}

Desktop::~Desktop() = default;

std::string Desktop::show(const Notification& notification) {
    if (!bus_) return problem_;
    const Message call(dbus_library().message_new_method_call(SERVICE, OBJECT, SERVICE, "Notify"));
    append_arguments(call.get(), notification);
    BusError error;
    const Message answer(dbus_library().connection_send_with_reply_and_block(bus_->connection, call.get(),
                                                                             LONGEST_NOTIFYING, error.get()));
    return answer ? std::string() : error.text();
}

} // namespace cli
