#include "host/stored_back.h"

#include "host/certificate.h"
#include "zvCrypt.h"

#include <openssl/x509.h>

namespace zvhost {
namespace {

Bytes name_der(const X509_NAME* name) {
    const unsigned char* bytes = nullptr;
    std::size_t size = 0;
    if (X509_NAME_get0_der(name, &bytes, &size) != 1) return {};
    return {bytes, bytes + size};
}

Bytes serial_der(const X509& certificate) {
    unsigned char* bytes = nullptr;
    const int size = i2d_ASN1_INTEGER(X509_get0_serialNumber(&certificate), &bytes);
    Bytes der(bytes, bytes + (size > 0 ? size : 0));
    OPENSSL_free(bytes);
    return der;
}

template <class Bytes_> CK_ATTRIBUTE as_attribute(CK_ATTRIBUTE_TYPE type, Bytes_& bytes) {
    return {type, bytes.data(), bytes.size()};
}

template <class Number> CK_ATTRIBUTE number_attribute(CK_ATTRIBUTE_TYPE type, Number& number) {
    return {type, &number, sizeof number};
}

void create(Session& session, const Certificate& certificate, std::string id, std::string label) {
    Bytes value = certificate.der();
    Bytes subject = name_der(X509_get_subject_name(certificate.get()));
    Bytes issuer = name_der(X509_get_issuer_name(certificate.get()));
    Bytes serial = serial_der(*certificate);
    CK_OBJECT_CLASS what = CKO_CERTIFICATE;
    CK_BBOOL yes = CK_TRUE;
    CK_CERTIFICATE_TYPE type = CKC_X_509;
    session.create({number_attribute(CKA_CLASS, what), number_attribute(CKA_TOKEN, yes),
                    number_attribute(CKA_CERTIFICATE_TYPE, type), as_attribute(CKA_ID, id),
                    as_attribute(CKA_LABEL, label), as_attribute(CKA_VALUE, value),
                    as_attribute(CKA_SUBJECT, subject), as_attribute(CKA_ISSUER, issuer),
                    as_attribute(CKA_SERIAL_NUMBER, serial)});
}

bool fits(const CardView& view, const Certificate& certificate, const std::string& id) {
    const CardObject* key = view.find(CKO_PRIVATE_KEY, id);
    return key != nullptr && key->value == modulus_of(*certificate) && view.certificates(id).empty();
}

} // namespace

bool store_back(OpenedCard& card, const Bytes& der, const std::string& id, const std::string& label) {
    const Certificate certificate = certificate_from(der);
    if (!certificate) return false;
    // A session that the failed call left open would keep the module from being started.
    kvFinalize();
    try {
        bool stored = false;
        with_writing_session(card, [&](Session& session) {
            if (!fits(view_in(session), certificate, id)) return;
            create(session, certificate, id, label);
            stored = true;
        });
        return stored;
    } catch (const Error&) {
        return false; // what is on the card is told anyway
    }
}

} // namespace zvhost
