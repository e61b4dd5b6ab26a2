#include "store/marker.h"

#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"

namespace {

constexpr std::size_t MOST_DATA_LABEL = 64;
constexpr std::size_t MOST_DATA_VALUE = 2048;

// The first object that matches; 0 when none does.
CK_RV find_first(CK_SESSION_HANDLE session, std::span<CK_ATTRIBUTE> tmpl, CK_OBJECT_HANDLE& object) {
    object = 0;
    const auto take = [&object](CK_OBJECT_HANDLE first) { object = first; };
    return zv::walk({.session = session, .tmpl = tmpl, .most = zv::FIRST_OBJECT}, take).code;
}

zv::Visit destroy_if_data(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    CK_OBJECT_CLASS object_class = 0;
    if (zv::read_number(session, object, CKA_CLASS, object_class) != CKR_OK) return zv::Visit::stop;
    if (object_class != CKO_DATA) return zv::Visit::go_on;
    zv::destroy_object(session, object);
    return zv::Visit::stop;
}

} // namespace

CK_RV zv::write_data(CK_SESSION_HANDLE session, const DataObject& data) {
    if (data.value.size() > MOST_DATA_VALUE || data.value.empty() || data.label.size() > MOST_DATA_LABEL)
        return DATA_REFUSED;
    const CK_OBJECT_CLASS object_class = CKO_DATA;
    const CK_BBOOL on_token = CK_TRUE, modifiable = data.modifiable, is_private = data.is_private;
    CK_ATTRIBUTE tmpl[] = {
        attribute_of(CKA_CLASS, object_class), attribute(CKA_LABEL, data.label),
        attribute_of(CKA_PRIVATE, is_private), attribute_of(CKA_MODIFIABLE, modifiable),
        attribute_of(CKA_TOKEN, on_token),     attribute(CKA_VALUE, data.value),
    };
    CK_OBJECT_HANDLE object = 0;
    if (find_first(session, std::span(tmpl).first(5), object) != CKR_OK) return rv;
    if (object != 0)
        return rv = call<&Functions::C_SetAttributeValue>(session, object, &tmpl[5], CK_ULONG{1});
    return rv = call<&Functions::C_CreateObject>(session, tmpl, CK_ULONG{6}, &object);
}

CK_RV zv::delete_data(CK_SESSION_HANDLE session, std::string_view label) {
    if (label.size() > MOST_DATA_LABEL) return DATA_REFUSED;
    CK_ATTRIBUTE tmpl = attribute(CKA_LABEL, label);
    const Search search = {
        .session = session, .tmpl = {&tmpl, 1}, .exits = {.when_find_fails = Exit::left_open}};
    return walk(search, [session](CK_OBJECT_HANDLE object) { return destroy_if_data(session, object); }).code;
}
