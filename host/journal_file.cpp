#include "host/journal_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <thread>

namespace zvhost {
namespace {

constexpr off_t LARGEST_ENTRY = off_t{1024} * 1024;
constexpr std::string_view ENDING = ".json";
constexpr int MOST_WAITS = 200;
constexpr std::chrono::milliseconds WAIT{10};

bool is_plain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

int make_private_folder(const std::string& folder) {
    if (folder.empty()) return ENOENT;
    for (std::size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
        const std::string part = folder.substr(0, slash);
        if (::mkdir(part.c_str(), S_IRWXU) != 0 && errno != EEXIST && slash == std::string::npos)
            return errno;
        if (slash == std::string::npos) break;
    }
    std::error_code none;
    return std::filesystem::is_directory(folder, none) ? 0 : ENOTDIR;
}

FolderTurn::FolderTurn(const std::string& folder)
    : fd_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    for (int i = 0; fd_ >= 0 && i < MOST_WAITS; ++i) {
        if (::flock(fd_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
        std::this_thread::sleep_for(WAIT);
    }
}

FolderTurn::~FolderTurn() {
    if (fd_ >= 0) ::close(fd_);
}

std::string journal_file_of(const std::string& card_serial) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string name;
    for (const char c : card_serial) {
        const auto byte = static_cast<unsigned char>(c);
        if (is_plain(c))
            name += c;
        else
            name += {'%', digits[byte / 16], digits[byte % 16]};
    }
    return name + std::string(ENDING);
}

std::optional<std::string> card_of_journal_file(const std::string& name) {
    if (!std::string_view(name).ends_with(ENDING)) return std::nullopt;
    const std::string_view encoded = std::string_view(name).substr(0, name.size() - ENDING.size());
    std::string serial;
    for (std::size_t i = 0; i < encoded.size(); ++i) {
        const bool escaped = encoded[i] == '%' && i + 2 < encoded.size();
        serial += escaped ? static_cast<char>(hex_digit(encoded[i + 1]) * 16 + hex_digit(encoded[i + 2]))
                          : encoded[i];
        if (escaped) i += 2;
    }
    if (journal_file_of(serial) != name) return std::nullopt;
    return serial;
}

std::optional<std::string> read_journal_file(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    struct stat status {};
    std::optional<std::string> text;
    if (::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= LARGEST_ENTRY) {
        text.emplace(static_cast<std::size_t>(status.st_size), '\0');
        const ssize_t count = ::read(fd, text->data(), text->size());
        text->resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    ::close(fd);
    return text;
}

} // namespace zvhost
