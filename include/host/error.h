#pragma once

#include "exit_codes.h"
#include "host/card_facts.h"
#include "host/on_card.h"
#include "host/sentence.h"

#include <ctime>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zvhost {

using Exit = zv::ExitCode;

// What a request finds when its certificate is not due.
struct NotDue {
    std::string id;
    std::time_t ends = 0;
    long days_left = 0;
};

// What an installation finds when the certificate is on the card.
struct AlreadyStored {
    std::string id;
    bool verified = false;
};

// Ends what was begun before its aim: what happened, where, and what it means for the card.
struct Error : std::exception {
    Error(Exit code_of_program, Sentence what_happened)
        : exit(code_of_program), sentence(std::move(what_happened)) {}
    Error(Exit code_of_program, Sentence what_happened, Advice what_to_do)
        : Error(code_of_program, std::move(what_happened)) {
        advice.push_back(std::move(what_to_do));
    }
    // Which sentence; who shows it has the words.
    [[nodiscard]] const char* what() const noexcept override { return sentence.id.c_str(); }

    // Says which card it is about; what was said nearer to the cause stays.
    void tell_card(const CardFacts& facts) {
        if (!about) about = facts;
    }

    Exit exit;
    Sentence sentence;
    std::vector<Advice> advice;
    std::optional<CardFacts> about;
    std::optional<int> code;    // the library's result, or the crypto library's, where one of them failed
    std::optional<OnCard> card; // what is on the card now
    std::variant<std::monostate, NotDue, AlreadyStored> found;
    bool logged = false; // whether the library's log tells more
};

} // namespace zvhost
