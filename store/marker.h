#pragma once

#include "pkcs11.h"

#include <string_view>

// Data objects that mark a services card: written by a request, removed once its certificate is installed.
// Nothing is logged.
namespace zv {

// Result for a text that has no place in a data object.
constexpr CK_RV DATA_REFUSED = 0xFFFFFFFF;

struct DataObject {
    std::string_view label; // at most 64 bytes
    std::string_view value; // 1 to 2048 bytes
    bool modifiable;
    bool is_private;
};

// Creates the object, or changes the value of one that has all else of it.
CK_RV write_data(CK_SESSION_HANDLE session, const DataObject& data);

// Destroys the first data object with that label, if there is one.
CK_RV delete_data(CK_SESSION_HANDLE session, std::string_view label);

} // namespace zv
