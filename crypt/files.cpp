#include "crypt/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zvcrypt {
namespace {

int open_without_waiting(const std::string& path, Links links) {
    const int follow = links == Links::refused ? O_NOFOLLOW : 0;
    return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | follow);
}

// Whether the name stands for that open file, and not for a link to it.
bool names(const std::string& path, int descriptor) {
    struct stat open {};
    struct stat named {};
    return ::fstat(descriptor, &open) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

// An administrator could remove one: /dev/null must survive being named as an output.
bool is_device(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
}

int create_anew(const std::string& path, const InputFile& input) {
    if (input.is_also(path))
        throw Failure(ZVC_ERR_OUTPUT, "Il file da creare è lo stesso da leggere: " + path);
    if (is_device(path))
        throw Failure(ZVC_ERR_OUTPUT, "Impossibile sostituire " + path + ": è un dispositivo");
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        throw Failure(ZVC_ERR_OUTPUT, "Impossibile sostituire " + path + ": " + system_reason(errno));
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        throw Failure(ZVC_ERR_OUTPUT, "Impossibile creare " + path + ": " + system_reason(errno));
    return descriptor;
}

} // namespace

std::string system_reason(int error) {
    switch (error) {
    case ENOENT:
        return "il file o la cartella non esiste";
    case EACCES:
    case EPERM:
        return "permesso negato";
    case ELOOP:
        return "è un collegamento";
    case EISDIR:
        return "è una cartella";
    case ENOTDIR:
        return "una parte del percorso non è una cartella";
    case EEXIST:
        return "esiste già";
    case ENOSPC:
    case EDQUOT:
        return "spazio esaurito";
    case EROFS:
        return "il disco è di sola lettura";
    case EFBIG:
        return "file troppo grande";
    case ENAMETOOLONG:
        return "nome troppo lungo";
    case EIO:
        return "errore del disco";
    case EMFILE:
    case ENFILE:
        return "troppi file aperti";
    default:
        return "errore di sistema " + std::to_string(error);
    }
}

Descriptor::~Descriptor() {
    (void)close();
}

int Descriptor::close() noexcept {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    return descriptor < 0 ? 0 : ::close(descriptor);
}

InputFile::InputFile(const std::string& path, Links links, zvCryptError failure_code)
    : path_(path), failure_code_(failure_code), descriptor_(open_without_waiting(path, links)) {
    if (descriptor_.get() < 0)
        throw Failure(failure_code_, "Impossibile aprire " + path_ + ": " + system_reason(errno));
    struct stat status {};
    if (::fstat(descriptor_.get(), &status) != 0)
        throw Failure(failure_code_, "Impossibile leggere " + path_ + ": " + system_reason(errno));
    if (!S_ISREG(status.st_mode)) throw Failure(failure_code_, path_ + " non è un file di dati");
    size_ = status.st_size;
}

std::size_t InputFile::read(std::span<unsigned char> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::read(descriptor_.get(), buffer.data() + filled, buffer.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw Failure(failure_code_, "Impossibile leggere " + path_ + ": " + system_reason(errno));
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

void InputFile::rewind() {
    if (::lseek(descriptor_.get(), 0, SEEK_SET) != 0)
        throw Failure(failure_code_, "Impossibile rileggere " + path_ + ": " + system_reason(errno));
}

bool InputFile::is_also(const std::string& path) const {
    return names(path, descriptor_.get());
}

OutputFile::OutputFile(std::string path, const InputFile& input)
    : path_(std::move(path)), descriptor_(create_anew(path_, input)) {}

OutputFile::~OutputFile() {
    if (!kept_ && has_its_name()) (void)::unlink(path_.c_str());
}

bool OutputFile::has_its_name() const {
    return names(path_, descriptor_.get());
}

void OutputFile::write(std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw Failure(ZVC_ERR_OUTPUT, "Impossibile scrivere " + path_ + ": " + system_reason(errno));
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void OutputFile::keep() {
    if (!has_its_name()) throw Failure(ZVC_ERR_OUTPUT, path_ + " è stato sostituito durante la scrittura");
    kept_ = true;
    if (descriptor_.close() == 0) return;
    const int error = errno;
    (void)::unlink(path_.c_str());
    throw Failure(ZVC_ERR_OUTPUT, "Impossibile scrivere " + path_ + ": " + system_reason(error));
}

} // namespace zvcrypt
