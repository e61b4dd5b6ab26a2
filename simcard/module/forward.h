#pragma once

#include "simcard/module/call.h"

#include <optional>
#include <string_view>

namespace simcard {

// Passes a call on to SoftHSM, as any function of a card: slots, sessions and objects are exchanged for
// SoftHSM's, a card that was taken out answers so, one that would be changed before a login
// CKR_USER_NOT_LOGGED_IN, a full one CKR_DEVICE_MEMORY, the card takes its time, and what is created gets
// its handle and its place in the order of objects.
[[nodiscard]] CK_RV forward(Call call);

template <Function F, class... A> [[nodiscard]] CK_RV forward(A... arguments) {
    return forward(pkcs11::make_call<F>(arguments...));
}

// Reads a truth value of a template.
[[nodiscard]] std::optional<bool> flag_in(const CK_ATTRIBUTE* attributes, CK_ULONG count,
                                          CK_ATTRIBUTE_TYPE type);

} // namespace simcard
