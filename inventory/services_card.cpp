// The inventory of a services card.
#include "inventory/inventory.h"
#include "util/guarded.h"
#include "util/text.h"

#include <algorithm>

namespace zv {

namespace {

// Starts its search while that for certificates is open; a module that allows one search at a time has the first one
// closed.
bool read_private_key_ids(IdentifierTable& keys) {
    const CK_OBJECT_CLASS private_key = CKO_PRIVATE_KEY;
    CK_ATTRIBUTE tmpl = attribute_of(CKA_CLASS, private_key);
    const Search search = {.session = hSession, .tmpl = {&tmpl, 1}};
    const auto take = [&keys](CK_OBJECT_HANDLE object) {
        char id[ID_SIZE + 1];
        read_text(hSession, object, CKA_ID, id);
        keys.add(id);
    };
    const auto not_started = [](const Walked& walked) { return walked.how == Walked::End::not_started; };
    Walked walked = walk(search, take);
    if (not_started(walked) && walked.code == CKR_OPERATION_ACTIVE && end_search(search) == CKR_OK)
        walked = walk(search, take);
    if (not_started(walked)) close_search(hSession);
    return walked.whole();
}

bool is_own(const Certificate* certificate) {
    return id_of(certificate->id) == OWN_PAIR;
}

// Certificates without a private key are not listed. The card's own never stays behind ten others.
std::vector<Certificate*> match_certificates(const FoundCertificates& found, const IdentifierTable& keys) {
    std::vector<Certificate*> matched;
    for (Certificate* certificate : found) {
        if (!keys.contains(id_of(certificate->id))) continue;
        if (matched.size() < MOST_CERTIFICATES)
            matched.push_back(certificate);
        else if (is_own(certificate) && std::ranges::none_of(matched, is_own))
            matched.back() = certificate;
    }
    numCertificate = static_cast<int>(matched.size());
    return matched;
}

void add_matched(Inventory& inventory, Certificate& certificate, std::string_view& last_id) {
    const std::string_view id = id_of(certificate.id);
    const Kind kind = kind_of_certificate(id, true);
    const bool own = kind == Kind::services;
    const CertificateFields fields(certificate, own);
    auto& lists = inventory.lists;
    if (kind == Kind::signature) {
        lists[kind].last.emplace(fields, certificate);
        lists[kind].records.push_back(fields.record(kind, id));
        return;
    }
    if (own || is_authentication(id)) {
        lists[Kind::authentication].last.emplace(fields, certificate);
        last_id = id;
    }
    lists[kind].records.push_back(fields.record(kind, last_id));
}

void mark_pending(CertificateList& list, int pending, std::string_view id) {
    if (!list.records.empty() && pending == 1) list.mark = id;
}

} // namespace

bool read_services_card(Inventory& inventory, std::string_view last_id) {
    FoundCertificates found;
    IdentifierTable keys;
    if (!probe_token(no_trace) || !found.read({}, {.at_end = Exit::left_open}) || !read_private_key_ids(keys))
        return false;
    for (Certificate* certificate : match_certificates(found, keys))
        add_matched(inventory, *certificate, last_id);
    CardState& state = inventory.state;
    guarded([&] { (void)read_services_card_state(state); });
    for (const KindRow& kind : KINDS) {
        const PairState& pair = state.pairs[kind.id];
        mark_pending(inventory.lists[kind.id], pair.pending, kind.new_pair ? pair.id : kind.first_id);
    }
    return true;
}

} // namespace zv
