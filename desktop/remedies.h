#pragma once

#include "desktop/errand.h"
#include "host/error.h"

#include <QString>
#include <vector>

namespace desktop {

// What a button does about a failure.
struct Remedy {
    enum class Goes { to_errand, to_certificate, to_start };

    QString label;
    Goes goes = Goes::to_start;
    Errand errand; // as it is done then
};

// What can be done about a failure, most useful first: what its advice names, else the same once more.
[[nodiscard]] std::vector<Remedy> remedies_for(const zvhost::Error& error, const Errand& errand);

} // namespace desktop
