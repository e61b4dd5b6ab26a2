#pragma once

#include "simcard/authority/openssl_handles.h"
#include "simcard/tool/attributes.h"

// Templates of the objects that a card is made with: token objects whose CKA_LABEL is their CKA_ID.
namespace simcard {

[[nodiscard]] Attributes public_key_object(const EVP_PKEY& key, std::string_view id);

/// Private, sensitive, not extractable; signs and decrypts.
[[nodiscard]] Attributes private_key_object(const EVP_PKEY& key, std::string_view id);

/// X.509, with subject, issuer and serial number in DER beside the value.
[[nodiscard]] Attributes certificate_object(X509& certificate, std::string_view id);

} // namespace simcard
