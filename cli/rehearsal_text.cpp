#include "cli/card_json.h"
#include "cli/rehearsal.h"
#include "words/words.h"

#include <sstream>

namespace cli {
namespace {

// "certificate until 2027-01-31", "public key"
std::string in_a_word(const Json& object) {
    const Sentence what("object-" + object.at("class").get<std::string>(), {});
    if (!object.contains("ends")) return words::of(what);
    return words::of(Sentence{"object-until",
                              {{"what", std::vector{what}}, {"ends", object.at("ends").get<std::string>()}}});
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
        text += "\n" + words::of(Sentence{"twin-holds", {{"id", name}, {"held", held}}});
    return text;
}

std::string set_in(const std::string& text) {
    std::string all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        all += "\n    " + line;
    return all;
}

Sentence outcome_of(int exit) {
    if (exit == static_cast<int>(Exit::under_way)) return {"rehearsed-request-made", {}};
    if (exit == static_cast<int>(Exit::nothing_due)) return {"rehearsed-not-due", {}};
    return exit == 0 ? Sentence{"rehearsed-done", {}} : Sentence{"rehearsed-exit", {{"code", long{exit}}}};
}

std::string step_in_words(const RehearsedStep& step) {
    const bool authority = step.command.empty();
    const std::string what = authority ? words::of(Sentence{"rehearsed-authority", {}}) : step.command;
    const std::string line = "\n" + what + ": " + words::of(outcome_of(step.result.exit));
    // What the simulated authority issued is in English alone, and shows in what follows.
    return authority && step.result.exit == 0 ? line : line + set_in(step.result.text);
}

Sentence room_of(const std::optional<std::size_t>& bytes) {
    return bytes ? Sentence{"twin-has-room", {{"bytes", static_cast<long>(*bytes)}}}
                 : Sentence{"twin-has-any-room", {}};
}

std::string verdict(const Rehearsal& rehearsal) {
    if (rehearsal.exit() == Exit::nothing_due) return words::of(Sentence{"rehearsed-nothing-due", {}});
    return words::of(rehearsal.exit() == Exit::done ? Sentence{"would-go-through", {}}
                                                    : Sentence{"would-not-go-through", {}});
}

Sentence heading_of_rehearsal(const CardFacts& card) {
    return {"rehearsed-on-twin",
            {{"serial", card.state->serial},
             {"label", card.state->label},
             {"reader", card.reader},
             {"room", std::vector{room_of(card.state->room)}}}};
}

} // namespace

std::string in_words(const Rehearsal& rehearsal) {
    std::string text =
        words::of(heading_of_rehearsal(rehearsal.card.card)) + contents_in_words(rehearsal.before) + "\n";
    for (const RehearsedStep& step : rehearsal.steps)
        text += step_in_words(step);
    return text + "\n\n" + words::of(Sentence{"twin-afterwards", {}}) + contents_in_words(rehearsal.after) +
           "\n\n" + verdict(rehearsal);
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
    if (rehearsal.exit() == Exit::nothing_due) return {Advice{"force", {"rehearse-with-force", {}}}};
    return {Advice{"not-rehearsed", {"not-rehearsed", {}}}};
}

} // namespace cli
