#pragma once

#include "ossl/owners.h"
#include "simcard/tool/attributes.h"

#include <optional>

// Templates of the objects that a card is made with: token objects; that of a key or certificate has its CKA_ID
// as CKA_LABEL unless it is given one.
namespace simcard {

using Label = std::optional<std::string_view>;

[[nodiscard]] Attributes public_key_object(const EVP_PKEY& key, std::string_view id, Label label = {});

// Private, sensitive, not extractable; signs and decrypts, with the PIN before each use when it asks for it.
[[nodiscard]] Attributes private_key_object(const EVP_PKEY& key, std::string_view id, bool asks = false,
                                            Label label = {});

// X.509, with subject, issuer and serial number in DER beside the value.
[[nodiscard]] Attributes certificate_object(X509& certificate, std::string_view id, Label label = {});

// What another card holds as a certificate and is none.
[[nodiscard]] Attributes broken_certificate_object(std::string_view bytes, std::string_view id, Label label);

// Data that is read without the PIN; it has no CKA_ID.
[[nodiscard]] Attributes public_data_object(std::string_view label, std::string_view value,
                                            std::string_view application = {});

} // namespace simcard
