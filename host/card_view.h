#pragma once

#include "host/module.h"
#include "host/on_card.h"

#include <string>
#include <vector>

namespace zvhost {

// An object of the card. Identifier (CKA_ID) and label are read as texts.
struct CardObject {
    CK_OBJECT_HANDLE handle = 0;
    CK_OBJECT_CLASS type = 0;
    std::string id;
    std::string label;
    Bytes value;            // a certificate's DER, a key's modulus without leading zeros
    Bytes exponent;         // a public key's, without leading zeros
    bool wants_pin = false; // a private key that wants the PIN before each signature
};

// What is on the card, as read at one moment by this program itself: whole, or not at all.
class CardView {
  public:
    CardView() = default; // of an empty card
    explicit CardView(std::vector<CardObject> objects) : objects_(std::move(objects)) {}

    [[nodiscard]] const std::vector<CardObject>& objects() const { return objects_; }
    // The object of that class and identifier; null when there is none.
    [[nodiscard]] const CardObject* find(CK_OBJECT_CLASS type, const std::string& id) const;
    // Every certificate with that identifier: a services card may hold two under its own pair's.
    [[nodiscard]] std::vector<const CardObject*> certificates(const std::string& id) const;
    // The certificate of that identifier and DER; null when there is none.
    [[nodiscard]] const CardObject* certificate(const std::string& id, const Bytes& der) const;
    // Whether the card bears the mark that a request for a services card's own certificate is under way.
    [[nodiscard]] bool marked_pending() const;
    // Whether a private key with that identifier wants the PIN before each signature.
    [[nodiscard]] bool wants_pin(const std::string& id) const;
    // How many private keys have that identifier: there are cards that take any number.
    [[nodiscard]] std::size_t private_keys(const std::string& id) const;
    // Whether any object has that identifier.
    [[nodiscard]] bool has(const std::string& id) const;
    // The modulus of the pair with that identifier; empty when the card does not give it.
    [[nodiscard]] Bytes modulus(const std::string& id) const;
    // Identifiers that contain a text but are not it. The library's deletions and key searches go by such
    // containment.
    [[nodiscard]] std::vector<std::string> others_containing(const std::string& text) const;
    // Identifiers of the pairs that wait for a certificate: both keys, no certificate, not a card's first
    // keys (digits 0 to 2). The first is the one that the library takes.
    [[nodiscard]] std::vector<std::string> pending_pairs() const;
    // The same, as far as it shows without a login: of a pair, the public key.
    [[nodiscard]] std::vector<std::string> pending_public_keys() const;
    // Identifiers of a card's first public keys that have no certificate.
    [[nodiscard]] std::vector<std::string> uncertified_first_keys() const;
    // Which certificates and keys there are.
    [[nodiscard]] OnCard contents() const;
    // Identifiers, each once, in the card's order; of one class, or of all.
    [[nodiscard]] std::vector<std::string> identifiers() const;
    [[nodiscard]] std::vector<std::string> ids_of_class(CK_OBJECT_CLASS type) const;

  private:
    std::vector<CardObject> objects_;
};

// Refuses identifiers that more than one private key has: which of them is used, or removed, would be chance.
// @throws Error
void refuse_doubled(const CardView& view, const std::vector<std::string>& ids);

// Reads what a session sees; handles hold as long as it does. @throws Error
[[nodiscard]] CardView view_in(const Session& session);

} // namespace zvhost
