// The inventory of a services card; its calls leave no entries in the log.
#include <algorithm>
#include <array>

#include "inventory/certificates.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

constexpr long PRA_RECORD_SIZE = 4096;

// Starts its search while that for certificates is open; a module that allows one search at a time has the first one
// closed.
bool readPrivateKeyIds(zv::IdentifierTable& keys) {
    const CK_OBJECT_CLASS privateKey = CKO_PRIVATE_KEY;
    CK_ATTRIBUTE tmpl = zv::attributeOf(CKA_CLASS, privateKey);
    const zv::Search search = {.session = zv::hSession, .tmpl = {&tmpl, 1}};
    const auto take = [&keys](CK_OBJECT_HANDLE object) {
        char id[zv::ID_SIZE + 1];
        zv::readText(zv::hSession, object, CKA_ID, id);
        keys.add(id);
    };
    const auto notStarted = [](const zv::Walked& walked) {
        return walked.how == zv::Walked::End::NotStarted;
    };
    zv::Walked walked = zv::walk(search, take);
    if (notStarted(walked) && walked.code == CKR_OPERATION_ACTIVE && zv::endSearch(search) == CKR_OK)
        walked = zv::walk(search, take);
    if (notStarted(walked)) zv::closeSearch(zv::hSession);
    return walked.whole();
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
    zv::IdentifierTable keys;
    if (!found.read({}, {.atEnd = zv::Exit::LeftOpen}) || !readPrivateKeyIds(keys)) return false;
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
    if (!zv::guarded(false, [&] { return listCertificates(found, matched); })) return -1;
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
