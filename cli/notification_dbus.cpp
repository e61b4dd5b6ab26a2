#include "cli/notification_call.h"

#include <cstdint>
#include <map>

namespace cli {
namespace {

constexpr int LONGEST_NOTIFYING = 20000; // milliseconds; the service may have to be started
constexpr const char* ANSWERS = "type='signal',sender='org.freedesktop.Notifications',"
                                "interface='org.freedesktop.Notifications'";

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

// The notification that a message is about; 0 where it is about none.
std::uint32_t notification_of(DBusMessage* message) {
    std::uint32_t id = 0;
    (void)dbus_library().message_get_args(message, nullptr, DBUS_TYPE_UINT32, &id, DBUS_TYPE_INVALID);
    return id;
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
    std::map<std::uint32_t, std::string> answered; // by what is told when it is acted on
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
    if (!notification.action.empty()) dbus_library().bus_add_match(bus_->connection, ANSWERS, nullptr);
    const BusMessage call = notification_call(notification);
    BusError error;
    const BusMessage answer(dbus_library().connection_send_with_reply_and_block(
        bus_->connection, call.get(), LONGEST_NOTIFYING, error.get()));
    if (!answer) return error.text();
    if (!notification.action.empty()) bus_->answered[notification_of(answer.get())] = notification.subject;
    return {};
}

void Desktop::await_answers(std::chrono::milliseconds longest, const ActedOn& acted_on) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + longest;
    while (bus_ && !bus_->answered.empty()) {
        if (const BusMessage told{dbus_library().connection_pop_message(bus_->connection)}) {
            const bool acted =
                dbus_library().message_is_signal(told.get(), NOTIFICATIONS, "ActionInvoked") == TRUE;
            if (!acted &&
                dbus_library().message_is_signal(told.get(), NOTIFICATIONS, "NotificationClosed") == FALSE)
                continue;
            const auto subject = bus_->answered.extract(notification_of(told.get()));
            if (acted && subject) acted_on(subject.mapped());
            continue;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0 ||
            dbus_library().connection_read_write(bus_->connection, static_cast<int>(left.count())) == FALSE)
            return;
    }
}

} // namespace cli
