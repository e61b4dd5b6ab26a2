#include "simcard/tool/object_view.h"

#include "ossl/owners.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/name.h"
#include "simcard/common/hexadecimal.h"
#include "simcard/tool/token_session.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <tuple>

namespace simcard {
namespace {

std::string class_name(CK_OBJECT_CLASS object_class) {
    switch (object_class) {
    case CKO_DATA:
        return "data";
    case CKO_CERTIFICATE:
        return "certificate";
    case CKO_PUBLIC_KEY:
        return "public key";
    case CKO_PRIVATE_KEY:
        return "private key";
    default:
        return "class " + std::to_string(object_class);
    }
}

std::string text_or_hexadecimal(const std::string& bytes) {
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; })) return bytes;
    return "0x" + hexadecimal(bytes);
}

std::string day_of(const ASN1_TIME& time) {
    std::tm broken_down{};
    char text[16] = "";
    if (ASN1_TIME_to_tm(&time, &broken_down) == 1)
        (void)std::strftime(text, sizeof text, "%Y-%m-%d", &broken_down);
    return text;
}

void describe_certificate(ObjectView& view, const std::string& der) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
    const ossl::Certificate certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())));
    if (!certificate) {
        view.subject = "(not a certificate)";
        return;
    }
    view.subject = readable(*X509_get_subject_name(certificate.get()));
    view.ends = day_of(*X509_get0_notAfter(certificate.get()));
    view.key_bits = static_cast<std::size_t>(EVP_PKEY_get_bits(X509_get0_pubkey(certificate.get())));
}

ObjectView view_of(TokenSession& token, CK_OBJECT_HANDLE object) {
    const auto text = [&](CK_ATTRIBUTE_TYPE type) { return token.attribute(object, type).value_or(""); };
    CK_OBJECT_CLASS object_class = CK_UNAVAILABLE_INFORMATION;
    if (const std::string bytes = text(CKA_CLASS); bytes.size() == sizeof object_class)
        std::memcpy(&object_class, bytes.data(), sizeof object_class);
    ObjectView view;
    view.object_class = class_name(object_class);
    view.id = text_or_hexadecimal(text(CKA_ID));
    view.label = text_or_hexadecimal(text(CKA_LABEL));
    view.key_bits = 8 * text(CKA_MODULUS).size();
    if (object_class == CKO_CERTIFICATE) describe_certificate(view, text(CKA_VALUE));
    return view;
}

} // namespace

std::vector<ObjectView> view_objects(const Card& card, const Secret& pin) {
    const SoftHsm hsm(card.folder.parent_path());
    TokenSession token(hsm, card);
    if (!pin.text().empty() && !token.login(pin)) throw Refusal("That is not the card's PIN.");
    std::vector<ObjectView> views;
    for (const CK_OBJECT_HANDLE object : token.objects())
        views.push_back(view_of(token, object));
    std::sort(views.begin(), views.end(), [](const ObjectView& a, const ObjectView& b) {
        return std::tie(a.id, a.object_class, a.label, a.ends) <
               std::tie(b.id, b.object_class, b.label, b.ends);
    });
    return views;
}

} // namespace simcard
