#pragma once

#include "cli/on_card.h"
#include "exit_codes.h"

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cli {

using Exit = zv::ExitCode;

// Something that a person can do, or should know to do it. A program goes by the key and its values.
struct Advice {
    std::string key; // never changes its meaning; docs/json.md lists all
    std::string text;
    Json values = Json::object(); // such as {{"pair", "DS3"}}
};

struct Stop;

// What a command has to say when it reached its aim.
struct Report {
    std::string text; // for a person, without a final line feed
    Json json = Json::object();
    std::vector<Advice> advice;        // what can be done next
    bool logged = false;               // whether the log tells more
    std::string payload;               // what the command made, when it goes to no file
    std::function<void(Stop&)> unsaid; // says what is on the card in a Stop, should nobody get the report
};

// Ends a command before its aim.
struct Stop : std::exception {
    Stop(Exit code, std::string what_happened) : exit(code), sentence(std::move(what_happened)) {}
    Stop(Exit code, std::string what_happened, Advice what_to_do) : Stop(code, std::move(what_happened)) {
        advice.push_back(std::move(what_to_do));
    }
    [[nodiscard]] const char* what() const noexcept override { return sentence.c_str(); }

    // Adds facts for a program (reader, serial, ...); what was said nearer to the cause stays.
    void about(const Json& more) {
        for (const auto& [key, value] : more.items())
            if (!facts.contains(key)) facts[key] = value;
    }

    Exit exit;
    std::string sentence; // for a person
    std::vector<Advice> advice;
    std::optional<OnCard> card; // what is on the card now
    Json facts = Json::object();
    bool logged = false; // whether the library's log tells more
};

} // namespace cli
