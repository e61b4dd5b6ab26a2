#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

// What holds for every input; one that breaks it is a finding, like one that crashes.
#define HOLDS(condition) ((condition) ? void() : fuzz::broken(#condition, __FILE__, __LINE__))

namespace fuzz {

[[noreturn]] inline void broken(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}

// Takes an input apart from its front.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

    // The next line. A carriage return stands for a line feed inside one, and a text ends at a zero byte.
    std::string line() {
        const std::string_view line = rest_.substr(0, rest_.find('\n'));
        rest_.remove_prefix(std::min(line.size() + 1, rest_.size()));
        std::string text(line.substr(0, line.find('\0')));
        for (char& c : text)
            if (c == '\r') c = '\n';
        return text;
    }
    // The next byte; 0 at the end.
    unsigned char byte() {
        if (rest_.empty()) return 0;
        const auto byte = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }
    // All that is left, as bytes or as a text.
    std::string_view bytes() const { return rest_; }
    std::string text() const { return std::string(rest_.substr(0, rest_.find('\0'))); }

  private:
    std::string_view rest_;
};

// A buffer of just so many bytes: what is written past it is seen by the address sanitizer.
class Room {
  public:
    static constexpr char FILL = '\xA5';

    explicit Room(std::size_t size, std::string_view text = {})
        : size_(size), bytes_(std::make_unique<char[]>(size)) {
        std::memset(bytes_.get(), FILL, size);
        if (text.data() == nullptr) return;
        const std::size_t length = text.copy(bytes_.get(), size - 1);
        bytes_[length] = '\0';
    }
    char* get() { return bytes_.get(); }
    std::size_t size() const { return size_; }
    // The text in it, which ends within it.
    std::string_view text() const {
        const auto* end = static_cast<const char*>(std::memchr(bytes_.get(), 0, size_));
        HOLDS(end != nullptr);
        return {bytes_.get(), static_cast<std::size_t>(end - bytes_.get())};
    }
    bool untouched() const {
        return std::string_view(bytes_.get(), size_).find_first_not_of(FILL) == std::string_view::npos;
    }

  private:
    std::size_t size_;
    std::unique_ptr<char[]> bytes_;
};

// The text in a field of a record, which ends within it.
template <std::size_t N> std::string_view field_of(const char (&field)[N]) {
    const auto* end = static_cast<const char*>(std::memchr(field, 0, N));
    HOLDS(end != nullptr);
    return {field, static_cast<std::size_t>(end - field)};
}

bool is_utf8(std::string_view text);

// A folder of this process alone, removed at its end.
const std::string& scratch();
void write_file(const std::string& path, std::string_view text);

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
