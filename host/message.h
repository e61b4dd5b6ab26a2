#pragma once

#include "host/certificate.h"
#include "ossl/owners.h"
#include "ossl/pem_blocks.h"

#include <string>
#include <vector>

namespace zvhost {

// What authorities and the request command put into files: signed messages and certificates, framed or not.

// The blocks of a file: framed ones, else the file itself as DER, or what it is in base64.
[[nodiscard]] std::vector<ossl::PemBlock> blocks_of(const std::string& text);

// A signed message (CMS); none when it is none.
[[nodiscard]] ossl::Message message_in(const std::string& der);

// The certificate that a block is, or those that it holds as a message.
[[nodiscard]] std::vector<Certificate> certificates_in(const ossl::PemBlock& block);

} // namespace zvhost
