#include "host/card_view.h"

#include "host/attributes.h"
#include "host/error.h"
#include "zvRenew.h"

#include <algorithm>

namespace zvhost {
namespace {

// A text ends at its first zero byte, as the library reads identifiers.
std::string as_text(const Bytes& bytes) {
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
}

Bytes without_leading_zeros(Bytes number) {
    const auto first = std::find_if(number.begin(), number.end(), [](unsigned char b) { return b != 0; });
    number.erase(number.begin(), first);
    return number;
}

bool is_key(CK_OBJECT_CLASS type) {
    return type == CKO_PUBLIC_KEY || type == CKO_PRIVATE_KEY;
}

bool is_true(const Bytes& value) {
    return value.size() == 1 && value.front() == CK_TRUE;
}

// What is no certificate, key or data may refuse to tell anything of itself.
CardObject read_object(const Session& session, CK_OBJECT_HANDLE handle) {
    const Attributes all(
        session, handle,
        {CKA_CLASS, CKA_ID, CKA_LABEL, CKA_VALUE, CKA_MODULUS, CKA_PUBLIC_EXPONENT, CKA_ALWAYS_AUTHENTICATE});
    CardObject object;
    object.handle = handle;
    object.type = as_class(all.get(CKA_CLASS));
    if (object.type != CKO_CERTIFICATE && !is_key(object.type)) {
        object.id = as_text(all.get_if_given(CKA_ID));
        if (object.type == CKO_DATA) object.label = as_text(all.get(CKA_LABEL));
        return object;
    }
    object.id = as_text(all.get(CKA_ID));
    object.label = as_text(all.get(CKA_LABEL));
    object.value = is_key(object.type) ? without_leading_zeros(all.get(CKA_MODULUS)) : all.get(CKA_VALUE);
    if (object.type == CKO_PRIVATE_KEY) object.wants_pin = is_true(all.get_if_given(CKA_ALWAYS_AUTHENTICATE));
    if (object.type == CKO_PUBLIC_KEY) object.exponent = without_leading_zeros(all.get(CKA_PUBLIC_EXPONENT));
    return object;
}

// These are never taken for pairs of a request.
bool is_first_key(const std::string& id) {
    return id == ZV_OWN_PAIR ||
           std::any_of(std::begin(zv::KINDS), std::end(zv::KINDS), [&](const zv::KindRow& kind) {
               return kind.new_pair && zv::in_series(id, kind.series, zv::FIRST_DIGITS);
           });
}

std::vector<std::string> uncertified_public_keys(const CardView& view) {
    std::vector<std::string> found = view.identifiers();
    std::erase_if(found, [&](const std::string& id) {
        return view.find(CKO_PUBLIC_KEY, id) == nullptr || view.find(CKO_CERTIFICATE, id) != nullptr;
    });
    return found;
}

void add_new(std::vector<std::string>& ids, const std::string& id) {
    if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
}

// Cards pad what they hold.
bool begins_with(const Bytes& stored, const Bytes& expected) {
    return stored.size() >= expected.size() && std::equal(expected.begin(), expected.end(), stored.begin());
}

} // namespace

const CardObject* CardView::find(CK_OBJECT_CLASS type, const std::string& id) const {
    const auto found = std::find_if(objects_.begin(), objects_.end(), [&](const CardObject& object) {
        return object.type == type && object.id == id;
    });
    return found == objects_.end() ? nullptr : &*found;
}

std::vector<const CardObject*> CardView::certificates(const std::string& id) const {
    std::vector<const CardObject*> found;
    for (const CardObject& object : objects_)
        if (object.type == CKO_CERTIFICATE && object.id == id) found.push_back(&object);
    return found;
}

const CardObject* CardView::certificate(const std::string& id, const Bytes& der) const {
    const std::vector<const CardObject*> all = certificates(id);
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const CardObject* one) { return begins_with(one->value, der); });
    return found == all.end() ? nullptr : *found;
}

bool CardView::marked_pending() const {
    return std::any_of(objects_.begin(), objects_.end(), [](const CardObject& object) {
        return object.type == CKO_DATA && object.label == ZV_PENDING_MARKER;
    });
}

bool CardView::wants_pin(const std::string& id) const {
    const CardObject* key = find(CKO_PRIVATE_KEY, id);
    return key != nullptr && key->wants_pin;
}

std::size_t CardView::private_keys(const std::string& id) const {
    const auto fits = [&](const CardObject& object) {
        return object.type == CKO_PRIVATE_KEY && object.id == id;
    };
    return static_cast<std::size_t>(std::count_if(objects_.begin(), objects_.end(), fits));
}

bool CardView::has(const std::string& id) const {
    return std::any_of(objects_.begin(), objects_.end(), [&](const auto& object) { return object.id == id; });
}

Bytes CardView::modulus(const std::string& id) const {
    for (const CK_OBJECT_CLASS type : {CKO_PUBLIC_KEY, CKO_PRIVATE_KEY})
        if (const CardObject* key = find(type, id); key != nullptr && !key->value.empty()) return key->value;
    return {};
}

std::vector<std::string> CardView::identifiers() const {
    std::vector<std::string> found;
    for (const CardObject& object : objects_)
        add_new(found, object.id);
    return found;
}

std::vector<std::string> CardView::ids_of_class(CK_OBJECT_CLASS type) const {
    std::vector<std::string> found;
    for (const CardObject& object : objects_)
        if (object.type == type) add_new(found, object.id);
    return found;
}

std::vector<std::string> CardView::others_containing(const std::string& text) const {
    std::vector<std::string> found = identifiers();
    std::erase_if(found,
                  [&](const std::string& id) { return id == text || id.find(text) == std::string::npos; });
    return found;
}

std::vector<std::string> CardView::pending_pairs() const {
    std::vector<std::string> found = ids_of_class(CKO_PUBLIC_KEY);
    std::erase_if(found, [&](const std::string& id) {
        return find(CKO_PRIVATE_KEY, id) == nullptr || find(CKO_CERTIFICATE, id) != nullptr ||
               is_first_key(id);
    });
    return found;
}

std::vector<std::string> CardView::pending_public_keys() const {
    std::vector<std::string> found = uncertified_public_keys(*this);
    std::erase_if(found, is_first_key);
    return found;
}

std::vector<std::string> CardView::uncertified_first_keys() const {
    std::vector<std::string> found = uncertified_public_keys(*this);
    std::erase_if(found, [](const std::string& id) { return !is_first_key(id); });
    return found;
}

OnCard CardView::contents() const {
    OnCard contents;
    for (const std::string& id : identifiers())
        contents.held.push_back({id, certificates(id).size(), find(CKO_PUBLIC_KEY, id) != nullptr,
                                 find(CKO_PRIVATE_KEY, id) != nullptr});
    return contents;
}

void refuse_doubled(const CardView& view, const std::vector<std::string>& ids) {
    for (const std::string& id : ids)
        if (view.private_keys(id) > 1)
            throw Error(Exit::refused, Sentence{"keys-doubled", {{"id", id}}},
                        Advice{"doubled",
                               Sentence{"keys-doubled-advice", {{"id", id}}},
                               {{"remove", std::vector{id}}}});
}

CardView view_in(const Session& session) {
    std::vector<CardObject> objects;
    for (const CK_OBJECT_HANDLE handle : session.objects())
        objects.push_back(read_object(session, handle));
    return CardView(std::move(objects));
}

} // namespace zvhost
