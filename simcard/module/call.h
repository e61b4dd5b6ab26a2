#pragma once

#include "pkcs11/call.h"

namespace simcard {

using pkcs11::Call;
using pkcs11::Function;
using pkcs11::Role;

} // namespace simcard
