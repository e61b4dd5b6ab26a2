#include "diag/log.h"

#include "util/text.h"
#include "zvRenew.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <concepts>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace zv {

namespace {

constexpr off_t SIZE_LIMIT = 1'048'576;
constexpr std::size_t PATH_LENGTH = 512;
constexpr std::string_view LINE_END = "\n";

class File {
  public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    ~File() {
        if (is_open()) ::close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    [[nodiscard]] int descriptor() const { return descriptor_; }

  private:
    int descriptor_;
};

struct FileState {
    mode_t mode = 0;
    uid_t owner = 0;
    off_t size = 0;
};

// Not its times: for whoever has asked for those Linux has the next write note a finer one, which takes longer than the look.
FileState state_of(int file) {
#ifdef STATX_TYPE
    struct statx asked {};
    if (::statx(file, "", AT_EMPTY_PATH, STATX_TYPE | STATX_UID | STATX_SIZE, &asked) == 0)
        return {asked.stx_mode, asked.stx_uid, static_cast<off_t>(asked.stx_size)};
#endif
    struct stat status {};
    if (::fstat(file, &status) != 0) return {};
    return {status.st_mode, status.st_uid, status.st_size};
}

// A link is not followed, and whatever is not a plain file of the user's own is left alone: a log must not be led
// elsewhere.
int open_plain(const char* path, int flags, off_t* size = nullptr) {
    const int descriptor = ::open(path, flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (descriptor < 0) return descriptor;
    const FileState state = state_of(descriptor);
    if (!S_ISREG(state.mode) || state.owner != ::geteuid()) {
        ::close(descriptor);
        return -1;
    }
    if (size != nullptr) *size = state.size;
    return descriptor;
}

// The log of an older version, or a copy, may be open to others. Once a path: a mode given later is the user's wish.
void make_private(int log) {
    static char done[PATH_LENGTH + 1];
    if (std::strcmp(done, log_path()) == 0) return;
    copy_text(done, log_path());
    [[maybe_unused]] const int made = ::fchmod(log, 0600);
}

void empty(int file) {
    [[maybe_unused]] const int emptied = ::ftruncate(file, 0);
}

int open_log(off_t* size = nullptr) {
    if (log_path()[0] == '\0') return -1;
    const int log = open_plain(log_path(), O_RDWR | O_APPEND | O_CREAT, size);
    if (log >= 0) make_private(log);
    return log;
}

// All in one call: no other process writes between. Few bytes are put together, which costs less than a call with parts.
template <std::same_as<std::string_view>... Texts> void append(const File& log, Texts... texts) {
    [[maybe_unused]] ssize_t written = 0;
    char whole[512];
    if ((texts.size() + ...) <= sizeof whole) {
        char* end = whole;
        ((end = std::copy(texts.begin(), texts.end(), end)), ...);
        written = ::write(log.descriptor(), whole, static_cast<std::size_t>(end - whole));
    } else {
        const iovec parts[] = {{const_cast<char*>(texts.data()), texts.size()}...};
        written = ::writev(log.descriptor(), parts, static_cast<int>(sizeof...(texts)));
    }
}

// The time as an entry begins with it: made once a second, a call writes more than a hundred of them.
class TimeText {
  public:
    constexpr explicit TimeText(const char* format) : format_(format) {}
    [[nodiscard]] std::string_view now() {
        const std::time_t second = std::time(nullptr);
        if (length_ == 0 || second != second_) make(second);
        return {text_, length_};
    }

  private:
    void make(std::time_t second) {
        std::tm local{};
        second_ = second;
        length_ = ::localtime_r(&second, &local) == nullptr
                      ? 0
                      : std::strftime(text_, sizeof text_, format_, &local);
    }

    const char* format_;
    std::time_t second_ = 0;
    std::size_t length_ = 0;
    char text_[256] = {};
};

// What the log held is given up: the companion file is only ever created empty.
void empty_log(const File& log, std::string_view prefix) {
    char companion[PATH_LENGTH + 1] = {};
    copy_text(companion, PATH_LENGTH - 1, log_path());
    append_text(companion, ".1");
    const File beside(open_plain(companion, O_WRONLY | O_CREAT));
    if (beside.is_open()) empty(beside.descriptor());
    empty(log.descriptor());
    for (const std::string_view line :
         {"----------------------------------", "zvRenew", ZV_VERSION, "----------------------------------"})
        append(log, prefix, line, LINE_END);
}

std::string_view line_end(const Datum& datum) {
    return datum ? LINE_END : std::string_view();
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
    off_t size = 0;
    const File log(open_log(&size));
    if (!log.is_open()) return;
    static constinit TimeText time("[%d %b %Y %H:%M:%S]: ");
    const std::string_view prefix = time.now();
    if (size > SIZE_LIMIT) empty_log(log, prefix);
    const bool empty = message == nullptr || message[0] == '\0';
    append(log, prefix, std::string_view(empty ? "MESSAGGIO VUOTO!" : message), LINE_END);
}

void write_entry(const char* title, Datum first, Datum second) {
    const File log(open_log());
    if (!log.is_open()) return;
    static constinit TimeText time("********** - %d/%b/%Y %H:%M:%S - ");
    append(log, time.now(), std::string_view(or_empty(title)), LINE_END, first.value_or(""), line_end(first),
           second.value_or(""), line_end(second));
}

} // namespace zv
