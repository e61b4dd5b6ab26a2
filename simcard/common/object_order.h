#pragma once

#include "pkcs11.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace simcard {

// SoftHSM gives the objects of a token in an order that changes from process to process. A card gives them in
// the order in which they were made: a file in the card's folder keeps it, one fingerprint a line. An object
// that was made past the card (straight at SoftHSM) gets its place when a search finds it first.

// A line of text that tells an object from the others of its card and is the same in every process: its
// class, CKA_ID and CKA_LABEL in hexadecimal, and a check sum of what else it holds.
// Empty when there is no such object.
[[nodiscard]] std::string fingerprint(const CK_FUNCTION_LIST& hsm, CK_SESSION_HANDLE session,
                                      CK_OBJECT_HANDLE object);

// The fingerprints of a card in order.
class ObjectOrder {
  public:
    explicit ObjectOrder(const std::filesystem::path& folder);

    // Whether the first object comes before the second.
    [[nodiscard]] bool before(std::string_view first, std::string_view second) const;

  private:
    [[nodiscard]] std::size_t rank(std::string_view fingerprint) const;
    std::vector<std::string> lines_;
};

// Gives an object the next place. @throws CardProblem
void add_object(const std::filesystem::path& folder, std::string_view fingerprint);

// Notes that an object is told by another fingerprint from now on; an empty one says that it is gone.
// @throws CardProblem
void change_object(const std::filesystem::path& folder, std::string_view before, std::string_view after);

// Forgets the order, as when the card was erased. @throws CardProblem
void forget_objects(const std::filesystem::path& folder);

} // namespace simcard
