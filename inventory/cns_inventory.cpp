// The inventory of a services card; its calls leave no entries in the log.
#include "inventory/certificates.h"
#include "util/guarded.h"
#include "util/text.h"

#include <algorithm>
#include <array>

namespace {

constexpr long PRA_RECORD_SIZE = 4096;

// Starts its search while that for certificates is open; a module that allows one search at a time has the first one
// closed.
bool read_private_key_ids(zv::IdentifierTable& keys) {
    const CK_OBJECT_CLASS private_key = CKO_PRIVATE_KEY;
    CK_ATTRIBUTE tmpl = zv::attribute_of(CKA_CLASS, private_key);
    const zv::Search search = {.session = zv::hSession, .tmpl = {&tmpl, 1}};
    const auto take = [&keys](CK_OBJECT_HANDLE object) {
        char id[zv::ID_SIZE + 1];
        zv::read_text(zv::hSession, object, CKA_ID, id);
        keys.add(id);
    };
    const auto not_started = [](const zv::Walked& walked) {
        return walked.how == zv::Walked::End::not_started;
    };
    zv::Walked walked = zv::walk(search, take);
    if (not_started(walked) && walked.code == CKR_OPERATION_ACTIVE && zv::end_search(search) == CKR_OK)
        walked = zv::walk(search, take);
    if (not_started(walked)) zv::close_search(zv::hSession);
    return walked.whole();
}

using Matched = std::array<zv::Certificate*, zv::MOST_CERTIFICATES>;

bool is_own(const zv::Certificate* certificate) {
    return zv::id_of(certificate->id) == zv::OWN_PAIR;
}

// Certificates without a private key are not listed. The card's own never stays behind ten others.
void match_certificates(const zv::FoundCertificates& found, const zv::IdentifierTable& keys,
                        Matched& matched) {
    std::size_t kept = 0;
    for (zv::Certificate* certificate : found) {
        if (!keys.contains(zv::id_of(certificate->id))) continue;
        if (kept < matched.size())
            matched[kept++] = certificate;
        else if (is_own(certificate) && std::none_of(matched.begin(), matched.end(), is_own))
            matched.back() = certificate;
    }
    zv::numCertificate = static_cast<int>(kept);
}

bool list_certificates(zv::FoundCertificates& found, Matched& matched) {
    if (!zv::probe_token(zv::no_trace)) return false;
    zv::IdentifierTable keys;
    if (!found.read({}, {.at_end = zv::Exit::left_open}) || !read_private_key_ids(keys)) return false;
    match_certificates(found, keys, matched);
    return true;
}

void mark_first(zv::RecordList& list, const int* pending, std::string_view id) {
    if (list.count() != 0 && pending != nullptr && *pending == 1) list.mark(id);
}

} // namespace

int NewFind_ALL_CertsKeysRenewCNS(char** cns_list, char** pra_list, char** aut_list, char* pra_record, long,
                                  char* pra_subject, long, char* aut_record, long aut_record_size,
                                  char* aut_subject, long, char* aut_id, char* pra_id, int* pending_pra,
                                  int* pending_aut, int* pending_cns, char* ckaid_pra, char* ckaid_aut,
                                  char* expiry, bool touch_sign) {
    zv::FoundCertificates found;
    Matched matched{};
    if (!zv::guarded(false, [&] { return list_certificates(found, matched); })) return -1;
    zv::RecordList cns(cns_list, aut_record, aut_record_size), aut(aut_list, aut_record, aut_record_size);
    zv::RecordList pra(pra_list, pra_record, PRA_RECORD_SIZE);
    zv::CertificateFields fields;
    for (int i = 0; i < zv::numCertificate; ++i) {
        zv::Certificate& certificate = *matched[static_cast<std::size_t>(i)];
        const std::string_view id = zv::id_of(certificate.id);
        const bool own = id.starts_with(zv::OWN_PAIR);
        fields.read(certificate, own ? zv::rewrite_name_cns : zv::rewrite_name);
        if (id.starts_with(zv::SIGNATURE_SERIES)) {
            zv::keep_last(fields, certificate, pra_subject, pra_id);
            pra.add_signature(fields, id);
            continue;
        }
        // An identifier that is neither repeats the last one known.
        if (own || zv::is_authentication(id)) zv::keep_last(fields, certificate, aut_subject, aut_id);
        (own ? cns : aut).add_authentication(fields, aut_id != nullptr ? zv::id_of(aut_id) : id);
    }
    cns.write_count();
    pra.write_count();
    aut.write_count();
    Find_ALL_PendingCNS(pending_pra, pending_aut, pending_cns, ckaid_pra, ckaid_aut, expiry, touch_sign);
    mark_first(pra, pending_pra, zv::or_empty(ckaid_pra));
    mark_first(aut, pending_aut, zv::or_empty(ckaid_aut));
    mark_first(cns, pending_cns, zv::OWN_PAIR);
    return 0;
}
