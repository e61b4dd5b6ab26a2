#pragma once

#include "zvCrypt.h"

#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>

namespace zvcrypt {

// Why an operation cannot go on: the code for its caller and the Italian sentence for the user.
class Failure : public std::exception {
  public:
    Failure(zvCryptError code, std::string reason) : code_(code), reason_(std::move(reason)) {}

    [[nodiscard]] zvCryptError code() const noexcept { return code_; }
    [[nodiscard]] const std::string& reason() const noexcept { return reason_; }
    [[nodiscard]] const char* what() const noexcept override { return reason_.c_str(); }

  private:
    zvCryptError code_;
    std::string reason_;
};

// An object of that type that lives as long as the process: hosts close the card from an exit handler, when the
// destructors of this library may have run.
template <class T, class... Arguments> [[nodiscard]] T& undying(Arguments&&... arguments) {
    return *new T(std::forward<Arguments>(arguments)...);
}

[[nodiscard]] int run_body(const std::function<void()>& body) noexcept;

// Runs the body of an exported operation: forgets the last failure first, keeps a new one for kvLastError and
// lets no exception out.
template <class Body> [[nodiscard]] int run_operation(const Body& body) noexcept {
    // By reference: a copy of the body may want memory, before anything looks after its failure.
    return run_body(std::cref(body));
}

// Fails with ZVC_ERR_ARGUMENT when one of the arguments is null.
void require_arguments(std::initializer_list<const void*> pointers);

} // namespace zvcrypt
