#include "host/public_inventory.h"

#include "host/advice.h"
#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zvhost {
namespace {

using FieldReader = int (*)(unsigned char* der, unsigned long length, char* out, int size);

// A text of the certificate; empty when it has none.
std::string text_of(Bytes der, FieldReader read) {
    std::array<char, 256> text{};
    if (read(der.data(), der.size(), text.data(), static_cast<int>(text.size())) != ZVC_OK) return {};
    return {text.data(), strnlen(text.data(), text.size())};
}

bool is_holders(const CardObject& object, const CardView& view, bool services_card) {
    if (!services_card) return !object.label.starts_with(ZV_AUTHORITY_ID);
    return view.find(CKO_PUBLIC_KEY, object.id) != nullptr ||
           std::any_of(std::begin(zv::KINDS), std::end(zv::KINDS),
                       [&](const zv::KindRow& kind) { return object.id.starts_with(kind.series); });
}

std::optional<CertificateRecord> record_of(const CardObject& object, Kind kind) {
    const Certificate certificate = certificate_from(object.value);
    if (!certificate) return std::nullopt;
    const auto begin = begin_of(*certificate);
    const auto end = end_of(*certificate);
    if (!begin || !end) return std::nullopt;
    const Bytes& der = certificate.der();
    CertificateRecord record;
    record.kind = kind;
    record.subject = subject_of(*certificate);
    record.subject_exact = true;
    record.issuer = issuer_of(*certificate);
    record.iut = text_of(der, kvGetIUT);
    record.policies = text_of(der, kvGetCertificatePolicies);
    record.serial = serial_of(der);
    record.begins = *begin;
    record.ends = *end;
    record.id = object.id;
    if (kind_row(kind).notice) record.notice = text_of(der, kvGetExplicitText);
    record.key_identifier = text_of(der, zv_X509V3_get_subject_key_identifier);
    record.tax_code = text_of(der, kvGetCodFisc);
    return record;
}

Proposal proposal_of(const CardView& view, Kind kind) {
    const std::vector<std::string> ids = identifiers_of(kind);
    const auto taken = [&](const std::string& id) { return view.has(id); };
    return {{}, std::all_of(ids.begin(), ids.end(), taken)};
}

void add_shown(Inventory& inventory, const CardObject& object, const CardFacts& card) {
    const auto record = record_of(object, kind_of_certificate(object.id, card.services_card));
    if (record)
        inventory.certificates.push_back(*record);
    else
        ++inventory.unreadable;
}

} // namespace

Inventory public_inventory(const CardView& view, const CardFacts& card) {
    const std::string serial = card.state ? card.state->serial : "";
    Inventory inventory;
    for (const CardObject& object : view.objects())
        if (object.type == CKO_CERTIFICATE && is_holders(object, view, card.services_card))
            add_shown(inventory, object, card);
    for (const std::string& id : view.pending_public_keys())
        inventory.pending.push_back({kind_of_pair(id), id});
    inventory.backups = backups_of(serial, {});
    take_retired(inventory, view, serial);
    for (const zv::KindRow& kind : zv::KINDS)
        if (kind.new_pair) inventory.next[kind.id] = proposal_of(view, kind.id);
    return inventory;
}

} // namespace zvhost
