#pragma once

#include "host/card_facts.h"
#include "host/sentence.h"

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace zvhost {

enum class ObjectClass { certificate, public_key, private_key, data };

// What happens to an object.
enum class Action { create, relabel, remove };

// One object of the card that a plan changes.
struct Change {
    Action action = Action::create;
    ObjectClass what = ObjectClass::certificate;
    std::string id;       // CKA_ID; empty for data
    std::string label;    // CKA_LABEL, of what is relabelled the new one
    std::size_t size = 0; // a certificate's bytes, a key's bits; 0 when it is not known
    Sentence why;
    std::time_t ends = 0; // of a certificate that goes, when it ends; 0 when it is not known
};

// What is going to be done to a card.
struct Plan {
    CardFacts card;
    std::vector<Change> changes;     // in their order
    int logins = 0;                  // how often the card gets the PIN for it
    std::optional<std::size_t> room; // bytes that the card says are free for public objects
    std::vector<Sentence> notices;   // what a person should know before
    // Says which plan for which contents of which card this is (SHA-256, 32 hexadecimal digits). The same again means
    // that neither has changed.
    std::string fingerprint;
};

// In a word for a program: "certificate", "public key", "private key", "data".
[[nodiscard]] const char* word_for(ObjectClass what);
// "create", "relabel", "remove"
[[nodiscard]] const char* word_for(Action action);

} // namespace zvhost
