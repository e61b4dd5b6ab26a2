#pragma once

#include "cli/json.h"
#include "cli/request_plan.h"

#include <string>
#include <vector>

namespace cli {

// A request that was made, or is there already.
struct MadeRequest {
    CardFacts card;
    RequestPlan plan;
    Kind kind = Kind::signature;
    std::string file;     // empty: it goes to no file
    const char* saved_as; // what there is to say of the file
    std::string text;     // the request itself, where it goes to no file
};

[[nodiscard]] std::string in_words(const MadeRequest& made);
[[nodiscard]] Json as_json(const MadeRequest& made);
[[nodiscard]] std::vector<Advice> advice_on(const MadeRequest& made);

} // namespace cli
