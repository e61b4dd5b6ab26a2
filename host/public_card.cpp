#include "host/public_card.h"

#include "host/card_view.h"

#include <cstring>

namespace zvhost {
namespace {

std::string plain_text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::optional<PublicObject> object_in(const Session& session, CK_OBJECT_HANDLE handle) {
    const Bytes type = session.attribute_if_given(handle, CKA_CLASS);
    PublicObject object;
    if (type.size() != sizeof object.type) return std::nullopt;
    std::memcpy(&object.type, type.data(), sizeof object.type);
    const bool known =
        object.type == CKO_CERTIFICATE || object.type == CKO_PUBLIC_KEY || object.type == CKO_DATA;
    if (!known) return std::nullopt;
    const auto read = [&](CK_ATTRIBUTE_TYPE attribute) {
        return plain_text(session.attribute_if_given(handle, attribute));
    };
    object.id = read(CKA_ID);
    object.label = read(CKA_LABEL);
    object.value = read(object.type == CKO_PUBLIC_KEY ? CKA_MODULUS : CKA_VALUE);
    if (object.type == CKO_DATA) object.application = read(CKA_APPLICATION);
    return object;
}

} // namespace

PublicCard read_public_card(const CardChoice& choice) {
    const Place place = find_place(choice);
    PublicCard card{facts_of(place, card_state(place)), {}};
    const Module module(place.module_path);
    require_same_card(module, *card.card.state);
    const Session session(module, card.card.state->slot);
    for (const CK_OBJECT_HANDLE handle : session.objects())
        if (auto object = object_in(session, handle)) card.objects.push_back(std::move(*object));
    return card;
}

} // namespace zvhost
