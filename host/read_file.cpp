#include "host/read_file.h"

#include "host/error.h"
#include "host/message.h"

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
        throw Error(Exit::refused, Sentence{what + std::string("-unread"),
                                            {{"file", path}, {"reason", std::strerror(errno)}}});
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > LARGEST_FILE)
        throw Error(Exit::refused, Sentence{what + std::string("-too-large"), {{"file", path}}});
    return text;
}

std::vector<Certificate> certificates_in_file(const std::string& path) {
    std::vector<Certificate> found;
    for (const ossl::PemBlock& block : blocks_of(read_file(path, "file")))
        for (Certificate& one : certificates_in(block))
            found.push_back(std::move(one));
    if (found.empty()) throw Error(Exit::refused, Sentence{"file-without-certificate", {{"file", path}}});
    return found;
}

} // namespace zvhost
