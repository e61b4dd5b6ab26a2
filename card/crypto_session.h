#pragma once

// The crypto library's own session on the card.
namespace zv {

// Opens it anew and logs in. Results are the crypto library's.
[[nodiscard]] int open_crypto_session(char* module_path, const char* pin);

int close_crypto_session();

} // namespace zv
