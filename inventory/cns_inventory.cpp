// The inventory of a services card; it leaves no entries in the log.
#include <cstring>

#include "inventory/certificates.h"
#include "util/text.h"

namespace {

constexpr std::size_t PRA_RECORD_SIZE = 4096;
constexpr std::string_view OWN_PAIR = "CNS0";

// The search for private keys starts while that for certificates is open; a module that allows one search at
// a time has the first one closed.
bool startKeySearch() {
    if (zv::startClassSearch(CKO_PRIVATE_KEY) != CKR_OPERATION_ACTIVE) return zv::rv == CKR_OK;
    return zv::endSearch(zv::hSession) == CKR_OK && zv::startClassSearch(CKO_PRIVATE_KEY) == CKR_OK;
}

bool readPrivateKeyIds(zv::IdentifierTable& keys) {
    for (;;) {
        CK_OBJECT_HANDLE object = 0;
        CK_ULONG count = 0;
        if (zv::nextObject(zv::hSession, object, count) != CKR_OK) return false;
        if (count != 1) return true;
        char id[zv::ID_SIZE + 1];
        zv::readText(zv::hSession, object, CKA_ID, id);
        keys.add(id);
    }
}

// Certificates without a private key are not listed.
void keepMatched(const zv::IdentifierTable& keys) {
    int kept = 0;
    for (int i = 0; i < zv::numCertificate; ++i) {
        if (!keys.contains(zv::idOf(zv::Certificati[i].id))) continue;
        if (kept != i) zv::Certificati[kept] = zv::Certificati[i];
        ++kept;
    }
    zv::numCertificate = kept;
}

bool listCertificates() {
    if (!zv::probeToken(zv::noTrace)) return false;
    zv::numCertificate = 0;
    if (zv::startClassSearch(CKO_CERTIFICATE) != CKR_OK) return false;
    zv::SearchGuard search(zv::hSession);
    zv::IdentifierTable keys;
    if (!zv::readCertificates(zv::noTrace) || !startKeySearch() || !readPrivateKeyIds(keys)) return false;
    search.dismiss();
    if (zv::endSearch(zv::hSession) != CKR_OK) return false;
    keepMatched(keys);
    return true;
}

void markFirst(zv::RecordList& list, const int* pending, std::string_view id) {
    if (list.count() != 0 && pending != nullptr && *pending == 1) list.mark(id);
}

} // namespace

int NewFind_ALL_CertsKeysRenewCNS(char** cnsList, char** praList, char** autList, char* praRecord, long,
                                  char* praSubject, long, char* autRecord, long autRecordSize,
                                  char* autSubject, long, char* autId, char* praId, int* pendingPRA,
                                  int* pendingAUT, int* pendingCNS, char* ckaidPRA, char* ckaidAUT,
                                  char* expiry, bool unused) {
    if (!listCertificates()) return -1;
    const auto autSize = static_cast<std::size_t>(autRecordSize);
    zv::RecordList cns(cnsList, autRecord, autSize), aut(autList, autRecord, autSize);
    zv::RecordList pra(praList, praRecord, PRA_RECORD_SIZE);
    zv::CertificateFields fields;
    for (int i = 0; i < zv::numCertificate; ++i) {
        zv::Certificate& certificate = zv::Certificati[i];
        const std::string_view id = zv::idOf(certificate.id);
        const bool own = id.starts_with(OWN_PAIR);
        fields.read(certificate, own ? zv::rewriteNameCNS : zv::rewriteName);
        if (id.starts_with(zv::SIGNATURE_SERIES)) {
            zv::keepLast(fields, certificate, praSubject, praId);
            pra.addSignature(fields, id);
            continue;
        }
        // An identifier that is neither repeats the last one known.
        if (own || zv::isAuthentication(id)) zv::keepLast(fields, certificate, autSubject, autId);
        (own ? cns : aut).addAuthentication(fields, autId != nullptr ? zv::idOf(autId) : id);
    }
    cns.writeCount();
    pra.writeCount();
    aut.writeCount();
    Find_ALL_PendingCNS(pendingPRA, pendingAUT, pendingCNS, ckaidPRA, ckaidAUT, expiry, unused);
    markFirst(pra, pendingPRA, zv::orEmpty(ckaidPRA));
    markFirst(aut, pendingAUT, zv::orEmpty(ckaidAUT));
    markFirst(cns, pendingCNS, OWN_PAIR);
    return 0;
}
