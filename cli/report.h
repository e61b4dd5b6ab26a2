#pragma once

#include "cli/engine.h"
#include "cli/json.h"
#include "host/error.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <vector>

namespace cli {

// What a command has to say when it reached its aim.
struct Report {
    Exit exit = Exit::done;
    std::string text; // for a person, without a final line feed
    Json json = Json::object();
    std::vector<Advice> advice;         // what can be done next
    bool advice_told = false;           // whether the text says it
    bool logged = false;                // whether the log tells more
    std::string payload;                // what the command made, when it goes to no file
    std::function<void()> afterwards;   // what goes on once the report is given
    std::function<void(Error&)> unsaid; // says what is on the card in an error, should nobody get the report
};

} // namespace cli
