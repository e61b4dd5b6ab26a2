// Data objects that mark a services card: written by a request, removed once its certificate is stored.
// Nothing is logged.
#include <cstring>
#include <string_view>

#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"
#include "util/text.h"

namespace {

constexpr unsigned int REFUSED = 0xFFFFFFFF;
constexpr std::size_t MOST_LABEL = 64;
constexpr std::size_t MOST_VALUE = 2048;

// The first object that matches; 0 when none does.
CK_RV findFirst(CK_SESSION_HANDLE session, std::span<CK_ATTRIBUTE> tmpl, CK_OBJECT_HANDLE& object) {
    object = 0;
    const auto take = [&object](CK_OBJECT_HANDLE first) { object = first; };
    return zv::walk({.session = session, .tmpl = tmpl, .most = zv::FIRST_OBJECT}, take).code;
}

zv::Visit destroyIfData(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    CK_OBJECT_CLASS objectClass = 0;
    if (zv::readNumber(session, object, CKA_CLASS, objectClass) != CKR_OK) return zv::Visit::Stop;
    if (objectClass != CKO_DATA) return zv::Visit::GoOn;
    zv::destroyObject(session, object);
    return zv::Visit::Stop;
}

} // namespace

unsigned int DataStore(unsigned long session, const char* label, const char* value, const char*,
                       bool modifiable, bool isPrivate) {
    const std::string_view name = zv::orEmpty(label), text = zv::orEmpty(value);
    if (text.size() > MOST_VALUE || text.empty() || name.size() > MOST_LABEL) return REFUSED;
    const CK_OBJECT_CLASS data = CKO_DATA;
    const CK_BBOOL onToken = CK_TRUE, changeable = modifiable, hidden = isPrivate;
    CK_ATTRIBUTE tmpl[] = {
        zv::attributeOf(CKA_CLASS, data),     zv::attribute(CKA_LABEL, name),
        zv::attributeOf(CKA_PRIVATE, hidden), zv::attributeOf(CKA_MODIFIABLE, changeable),
        zv::attributeOf(CKA_TOKEN, onToken),  zv::attribute(CKA_VALUE, text),
    };
    CK_OBJECT_HANDLE object = 0;
    if (findFirst(session, std::span(tmpl).first(5), object) != CKR_OK)
        return static_cast<unsigned int>(zv::rv);
    if (object != 0)
        zv::rv = zv::call<&zv::Functions::C_SetAttributeValue>(session, object, &tmpl[5], CK_ULONG{1});
    else
        zv::rv = zv::call<&zv::Functions::C_CreateObject>(session, tmpl, CK_ULONG{6}, &object);
    return static_cast<unsigned int>(zv::rv);
}

unsigned int DeleteDataPendingCNS(unsigned long session, char* label) {
    const std::string_view name = zv::orEmpty(label);
    if (name.size() > MOST_LABEL) return REFUSED;
    CK_ATTRIBUTE tmpl = zv::attribute(CKA_LABEL, name);
    const zv::Walked walked =
        zv::walk({.session = session, .tmpl = {&tmpl, 1}, .exits = {.whenFindFails = zv::Exit::LeftOpen}},
                 [session](CK_OBJECT_HANDLE object) { return destroyIfData(session, object); });
    return static_cast<unsigned int>(walked.code);
}
