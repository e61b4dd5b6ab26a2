// notification_service FILE [ACTION]: stands in for a desktop's notifications on the session bus, as long as there is
// one, and writes what each says and offers to the file. One that offers something is closed at once; where an action is
// given, that is invoked before.
#include <dbus/dbus.h>
#include <stdio.h>
#include <stdlib.h>

#define NAME "org.freedesktop.Notifications"

#define OBJECT "/org/freedesktop/Notifications"

static const char* path;
static const char* invoked;
static const dbus_uint32_t id = 7;
static int offers; // whether the last one offered something

static DBusMessage* answer_to(DBusMessage* call) {
    const char *program, *icon, *summary, *body;
    char** actions;
    int count;
    dbus_uint32_t replaced;
    if (!dbus_message_get_args(call, NULL, DBUS_TYPE_STRING, &program, DBUS_TYPE_UINT32, &replaced,
                               DBUS_TYPE_STRING, &icon, DBUS_TYPE_STRING, &summary, DBUS_TYPE_STRING, &body,
                               DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &actions, &count, DBUS_TYPE_INVALID) ||
        !dbus_message_has_signature(call, "susssasa{sv}i"))
        return dbus_message_new_error(call, DBUS_ERROR_INVALID_ARGS, "no notification");
    offers = count != 0;
    FILE* file = fopen(path, "a");
    if (file == NULL) return dbus_message_new_error(call, DBUS_ERROR_FAILED, "no file");
    fprintf(file, "%s: %s\n%s\n", program, summary, body);
    for (int i = 0; i + 1 < count; i += 2)
        fprintf(file, "[%s: %s]\n", actions[i], actions[i + 1]);
    fclose(file);
    dbus_free_string_array(actions);
    DBusMessage* answer = dbus_message_new_method_return(call);
    dbus_message_append_args(answer, DBUS_TYPE_UINT32, &id, DBUS_TYPE_INVALID);
    return answer;
}

static void signal_all(DBusConnection* bus, const char* name, int type, const void* value) {
    DBusMessage* message = dbus_message_new_signal(OBJECT, NAME, name);
    dbus_message_append_args(message, DBUS_TYPE_UINT32, &id, type, value, DBUS_TYPE_INVALID);
    dbus_connection_send(bus, message, NULL);
    dbus_message_unref(message);
}

static DBusHandlerResult take(DBusConnection* bus, DBusMessage* call, void* nothing) {
    (void)nothing;
    if (!dbus_message_is_method_call(call, NAME, "Notify")) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    DBusMessage* answer = answer_to(call);
    dbus_connection_send(bus, answer, NULL);
    dbus_message_unref(answer);
    const dbus_uint32_t by_user = 2;
    if (offers && invoked != NULL) signal_all(bus, "ActionInvoked", DBUS_TYPE_STRING, &invoked);
    if (offers) signal_all(bus, "NotificationClosed", DBUS_TYPE_UINT32, &by_user);
    return DBUS_HANDLER_RESULT_HANDLED;
}

int main(int argc, char** argv) {
    DBusConnection* bus = argc >= 2 ? dbus_bus_get(DBUS_BUS_SESSION, NULL) : NULL;
    if (bus == NULL) return 2;
    path = argv[1];
    invoked = argv[2];
    dbus_connection_add_filter(bus, take, NULL, NULL);
    if (dbus_bus_request_name(bus, NAME, DBUS_NAME_FLAG_DO_NOT_QUEUE, NULL) !=
        DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER)
        return 1;
    while (dbus_connection_read_write_dispatch(bus, -1))
        continue;
    return 0;
}
