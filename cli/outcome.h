#pragma once

#include <exception>
#include <nlohmann/json.hpp>
#include <string>

namespace cli {

/// Exit codes. `refused` promises that no PIN try was spent and nothing on the card was changed.
enum class Exit : int { done = 0, failed = 1, refused = 2, nothing_due = 3 };

using Json = nlohmann::ordered_json;

/// What a command has to say when it reached its aim.
struct Report {
    std::string text; ///< for a person, without a final line feed
    Json json = Json::object();
    std::string payload; ///< what the command made, when it goes to no file
};

/// Ends a command before its aim. Every text is for a person; all but the sentence may be empty.
struct Stop : std::exception {
    Stop(Exit code, std::string what_happened, std::string what_to_do = {})
        : exit(code), sentence(std::move(what_happened)), advice(std::move(what_to_do)) {}
    [[nodiscard]] const char* what() const noexcept override { return sentence.c_str(); }

    Exit exit;
    std::string sentence;
    std::string advice;
    std::string card;    ///< what is on the card now
    bool logged = false; ///< whether the library's log tells more
};

} // namespace cli
