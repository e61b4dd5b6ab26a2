/** Inventory. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_INVENTORY_H
#define ZV_ROUTINES_INVENTORY_H

#include "records.h"
#include "zvRenew.h"

#include <string>

extern "C" {

/**
 * Lists the certificates of a card that is not a services card, its pending pair and free identifiers.
 *
 * Records, lists and marks are described at rinnovo_Card_readCerts (zvRenew.h). The first ten certificates
 * that are not the authority's are listed. An attribute that cannot be read keeps what an earlier inventory left
 * in its place (of certificates behind the card's tenth: is empty). Null arguments are skipped, and change
 * nothing in the others.
 *
 * @param[in,out] praList, autList    ZV_LIST_ENTRIES pointers to texts of ZV_LIST_ENTRY_SIZE bytes each,
 *                                    empty before: entry 0 receives the count, entries 1 to n a record each
 * @param[in,out] praRecord, autRecord          work buffers of one record, empty before and afterwards
 * @param[in]     praRecordSize, autRecordSize  their bytes, 4096 at most used
 * @param[out]    praSubject, autSubject        ZVC_DESCRIPTION_SIZE bytes: subject of the last PRA / AUT certificate
 * @param[in]     praSubjectSize, autSubjectSize  not read
 * @param[out]    autId, praId  64 bytes, AUT first: CKA_ID of the last certificate of the kind, without a
 *                              terminator when it has 64 bytes
 * @param[in,out] pendingPRA, pendingAUT  as in Find_ALL_Pending
 * @param[out]    ckaidPRA, ckaidAUT      ZV_KEY_ID_SIZE bytes, as in Find_ALL_Pending
 * @return 0, whatever Find_ALL_Pending gave; -1 a PKCS#11 failure while slot, token or certificates were read
 * After a failure: no argument has been written.
 * Standard: PKCS#11 (C_GetSlotInfo, C_GetTokenInfo, C_FindObjects, C_GetAttributeValue); RFC 5280 (fields);
 * X.520 (attribute types).
 */
ZV_API int NewFind_ALL_CertsKeysRenew(char** praList, char** autList, char* praRecord, long praRecordSize,
                                      char* praSubject, long praSubjectSize, char* autRecord,
                                      long autRecordSize, char* autSubject, long autSubjectSize, char* autId,
                                      char* praId, int* pendingPRA, int* pendingAUT, char* ckaidPRA,
                                      char* ckaidAUT);
/**
 * Finds a pair that waits for its certificate, or proposes identifiers for new pairs.
 *
 * The first pair with a public and a private key and no certificate under its CKA_ID is reported, as AUT when
 * that contains "AUTHCertificate", else as PRA; the card's first keys (digits 0 to 2) are not. A kind that
 * has a certificate on the card and no pending pair gets the first of 3, 4, 5 that no public key has. The
 * identifiers of all objects count, 31 characters of each. Null arguments are skipped, and change nothing in the
 * others.
 *
 * @param[in,out] pendingPRA, pendingAUT  set to 1 for a pending pair, never to 0; a kind whose flag is not 0
 *                                        gets no proposal
 * @param[out]    ckaidPRA, ckaidAUT      ZV_KEY_ID_SIZE bytes: pending identifier, else the proposal, else empty
 * @return 0; 1 a series is full: "DS" is left in ckaidPRA, with AUT not looked at, or "AUTHCertificate" in
 *         ckaidAUT; 65535 a PKCS#11 failure, a CKA_ID of more than 255 bytes or a CKA_VALUE of more than
 *         16,383 included
 * After 65535: both identifiers are empty.
 * Standard: PKCS#11 (C_FindObjects, C_GetAttributeValue).
 */
ZV_API int Find_ALL_Pending(int* pendingPRA, int* pendingAUT, char* ckaidPRA, char* ckaidAUT);
/**
 * Rewrites a name in slash form ("/C=IT/CN=...") to numeric OIDs ("2.5.4.6=IT2.5.4.3=...") in place.
 *
 * @param[in,out] name     4096 bytes; 14 attribute names are known, in letters of any case (X.520, PKCS#9)
 * @param         scratch  not used
 * @return 0
 */
ZV_API int __DescrToOid(char* name, char* scratch);
/**
 * Lists the certificates of a services card that have a private key, its pending pair, marker and expiry
 * date, and free identifiers.
 *
 * As NewFind_ALL_CertsKeysRenew, but: all certificates are matched with all private keys, over 31 characters of
 * their identifiers, and ten of the matched are listed ("CNS0" among them, in the tenth's place if need be);
 * praRecord has 4096 bytes; autRecord, autSubject and autId serve CNS and AUT; an identifier that is neither
 * "DS...", "CNS0..." nor an AUT one is listed as AUT under the identifier that autId holds from before. Logs
 * nothing; Find_ALL_PendingCNS does.
 *
 * @param[in,out] cnsList        as the other lists
 * @param[in,out] autId          64 bytes
 * @param[in]     praRecordSize  not read
 * @param[in,out] pendingPRA, pendingAUT, pendingCNS, ckaidPRA, ckaidAUT, expiry  as in Find_ALL_PendingCNS
 * @param[in]     unused         not read
 * @return 0, whatever Find_ALL_PendingCNS gave; -1 a PKCS#11 failure while slot, token, certificates or keys
 *         were read
 * After a failure: no argument has been written.
 */
ZV_API int NewFind_ALL_CertsKeysRenewCNS(char** cnsList, char** praList, char** autList, char* praRecord,
                                         long praRecordSize, char* praSubject, long praSubjectSize,
                                         char* autRecord, long autRecordSize, char* autSubject,
                                         long autSubjectSize, char* autId, char* praId, int* pendingPRA,
                                         int* pendingAUT, int* pendingCNS, char* ckaidPRA, char* ckaidAUT,
                                         char* expiry, bool unused);
/**
 * Finds a services card's pending pair or free identifiers, its pending marker and its expiry date.
 *
 * Pairs and proposals as in Find_ALL_Pending, among identifiers that begin "DS" or "AUTHCertificate". Sets
 * use2048Bit and force2048PraGen. Logs nothing but the card's personal data ("PDATA") as they are.
 *
 * @param[in,out] pendingPRA, pendingAUT  as in Find_ALL_Pending
 * @param[in,out] pendingCNS              set to 1 when the card has the marker ZV_PENDING_MARKER; may be null
 * @param[out]    ckaidPRA, ckaidAUT      ZV_KEY_ID_SIZE bytes, as in Find_ALL_Pending
 * @param[out]    expiry                  9 bytes, as in getDtScadenza; may be null
 * @param[in]     unused                  not read
 * @return 0 and 1 as Find_ALL_Pending; 65535 a PKCS#11 failure, a CKA_ID or CKA_LABEL of more than 255 bytes
 *         and personal data that cannot be read included
 * After 65535: both identifiers are empty; pendingCNS and expiry may have been written, the two flags of
 * zvRenew.h not.
 */
ZV_API int Find_ALL_PendingCNS(int* pendingPRA, int* pendingAUT, int* pendingCNS, char* ckaidPRA,
                               char* ckaidAUT, char* expiry, bool unused);
/**
 * Rewrites a services card's name as __DescrToOid does, with the common name last.
 *
 * What follows the common name within its first 62 characters stays in it as it was; 511 characters of what
 * comes behind those are rewritten and kept.
 *
 * @param[in,out] name     4096 bytes
 * @param         scratch  not used
 * @return 0; 1 without a common name, and name stays as it is
 */
ZV_API int __DescrToOidCNS(char* name, char* scratch);
/**
 * Takes the expiry date (8 characters) out of a services card's personal data.
 *
 * @param[in]  pdata  the text; null is empty
 * @param[out] out    9 bytes; stays as it is when the text holds no date. May be null
 */
ZV_API void getDtScadenza(char* pdata, char* out);
/**
 * Finds the identifiers for a new PRA and a new AUT pair: a pending one of the kind, else a free one.
 *
 * Pending and free as in Find_ALL_Pending, but both kinds are served, whatever the card holds. Sets
 * use2048Bit and force2048PraGen. Logs nothing.
 *
 * @param[out] keyPRA, keyAUT  ZV_KEY_ID_SIZE bytes each; may be null
 * @param[in]  unused          not read
 * @return 0; 1 a series is full: "DS" is left in keyPRA, with keyAUT a pending identifier or empty, or
 *         "AUTHCertificate" in keyAUT; -1 what Find_ALL_Pending calls 65535
 * After -1: both are empty, use2048Bit is false, force2048PraGen true.
 */
ZV_API int findFreeCKAID(char* keyPRA, char* keyAUT, bool unused);
/**
 * Returns true when one of the ten records of table equals id; null is an empty id; a null table has none.
 */
ZV_API bool presente(const ckaid* table, const char* id);
/**
 * Lists every object of the card, a line each, in a session of its own.
 *
 * A line is class, CKA_ID (30 bytes), CKA_LABEL (64 bytes), modulus and serial number in hexadecimal, joined
 * by ",". An open session is to be closed before.
 *
 * Classes beyond private keys are counted, but have no line. A certificate whose texts or value are longer
 * than those of the one before it has its class alone; of a modulus the first 256 bytes are shown.
 *
 * @param[in]  libPath, pin, slot  as in __Initialize
 * @param[out] out                 the listing
 * @return 0, also when the listing stopped early; the result of __Initialize (low 32 bits)
 * After a failure, as after success: everything is closed (finalizza). out holds what was read, or is
 * untouched when not even the token's serial number was.
 * Standard: PKCS#11 (C_GetTokenInfo, C_FindObjects, C_GetAttributeValue).
 */
ZV_API int renewDump(char* libPath, char* pin, int slot, std::string& out);
/**
 * Describes every object of the card, a line each, and tells whether a pending key is among them.
 *
 * Pending is a public key whose CKA_LABEL equals the pending label, and a private key whose CKA_LABEL begins
 * with "pending_".
 *
 * @param[in]     unusedSession  not read
 * @param[in,out] text           1536 bytes, appended to; whole lines (ended by CR LF) only, as many as fit
 * @return 0 no objects; 2 objects, no pending key; 3 a pending key and fewer than three objects; 4 a pending
 *         key and three or more; 1 a PKCS#11 failure
 * After a failure: the lines written so far stay.
 * Standard: PKCS#11 (C_FindObjects, C_GetAttributeValue).
 */
ZV_API int FindAllObjects(unsigned long unusedSession, char* text);
/**
 * Returns 1 when text has digits where a codice fiscale has them, and only there (the last five characters
 * are not looked at), or is not 16 characters long (null included); else 0.
 */
ZV_API int isCodFisc(char* text);

} // extern "C"

#endif
