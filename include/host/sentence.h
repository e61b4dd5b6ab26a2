#pragma once

#include "host/kind.h"

#include <ctime>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zvhost {

struct Sentence;

// A moment; who words it says the day.
struct Moment {
    std::time_t time = 0;
};

// What is told along with a sentence; none where something is not known.
using Value = std::variant<std::monostate, bool, long, std::string, std::vector<std::string>, Kind, Moment,
                           std::vector<Sentence>>;
using Values = std::vector<std::pair<std::string, Value>>; // such as {{"pair", "DS3"}}

// Something to be told, as data: which sentence it is, and what it is about. Who shows it has the words, in the language
// of whoever reads it, with a place for each value.
struct Sentence {
    Sentence() = default; // nothing to be told
    Sentence(std::string which, Values about) : id(std::move(which)), values(std::move(about)) {}

    [[nodiscard]] bool empty() const { return id.empty(); }

    std::string id; // never changes its meaning
    Values values;
};

// Something that a person can do, or should know to do it. A program goes by the key and its values.
struct Advice {
    std::string key; // never changes its meaning; docs/json.md lists all
    Sentence says;
    Values values = {};
};

} // namespace zvhost
