#include "cli/inventory.h"

#include "cli/certificate.h"
#include "cli/certificate_facts.h"
#include "cli/library_text.h"
#include "cli/outcome.h"
#include "zvRenew.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace cli {
namespace {

// A certificate list as the library fills it: made anew, and so empty, for every reading.
class CertificateList {
  public:
    CertificateList() : text_(std::size_t{ZV_LIST_ENTRIES} * ZV_LIST_ENTRY_SIZE) {
        for (std::size_t i = 0; i < entries_.size(); ++i)
            entries_[i] = &text_[i * ZV_LIST_ENTRY_SIZE];
    }

    [[nodiscard]] char** entries() { return entries_.data(); }
    // The library leaves the list of services cards alone for other cards.
    void set_count_to_zero() { entries_[0][0] = '0'; }

    [[nodiscard]] std::vector<std::string> records() const {
        const long count = std::clamp(std::strtol(entries_[0], nullptr, 10), 0L, ZV_LIST_ENTRIES - 1L);
        std::vector<std::string> found;
        for (long i = 1; i <= count; ++i) {
            const char* entry = entries_[static_cast<std::size_t>(i)];
            found.emplace_back(entry, strnlen(entry, ZV_LIST_ENTRY_SIZE));
        }
        return found;
    }

  private:
    std::vector<char> text_;
    std::array<char*, ZV_LIST_ENTRIES> entries_{};
};

struct Reading {
    CertificateList services, signature, authentication;
    int services_pending = 0, signature_pending = 0, authentication_pending = 0;
    std::array<char, ZV_KEY_ID_SIZE> signature_key{}, authentication_key{};
};

void read_with_library(OpenedCard& card, Reading& reading) {
    reading.services.set_count_to_zero();
    std::string reader = card.place.reader;
    char no_text[] = "";
    forget_library_texts();
    const int code = rinnovo_Card_readCerts(
        reader.data(), card.pin.text(), 0, reading.services.entries(), reading.signature.entries(),
        reading.authentication.entries(), &reading.services_pending, &reading.signature_pending,
        &reading.authentication_pending, reading.signature_key.data(), reading.authentication_key.data(),
        no_text, card.place.module_dir.c_str());
    if (code != ZV_OK)
        throw library_stop(
            "The card could not be read", code,
            Advice{"repeat", "Nothing on the card was changed. Leave the card in the reader and try again."});
}

void add_certificates(Inventory& inventory, const CertificateList& list, Kind kind, bool marked) {
    for (const std::string& text : list.records()) {
        const auto record = parse_record(text, kind, marked);
        marked = false; // only a list's first record can be
        if (record)
            inventory.certificates.push_back(*record);
        else
            ++inventory.unreadable;
    }
}

// The record of a services card's own certificate has what follows the common name inside it; bytes that are no
// character stand escaped in any.
void take_subject(CertificateRecord& record, const CardView& view) {
    for (const CardObject* object : view.certificates(record.id)) {
        const Certificate certificate = certificate_from(object->value);
        if (!certificate || end_of(*certificate) != record.ends) continue;
        record.subject = subject_of(*certificate);
        record.subject_exact = true;
        return;
    }
}

void add_pending(Inventory& inventory, const std::string& id) {
    const auto known = std::any_of(inventory.pending.begin(), inventory.pending.end(),
                                   [&](const PendingPair& pair) { return pair.id == id; });
    if (!known) inventory.pending.push_back({kind_of_pair(id), id});
}

void take_retired(Inventory& inventory, const CardView& view, const std::string& card) {
    for (const std::string& id : view.identifiers())
        if (const Backup* backup = backup_of_leftover(inventory.backups, view, card, id);
            backup != nullptr && id != ZV_OWN_PAIR)
            inventory.retired.push_back({id, backup->file});
    std::erase_if(inventory.pending, [&](const PendingPair& pair) {
        return std::any_of(inventory.retired.begin(), inventory.retired.end(),
                           [&](const RetiredPair& retired) { return retired.id == pair.id; });
    });
}

} // namespace

Kind kind_of_certificate(const std::string& id, bool services_card) {
    if (services_card && id.starts_with(ZV_OWN_PAIR)) return Kind::services;
    const bool signature = services_card ? id.starts_with(zv::SIGNATURE_SERIES)
                                         : id.starts_with(zv::OTHER_SIGNATURE_SERIES) ||
                                               zv::in_series(id, zv::SIGNATURE_SERIES, zv::ALL_DIGITS);
    return signature ? Kind::signature : Kind::authentication;
}

Proposal as_proposal(const std::string& key_text) {
    const bool digit =
        std::any_of(key_text.begin(), key_text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    return digit ? Proposal{key_text, false} : Proposal{{}, !key_text.empty()};
}

Inventory read_inventory(OpenedCard& card, const CardView& view, const std::string& given_backup) {
    Reading reading;
    read_with_library(card, reading);
    const bool pending = reading.signature_pending == 1;
    // Other cards than services cards get both marks under the signature list's conditions.
    const bool mark_signature = pending;
    const bool mark_authentication = card.place.services ? reading.authentication_pending == 1
                                                         : pending && !reading.signature.records().empty();

    Inventory inventory;
    add_certificates(inventory, reading.signature, Kind::signature, mark_signature);
    add_certificates(inventory, reading.authentication, Kind::authentication, mark_authentication);
    add_certificates(inventory, reading.services, Kind::services, reading.services_pending == 1);
    for (CertificateRecord& record : inventory.certificates)
        if (record.kind == Kind::services || record.subject_text.find('\\') != std::string::npos)
            take_subject(record, view);
    inventory.own_pair = card.place.services && view.find(CKO_PRIVATE_KEY, ZV_OWN_PAIR) != nullptr;
    inventory.services_pending = reading.services_pending == 1;
    const std::string signature_key = reading.signature_key.data();
    const std::string authentication_key = reading.authentication_key.data();
    if (pending)
        add_pending(inventory, signature_key);
    else
        inventory.signature = as_proposal(signature_key);
    if (reading.authentication_pending == 1)
        add_pending(inventory, authentication_key);
    else
        inventory.authentication = as_proposal(authentication_key);
    for (const std::string& id : view.pending_pairs())
        add_pending(inventory, id);
    inventory.backups = backups_of(card.state.serial, given_backup);
    take_retired(inventory, view, card.state.serial);
    return inventory;
}

const CertificateRecord* Inventory::current(Kind kind) const {
    const CertificateRecord* last = nullptr;
    for (const CertificateRecord& record : certificates)
        if (record.kind == kind && (last == nullptr || record.ends > last->ends)) last = &record;
    return last;
}

const CertificateRecord* Inventory::find(Kind kind, const std::string& id) const {
    const auto found = std::find_if(certificates.begin(), certificates.end(), [&](const auto& record) {
        return record.kind == kind && record.id == id;
    });
    return found == certificates.end() ? nullptr : &*found;
}

const PendingPair* Inventory::pending_pair(Kind kind) const {
    const auto found = std::find_if(pending.begin(), pending.end(),
                                    [&](const PendingPair& pair) { return pair.kind == kind; });
    return found == pending.end() ? nullptr : &*found;
}

} // namespace cli
