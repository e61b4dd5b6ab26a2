#include "host/public_card.h"

#include "host/attributes.h"
#include "host/pin_gate.h"

namespace zvhost {
namespace {

std::string plain_text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::optional<PublicObject> object_in(const Session& session, CK_OBJECT_HANDLE handle) {
    const Attributes all(session, handle,
                         {CKA_CLASS, CKA_ID, CKA_LABEL, CKA_VALUE, CKA_MODULUS, CKA_APPLICATION});
    PublicObject object;
    object.type = as_class(all.get_if_given(CKA_CLASS));
    const bool known =
        object.type == CKO_CERTIFICATE || object.type == CKO_PUBLIC_KEY || object.type == CKO_DATA;
    if (!known) return std::nullopt;
    const auto read = [&](CK_ATTRIBUTE_TYPE attribute) { return plain_text(all.get_if_given(attribute)); };
    object.id = read(CKA_ID);
    object.label = read(CKA_LABEL);
    object.value = read(object.type == CKO_PUBLIC_KEY ? CKA_MODULUS : CKA_VALUE);
    if (object.type == CKO_DATA) object.application = read(CKA_APPLICATION);
    return object;
}

} // namespace

PublicCard read_public_card(const CardChoice& choice) {
    const Place place = find_place(choice);
    const Module module(place.module_path);
    PublicCard card{facts_of(place, card_state(module, place)), {}};
    const Session session(module, card.card.state->slot);
    for (const CK_OBJECT_HANDLE handle : session.objects())
        if (auto object = object_in(session, handle)) card.objects.push_back(std::move(*object));
    return card;
}

} // namespace zvhost
