#include "crypt/der_reader.h"

namespace zvcrypt::der {

void Reader::complain() const {
    throw Failure(ZVC_ERR_BAD_CERTIFICATE, complaint_);
}

std::size_t Reader::identifier_size() const {
    constexpr unsigned char long_tag = 0x1F;
    if (at_end()) complain();
    if ((rest_[0] & long_tag) != long_tag) return 1;
    for (std::size_t i = 1; i < rest_.size(); ++i)
        if (rest_[i] < 0x80) return i + 1;
    complain();
}

Element Reader::next() {
    std::size_t header = identifier_size();
    if (header == rest_.size()) complain();
    std::size_t length = rest_[header++];
    if (length == 0x80)
        throw Failure(ZVC_ERR_BAD_CERTIFICATE,
                      "Il certificato ha lunghezze indefinite, che il DER non ammette");
    if (length > 0x80) {
        const std::size_t digits = length & 0x7F;
        if (digits > 4 || digits > rest_.size() - header) complain();
        length = 0;
        for (const unsigned char digit : rest_.subspan(header, digits))
            length = length << 8 | digit;
        header += digits;
    }
    if (length > rest_.size() - header) complain();
    const Element element{rest_[0], rest_.first(header + length), rest_.subspan(header, length)};
    rest_ = rest_.subspan(header + length);
    return element;
}

Element Reader::next(Tag tag) {
    if (!next_is(tag)) complain();
    return next();
}

} // namespace zvcrypt::der
