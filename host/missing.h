#pragma once

#include "host/error.h"

#include <utility>

namespace zvhost {

// A reader or a card that is not there, but may come.
struct Missing : Error {
    explicit Missing(Error error) : Error(std::move(error)) {}
};

} // namespace zvhost
