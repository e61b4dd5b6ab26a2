#include "host/old_certificate.h"

#include "host/certificate_facts.h"
#include "host/error.h"
#include "host/inventory.h"

#include <openssl/x509v3.h>

#include <algorithm>

namespace zvhost {
namespace {

using Objects = std::vector<const CardObject*>;

bool is_stored(const CardObject& object, const Bytes& der) {
    return !der.empty() && without_padding(object.value) == der;
}

// Certificates of an authority may have any identifier, but no key beside them.
bool is_issuers(const CardView& view, const CardObject& object) {
    if (is_authority(object)) return true;
    const Certificate certificate = certificate_from(object.value);
    return view.find(CKO_PRIVATE_KEY, object.id) == nullptr && certificate &&
           X509_check_ca(certificate.get()) == 1;
}

Objects certificates_of_kind(const Replacing& replacing) {
    Objects found;
    for (const CardObject& object : replacing.view.objects()) {
        if (object.type != CKO_CERTIFICATE || is_issuers(replacing.view, object)) continue;
        const bool same_kind =
            kind_of_certificate(object.id, replacing.card.place.services) == replacing.kind;
        // The same certificate stored twice is one.
        const auto known = [&](const CardObject* one) {
            return one->id == object.id && one->value == object.value;
        };
        if (same_kind && !is_stored(object, replacing.certificate) &&
            std::none_of(found.begin(), found.end(), known))
            found.push_back(&object);
    }
    return found;
}

OldCertificate on_card(const CardObject& object) {
    return {object.id, without_padding(object.value), true, {}};
}

OldCertificate gone(const std::string& id, const Backup& backup) {
    return {id, backup.certificate(), false, backup.file};
}

std::time_t ending(const CardObject& object) {
    const Certificate certificate = certificate_from(object.value);
    return certificate ? end_of(*certificate).value_or(0) : 0;
}

std::optional<OldCertificate> last_of(const Objects& found) {
    const auto last = std::max_element(found.begin(), found.end(), [](const auto* one, const auto* other) {
        return ending(*one) < ending(*other);
    });
    return last == found.end() ? std::nullopt : std::optional(on_card(**last));
}

// "--replace DS0 or --replace DS3"
std::vector<Sentence> choices(const std::vector<std::string>& ids) {
    std::vector<Sentence> choices;
    choices.reserve(ids.size());
    for (const std::string& id : ids)
        choices.push_back({choices.empty() ? "replace-this" : "or-replace-this", {{"id", id}}});
    return choices;
}

[[noreturn]] void refuse_several(const Replacing& replacing, const Objects& found) {
    std::vector<std::string> ids;
    for (const CardObject* object : found)
        if (std::find(ids.begin(), ids.end(), object->id) == ids.end()) ids.push_back(object->id);
    const Sentence several{"several-could-go", {{"kind", replacing.kind}}};
    if (ids.size() == 1)
        throw Error(Exit::refused, several,
                    Advice{"without-remove-old", {"all-have-one-identifier", {{"id", ids.front()}}}});
    throw Error(Exit::refused, several,
                Advice{"replace", {"say-which", {{"choices", choices(ids)}}}, {{"ids", ids}}});
}

// One whose backup is there and whose key is not on the card any more, or is there alone under its identifier.
std::optional<OldCertificate> named_and_gone(const Replacing& replacing, const std::string& id) {
    const std::string& card = replacing.card.state.serial;
    if (const Backup* left = backup_of_leftover(replacing.backups, replacing.view, card, id))
        return gone(id, *left);
    for (const Backup& backup : replacing.backups) {
        const Certificate certificate = certificate_from(backup.certificate());
        if (backup.heading != backup_heading(card, id) || !certificate) continue;
        const Bytes key = modulus_of(*certificate);
        const auto& objects = replacing.view.objects();
        if (std::none_of(objects.begin(), objects.end(), [&](const CardObject& object) {
                return object.type != CKO_CERTIFICATE && object.value == key;
            }))
            return gone(id, backup);
    }
    return std::nullopt;
}

OldCertificate find_named(const Replacing& replacing, Objects found) {
    const std::string& id = replacing.wishes.replace;
    std::erase_if(found, [&](const CardObject* object) { return object->id != id; });
    if (found.size() > 1 && replacing.wishes.remove_old) refuse_several(replacing, found);
    if (const auto there = last_of(found)) return *there;
    if (id != replacing.pair && kind_of_certificate(id, replacing.card.place.services) == replacing.kind)
        if (const auto old = named_and_gone(replacing, id)) return *old;
    throw Error(Exit::refused, {"no-certificate-named", {{"kind", replacing.kind}, {"id", id}}},
                Advice{"whole-identifier", {"give-whole-identifier", {}}});
}

// Keys without a certificate whose number is that of the one that signed.
std::string keys_of(const Replacing& replacing, const Bytes& der) {
    const Certificate certificate = certificate_from(der);
    const Bytes key = certificate ? modulus_of(*certificate) : Bytes();
    for (const std::string& id : replacing.view.identifiers())
        if (!key.empty() && id != replacing.pair && replacing.view.modulus(id) == key &&
            replacing.view.certificates(id).empty())
            return id;
    return {};
}

std::optional<OldCertificate> find_signer(const Replacing& replacing, const Objects& found) {
    const Bytes& signer = replacing.files.signer;
    if (signer.empty()) return std::nullopt;
    for (const CardObject* object : found)
        if (is_stored(*object, signer)) return on_card(*object);
    const auto& objects = replacing.view.objects();
    if (std::any_of(objects.begin(), objects.end(), [&](const auto& one) { return is_stored(one, signer); }))
        return std::nullopt; // it is of another kind
    return OldCertificate{keys_of(replacing, signer), signer, false, {}};
}

std::optional<OldCertificate> find_only(const Replacing& replacing, const Objects& found) {
    if (found.size() > 1 && replacing.wishes.remove_old) refuse_several(replacing, found);
    if (!found.empty() || replacing.kind == Kind::services) return last_of(found);
    std::optional<OldCertificate> left;
    for (const std::string& id : replacing.view.identifiers()) {
        const Backup* backup =
            backup_of_leftover(replacing.backups, replacing.view, replacing.card.state.serial, id);
        const bool same_kind = kind_of_certificate(id, replacing.card.place.services) == replacing.kind;
        if (backup == nullptr || !same_kind || id == replacing.pair) continue;
        if (left) return std::nullopt;
        left = gone(id, *backup);
    }
    return left;
}

} // namespace

bool is_authority(const CardObject& certificate) {
    return certificate.id == ZV_AUTHORITY_ID || certificate.label.starts_with(ZV_AUTHORITY_ID);
}

std::optional<OldCertificate> find_old(const Replacing& replacing) {
    const Objects found = certificates_of_kind(replacing);
    if (!replacing.wishes.replace.empty()) return find_named(replacing, found);
    if (auto signer = find_signer(replacing, found)) return signer;
    return find_only(replacing, found);
}

} // namespace zvhost
