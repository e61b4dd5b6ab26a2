#include "diag/log.h"

#include "util/text.h"
#include "zvRenew.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

namespace zv {

namespace {

constexpr long SIZE_LIMIT = 1'048'576;
constexpr std::size_t PATH_LENGTH = 512;

using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

// A link is not followed, and whatever is not a plain file of the user's own is left alone: a log must not be led
// elsewhere.
File open_plain(const char* path, int flags, const char* mode) {
    File none(nullptr, &std::fclose);
    const int descriptor = ::open(path, flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (descriptor < 0) return none;
    struct stat status {};
    std::FILE* file = nullptr;
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid())
        file = ::fdopen(descriptor, mode);
    if (file == nullptr) ::close(descriptor);
    return {file, &std::fclose};
}

// The log of an older version, or a copy, may be open to others. Once a path: a mode given later is the user's wish.
void make_private(std::FILE* log) {
    static char done[PATH_LENGTH + 1];
    if (std::strcmp(done, log_path()) == 0) return;
    copy_text(done, log_path());
    [[maybe_unused]] const int made = ::fchmod(::fileno(log), 0600);
}

void empty(std::FILE* file) {
    [[maybe_unused]] const int emptied = ::ftruncate(::fileno(file), 0);
}

File open_log() {
    File log = open_plain(log_path(), O_RDWR | O_APPEND | O_CREAT, "a+");
    if (log != nullptr) make_private(log.get());
    return log;
}

template <std::size_t N> void format_time(char (&prefix)[N], const char* format) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (::localtime_r(&now, &local) == nullptr || std::strftime(prefix, N, format, &local) == 0)
        prefix[0] = '\0';
}

// What the log held is given up: the companion file is only ever created empty.
void empty_log(std::FILE* log, const char* prefix) {
    char companion[PATH_LENGTH + 1] = {};
    copy_text(companion, PATH_LENGTH - 1, log_path());
    append_text(companion, ".1");
    const File beside = open_plain(companion, O_WRONLY | O_CREAT, "w");
    if (beside != nullptr) empty(beside.get());
    empty(log);
    (void)std::fseek(log, 0, SEEK_END);
    for (const char* line :
         {"----------------------------------", "zvRenew", ZV_VERSION, "----------------------------------"})
        (void)std::fprintf(log, "%s%s\n", prefix, line);
}

void write_datum(std::FILE* log, const Datum& datum) {
    if (!datum) return;
    (void)std::fwrite(datum->data(), 1, datum->size(), log);
    (void)std::fputc('\n', log);
}

// Without a home there is no path, and nothing is logged.
FixedText<PATH_LENGTH + 1> users_log() {
    FixedText<PATH_LENGTH + 1> path;
    const passwd* entry = ::getpwuid(::getuid());
    const char* home = entry != nullptr ? entry->pw_dir : std::getenv("HOME");
    if (home == nullptr) return path;
    copy_text(path.text, home);
    append_text(path.text, "/.trevallo");
    append_text(path.text, "/zvRenew.log");
    return path;
}

} // namespace

char* log_path() {
    static FixedText<PATH_LENGTH + 1> path = users_log();
    return path.text;
}

void write_line(const char* message) {
    char prefix[256] = {};
    format_time(prefix, "[%d %b %Y %H:%M:%S]: ");
    const File log = open_log();
    if (log == nullptr) return;
    (void)std::fseek(log.get(), 0, SEEK_END);
    if (std::ftell(log.get()) > SIZE_LIMIT) empty_log(log.get(), prefix);
    const bool empty = message == nullptr || message[0] == '\0';
    (void)std::fprintf(log.get(), "%s%s\n", prefix, empty ? "MESSAGGIO VUOTO!" : message);
}

void write_entry(const char* title, Datum first, Datum second) {
    char prefix[255] = {};
    format_time(prefix, "********** - %d/%b/%Y %H:%M:%S - ");
    const File log = open_log();
    if (log == nullptr) return;
    (void)std::fprintf(log.get(), "%s%s\n", prefix, or_empty(title));
    write_datum(log.get(), first);
    write_datum(log.get(), second);
}

} // namespace zv
