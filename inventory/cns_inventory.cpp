// The inventory of a services card; its calls leave no entries in the log.
#include <algorithm>
#include <array>

#include "inventory/certificates.h"
#include "util/text.h"

namespace {

constexpr long PRA_RECORD_SIZE = 4096;

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
        if (!keys.add(id)) return false;
    }
}

using Matched = std::array<zv::Certificate*, zv::MOST_CERTIFICATES>;

bool isOwn(const zv::Certificate* certificate) {
    return zv::idOf(certificate->id) == zv::OWN_PAIR;
}

// Certificates without a private key are not listed. The card's own never stays behind ten others.
void matchCertificates(const zv::FoundCertificates& found, const zv::IdentifierTable& keys,
                       Matched& matched) {
    std::size_t kept = 0;
    for (zv::Certificate* certificate : found) {
        if (!keys.contains(zv::idOf(certificate->id))) continue;
        if (kept < matched.size())
            matched[kept++] = certificate;
        else if (isOwn(certificate) && std::none_of(matched.begin(), matched.end(), isOwn))
            matched.back() = certificate;
    }
    zv::numCertificate = static_cast<int>(kept);
}

bool listCertificates(zv::FoundCertificates& found, Matched& matched) {
    if (!zv::probeToken(zv::noTrace)) return false;
    if (zv::startCertificateSearch() != CKR_OK) return false;
    zv::SearchGuard search(zv::hSession);
    zv::IdentifierTable keys;
    if (!found.read(zv::noTrace) || !startKeySearch() || !readPrivateKeyIds(keys)) return false;
    search.dismiss();
    if (zv::endSearch(zv::hSession) != CKR_OK) return false;
    matchCertificates(found, keys, matched);
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
                                  char* expiry, bool touchSign) {
    zv::FoundCertificates found;
    Matched matched{};
    if (!listCertificates(found, matched)) return -1;
    zv::RecordList cns(cnsList, autRecord, autRecordSize), aut(autList, autRecord, autRecordSize);
    zv::RecordList pra(praList, praRecord, PRA_RECORD_SIZE);
    zv::CertificateFields fields;
    for (int i = 0; i < zv::numCertificate; ++i) {
        zv::Certificate& certificate = *matched[static_cast<std::size_t>(i)];
        const std::string_view id = zv::idOf(certificate.id);
        const bool own = id.starts_with(zv::OWN_PAIR);
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
    Find_ALL_PendingCNS(pendingPRA, pendingAUT, pendingCNS, ckaidPRA, ckaidAUT, expiry, touchSign);
    markFirst(pra, pendingPRA, zv::orEmpty(ckaidPRA));
    markFirst(aut, pendingAUT, zv::orEmpty(ckaidAUT));
    markFirst(cns, pendingCNS, zv::OWN_PAIR);
    return 0;
}
