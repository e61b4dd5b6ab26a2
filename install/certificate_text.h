#pragma once

namespace zv {

// Writes a PEM certificate as DER, at most 8191 bytes; the text is cut in front of its end marker. Returns how many
// bytes, 0 for a text that is none.
[[nodiscard]] int decode_certificate(char* pem, char* der);

} // namespace zv
