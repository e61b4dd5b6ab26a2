#include "host/read_file.h"

#include "host/error.h"
#include "host/message.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace zvhost {
namespace {

constexpr std::size_t LARGEST_FILE = std::size_t{1024} * 1024;

} // namespace

std::string read_file(const std::string& path, const char* what) {
    std::ifstream file(path, std::ios::binary);
    std::string text(LARGEST_FILE + 1, '\0');
    if (file) file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file && !file.eof())
        throw Error(Exit::refused,
                    fmt::format("{} {} cannot be read ({}).", what, path, std::strerror(errno)));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > LARGEST_FILE)
        throw Error(Exit::refused, fmt::format("{} {} is larger than 1 MiB.", what, path));
    return text;
}

std::vector<Certificate> certificates_in_file(const std::string& path) {
    std::vector<Certificate> found;
    for (const ossl::PemBlock& block : blocks_of(read_file(path, "The file")))
        for (Certificate& one : certificates_in(block))
            found.push_back(std::move(one));
    if (found.empty()) throw Error(Exit::refused, fmt::format("There is no certificate in {}.", path));
    return found;
}

} // namespace zvhost
