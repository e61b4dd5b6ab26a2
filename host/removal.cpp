#include "host/removal.h"

#include "host/certificate_facts.h"
#include "host/error.h"
#include "host/public_key.h"

#include <algorithm>
#include <cctype>

namespace zvhost {
namespace {

[[noreturn]] void refuse_removal(const Sentence& sentence) {
    throw Error(Exit::refused, sentence, Advice{"without-remove-old", {"install-without-remove-old", {}}});
}

Bytes key_of(const OldCertificate& old) {
    const Certificate certificate = certificate_from(old.der);
    return certificate ? modulus_of(*certificate) : Bytes();
}

std::string backup_file(const InstallWishes& wishes, const OldCertificate& old) {
    if (!wishes.backup.empty()) return wishes.backup;
    std::string name = old.id + "-" + serial_of(old.der) + ".pem";
    const auto odd = [](unsigned char c) { return std::isalnum(c) == 0 && c != '-' && c != '.'; };
    std::replace_if(name.begin(), name.end(), odd, '_');
    return name;
}

// What cannot be saved makes the copy incomplete, and nothing goes.
void save_certificates(InstallPlan& plan, const CardView& view, const std::string& id, bool removing) {
    for (const CardObject* object : view.certificates(id)) {
        const Bytes der = without_padding(object->value);
        if (der.empty() && removing) refuse_removal({"certificate-unsaved", {{"id", id}}});
        const bool first = plan.old->on_card && der == plan.old->der && id == plan.old->id;
        if (!der.empty() && der != plan.certificate && !first) plan.backup.add("CERTIFICATE", der);
    }
}

void save_keys(InstallPlan& plan, const CardView& view, bool removing) {
    for (const CardObject& object : view.objects()) {
        if (object.type != CKO_PUBLIC_KEY || object.id != plan.old->id) continue;
        const Bytes der = public_key_of(object.value, object.exponent);
        if (der.empty() && removing) refuse_removal({"public-key-unsaved", {{"id", object.id}}});
        if (!der.empty()) plan.backup.add("PUBLIC KEY", der);
    }
}

void plan_backup(InstallPlan& plan, const InstallWishes& wishes, const std::string& card,
                 const CardView& view) {
    plan.backup.file = backup_file(wishes, *plan.old);
    plan.backup.heading = backup_heading(card, plan.old->id);
    plan.backup.add("CERTIFICATE", plan.old->der);
    save_certificates(plan, view, plan.old->id, wishes.remove_old);
    if (plan.kind == Kind::services) return;
    save_keys(plan, view, wishes.remove_old);
    if (kind_row(plan.kind).authority) save_certificates(plan, view, ZV_AUTHORITY_ID, wishes.remove_old);
}

bool is_other_key(const CardObject& object, const OldCertificate& old, const Bytes& key) {
    return object.id == old.id && object.type != CKO_CERTIFICATE && !key.empty() && !object.value.empty() &&
           object.value != key;
}

// Only what is certain to be the old certificate's goes.
void refuse_more(const InstallPlan& plan, const CardView& view) {
    const std::string& id = plan.old->id;
    if (const auto others = view.others_containing(id); !others.empty())
        refuse_removal({"others-would-go", {{"id", id}, {"others", others}}});
    const Bytes key = key_of(*plan.old);
    for (const CardObject& object : view.objects())
        if (is_other_key(object, *plan.old, key)) refuse_removal({"other-key-would-go", {{"id", id}}});
    const auto certificates = view.certificates(id);
    if (certificates.empty()) return;
    // Of a services card the first one goes, of others all.
    const auto other = [&](const CardObject* object) {
        return without_padding(object->value) != plan.old->der;
    };
    if (plan.kind == Kind::services ? other(certificates.front())
                                    : std::any_of(certificates.begin(), certificates.end(), other))
        refuse_removal({"other-certificate-would-go", {{"id", id}}});
}

// Keys under the identifier of a certificate that is gone are its own when they have its number.
bool are_its_keys(const OldCertificate& old, const CardView& view) {
    const Bytes key = key_of(old);
    return !key.empty() && std::all_of(view.objects().begin(), view.objects().end(), [&](const auto& object) {
        return object.id != old.id || object.value == key;
    });
}

} // namespace

void plan_removal(InstallPlan& plan, const InstallWishes& wishes, const std::string& card,
                  const CardView& view) {
    const OldCertificate& old = *plan.old;
    const bool keys_left = plan.kind != Kind::services && !old.id.empty() && view.has(old.id);
    const bool authority = kind_row(plan.kind).authority && !view.certificates(ZV_AUTHORITY_ID).empty();
    if (!old.on_card && !(wishes.remove_old && keys_left && are_its_keys(old, view))) {
        if (keys_left) plan.left.push_back(old.id);
        if (authority && wishes.remove_old) plan.left.emplace_back(ZV_AUTHORITY_ID);
        return;
    }
    plan_backup(plan, wishes, card, view);
    if (!wishes.remove_old) return;
    refuse_more(plan, view);
    plan.removed.push_back(old.id);
    if (authority) plan.removed.emplace_back(ZV_AUTHORITY_ID);
}

} // namespace zvhost
