#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace zvhost {

// What one process tells another of the same program: values one behind the other, texts with their length before them.
class WireText {
  public:
    template <class Value> WireText& put(const Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        text_.append(reinterpret_cast<const char*>(&value), sizeof value);
        return *this;
    }
    WireText& put(std::string_view text) {
        put(text.size());
        text_.append(text);
        return *this;
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

// Reads that. Each answers whether the value was there whole: the teller may have died.
class WireReader {
  public:
    explicit WireReader(std::string_view text) : rest_(text) {}

    template <class Value> [[nodiscard]] bool take(Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        if (rest_.size() < sizeof value) return false;
        std::memcpy(&value, rest_.data(), sizeof value);
        rest_.remove_prefix(sizeof value);
        return true;
    }
    [[nodiscard]] bool take(std::string& text) {
        std::size_t size = 0;
        if (!take(size) || rest_.size() < size) return false;
        text = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return true;
    }

  private:
    std::string_view rest_;
};

} // namespace zvhost
