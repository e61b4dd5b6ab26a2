#pragma once

#include <dbus/dbus.h>

#include <string>

namespace cli {

// What of the D-Bus library is called. It is loaded when there is something to show: with all that it needs itself it is
// eight libraries, a fifth of the program's start.
#define CLI_DBUS_FUNCTIONS(DO)                                                                               \
    DO(error_init)                                                                                           \
    DO(error_free)                                                                                           \
    DO(validate_utf8)                                                                                        \
    DO(bus_get_private)                                                                                      \
    DO(bus_add_match)                                                                                        \
    DO(connection_set_exit_on_disconnect)                                                                    \
    DO(connection_send_with_reply_and_block)                                                                 \
    DO(connection_read_write)                                                                                \
    DO(connection_pop_message)                                                                               \
    DO(connection_close)                                                                                     \
    DO(connection_unref)                                                                                     \
    DO(message_new_method_call)                                                                              \
    DO(message_is_signal)                                                                                    \
    DO(message_get_args)                                                                                     \
    DO(message_unref)                                                                                        \
    DO(message_iter_init_append)                                                                             \
    DO(message_iter_append_basic)                                                                            \
    DO(message_iter_open_container)                                                                          \
    DO(message_iter_close_container)

struct DbusLibrary {
#define CLI_DBUS_MEMBER(name) decltype(&::dbus_##name) name = nullptr; // NOLINT(bugprone-macro-parentheses)
    CLI_DBUS_FUNCTIONS(CLI_DBUS_MEMBER)
#undef CLI_DBUS_MEMBER
    std::string problem; // why it could not be loaded; empty when it was
};

// Stays loaded.
[[nodiscard]] const DbusLibrary& dbus_library();

} // namespace cli
