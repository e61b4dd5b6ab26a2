#ifndef ZV_STORE_OBJECTS_H
#define ZV_STORE_OBJECTS_H

#include <cstddef>
#include <string_view>

#include "pkcs11.h"

/**
 * Silent reads of the card's objects, one object and one attribute at a time, for routines with log entries
 * of their own. Each leaves the PKCS#11 result in zv::rv.
 */
namespace zv {

inline constexpr char SEARCH_ERROR[] = "Errore nella ricerca degli oggetti presenti sulla smartcard (%s)";

CK_RV startSearch(CK_SESSION_HANDLE session, CK_ATTRIBUTE* tmpl = nullptr, CK_ULONG count = 0);

/** Asks for one object; count is 1, or 0 when none is left. */
CK_RV nextObject(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE& object, CK_ULONG& count);

CK_RV endSearch(CK_SESSION_HANDLE session);

/** Looks at what a call of the open search found: more than it asked for, or objects without end, is CKR_GENERAL_ERROR. */
[[nodiscard]] CK_RV checkFound(CK_ULONG found, CK_ULONG asked);

/** Ends an open search when left, unless it was ended or is to stay open. Leaves zv::rv alone. */
class SearchGuard {
  public:
    explicit SearchGuard(CK_SESSION_HANDLE session) : session_(session) {}
    SearchGuard(const SearchGuard&) = delete;
    SearchGuard& operator=(const SearchGuard&) = delete;
    ~SearchGuard();
    void dismiss() { armed_ = false; }

  private:
    CK_SESSION_HANDLE session_;
    bool armed_ = true;
};

/**
 * Reads one attribute into a buffer, cleared first. length is what the module gave, never more than size, and
 * 0 after a failure.
 */
CK_RV readAttribute(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, void* buffer,
                    std::size_t size, std::size_t& length);

/** readAttribute for bytes that are of no use cut: a length above the room is CKR_BUFFER_TOO_SMALL. */
CK_RV readWhole(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, void* buffer,
                std::size_t size, std::size_t& length);

/** Reads a number, such as a class; 0 after a failure, all ones when the module says that it gave it and did not. */
CK_RV readNumber(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                 CK_ULONG& number);

/** Reads a text of at most N - 1 bytes. */
template <std::size_t N>
CK_RV readText(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, char (&text)[N]) {
    std::size_t length = 0;
    const CK_RV result = readAttribute(session, object, type, text, N - 1, length);
    text[length] = '\0';
    return result;
}

/** True for a result after which an object is still worth looking at: it lacks the attribute, or hides it. */
[[nodiscard]] bool isTolerated(CK_RV result);

/**
 * FindAnObject, which gives all ones also when its search failed: none is true only after a search that worked
 * and found nothing.
 */
[[nodiscard]] unsigned long findOne(CK_SESSION_HANDLE session, CK_ATTRIBUTE* tmpl, CK_ULONG count,
                                    CK_OBJECT_HANDLE* object, bool& none);

/** A template entry over the caller's bytes, which a module only reads. */
[[nodiscard]] CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, const void* value, std::size_t length);
[[nodiscard]] CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, std::string_view text);

/** A template entry over a number or a truth value. */
template <typename Value> CK_ATTRIBUTE attributeOf(CK_ATTRIBUTE_TYPE type, const Value& value) {
    return attribute(type, &value, sizeof value);
}

CK_RV destroyObject(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object);

/** Gives an object one text as CKA_ID and CKA_LABEL. */
CK_RV relabelObject(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, std::string_view text);

} // namespace zv

#endif
