#include "simcard/module/key_file.h"

#include "simcard/common/hexadecimal.h"
#include "simcard/common/problem.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <optional>
#include <sstream>

namespace fs = std::filesystem;

namespace simcard {
namespace {

std::optional<RsaKey> parse_key(const std::string& line) {
    std::istringstream words(line);
    RsaKey key;
    for (std::string& number : key.numbers) {
        std::string word;
        words >> word;
        const auto bytes = from_hexadecimal(word);
        if (!bytes || bytes->empty()) return std::nullopt;
        number = *bytes;
    }
    return key;
}

} // namespace

std::vector<RsaKey> read_keys(const fs::path& file) {
    std::vector<RsaKey> keys;
    std::ifstream text(file);
    for (std::string line; std::getline(text, line);)
        if (const auto key = parse_key(line)) keys.push_back(*key);
    return keys;
}

void append_key(const fs::path& file, const RsaKey& key) {
    std::string line;
    for (const std::string& number : key.numbers)
        line += hexadecimal(number) + " ";
    line.back() = '\n';
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const auto written = ::write(descriptor, line.data(), line.size());
    if (descriptor >= 0) ::close(descriptor);
    if (written != static_cast<ssize_t>(line.size()))
        throw CardProblem("Cannot write the key pair to " + file.string() + ".");
}

} // namespace simcard
