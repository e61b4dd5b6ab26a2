#pragma once

#include "kinds.h"

namespace zv {

// What an entry point was asked to install.
struct Installation {
    const char* function; // name of the entry point, for the log
    Kind kind;
    char* cert_label; // the host's; an empty one is filled in
    const char* pending_label;
    const char* pin;
    const char* cert_chain;
    bool keep_old;
};

// Among authentication certificates the identifier of a services card's own pair stands for the kind of that.
[[nodiscard]] int install_certificate(Installation installation);

} // namespace zv
