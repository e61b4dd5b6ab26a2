#include "files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zvcrypt {
namespace {

int openWithoutWaiting(const std::string& path, Links links) {
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
bool isDevice(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
}

int createAnew(const std::string& path, const InputFile& input) {
    if (input.isAlso(path))
        throw Failure(ZVC_ERR_OUTPUT, "Il file da creare è lo stesso da leggere: " + path);
    if (isDevice(path))
        throw Failure(ZVC_ERR_OUTPUT, "Impossibile sostituire " + path + ": è un dispositivo");
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        throw Failure(ZVC_ERR_OUTPUT, "Impossibile sostituire " + path + ": " + systemReason(errno));
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        throw Failure(ZVC_ERR_OUTPUT, "Impossibile creare " + path + ": " + systemReason(errno));
    return descriptor;
}

} // namespace

std::string systemReason(int error) {
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

InputFile::InputFile(const std::string& path, Links links, zvCryptError failureCode)
    : path_(path), failureCode_(failureCode), descriptor_(openWithoutWaiting(path, links)) {
    if (descriptor_.get() < 0)
        throw Failure(failureCode_, "Impossibile aprire " + path_ + ": " + systemReason(errno));
    struct stat status {};
    if (::fstat(descriptor_.get(), &status) != 0)
        throw Failure(failureCode_, "Impossibile leggere " + path_ + ": " + systemReason(errno));
    if (!S_ISREG(status.st_mode)) throw Failure(failureCode_, path_ + " non è un file di dati");
    size_ = status.st_size;
}

std::size_t InputFile::read(std::span<unsigned char> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::read(descriptor_.get(), buffer.data() + filled, buffer.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw Failure(failureCode_, "Impossibile leggere " + path_ + ": " + systemReason(errno));
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

void InputFile::rewind() {
    if (::lseek(descriptor_.get(), 0, SEEK_SET) != 0)
        throw Failure(failureCode_, "Impossibile rileggere " + path_ + ": " + systemReason(errno));
}

bool InputFile::isAlso(const std::string& path) const {
    return names(path, descriptor_.get());
}

OutputFile::OutputFile(std::string path, const InputFile& input)
    : path_(std::move(path)), descriptor_(createAnew(path_, input)) {}

OutputFile::~OutputFile() {
    if (!kept_ && hasItsName()) (void)::unlink(path_.c_str());
}

bool OutputFile::hasItsName() const {
    return names(path_, descriptor_.get());
}

void OutputFile::write(std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw Failure(ZVC_ERR_OUTPUT, "Impossibile scrivere " + path_ + ": " + systemReason(errno));
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void OutputFile::keep() {
    if (!hasItsName()) throw Failure(ZVC_ERR_OUTPUT, path_ + " è stato sostituito durante la scrittura");
    kept_ = true;
    if (descriptor_.close() == 0) return;
    const int error = errno;
    (void)::unlink(path_.c_str());
    throw Failure(ZVC_ERR_OUTPUT, "Impossibile scrivere " + path_ + ": " + systemReason(error));
}

} // namespace zvcrypt
