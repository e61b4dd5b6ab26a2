#include "host/inventory.h"

#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "host/error.h"
#include "host/front.h"
#include "host/library_text.h"
#include "host/refused_pin.h"
#include "zvRenew.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace zvhost {
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

// What a reading gives of one kind.
struct OfKind {
    CertificateList list;
    int pending = 0;
    std::array<char, ZV_KEY_ID_SIZE> key{}; // of the pair that waits, or for a new one
};

using Reading = zv::ByKind<OfKind>;

void read_with_library(OpenedCard& card, Reading& reading) {
    auto& [signature, authentication, services] = reading.things;
    services.list.set_count_to_zero();
    std::string reader = card.place.reader;
    char no_text[] = "";
    forget_library_texts();
    const int code = rinnovo_Card_readCerts(reader.data(), card.pin.text(), 0, services.list.entries(),
                                            signature.list.entries(), authentication.list.entries(),
                                            &services.pending, &signature.pending, &authentication.pending,
                                            signature.key.data(), authentication.key.data(), no_text,
                                            library_way(card.place.module_path).folder.c_str());
    if (code != ZV_OK)
        throw with_pin(card.pin,
                       library_stop("card-not-read", code, Advice{"repeat", {"unchanged-try-again", {}}}));
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

// Whether the list's first record has one more field. Other cards than services cards get both marks under
// the signature list's conditions.
bool is_marked(const Reading& reading, Kind kind, bool services_card) {
    const OfKind& signature = reading[Kind::signature];
    if (services_card || kind != Kind::authentication) return reading[kind].pending == 1;
    return signature.pending == 1 && !signature.list.records().empty();
}

void take_key(Inventory& inventory, const OfKind& read, Kind kind) {
    if (read.pending == 1)
        add_pending(inventory, read.key.data());
    else
        inventory.next[kind] = as_proposal(read.key.data());
}

} // namespace

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

Proposal as_proposal(const std::string& key_text) {
    const bool digit =
        std::any_of(key_text.begin(), key_text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    return digit ? Proposal{key_text, false} : Proposal{{}, !key_text.empty()};
}

Inventory read_inventory(OpenedCard& card, const CardView& view, const std::string& given_backup) {
    Reading reading;
    read_with_library(card, reading);
    Inventory inventory;
    for (const zv::KindRow& kind : zv::KINDS)
        add_certificates(inventory, reading[kind.id].list, kind.id,
                         is_marked(reading, kind.id, card.place.services));
    for (CertificateRecord& record : inventory.certificates)
        if (record.kind == Kind::services || record.subject_text.find('\\') != std::string::npos)
            take_subject(record, view);
    inventory.own_pair = card.place.services && view.find(CKO_PRIVATE_KEY, ZV_OWN_PAIR) != nullptr;
    inventory.services_pending = reading[Kind::services].pending == 1;
    for (const zv::KindRow& kind : zv::KINDS)
        if (kind.new_pair) take_key(inventory, reading[kind.id], kind.id);
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

} // namespace zvhost
