#pragma once

#include "host/kind.h"

#include <string>
#include <vector>

namespace zvhost {

// A certificate is due when it ends within so many days, where nothing else is wanted.
inline constexpr int USUAL_DAYS = 90;

// What is wanted of a request.
struct RequestWishes {
    Kind kind = Kind::signature;
    std::string out;         // new file for it; empty: it is given back as a text
    std::string subject;     // "/C=IT/O=.../CN=..."; empty: the certificate's
    std::string certificate; // identifier; empty: the one of that kind that ends last
    int days = USUAL_DAYS;   // due when it ends within so many
    bool force = false;      // renew also what is not due
    bool new_pair = false;   // discard the pair that waits, and make another
};

// What is wanted of an installation.
struct InstallWishes {
    std::string certificate_file;    // the authority's: PEM, DER or a PKCS#7 bundle
    std::string request_file;        // empty: the pairs that wait on the card are asked
    std::string replace;             // identifier; empty: the one that signed the request, or the only one
    bool remove_old = false;         // remove the old certificate and its keys
    bool removed_later = false;      // once the new one is proved, by whoever installs it
    bool certificate_first = false;  // but its certificate before the new one: there is no room for both
    std::string backup;              // empty: a name made from the identifier and the serial number
    std::vector<std::string> accept; // of accepted_reasons()
};

// The reasons for which a certificate would be refused and can be taken all the same.
[[nodiscard]] const std::vector<std::string>& accepted_reasons();

} // namespace zvhost
