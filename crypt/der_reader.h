#pragma once

#include "crypt/der.h"

#include <algorithm>
#include <span>

// DER as it stands in a certificate, for what OpenSSL refuses to read or would not give back unchanged.
namespace zvcrypt::der {

using Span = std::span<const unsigned char>;

[[nodiscard]] inline bool is_same(Span one, Span other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end());
}

struct Element {
    unsigned char tag = 0; // first byte of the identifier
    Span whole;
    Span content;
};

// Takes one element after another off its input. What cannot be taken is ZVC_ERR_BAD_CERTIFICATE with the given
// sentence; so is an indefinite length, with one of its own.
class Reader {
  public:
    Reader(Span input, const char* complaint) noexcept : rest_(input), complaint_(complaint) {}

    [[nodiscard]] bool at_end() const noexcept { return rest_.empty(); }
    [[nodiscard]] bool next_is(Tag tag) const noexcept { return !at_end() && rest_[0] == tag; }

    Element next();
    Element next(Tag tag);
    // The content of the next element.
    [[nodiscard]] Reader enter(Tag tag) { return {next(tag).content, complaint_}; }

    [[noreturn]] void complain() const;

  private:
    [[nodiscard]] std::size_t identifier_size() const;

    Span rest_;
    const char* complaint_;
};

} // namespace zvcrypt::der
