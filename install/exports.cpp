// The C face of this folder.
#include "install/certificate.h"
#include "install/certificate_object.h"
#include "install/certificate_text.h"
#include "install/issued_certificate.h"
#include "install/label.h"
#include "install/name_text.h"
#include "routines/install.h"

int MemorizzazioneCertificato(void*, char* cert_text, char* pkcs11_library, char*) {
    return zv::install_issued(cert_text, pkcs11_library);
}

int ChangeValueObject(void*, char* new_id) {
    return zv::label_pair(new_id);
}

int RechangeValueObject(void*, const char* current_label, char* new_text) {
    return zv::change_labels(current_label, new_text);
}

int InstallUserCertificate(void*, datiCert* cert, unsigned long der_length, char* label,
                           char* pkcs11_library) {
    return zv::install_user_certificate(zv::der_of(cert, der_length), label, pkcs11_library);
}

int InstallCACertificate(void*, datiCert* cert, unsigned long der_length, char* label) {
    return zv::install_authority_certificate(zv::der_of(cert, der_length), label);
}

void LogInstallCertificate(unsigned long session, CK_ATTRIBUTE*, unsigned long count,
                           unsigned long* certificate) {
    zv::trace_creation(session, count, certificate);
}

int CrtB64ToDer(char* pem, char* der) {
    return zv::decode_certificate(pem, der);
}

int DescrToOid(char* dn, char* work) {
    return dn != nullptr ? zv::write_oids(dn, work) : 0;
}

int CommaToSlash(char* dn, char*) {
    return dn != nullptr ? zv::slash_commas(dn) : 0;
}

int ConvertiCertificato(char** dns) {
    return dns != nullptr ? zv::write_oids(std::span(dns, 16)) : 0;
}
