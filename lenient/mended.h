#pragma once

#include <span>
#include <vector>

namespace lenient {

// DER that OpenSSL reads, of the same length, where authorities issue what it refuses: a wrong byte in a UTF8String,
// a BMPString of odd length or of another kind of string in a name becomes a T61String of the same bytes, a needless
// byte in front of an INTEGER another value. What is read from it tells the key, dates, extensions and texts; bytes
// are taken from the original, which has them at the same place.
[[nodiscard]] std::vector<unsigned char> mended(std::span<const unsigned char> der);

} // namespace lenient
