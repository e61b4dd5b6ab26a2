#include "certificate.h"
#include "der.h"
#include "failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

// What follows the tag and the one byte of length of a short value.
Bytes contentOf(Bytes value) {
    if (value.size() < 2 || value[1] >= 0x80)
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il numero di serie del certificato non è valido");
    value.erase(value.begin(), value.begin() + 2);
    return value;
}

Bytes nameDer(const X509_NAME* name) {
    return der::encoded(i2d_X509_NAME, name);
}

struct Output {
    Bytes value;
    char* buffer;
    unsigned long* length;
};

} // namespace
} // namespace zvcrypt

int ConvToDer(unsigned char* der, unsigned long derLength, char* subject, unsigned long* subjectLength,
              char* issuer, unsigned long* issuerLength, char* serial, unsigned long* serialLength) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({der, subject, subjectLength, issuer, issuerLength, serial, serialLength});
        const auto certificate = zvcrypt::requireCertificate(der, derLength);
        X509* it = certificate.get();
        const zvcrypt::Output outputs[] = {
            {zvcrypt::nameDer(X509_get_subject_name(it)), subject, subjectLength},
            {zvcrypt::nameDer(X509_get_issuer_name(it)), issuer, issuerLength},
            {zvcrypt::contentOf(zvcrypt::der::encoded(i2d_ASN1_INTEGER, X509_get0_serialNumber(it))), serial,
             serialLength},
        };
        for (const auto& output : outputs)
            if (output.value.size() > *output.length)
                throw zvcrypt::Failure(ZVC_ERR_ROOM, "Titolare, emittente o numero di serie troppo lungo");
        for (const auto& output : outputs) {
            std::copy(output.value.begin(), output.value.end(), output.buffer);
            *output.length = output.value.size();
        }
    });
}
