// The traced calls: each records itself and its outcome in the log.
#include <algorithm>
#include <array>
#include <cstddef>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"

namespace {

constexpr unsigned long NONE = ~0UL;
// Most entries of a template whose lengths are checked after a read.
constexpr std::size_t MOST_ENTRIES = 16;

CK_RV reported(char* title, const char* step, CK_RV result, const char* format) {
    zv::rv = result;
    if (result != CKR_OK) zv::reportFailure(title, step, result, format);
    return result;
}

} // namespace

CK_RV FindObjectsInit(void*, char* title, unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count) {
    zv::trace(title, "C_FindObjectsInit", CatItoAHex1("hSession = ", static_cast<int>(session)));
    // A failed start has no entry with the step and the code, unlike the calls below.
    if (zv::startSearch(session, tmpl, count) != CKR_OK) zv::reportSentence(zv::SEARCH_ERROR, zv::rv);
    return zv::rv;
}

CK_RV FindObjects(void*, char* title, unsigned long session, unsigned long* handles, unsigned long maxCount,
                  unsigned long* found) {
    zv::traceSession(title, "C_FindObjects", session);
    CK_RV result = zv::call<&zv::Functions::C_FindObjects>(session, handles, maxCount, found);
    if (result == CKR_OK) result = zv::checkFound(*found, maxCount);
    return reported(title, "C_FindObjects", result, zv::SEARCH_ERROR);
}

CK_RV FindObjectsFinal(void*, char* title, unsigned long session) {
    zv::traceSession(title, "C_FindObjectsFinal", session);
    return reported(title, "C_FindObjectsFinal", zv::call<&zv::Functions::C_FindObjectsFinal>(session),
                    zv::SEARCH_ERROR);
}

CK_RV GetAttributeValue(void*, char* title, unsigned long session, unsigned long object, CK_ATTRIBUTE* tmpl,
                        unsigned long count) {
    zv::traceSession(title, "C_GetAttributeValue", session);
    std::array<CK_ULONG, MOST_ENTRIES> room{};
    const std::size_t entries = tmpl != nullptr ? std::min<std::size_t>(count, room.size()) : 0;
    for (std::size_t i = 0; i < entries; ++i)
        room[i] = tmpl[i].ulValueLen;
    CK_RV result = zv::call<&zv::Functions::C_GetAttributeValue>(session, object, tmpl, count);
    for (std::size_t i = 0; result == CKR_OK && i < entries; ++i)
        if (tmpl[i].pValue != nullptr && tmpl[i].ulValueLen > room[i]) result = CKR_BUFFER_TOO_SMALL;
    return reported(title, "C_GetAttributeValue", result, "Errore nella lettura chiave sulla smartcard (%s)");
}

unsigned long zv::findOne(CK_SESSION_HANDLE session, CK_ATTRIBUTE* tmpl, CK_ULONG count,
                          CK_OBJECT_HANDLE* object, bool& none) {
    none = false;
    static char title[] = " .... FindAnObject FUN               .... ";
    zv::traceSession(title, "C_FindObjectsInit", session);
    if (zv::startSearch(session, tmpl, count) != CKR_OK) {
        zv::reportSentence(zv::SEARCH_ERROR, zv::rv);
        return zv::rv;
    }
    unsigned long found = 0;
    unsigned long result = FindObjects(nullptr, title, session, object, 1, &found);
    const bool nothing = result == CKR_OK && found == 0;
    if (nothing) result = NONE;
    if (result == CKR_OK) {
        CK_OBJECT_CLASS objectClass = 0;
        CK_ATTRIBUTE entry = zv::attributeOf(CKA_CLASS, objectClass);
        result = GetAttributeValue(nullptr, title, session, *object, &entry, 1);
    }
    if (FindObjectsFinal(nullptr, title, session) != CKR_OK) return NONE;
    none = nothing;
    return result;
}

unsigned long FindAnObject(unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count,
                           unsigned long* object) {
    bool none = false;
    return zv::findOne(session, tmpl, count, object, none);
}
