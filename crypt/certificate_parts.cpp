#include "crypt/certificate_parts.h"

#include "crypt/failure.h"

#include <algorithm>
#include <climits>

namespace zvcrypt {
namespace {

constexpr const char* UNREADABLE = "Il certificato non è leggibile";
constexpr const char* WRONG_LENGTHS = "Il certificato è incompleto o ha lunghezze errate";

// Every length within the one around it, also in the parts that nobody asks for.
void check_elements(der::Span content, int depth) {
    constexpr unsigned char constructed = 0x20;
    constexpr int deepest = 16;
    if (depth > deepest) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato ha troppi livelli annidati");
    for (der::Reader reader(content, WRONG_LENGTHS); !reader.at_end();) {
        const auto element = reader.next();
        if ((element.tag & constructed) != 0) check_elements(element.content, depth + 1);
    }
}

der::Element outermost(der::Span der) {
    if (der.empty()) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato è vuoto");
    // Whoever gives such a length knows none, as a card that answers "unavailable".
    if (der.size() > INT_MAX || der[0] != der::sequence) throw Failure(ZVC_ERR_BAD_CERTIFICATE, UNREADABLE);
    const auto certificate = der::Reader(der, WRONG_LENGTHS).next();
    check_elements(certificate.content, 1);
    return certificate;
}

// What may follow the public key: unique identifiers, which nobody uses, and the extensions.
der::Span extensions_in(der::Reader body) {
    for (const der::Tag identifier : {der::issuer_unique_id, der::subject_unique_id})
        if (body.next_is(identifier)) (void)body.next();
    if (body.at_end()) return {};
    der::Reader extensions = body.enter(der::context3);
    const auto list = extensions.next(der::sequence).content;
    if (!extensions.at_end() || !body.at_end()) body.complain();
    return list;
}

} // namespace

CertificateParts take_apart(der::Span der) {
    CertificateParts parts;
    const auto outer = outermost(der);
    der::Reader certificate(outer.content, UNREADABLE);
    const auto signed_part = certificate.next(der::sequence);
    der::Reader body(signed_part.content, UNREADABLE);
    parts.body = signed_part.whole;
    parts.whole = outer.whole;
    if (body.next_is(der::context0)) (void)body.next(); // version
    const auto serial = body.next(der::integer);
    parts.serial = serial.content;
    parts.serial_number = serial.whole;
    if (parts.serial.empty()) body.complain();
    (void)body.next(der::sequence); // algorithm of the signature
    parts.issuer = body.next(der::sequence).whole;
    der::Reader validity = body.enter(der::sequence);
    parts.not_before = validity.next().whole;
    parts.not_after = validity.next().whole;
    parts.subject = body.next(der::sequence).whole;
    parts.public_key = body.next(der::sequence).whole;
    parts.extensions = extensions_in(body);
    (void)certificate.next(der::sequence); // algorithm of the signature
    (void)certificate.next(der::bit_string);
    if (!certificate.at_end() || !validity.at_end()) certificate.complain();
    return parts;
}

std::optional<der::Span> extension_value(const CertificateParts& certificate, int nid) {
    const Bytes kind = der::object_identifier(nid);
    std::optional<der::Span> value;
    for (der::Reader list(certificate.extensions, "Un'estensione del certificato non è leggibile");
         !list.at_end();) {
        der::Reader extension = list.enter(der::sequence);
        if (!der::is_same(extension.next(der::oid).whole, kind)) continue;
        if (value) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Un'estensione del certificato è ripetuta");
        if (extension.next_is(der::boolean)) (void)extension.next();
        value = extension.next(der::octet_string).content;
    }
    return value;
}

} // namespace zvcrypt
