#pragma once

#include "kinds.h"

namespace zv {

// What an entry point was asked to request.
struct Request {
    const char* function; // name of the entry point, for the log
    Kind kind;
    const char* pending_label;
    const char* pin;
    const char* key_id;
    const char* subject;
    bool discard_pending;
};

// Makes the request and its signed wrapping, in base64, into a buffer of ZV_REQUEST_SIZE. Among authentication
// certificates the identifier of a services card's own pair stands for the kind of that.
[[nodiscard]] int create_request(Request request, char* request_out);

} // namespace zv
