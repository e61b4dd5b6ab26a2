#include "cli/new_file.h"

#include "cli/outcome.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cli {
namespace {

constexpr mode_t readable_by_all = 0644;

int create(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, readable_by_all);
}

} // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)), file_(create(path_)) {
    if (file_) return;
    if (errno == EEXIST)
        throw Stop(Exit::refused, fmt::format("There is a file {} already.", path_),
                   Advice{"other-file", "Give another name, or move that file away.", {{"file", path_}}});
    throw Stop(Exit::refused, fmt::format("The file {} cannot be made ({}).", path_, std::strerror(errno)));
}

NewFile::~NewFile() {
    if (!saved_ && file_) ::unlink(path_.c_str());
}

void NewFile::save(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file_.get(), text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0)
            throw Stop(Exit::failed,
                       fmt::format("The file {} cannot be written ({}).", path_, std::strerror(errno)));
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    // Not every file system has something to do here.
    [[maybe_unused]] const int synced = ::fsync(file_.get());
    saved_ = true;
}

} // namespace cli
