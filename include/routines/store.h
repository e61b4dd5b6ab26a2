/** Token objects. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_STORE_H
#define ZV_ROUTINES_STORE_H

#include "pkcs11.h"
#include "zvRenew.h"

extern "C" {

/**
 * Starts a search (C_FindObjectsInit).
 *
 * @param[in] title    title of the log entries
 * @param[in] session  session handle
 * @param[in] tmpl     attributes that an object must have; null for every object
 * @param[in] count    entries of tmpl
 * @return the PKCS#11 result
 * After a failure: the search is not open; the log has the sentence, but not the step and its code.
 */
ZV_API CK_RV FindObjectsInit(void*, char* title, unsigned long session, CK_ATTRIBUTE* tmpl,
                             unsigned long count);
/**
 * Goes on with a search (C_FindObjects).
 *
 * @param[in]  title     title of the log entries
 * @param[in]  session   session handle
 * @param[out] handles   room for maxCount handles
 * @param[in]  maxCount  handles asked for
 * @param[out] found     handles given; 0 when none is left
 * @return the PKCS#11 result; CKR_GENERAL_ERROR when the module claims more than maxCount, or has given more
 *         than 4096 objects in the search that was started last
 * After a failure: the search stays open; handles and found hold what the module wrote.
 */
ZV_API CK_RV FindObjects(void*, char* title, unsigned long session, unsigned long* handles,
                         unsigned long maxCount, unsigned long* found);
/**
 * Ends a search (C_FindObjectsFinal).
 *
 * @param[in] title    title of the log entries
 * @param[in] session  session handle
 * @return the PKCS#11 result
 * After a failure: the search is open or not, as the module left it.
 */
ZV_API CK_RV FindObjectsFinal(void*, char* title, unsigned long session);
/**
 * Reads attributes of an object (C_GetAttributeValue).
 *
 * @param[in]     title    title of the log entries
 * @param[in]     session  session handle
 * @param[in]     object   object handle
 * @param[in,out] tmpl     types, buffers and their bytes; then the values and their bytes
 * @param[in]     count    entries of tmpl
 * @return the PKCS#11 result; CKR_BUFFER_TOO_SMALL also when the module claims success and, in one of the
 *         first 16 entries, a length above the one given
 * After a failure: values and lengths are as the module left them.
 */
ZV_API CK_RV GetAttributeValue(void*, char* title, unsigned long session, unsigned long object,
                               CK_ATTRIBUTE* tmpl, unsigned long count);
/**
 * Finds the first object that matches, and reads its class to see that it is there.
 *
 * @param[in]  session  session handle
 * @param[in]  tmpl     attributes that the object must have
 * @param[in]  count    entries of tmpl
 * @param[out] object   its handle
 * @return 0; all ones when none matches or the search cannot be closed; else the PKCS#11 result
 * After a failure: *object may have been written all the same, when the class could not be read or the search
 * not be closed.
 * Standard: PKCS#11 (C_FindObjectsInit, C_FindObjects, C_GetAttributeValue, C_FindObjectsFinal).
 */
ZV_API unsigned long FindAnObject(unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count,
                                  unsigned long* object);

/**
 * Destroys the first object of a class with an identifier (C_DestroyObject).
 *
 * @param[in] session   session handle
 * @param[in] objClass  CKO_...
 * @param[in] id        CKA_ID, whole; null is empty
 * @return 0; 0xFFFFFFFF when FindAnObject gave all ones; else the PKCS#11 result (low 32 bits)
 * After a failure: the object, if there is one, is still on the card.
 */
ZV_API unsigned int DeleteAnObject(unsigned long session, unsigned long objClass, char* id);
/**
 * Destroys every object whose CKA_ID contains a text, whatever its class (C_DestroyObject).
 *
 * An object that cannot be destroyed is logged, and the next one looked at. One whose class the module does
 * not give counts as data.
 *
 * @param[in] session  session handle
 * @param[in] text     part of the identifiers; null and empty match all
 * @return 0, also when objects could not be destroyed; 1 when the search failed, or the CKA_ID of an object
 *         other than data cannot be read or has more than 256 bytes
 * After a failure: what was destroyed before it is gone.
 */
ZV_API int DeleteObjectByLabel(unsigned long session, char* text);
/** Logs, then DeleteObjectByLabel, with its results and failures. `kind` is not read. */
ZV_API int DeleteCertAndKeys(unsigned long session, char* text, char* kind);
/** Destroys the certificate ZV_OWN_PAIR; its keys stay. Results and failures as DeleteAnObject. */
ZV_API unsigned int DeleteCertCNS(unsigned long session);
/**
 * Logs kind (null is empty) and destroys the certificate whose CKA_ID is id, whole. Results and failures as
 * DeleteAnObject.
 */
ZV_API unsigned int DeleteCertCA(unsigned long session, char* id, char* kind);
/**
 * Destroys every object whose CKA_LABEL begins with "pending_" (C_DestroyObject).
 *
 * No caller inside the library. Each destroyed object is followed by a new search. A label that is hidden or
 * missing counts as empty.
 *
 * @return 0; 1 when a call failed, a label of more than 8192 bytes included, or an object is found again after it
 *         was destroyed
 * After a success: the last search is left open. After a failure: it is closed; what was destroyed is gone.
 */
ZV_API int DeleteAllPending(void*);
/**
 * Destroys public and private key whose CKA_ID equals the pending label, then opens the session anew.
 *
 * @param[in] library, pin, slotIndex  as in inizializza
 * @return 0; 1 at the first failure, a missing key included
 * After a failed deletion: the session stays as it was; the public key, which comes first, is perhaps gone.
 * After a failed inizializza: both keys are gone, and what it opened stays open until finalizza.
 * Standard: PKCS#11 (C_DestroyObject).
 */
ZV_API int DeleteAllPending32(char* library, char* pin, unsigned int slotIndex, void*);

/**
 * Finds the pending pair: the last private and the last public key whose CKA_ID contains the pending label.
 *
 * An empty pending label matches every key. The two handles go to variables of the library, cleared first,
 * from which requests and installing take them.
 *
 * @param[in] reportMissing  true logs a sentence when there is no private key
 * @return 0; 100 no private key (a public one found is kept); 1 a PKCS#11 failure, a key whose CKA_ID has
 *         more than 255 bytes included
 * After a failure: the handles found so far stay set. C_FindObjects, when it fails, leaves its search open.
 * Standard: PKCS#11 (C_FindObjects, C_GetAttributeValue).
 */
ZV_API int CheckPendingKeys(void*, bool reportMissing);
/**
 * Writes a data object on the card, or a new value into the one with the same label and flags. Logs nothing.
 *
 * An object that may not be modified keeps its value where the module refuses the change; the refusal
 * (CKR_ACTION_PROHIBITED, CKR_ATTRIBUTE_READ_ONLY) is the result. On a module that reports other flags than
 * it was given, a second object is created.
 *
 * @param[in] session     session handle
 * @param[in] label       CKA_LABEL, at most 64 characters; null is empty
 * @param[in] value       CKA_VALUE, 1 to 2048 characters
 * @param[in] unused      not read
 * @param[in] modifiable  CKA_MODIFIABLE
 * @param[in] isPrivate   CKA_PRIVATE
 * @return 0; 0xFFFFFFFF label or value out of range (the card is not asked); the PKCS#11 result (low 32 bits)
 * After a failure: nothing was written.
 * Standard: PKCS#11 (C_CreateObject, C_SetAttributeValue).
 */
ZV_API unsigned int DataStore(unsigned long session, const char* label, const char* value, const char* unused,
                              bool modifiable, bool isPrivate);
/**
 * Destroys the first data object with a label (C_DestroyObject); other classes are passed over. Logs nothing.
 *
 * @param[in] session  session handle
 * @param[in] label    CKA_LABEL, at most 64 characters; null is empty
 * @return 0, also when there is none, it could not be destroyed or a class could not be read; 0xFFFFFFFF
 *         label out of range (the card is not asked); the PKCS#11 result of the search (low 32 bits)
 * After a failure: C_FindObjects leaves its search open.
 */
ZV_API unsigned int DeleteDataPendingCNS(unsigned long session, char* label);

} // extern "C"

#endif
