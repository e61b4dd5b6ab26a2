#pragma once

#include "crypt/failure.h"

#include <sys/types.h>

#include <span>
#include <string>

namespace zvcrypt {

// The Italian words for an errno value.
[[nodiscard]] std::string system_reason(int error);

// An open file descriptor.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const noexcept { return descriptor_; }
    [[nodiscard]] int close() noexcept;

  private:
    int descriptor_;
};

enum class Links { refused, followed };

// A plain file that is read. Neither a FIFO nor a device makes it wait.
class InputFile {
  public:
    InputFile(const std::string& path, Links links, zvCryptError failure_code = ZVC_ERR_INPUT);

    [[nodiscard]] off_t size() const noexcept { return size_; }
    // Fills the buffer as far as the file goes; 0 at its end.
    [[nodiscard]] std::size_t read(std::span<unsigned char> buffer);
    void rewind();
    [[nodiscard]] bool is_also(const std::string& path) const;

  private:
    std::string path_;
    zvCryptError failure_code_;
    Descriptor descriptor_;
    off_t size_ = 0;
};

// A file that is written from nothing, readable by its owner alone. Unless it is kept, it goes again.
class OutputFile {
  public:
    // What has the name is removed first (a link itself, never its target), but never the file that is read,
    // a folder or a device.
    OutputFile(std::string path, const InputFile& input);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(std::span<const unsigned char> bytes);
    // Fails when the name is another file's by now: that one stays.
    void keep();

  private:
    [[nodiscard]] bool has_its_name() const;

    std::string path_;
    Descriptor descriptor_;
    bool kept_ = false;
};

} // namespace zvcrypt
