#include "certificate_parts.h"

#include "failure.h"

#include <algorithm>
#include <climits>

namespace zvcrypt {
namespace {

constexpr const char* unreadable = "Il certificato non è leggibile";
constexpr const char* wrongLengths = "Il certificato è incompleto o ha lunghezze errate";

// Every length within the one around it, also in the parts that nobody asks for.
void checkElements(der::Span content, int depth) {
    constexpr unsigned char constructed = 0x20;
    constexpr int deepest = 16;
    if (depth > deepest) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato ha troppi livelli annidati");
    for (der::Reader reader(content, wrongLengths); !reader.atEnd();) {
        const auto element = reader.next();
        if ((element.tag & constructed) != 0) checkElements(element.content, depth + 1);
    }
}

der::Element outermost(der::Span der) {
    if (der.empty()) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato è vuoto");
    // Whoever gives such a length knows none, as a card that answers "unavailable".
    if (der.size() > INT_MAX || der[0] != der::sequence) throw Failure(ZVC_ERR_BAD_CERTIFICATE, unreadable);
    const auto certificate = der::Reader(der, wrongLengths).next();
    checkElements(certificate.content, 1);
    return certificate;
}

// What may follow the public key: unique identifiers, which nobody uses, and the extensions.
der::Span extensionsIn(der::Reader body) {
    for (const der::Tag identifier : {der::issuerUniqueId, der::subjectUniqueId})
        if (body.nextIs(identifier)) (void)body.next();
    if (body.atEnd()) return {};
    der::Reader extensions = body.enter(der::context3);
    const auto list = extensions.next(der::sequence).content;
    if (!extensions.atEnd() || !body.atEnd()) body.complain();
    return list;
}

} // namespace

CertificateParts takeApart(der::Span der) {
    CertificateParts parts;
    const auto outer = outermost(der);
    der::Reader certificate(outer.content, unreadable);
    const auto signedPart = certificate.next(der::sequence);
    der::Reader body(signedPart.content, unreadable);
    parts.body = signedPart.whole;
    parts.whole = outer.whole;
    if (body.nextIs(der::context0)) (void)body.next(); // version
    const auto serial = body.next(der::integer);
    parts.serial = serial.content;
    parts.serialNumber = serial.whole;
    if (parts.serial.empty()) body.complain();
    (void)body.next(der::sequence); // algorithm of the signature
    parts.issuer = body.next(der::sequence).whole;
    der::Reader validity = body.enter(der::sequence);
    parts.notBefore = validity.next().whole;
    parts.notAfter = validity.next().whole;
    parts.subject = body.next(der::sequence).whole;
    (void)body.next(der::sequence); // public key
    parts.extensions = extensionsIn(body);
    (void)certificate.next(der::sequence); // algorithm of the signature
    (void)certificate.next(der::bitString);
    if (!certificate.atEnd() || !validity.atEnd()) certificate.complain();
    return parts;
}

std::optional<der::Span> extensionValue(const CertificateParts& certificate, int nid) {
    const Bytes kind = der::objectIdentifier(nid);
    std::optional<der::Span> value;
    for (der::Reader list(certificate.extensions, "Un'estensione del certificato non è leggibile");
         !list.atEnd();) {
        der::Reader extension = list.enter(der::sequence);
        if (!der::isSame(extension.next(der::oid).whole, kind)) continue;
        if (value) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Un'estensione del certificato è ripetuta");
        if (extension.nextIs(der::boolean)) (void)extension.next();
        value = extension.next(der::octetString).content;
    }
    return value;
}

} // namespace zvcrypt
