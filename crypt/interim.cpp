#include "failure.h"

namespace {
int refuse() {
    return zvcrypt::runOperation(
        [] { throw zvcrypt::Failure(ZVC_ERR_INTERNAL, "Operazione non disponibile"); });
}
} // namespace

int kvGetSubjectDN(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvGetIssuerDN(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvX509GetSerial(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvGetIUT(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvGetCodFisc(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvGetCertificatePolicies(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvGetExplicitText(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int zv_X509V3_get_subject_key_identifier(unsigned char*, unsigned long, char*, int) {
    return refuse();
}
int kvGetCertDate(unsigned char*, unsigned long, char*, char*) {
    return refuse();
}
int GiveMeCertDate(unsigned char*, unsigned long, char*, int, char*) {
    return refuse();
}
void writeBuff(char*, char*) {}
int SplitCert(char*, datiCert*, char*, int) {
    return refuse();
}
int ConvToDer(unsigned char*, unsigned long, char*, unsigned long*, char*, unsigned long*, char*,
              unsigned long*) {
    return refuse();
}
