// notification_service FILE: stands in for a desktop's notifications on the session bus, as long as there is one, and
// writes what each says to the file.
#include <dbus/dbus.h>
#include <stdio.h>
#include <stdlib.h>

#define NAME "org.freedesktop.Notifications"

static const char* path;

static DBusMessage* answer_to(DBusMessage* call) {
    const char *program, *icon, *summary, *body;
    char** actions;
    int count;
    dbus_uint32_t replaced, id = 7;
    if (!dbus_message_get_args(call, NULL, DBUS_TYPE_STRING, &program, DBUS_TYPE_UINT32, &replaced,
                               DBUS_TYPE_STRING, &icon, DBUS_TYPE_STRING, &summary, DBUS_TYPE_STRING, &body,
                               DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &actions, &count, DBUS_TYPE_INVALID) ||
        !dbus_message_has_signature(call, "susssasa{sv}i"))
        return dbus_message_new_error(call, DBUS_ERROR_INVALID_ARGS, "no notification");
    dbus_free_string_array(actions);
    FILE* file = fopen(path, "a");
    if (file == NULL) return dbus_message_new_error(call, DBUS_ERROR_FAILED, "no file");
    fprintf(file, "%s: %s\n%s\n", program, summary, body);
    fclose(file);
    DBusMessage* answer = dbus_message_new_method_return(call);
    dbus_message_append_args(answer, DBUS_TYPE_UINT32, &id, DBUS_TYPE_INVALID);
    return answer;
}

static DBusHandlerResult take(DBusConnection* bus, DBusMessage* call, void* nothing) {
    (void)nothing;
    if (!dbus_message_is_method_call(call, NAME, "Notify")) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    DBusMessage* answer = answer_to(call);
    dbus_connection_send(bus, answer, NULL);
    dbus_message_unref(answer);
    return DBUS_HANDLER_RESULT_HANDLED;
}

int main(int argc, char** argv) {
    DBusConnection* bus = argc == 2 ? dbus_bus_get(DBUS_BUS_SESSION, NULL) : NULL;
    if (bus == NULL) return 2;
    path = argv[1];
    dbus_connection_add_filter(bus, take, NULL, NULL);
    if (dbus_bus_request_name(bus, NAME, DBUS_NAME_FLAG_DO_NOT_QUEUE, NULL) !=
        DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER)
        return 1;
    while (dbus_connection_read_write_dispatch(bus, -1))
        continue;
    return 0;
}
