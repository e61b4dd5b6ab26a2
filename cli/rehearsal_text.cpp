#include "cli/card_json.h"
#include "cli/rehearsal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <sstream>

namespace cli {
namespace {

// "certificate until 2027-01-31", "public key"
std::string in_a_word(const Json& object) {
    const std::string what = object.at("class");
    return object.contains("ends") ? fmt::format("{} until {}", what, object.at("ends").get<std::string>())
                                   : what;
}

std::string name_of_object(const Json& object) {
    const std::string id = object.at("id");
    return id.empty() ? object.at("label").get<std::string>() : id;
}

// A line for each name, in the order of the list.
std::string contents_in_words(const Json& objects) {
    std::vector<std::pair<std::string, std::vector<std::string>>> names;
    for (const Json& object : objects) {
        const std::string name = name_of_object(object);
        if (names.empty() || names.back().first != name) names.push_back({name, {}});
        names.back().second.push_back(in_a_word(object));
    }
    std::string text;
    for (const auto& [name, held] : names)
        text += fmt::format("\n  {}: {}", name, fmt::join(held, ", "));
    return text;
}

std::string set_in(const std::string& text) {
    std::string all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        all += "\n    " + line;
    return all;
}

std::string outcome_of(int exit) {
    if (exit == static_cast<int>(Exit::under_way)) return "the request is made";
    return exit == 0 ? "done" : fmt::format("ends with exit code {}", exit);
}

std::string step_in_words(const RehearsedStep& step) {
    const std::string what = step.command.empty() ? "The authority (a simulated one) answers" : step.command;
    return fmt::format("\n{}: {}{}", what, outcome_of(step.result.exit), set_in(step.result.text));
}

std::string room_in_words(const std::optional<std::size_t>& bytes) {
    return bytes ? fmt::format("The card says that {} bytes are free: so many has the twin.", *bytes)
                 : "The card does not say how much room it has: the twin has any.";
}

std::string verdict(const Rehearsal& rehearsal) {
    if (rehearsal.exit() == Exit::nothing_due) return "Nothing is due, so nothing was renewed.";
    return rehearsal.exit() == Exit::done ? "The renewal would go through."
                                          : "The renewal would not go through.";
}

} // namespace

std::string in_words(const Rehearsal& rehearsal) {
    const CardState& state = *rehearsal.card.card.state;
    std::string text =
        fmt::format("Rehearsed on a simulated twin of card {} (\"{}\") in \"{}\". The card itself was only "
                    "read, without the PIN.\n{}\n\nOn the twin before:",
                    state.serial, state.label, rehearsal.card.card.reader, room_in_words(state.room));
    text += contents_in_words(rehearsal.before) + "\n";
    for (const RehearsedStep& step : rehearsal.steps)
        text += step_in_words(step);
    return text + "\n\nOn the twin afterwards:" + contents_in_words(rehearsal.after) + "\n\n" +
           verdict(rehearsal);
}

Json as_json(const Rehearsal& rehearsal) {
    Json json = cli::as_json(rehearsal.card.card);
    json["kind"] = kind_name(rehearsal.kind);
    const auto& room = rehearsal.card.card.state->room;
    json["room"] = room ? Json(*room) : Json();
    json["before"] = rehearsal.before;
    json["steps"] = Json::array();
    for (const RehearsedStep& step : rehearsal.steps)
        json["steps"].push_back({{"step", step.name},
                                 {"command", step.command.empty() ? Json() : Json(step.command)},
                                 {"exit", step.result.exit},
                                 {"text", step.result.text}});
    json["after"] = rehearsal.after;
    if (rehearsal.exit() != Exit::done) json["message"] = verdict(rehearsal);
    if (rehearsal.exit() == Exit::failed) json["on_card"] = nullptr;
    return json;
}

std::vector<Advice> advice_on(const Rehearsal& rehearsal) {
    if (rehearsal.exit() == Exit::nothing_due)
        return {Advice{"force", "To rehearse it all the same, give --force."}};
    return {Advice{"not-rehearsed",
                   "What only the card knows was not rehearsed: its PIN, objects that show with it alone, "
                   "and how its maker's module does things."}};
}

} // namespace cli
