#pragma once

#include <stdexcept>

namespace simcard {

// A card folder, or SoftHSM, is not as it must be. One sentence for a person, without a PIN in it.
class CardProblem : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace simcard
