#pragma once

#include "pkcs11.h"

#include <cstddef>
#include <span>
#include <string_view>

// Silent reads of the card's objects, one object and one attribute at a time, for routines with log entries
// of their own. Each leaves the PKCS#11 result in zv::rv.
namespace zv {

struct Read {
    CK_RV code;
    std::size_t length; // of what is in the room; 0 after a failure
};

// What becomes of a value that is longer than its room.
enum class TooLong { cut, fails };

// Reads one attribute into room, cleared first.
Read read_attribute(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                    std::span<std::byte> room, TooLong too_long = TooLong::cut);

// Reads a number, such as a class; 0 after a failure, all ones when the module says that it gave it and did not.
CK_RV read_number(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                  CK_ULONG& number);

// Reads a text of at most N - 1 bytes.
template <std::size_t N>
CK_RV read_text(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, char (&text)[N]) {
    const Read read = read_attribute(session, object, type, std::as_writable_bytes(std::span(text, N - 1)));
    text[read.length] = '\0';
    return read.code;
}

// True for a result after which an object is still worth looking at: it lacks the attribute, or hides it.
[[nodiscard]] bool is_tolerated(CK_RV result);

// A template entry over the caller's bytes, which a module only reads.
[[nodiscard]] CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, const void* value, std::size_t length);
[[nodiscard]] CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, std::string_view text);

// A template entry over a number or a truth value.
template <typename Value> CK_ATTRIBUTE attribute_of(CK_ATTRIBUTE_TYPE type, const Value& value) {
    return attribute(type, &value, sizeof value);
}

CK_RV destroy_object(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object);

} // namespace zv
