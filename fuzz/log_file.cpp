#include "fuzz/log_file.h"

#include "fuzz/input.h"

#include <unistd.h>

#include <fstream>
#include <iterator>

namespace fuzz {

const std::string& log_path() {
    static const std::string path = scratch() + "/zvRenew.log";
    return path;
}

std::string take_log() {
    std::ifstream file(log_path(), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    ::unlink(log_path().c_str());
    return text;
}

} // namespace fuzz
