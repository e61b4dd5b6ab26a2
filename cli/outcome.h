#pragma once

#include "cli/card_facts.h"
#include "cli/on_card.h"
#include "exit_codes.h"

#include <ctime>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace cli {

using Exit = zv::ExitCode;

// What a program is told with an advice; none where something is not known.
using Value = std::variant<std::monostate, bool, long, std::string, std::vector<std::string>>;
using Values = std::vector<std::pair<std::string, Value>>; // such as {{"pair", "DS3"}}

// Something that a person can do, or should know to do it. A program goes by the key and its values.
struct Advice {
    std::string key; // never changes its meaning; docs/json.md lists all
    std::string text;
    Values values = {};
};

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

// Ends a command before its aim.
struct Stop : std::exception {
    Stop(Exit code_of_program, std::string what_happened)
        : exit(code_of_program), sentence(std::move(what_happened)) {}
    Stop(Exit code_of_program, std::string what_happened, Advice what_to_do)
        : Stop(code_of_program, std::move(what_happened)) {
        advice.push_back(std::move(what_to_do));
    }
    [[nodiscard]] const char* what() const noexcept override { return sentence.c_str(); }

    // Says which card it is about; what was said nearer to the cause stays.
    void tell_card(const CardFacts& facts) {
        if (!about) about = facts;
    }

    Exit exit;
    std::string sentence; // for a person
    std::vector<Advice> advice;
    std::optional<CardFacts> about;
    std::optional<int> code;    // the library's result, or the crypto library's, where one of them failed
    std::optional<OnCard> card; // what is on the card now
    std::variant<std::monostate, NotDue, AlreadyStored> found;
    bool logged = false; // whether the library's log tells more
};

} // namespace cli
