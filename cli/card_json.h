#pragma once

#include "cli/json.h"
#include "words/card_json.h"

namespace cli {

using words::as_json, words::contents_json, words::instant, words::or_null;

} // namespace cli
