#pragma once

#include <stdexcept>
#include <string>

namespace simcard {

// What was asked for is wrong or not allowed: the caller's input has to change. One sentence for a person.
class Refusal : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What was asked for is fine, but it could not be done (disk, memory, SoftHSM, OpenSSL). One sentence.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Ends the current step with a Failure that names the step and OpenSSL's own reason for it.
[[noreturn]] void fail_with_openssl_reason(const std::string& step);

} // namespace simcard
