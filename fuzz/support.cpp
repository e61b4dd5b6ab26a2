// What every target needs once: surroundings of its own, files, UTF-8.
#include "fuzz/input.h"
#include "routines.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace fuzz {

namespace {

struct Folder {
    std::string path = std::filesystem::temp_directory_path() / "zv-fuzz-XXXXXX";
    Folder() { HOLDS(::mkdtemp(path.data()) != nullptr); }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
};

} // namespace

const std::string& scratch() {
    static const Folder folder;
    return folder.path;
}

void write_file(const std::string& path, std::string_view text) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    HOLDS(file >= 0 && ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()));
    ::close(file);
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const auto lead = static_cast<unsigned char>(text[0]);
        const std::size_t length = lead < 0x80   ? 1
                                   : lead < 0xC2 ? 0
                                   : lead < 0xE0 ? 2
                                   : lead < 0xF0 ? 3
                                   : lead < 0xF5 ? 4
                                                 : 0;
        if (length == 0 || text.size() < length) return false;
        const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
        if (!std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), continues))
            return false;
        const auto second = length > 2 ? static_cast<unsigned char>(text[1]) : 0;
        // Forms that are longer than needed, halves of pairs, and what lies past the last character.
        if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F)) return false;
        if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) return false;
        text.remove_prefix(length);
    }
    return true;
}

} // namespace fuzz

// Nothing of the user's has a part in a run: no log, no configuration, no PC/SC service.
int LLVMFuzzerInitialize(int*, char***) {
    getLogPath()[0] = '\0';
    loadErrorCodes();
    ::setenv("HOME", fuzz::scratch().c_str(), 1);
    ::unsetenv("XDG_CONFIG_HOME");
    ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
    ::setenv("PCSCLITE_CSOCK_NAME", (fuzz::scratch() + "/no-service").c_str(), 1);
    return 0;
}
