#include "words/card_json.h"

#include <nlohmann/json.hpp>

namespace words {
namespace {

using zvhost::CardList, zvhost::CertificateRecord, zvhost::kind_name, zvhost::ListedCertificate,
    zvhost::ListedPair, zvhost::RetiredPair;

Json as_json(const ListedCertificate& listed) {
    const CertificateRecord& record = listed.record;
    return {{"kind", kind_name(record.kind)},
            {"id", record.id},
            {"subject", words::as_json(record.subject)},
            {"issuer", words::as_json(record.issuer)},
            {"serial", record.serial},
            {"tax_code", record.tax_code},
            {"iut", record.iut},
            {"policies", record.policies},
            {"notice", record.notice},
            {"key_identifier", record.key_identifier},
            {"not_before", instant(record.begins)},
            {"not_after", instant(record.ends)},
            {"days_left", listed.days_left},
            {"due", listed.due},
            {"replaced", listed.replaced}};
}

Json as_json(const ListedPair& listed) {
    return {{"kind", kind_name(listed.pair.kind)}, {"id", listed.pair.id}};
}

Json as_json(const RetiredPair& pair) {
    return {{"id", pair.id}, {"backup", pair.backup}};
}

template <class Entry> Json array_of(const std::vector<Entry>& entries) {
    Json array = Json::array();
    for (const Entry& entry : entries)
        array.push_back(as_json(entry));
    return array;
}

} // namespace

Json contents_json(const CardList& list) {
    Json json = as_json(list.card);
    json["certificates"] = array_of(list.certificates);
    json["unreadable"] = list.unreadable;
    json["pending"] = array_of(list.pending);
    json["retired"] = array_of(list.retired);
    json["services_pending"] = list.services_pending;
    return json;
}

Json as_json(const CardList& list) {
    Json json = contents_json(list);
    for (const zv::KindRow& kind : zv::KINDS)
        if (kind.new_pair) json["next"][kind.name] = as_json(list.next[kind.id]);
    return json;
}

} // namespace words
