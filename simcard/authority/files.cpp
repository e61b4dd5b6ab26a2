#include "simcard/authority/files.h"

#include "simcard/authority/errors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace simcard {
namespace {

constexpr std::size_t LARGEST_FILE = std::size_t{1024} * 1024;

class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return descriptor_; }

  private:
    int descriptor_;
};

std::string because_of_system() {
    return std::string(" (") + std::strerror(errno) + ").";
}

[[nodiscard]] bool write_all(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

std::string read_file(const std::filesystem::path& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) throw Refusal("Cannot read " + path.string() + because_of_system());
    // Room for the whole file at once: a text that grows leaves copies behind, and it may hold a key.
    struct stat facts {};
    ::fstat(file.get(), &facts);
    std::string content(
        std::clamp<std::size_t>(static_cast<std::size_t>(facts.st_size), 8192, LARGEST_FILE) + 1, '\0');
    std::size_t used = 0;
    for (;;) {
        const ssize_t count = ::read(file.get(), content.data() + used, content.size() - used);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw Refusal("Cannot read " + path.string() + because_of_system());
        if (count == 0) break;
        used += static_cast<std::size_t>(count);
        if (used > LARGEST_FILE) throw Refusal(path.string() + " is too large to be read here.");
        if (used == content.size()) content.resize(2 * used);
    }
    content.resize(used);
    return content;
}

void write_file(const std::filesystem::path& path, std::string_view content, Access access) {
    const auto kind = std::filesystem::symlink_status(path).type();
    if (kind != std::filesystem::file_type::not_found && kind != std::filesystem::file_type::regular)
        throw Refusal(path.string() + " is not a plain file and cannot be replaced.");
    std::string fresh = path.string() + ".XXXXXX";
    const Descriptor file(::mkstemp(fresh.data()));
    if (file.get() < 0) throw Failure("Cannot write " + path.string() + because_of_system());
    const mode_t mode = access == Access::owner_only ? 0600 : 0644;
    if (::fchmod(file.get(), mode) != 0 || !write_all(file.get(), content) ||
        ::rename(fresh.c_str(), path.c_str()) != 0) {
        const std::string reason = because_of_system();
        ::unlink(fresh.c_str());
        throw Failure("Cannot write " + path.string() + reason);
    }
}

TemporaryFolder::TemporaryFolder(const std::filesystem::path& prefix) {
    std::string name = prefix.string() + ".XXXXXX";
    if (::mkdtemp(name.data()) == nullptr)
        throw Failure("Cannot make a folder " + name + because_of_system());
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace simcard
