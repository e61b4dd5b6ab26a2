#include "simcard/common/memory_file.h"

#include "simcard/common/problem.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace simcard {

#ifdef __linux__
MemoryFile::MemoryFile(const char* name) {
    descriptor_ = ::memfd_create(name, MFD_CLOEXEC);
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

MemoryFile::~MemoryFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}
#else
MemoryFile::MemoryFile(const char* name)
    : path_(std::filesystem::temp_directory_path() / (std::string(name) + ".XXXXXX")) {
    descriptor_ = ::mkstemp(path_.data());
}

MemoryFile::~MemoryFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    ::unlink(path_.c_str());
}
#endif

// The file is there, and removed if filling it fails, once the other constructor is done.
MemoryFile::MemoryFile(const char* name, std::string_view content) : MemoryFile(name) {
    fill(content);
}

void MemoryFile::fill(std::string_view content) {
    while (descriptor_ >= 0 && !content.empty()) {
        const ssize_t written = ::write(descriptor_, content.data(), content.size());
        if (written < 0 && errno != EINTR) break;
        if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
    }
    if (descriptor_ < 0 || !content.empty())
        throw CardProblem(std::string("Cannot make a temporary file: ") + std::strerror(errno) + ".");
}

} // namespace simcard
