// Data objects that mark a services card: written by a request, removed once its certificate is stored.
// Nothing is logged.
#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"
#include "util/text.h"

#include <cstring>
#include <string_view>

namespace {

constexpr unsigned int REFUSED = 0xFFFFFFFF;
constexpr std::size_t MOST_LABEL = 64;
constexpr std::size_t MOST_VALUE = 2048;

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

unsigned int DataStore(unsigned long session, const char* label, const char* value, const char*,
                       bool modifiable, bool is_private) {
    const std::string_view name = zv::or_empty(label), text = zv::or_empty(value);
    if (text.size() > MOST_VALUE || text.empty() || name.size() > MOST_LABEL) return REFUSED;
    const CK_OBJECT_CLASS data = CKO_DATA;
    const CK_BBOOL on_token = CK_TRUE, changeable = modifiable, hidden = is_private;
    CK_ATTRIBUTE tmpl[] = {
        zv::attribute_of(CKA_CLASS, data),     zv::attribute(CKA_LABEL, name),
        zv::attribute_of(CKA_PRIVATE, hidden), zv::attribute_of(CKA_MODIFIABLE, changeable),
        zv::attribute_of(CKA_TOKEN, on_token), zv::attribute(CKA_VALUE, text),
    };
    CK_OBJECT_HANDLE object = 0;
    if (find_first(session, std::span(tmpl).first(5), object) != CKR_OK)
        return static_cast<unsigned int>(zv::rv);
    if (object != 0)
        zv::rv = zv::call<&zv::Functions::C_SetAttributeValue>(session, object, &tmpl[5], CK_ULONG{1});
    else
        zv::rv = zv::call<&zv::Functions::C_CreateObject>(session, tmpl, CK_ULONG{6}, &object);
    return static_cast<unsigned int>(zv::rv);
}

unsigned int DeleteDataPendingCNS(unsigned long session, char* label) {
    const std::string_view name = zv::or_empty(label);
    if (name.size() > MOST_LABEL) return REFUSED;
    CK_ATTRIBUTE tmpl = zv::attribute(CKA_LABEL, name);
    const zv::Walked walked =
        zv::walk({.session = session, .tmpl = {&tmpl, 1}, .exits = {.when_find_fails = zv::Exit::left_open}},
                 [session](CK_OBJECT_HANDLE object) { return destroy_if_data(session, object); });
    return static_cast<unsigned int>(walked.code);
}
