#pragma once

#include "kinds.h"

#include <string>
#include <vector>

namespace cli {

// What every command takes.
struct CommonOptions {
    bool json = false;
    std::string reader;     // empty: the only reader that holds a known card
    std::string module_dir; // empty: searched for
    std::string pin_file;   // empty: asked for at the terminal
    bool final_try = false;
};

using zv::Kind, zv::kind_row;

struct ListOptions : CommonOptions {
    int days = 90;
};

struct RequestOptions : CommonOptions {
    Kind kind = Kind::signature;
    int days = 90;
    bool force = false;
    bool new_pair = false;
    std::string certificate; // identifier; empty: the one of that kind that ends last
    std::string subject;     // empty: the certificate's
    std::string out;         // empty: standard output
};

struct InstallOptions : CommonOptions {
    std::string certificate_file;
    std::string request_file;        // empty: the pairs that wait on the card are asked
    std::string replace;             // identifier; empty: the one that signed the request, or the only one
    std::string backup;              // empty: a name made from the identifier and the serial number
    std::vector<std::string> accept; // reasons for which a certificate is taken all the same
    bool remove_old = false;
};

[[nodiscard]] inline const char* kind_name(Kind kind) {
    return kind_row(kind).name;
}

} // namespace cli
