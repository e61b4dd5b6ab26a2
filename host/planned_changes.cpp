#include "host/planned_changes.h"

#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "zvConstants.h"

#include <fmt/format.h>
#include <openssl/evp.h>

#include <array>

namespace zvhost {
namespace {

constexpr std::size_t BITS_OF_BYTE = 8;
constexpr std::size_t FINGERPRINT_BYTES = 16;

// How often a card gets the PIN: each entry point and each look logs in by itself.
constexpr int LOGINS_OF_A_REQUEST = 2;
constexpr int LOGINS_OF_AN_INSTALLATION = 2;

ObjectClass class_of_object(CK_OBJECT_CLASS type) {
    if (type == CKO_CERTIFICATE) return ObjectClass::certificate;
    if (type == CKO_PUBLIC_KEY) return ObjectClass::public_key;
    return type == CKO_PRIVATE_KEY ? ObjectClass::private_key : ObjectClass::data;
}

std::time_t end_of_certificate(const CardObject& object) {
    if (object.type != CKO_CERTIFICATE) return 0;
    const Certificate certificate = certificate_from(object.value);
    return certificate ? end_of(*certificate).value_or(0) : 0;
}

std::size_t size_of(const CardObject& object) {
    return object.type == CKO_CERTIFICATE ? object.value.size() : object.value.size() * BITS_OF_BYTE;
}

void remove_all(Plan& plan, const CardView& view, const std::string& id, const Sentence& why) {
    for (const CardObject& object : view.objects())
        if (object.id == id) plan.changes.push_back(removal_of(object, why));
}

// Of several certificates under one identifier the first goes.
void remove_first_certificate(Plan& plan, const CardView& view, const std::string& id, const Sentence& why) {
    if (const CardObject* first = view.find(CKO_CERTIFICATE, id))
        plan.changes.push_back(removal_of(*first, why));
}

void create_pair(Plan& plan, const std::string& id) {
    for (const ObjectClass what : {ObjectClass::public_key, ObjectClass::private_key})
        plan.changes.push_back({Action::create, what, id, id, ZV_KEY_BITS, {"why-new-pair", {{"pair", id}}}});
}

void relabel_pair(Plan& plan, const CardView& view, const std::string& id) {
    for (const CardObject& object : view.objects())
        if (object.id == id && object.type != CKO_CERTIFICATE && object.label != id)
            plan.changes.push_back({Action::relabel,
                                    class_of_object(object.type),
                                    id,
                                    id,
                                    size_of(object),
                                    {"why-relabelled", {{"pair", id}}}});
}

void remove_mark(Plan& plan, const CardView& view) {
    if (view.marked_pending())
        plan.changes.push_back(
            {Action::remove, ObjectClass::data, {}, ZV_PENDING_MARKER, 0, {"why-mark-removed", {}}});
}

void remove_old(Plan& plan, const InstallPlan& install, const CardView& view) {
    const Values about = {{"id", Value(install.old->id)}};
    if (install.kind == Kind::services)
        return remove_first_certificate(plan, view, install.pair, {"why-old-removed", about});
    remove_all(plan, view, install.old->id, {"why-old-removed", about});
    if (install.removed.size() > 1)
        remove_first_certificate(plan, view, install.removed[1], {"why-authority-removed", {}});
}

std::string hex_of(const unsigned char* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += fmt::format("{:02x}", bytes[i]);
    return text;
}

class Digest {
  public:
    Digest() : context_(EVP_MD_CTX_new()) {
        if (EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) != 1) fail();
    }
    void add(const void* data, std::size_t size) {
        if (EVP_DigestUpdate(context_.get(), data, size) != 1) fail();
    }
    void add(const std::string& text) { add(text.c_str(), text.size() + 1); }
    [[nodiscard]] std::string text(std::size_t bytes = FINGERPRINT_BYTES) {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        if (EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr) != 1) fail();
        return hex_of(digest.data(), bytes);
    }

  private:
    [[noreturn]] static void fail() { throw Error(Exit::failed, {"no-digest", {}}); }

    ossl::DigestContext context_;
};

} // namespace

Change removal_of(const CardObject& object, const Sentence& why) {
    return {Action::remove,
            class_of_object(object.type),
            object.id,
            object.label,
            size_of(object),
            why,
            end_of_certificate(object)};
}

std::string short_digest(const Bytes& bytes) {
    constexpr std::size_t enough = 4;
    Digest digest;
    digest.add(bytes.data(), bytes.size());
    return digest.text(enough);
}

void seal(Plan& plan, const CardView& view) {
    Digest digest;
    digest.add(plan.card.state ? plan.card.state->serial : "");
    for (const CardObject& object : view.objects()) {
        digest.add(fmt::format("{} {} {} {}", object.type, object.id, object.label, object.value.size()));
        digest.add(object.value.data(), object.value.size());
    }
    for (const Change& change : plan.changes)
        digest.add(fmt::format("{} {} {} {} {}", word_for(change.action), word_for(change.what), change.id,
                               change.label, change.size));
    plan.fingerprint = digest.text();
    if (plan.card.state) plan.room = plan.card.state->room;
}

Plan unchanged(const CardFacts& card, const CardView& view) {
    Plan plan;
    plan.card = card;
    seal(plan, view);
    return plan;
}

Plan changes_of(const RequestPlan& request, const CardFacts& card, const CardView& view) {
    Plan plan;
    plan.card = card;
    // Discarding has the library log in once more; so has the look whether the card took the mark.
    plan.logins = LOGINS_OF_A_REQUEST + (request.discard || request.old.kind == Kind::services ? 1 : 0);
    if (request.discard)
        remove_all(plan, view, request.pair, {"why-pair-discarded", {{"pair", request.pair}}});
    if (request.old.kind == Kind::services) {
        if (!view.marked_pending())
            plan.changes.push_back(
                {Action::create, ObjectClass::data, {}, ZV_PENDING_MARKER, 0, {"why-mark", {}}});
    } else if (!request.reuse) {
        create_pair(plan, request.pair);
    }
    seal(plan, view);
    return plan;
}

Plan changes_of(const InstallPlan& install, const CardFacts& card, const CardView& view) {
    Plan plan;
    plan.card = card;
    plan.logins = LOGINS_OF_AN_INSTALLATION;
    if (!install.removed.empty()) remove_old(plan, install, view);
    if (install.first) {
        plan.changes.push_back(removal_of(*install.first, {"why-makes-room", {{"pair", install.pair}}}));
        ++plan.logins;
    }
    plan.changes.push_back({Action::create,
                            ObjectClass::certificate,
                            install.pair,
                            install.pair,
                            install.certificate.size(),
                            {"why-new-certificate", {{"pair", install.pair}}}});
    if (install.kind == Kind::services)
        remove_mark(plan, view);
    else
        relabel_pair(plan, view, install.pair);
    seal(plan, view);
    return plan;
}

const char* word_for(ObjectClass what) {
    switch (what) {
    case ObjectClass::certificate:
        return "certificate";
    case ObjectClass::public_key:
        return "public key";
    case ObjectClass::private_key:
        return "private key";
    case ObjectClass::data:
        return "data";
    }
    return "";
}

const char* word_for(Action action) {
    switch (action) {
    case Action::create:
        return "create";
    case Action::relabel:
        return "relabel";
    case Action::remove:
        return "remove";
    }
    return "";
}

} // namespace zvhost
