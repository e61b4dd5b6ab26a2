// Every field of a certificate, at sizes that the first byte chooses; the certificate's DER follows.
#include "fuzz/input.h"
#include "zvCrypt.h"

#include <openssl/x509.h>

namespace {

using Field = int (*)(unsigned char*, unsigned long, char*, int);
constexpr std::size_t WHOLE = 1 << 17;
constexpr int SIZES[] = {1, 2, 3, 24, 32, 64, 127, 128, 256, 512, 2048, 4096};

struct Certificate {
    std::unique_ptr<unsigned char[]> der;
    unsigned long length;
};

void holds_reason(int code) {
    fuzz::Room reason(512);
    HOLDS(kvLastError(reason.get(), 512) == code);
    HOLDS(reason.text().empty() == (code == 0) && fuzz::is_utf8(reason.text()));
}

void holds_text(std::string_view text) {
    HOLDS(fuzz::is_utf8(text));
    for (const char c : text)
        HOLDS(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
}

bool is_hex(std::string_view text) {
    return text.size() % 2 == 0 && text.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

struct Read {
    int code;
    std::string text;
};

// A text that does not fit is a beginning of the whole one.
Read read_field(Field field, const Certificate& it, int size) {
    static fuzz::Room whole(WHOLE);
    fuzz::Room part(static_cast<std::size_t>(size));
    const int code = field(it.der.get(), it.length, whole.get(), static_cast<int>(WHOLE));
    HOLDS(code == 0 || code == ZVC_ERR_BAD_CERTIFICATE);
    holds_reason(code);
    const int part_code = field(it.der.get(), it.length, part.get(), size);
    const std::string_view text = whole.text(), cut = part.text();
    HOLDS(part_code == code || (code == 0 && part_code == ZVC_ERR_CUT));
    HOLDS((part_code == 0) == (code == 0 && text.size() < part.size()));
    HOLDS(text.starts_with(cut) && (code == 0 || text.empty()));
    HOLDS(part_code != ZVC_ERR_CUT || field == kvGetCertificatePolicies || cut.size() + 6 >= part.size());
    holds_text(text);
    holds_text(cut);
    return {code, std::string(text)};
}

void read_dates(const Certificate& it, int size, const Read& subject) {
    fuzz::Room from(ZVC_DATE_SIZE), to(ZVC_DATE_SIZE), both(static_cast<std::size_t>(size));
    fuzz::Room description(ZVC_DESCRIPTION_SIZE);
    const int code = kvGetCertDate(it.der.get(), it.length, from.get(), to.get());
    HOLDS(code == 0 || code == ZVC_ERR_BAD_CERTIFICATE);
    for (const std::string_view date : {from.text(), to.text()}) {
        HOLDS(date.size() == (code == 0 ? 19U : 0U));
        for (std::size_t i = 0; i < date.size(); ++i)
            HOLDS((date[i] >= '0' && date[i] <= '9') == ("dd/dd/dddd dd:dd:dd"[i] == 'd'));
    }
    const int all = GiveMeCertDate(it.der.get(), it.length, both.get(), size, description.get());
    const int either = code != 0 ? code : subject.code;
    HOLDS(all == either || (either == 0 && all == ZVC_ERR_CUT));
    const std::string joined =
        all != ZVC_ERR_BAD_CERTIFICATE ? std::string(from.text()) + " - " + std::string(to.text()) : "";
    HOLDS(joined.starts_with(both.text()) && subject.text.starts_with(description.text()));
}

int convert(const Certificate& it, fuzz::Room (&parts)[3], unsigned long (&lengths)[3]) {
    return ConvToDer(it.der.get(), it.length, parts[0].get(), &lengths[0], parts[1].get(), &lengths[1],
                     parts[2].get(), &lengths[2]);
}

// OpenSSL, where it reads the certificate, gives the same names.
void holds_names(const Certificate& it, fuzz::Room (&parts)[3], const unsigned long (&lengths)[3]) {
    const unsigned char* end = it.der.get();
    X509* certificate = d2i_X509(nullptr, &end, static_cast<long>(it.length));
    if (certificate == nullptr) return;
    const X509_NAME* names[] = {X509_get_subject_name(certificate), X509_get_issuer_name(certificate)};
    for (int i = 0; i < 2; ++i) {
        unsigned char* der = nullptr;
        const int length = i2d_X509_NAME(names[i], &der);
        HOLDS(length >= 0 && lengths[i] == static_cast<unsigned long>(length));
        HOLDS(std::memcmp(der, parts[i].get(), lengths[i]) == 0);
        OPENSSL_free(der);
    }
    X509_free(certificate);
}

// What comes out fits to the byte: the same rooms are enough, one byte less is not.
void convert_to_der(const Certificate& it) {
    const std::size_t enough = it.length + 16;
    fuzz::Room parts[] = {fuzz::Room(enough), fuzz::Room(enough), fuzz::Room(enough)};
    unsigned long lengths[] = {enough, enough, enough};
    const int code = convert(it, parts, lengths);
    if (code != 0) {
        HOLDS(code == ZVC_ERR_BAD_CERTIFICATE);
        HOLDS(parts[0].untouched() && parts[1].untouched() && parts[2].untouched() && lengths[2] == enough);
        return;
    }
    holds_names(it, parts, lengths);
    HOLDS(lengths[2] >= 1);
    fuzz::Room exact[] = {fuzz::Room(lengths[0]), fuzz::Room(lengths[1]), fuzz::Room(lengths[2])};
    HOLDS(convert(it, exact, lengths) == 0);
    for (int i = 0; i < 3; ++i)
        HOLDS(std::memcmp(exact[i].get(), parts[i].get(), lengths[i]) == 0);
    fuzz::Room small[] = {fuzz::Room(lengths[0]), fuzz::Room(lengths[1]), fuzz::Room(lengths[2])};
    --lengths[it.length % 3];
    HOLDS(convert(it, small, lengths) == ZVC_ERR_ROOM && small[it.length % 3].untouched());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const int room = SIZES[input.byte() % std::size(SIZES)];
    const std::string_view der = input.bytes();
    // Of just its length, so that nothing past it is read unseen.
    Certificate it{std::make_unique<unsigned char[]>(der.size()), der.size()};
    std::memcpy(it.der.get(), der.data(), der.size());
    const Read subject = read_field(kvGetSubjectDN, it, room);
    const std::string serial = read_field(kvX509GetSerial, it, room).text;
    HOLDS(is_hex(serial.starts_with('-') ? serial.substr(1) : serial));
    HOLDS(is_hex(read_field(zv_X509V3_get_subject_key_identifier, it, room).text));
    for (const Field field : {kvGetIssuerDN, kvGetIUT, kvGetCodFisc, kvGetExplicitText})
        read_field(field, it, room);
    const std::string policies = read_field(kvGetCertificatePolicies, it, room).text;
    HOLDS(policies.find_first_not_of("0123456789.,") == std::string::npos);
    read_dates(it, room, subject);
    convert_to_der(it);
    return 0;
}
