/**
 * Every exported routine below the entry points of zvRenew.h, for hosts and tests that drive single steps.
 * C++; C linkage.
 *
 * Conventions
 *
 *  1. Texts are NUL-terminated; buffers belong to the caller. A helper that returns a pointer into a buffer
 *     of the process says so: the text is valid until the next helper that shares the buffer.
 *  2. Card routines work on the session that __Initialize or inizializza opened and leave the PKCS#11 result
 *     of their last call in a variable of the library. A `void*` first argument is not read.
 *  3. "Logged" means written to the user's log (getLogPath). A sentence for a person stands there under
 *     "Messaggio di Errore".
 *  4. Null is taken only where it is stated.
 *  5. PKCS#11 results and attributes are those of pkcs11.h (PKCS#11 version 2).
 */
#ifndef ZV_ROUTINES_H
#define ZV_ROUTINES_H

#include <cstdarg>
#include <string>

#include "pkcs11.h"
#include "records.h"
#include "zvCrypt.h"
#include "zvRenew.h"

extern "C" {

/* ---- Text and number helpers (util/)
 * ------------------------------------------------------------------------------ */

/** Result of ItoA and LtoA, scratch of CatItoA and CatLtoA. */
extern ZV_API char ILtoAbuff[32];
/** Result of ItoAHex and LtoAHex, scratch of the other "Hex" helpers. */
extern ZV_API char ILtoAbuffHex[32];
/** Result of CatItoA and CatLtoA. */
extern ZV_API char CatILtoAbuff[128];
/** Result of CatItoAHex1 and CatLtoAHex1. */
extern ZV_API char CatILtoAbuffHex1[128];
/** Result of CatItoAHex2 and CatLtoAHex2. */
extern ZV_API char CatILtoAbuffHex2[128];
/** Result of CatSZtoSZ. */
extern ZV_API char CatSZtoSZbuff[256];
/** Results of X1, X2 and X3. */
extern ZV_API char x1[32], x2[32], x3[32];

/** Writes value in decimal into buffer (12 characters of room; radix is not read). Returns buffer. */
ZV_API char* _itoa(int value, char* buffer, int radix);
/** Writes value in decimal into buffer (21 characters of room; radix is not read). Returns buffer. */
ZV_API char* _ltoa(long value, char* buffer, int radix);
/** Upper-cases text in place, byte by byte. Returns text; null stays null. */
ZV_API char* _strupr(char* text);
/** Lower-cases text in place, byte by byte. Returns text; null stays null. */
ZV_API char* _strlwr(char* text);
/** Removes trailing blanks (the space only) in place. Returns text; null stays null. */
ZV_API char* RTrim(char* text);
/** Removes leading blanks in place. Returns text; null stays null. */
ZV_API char* LTrim(char* text);
/** RTrim, then LTrim. */
ZV_API char* AllTrim(char* text);
/** Replaces every "," by "." in place. Returns text; null stays null. */
ZV_API char* VirgolaToPunto(char* text);
/** Replaces every "+" by a blank, then decodes with UnEscape, in place. Returns text; null stays null. */
ZV_API char* Converte(char* text);
/** Returns ILtoAbuff with value in decimal. */
ZV_API char* ItoA(int value);
/** Returns ILtoAbuff with value in decimal. */
ZV_API char* LtoA(long value);
/** Returns ILtoAbuffHex with value in decimal digits, without a prefix. */
ZV_API char* ItoAHex(int value);
/** Returns ILtoAbuffHex with value in decimal digits, without a prefix. */
ZV_API char* LtoAHex(long value);
/** Returns CatILtoAbuff: prefix (cut to fit 127 characters in all), then value in decimal. */
ZV_API char* CatItoA(const char* prefix, int value);
/** Returns CatILtoAbuff: prefix (cut to fit 127 characters in all), then value in decimal. */
ZV_API char* CatLtoA(const char* prefix, long value);
/**
 * Writes prefix, "0x" and the decimal digits of value into destination (the prefix and 14 characters of
 * room). Returns it.
 */
ZV_API char* CatItoAHex(char* destination, const char* prefix, int value);
/**
 * Writes prefix, "0x" and the decimal digits of value into destination (the prefix and 23 characters of
 * room). Returns it.
 */
ZV_API char* CatLtoAHex(char* destination, const char* prefix, long value);
/** Returns CatILtoAbuffHex1: prefix (cut to fit 127 characters in all), "0x", the decimal digits of value. */
ZV_API char* CatItoAHex1(const char* prefix, int value);
/** Returns CatILtoAbuffHex1: prefix (cut to fit 127 characters in all), "0x", the decimal digits of value. */
ZV_API char* CatLtoAHex1(const char* prefix, long value);
/** Returns CatILtoAbuffHex2, otherwise as CatItoAHex1: an entry with two such values needs both. */
ZV_API char* CatItoAHex2(const char* prefix, int value);
/** Returns CatILtoAbuffHex2, otherwise as CatLtoAHex1. */
ZV_API char* CatLtoAHex2(const char* prefix, long value);
/** Returns CatSZtoSZbuff: first, then second, cut to 255 characters. */
ZV_API char* CatSZtoSZ(const char* first, const char* second);
/** Finds needle in haystack whatever the case of the letters. Returns the place in haystack, or null. */
ZV_API char* strstrICase(const char* haystack, const char* needle);
/** Returns length less the zero bytes at the end of buffer; a length below 1 is returned as it is. */
ZV_API int HexLen(char* buffer, int length);
/**
 * Decodes "%" and two hexadecimal digits to one byte each; a percent sign without two characters after it is
 * copied as it stands.
 * @return a text that the caller frees with free(); null for null or without memory
 */
ZV_API char* UnEscape(char* text);
/**
 * Finds the value of a named field in a text of name and value pairs.
 *
 * @param[in]  text            the pairs
 * @param[in]  name            the field's name
 * @param[out] output          the value without blanks around it; as many characters of room as text has, and
 *                             one
 * @param[in]  pairSeparator   text between pairs
 * @param[in]  valueSeparator  text between a name and its value
 * @return 0; -1 no such field or a null argument; -4 a field start without a value separator behind it
 */
ZV_API int NWGetOpt(char* text, char* name, char* output, char* pairSeparator, char* valueSeparator);
/**
 * NWGetOpt for the form "a=1&b=2", the value decoded ("+" and percent signs). Always 0; a missing field
 * leaves output empty.
 */
ZV_API int Valore(char* text, char* name, char* output);
/** Returns a date DD?MM?YYYY as the number YYYYMMDD; 0 for an empty text. */
ZV_API long DataToLong(char* date);
/**
 * Writes n x 28 + 13579 in decimal into output (21 characters of room), n the number in text; empty for an
 * empty text.
 */
ZV_API char* XX(char* text, char* output);
/** As XX, into x1. */
ZV_API char* X1(char* text);
/** As XX, into x2. */
ZV_API char* X2(char* text);
/** As XX, into x3. */
ZV_API char* X3(char* text);

/* ---- Log (diag/)
 * -------------------------------------------------------------------------------------------------- */

/**
 * Returns the log's path, a buffer of 513 characters of the process, computed on the first call from the user
 * database.
 */
ZV_API char* getLogPath(void);
/**
 * Appends one line with the time in brackets; null and empty become "MESSAGGIO VUOTO!". A log of more than 1
 * MiB is emptied first. A log that cannot be opened, or is a link, is left alone without a word.
 */
ZV_API void scriviLog(const char* message);
/**
 * Appends a title line with the time, then up to two data lines; never empties the log.
 *
 * @param[in] title         text of the title line
 * @param[in] data1, data2  a datum; null writes nothing
 * @param[in] len1, len2    0: the datum is a text; positive: exactly that many raw bytes; negative: an empty
 *                          line
 */
ZV_API void WriteLog(const char* title, const char* data1, int len1, const char* data2, int len2);
/** WriteLog, for entries that report an error. */
ZV_API void WriteErr(const char* title, const char* data1, int len1, const char* data2, int len2);
/** Logs the fields of a distinguished name. No caller inside the library. */
ZV_API void LogDN(datiDN* dn);
/** Logs the certificate label and the pending label of a request. No caller inside the library. */
ZV_API void LogLabels(REQRENIN* request);

/* ---- Card, module and session (card/)
 * ------------------------------------------------------------------------------ */

/**
 * Finds the reader, the module that serves its card, the slot, the kind of card and its serial number.
 *
 * @param[out] isTouchSign  set to true for a touch-sign card, never to false
 * @param[in]  reader       reader to use; null: the first of the list
 * @return 0 (also when there is no reader: no module is selected then); 100 unknown card or serial number
 *         "1201..."; -1 no slot; a code of the crypto library, whose session stays open when the card's data
 *         cannot be read
 */
ZV_API int CheckSmartCard(bool& isTouchSign, char* reader);
/**
 * Loads the module, finds the slot whose description is contained in readerName, and unloads it again.
 * @return the slot's identifier; 0xFFFFFFFF when there is none or the module cannot be used
 */
ZV_API unsigned int getSlot(char* readerName, char* libPath);
/**
 * Loads the module, opens a read/write session on a slot identifier and logs the user in (an empty PIN too).
 * Tolerates a module that is initialised already and a user who is logged in already; closes nothing first.
 *
 * @return 0; all ones when the module cannot be used; else the PKCS#11 result
 * After a failure: what was opened stays open until finalizza.
 */
ZV_API CK_RV __Initialize(int slot, char* pin, char* libPath);
/**
 * Closes what is open, loads the module, opens a read/write session on the slot with that index (0 to 7,
 * every reader counted) and logs in unless the PIN is empty.
 *
 * @param[in] reserved  not read
 * @param[in] userType  CKU_USER
 * @return 0; 1 with the text for the user in szSockMsg and in the log; 2 wrong PIN, szSockMsg unchanged
 * After a failure: what was opened stays open until finalizza.
 */
ZV_API int inizializza(char* libPath, char* pin, unsigned int slotIndex, void* reserved, int userType);
/** Logs out, closes the session, finalises and unloads the module; harmless when nothing is open. */
ZV_API void finalizza(void);

/* ---- Token objects (store/)
 * ----------------------------------------------------------------------------------------- */

/** C_FindObjectsInit, traced under title; a failure logs the sentence only. Returns the PKCS#11 result. */
ZV_API CK_RV FindObjectsInit(void*, char* title, unsigned long session, CK_ATTRIBUTE* tmpl,
                             unsigned long count);
/**
 * C_FindObjects, traced under title. Returns the PKCS#11 result; CKR_GENERAL_ERROR when the module claims to
 * have found more than maxCount.
 */
ZV_API CK_RV FindObjects(void*, char* title, unsigned long session, unsigned long* handles,
                         unsigned long maxCount, unsigned long* found);
/** C_FindObjectsFinal, traced under title. Returns the PKCS#11 result. */
ZV_API CK_RV FindObjectsFinal(void*, char* title, unsigned long session);
/**
 * C_GetAttributeValue, traced under title. Returns the PKCS#11 result; CKR_BUFFER_TOO_SMALL when the module
 * claims a length above the one given (in the first 16 entries).
 */
ZV_API CK_RV GetAttributeValue(void*, char* title, unsigned long session, unsigned long object,
                               CK_ATTRIBUTE* tmpl, unsigned long count);
/**
 * Finds the first object that matches. Returns 0; all ones when none does or the search cannot be closed; a
 * PKCS#11 result.
 */
ZV_API unsigned long FindAnObject(unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count,
                                  unsigned long* object);

/**
 * Destroys the first object of the class whose CKA_ID equals id. Returns 0; 0xFFFFFFFF none; a PKCS#11
 * result.
 */
ZV_API unsigned int DeleteAnObject(unsigned long session, unsigned long objClass, char* id);
/**
 * Destroys every object whose CKA_ID contains text, of any class; an empty text matches all.
 * @return 0, also when a destroy failed; 1 when the search failed or an object other than data has no
 *         readable CKA_ID
 */
ZV_API int DeleteObjectByLabel(unsigned long session, char* text);
/** Logs, then DeleteObjectByLabel. `kind` is not read. */
ZV_API int DeleteCertAndKeys(unsigned long session, char* text, char* kind);
/** Destroys the certificate "CNS0". Returns as DeleteAnObject. */
ZV_API unsigned int DeleteCertCNS(unsigned long session);
/** Destroys the certificate id. Returns as DeleteAnObject. */
ZV_API unsigned int DeleteCertCA(unsigned long session, char* id, char* kind);
/**
 * Destroys every object whose CKA_LABEL begins with "pending_". No caller inside the library; after a success
 * its last search is left open.
 * @return 0; 1 on a failure
 */
ZV_API int DeleteAllPending(void*);
/**
 * Destroys the pending public and private key (identifier equal to the pending label), then opens the session
 * anew.
 * @param[in] slotIndex  as in inizializza
 * @return 0; 1 at the first failure
 */
ZV_API int DeleteAllPending32(char* library, char* pin, unsigned int slotIndex, void*);

/**
 * Finds the pending pair: the last private and the last public key whose CKA_ID contains the pending label.
 * @param[in] reportMissing  log a sentence when there is none
 * @return 0; 100 no private key; 1 a PKCS#11 failure
 */
ZV_API int CheckPendingKeys(void*, bool reportMissing);
/**
 * Writes a data object, or the value of the one with the same label and flags.
 * @param[in] label  at most 64 characters
 * @param[in] value  1 to 2048 characters
 * @return 0; 0xFFFFFFFF label or value out of range (the card is not touched); a PKCS#11 result
 */
ZV_API unsigned int DataStore(unsigned long session, const char* label, const char* value, const char* unused,
                              bool modifiable, bool isPrivate);
/**
 * Destroys the first data object with that label (at most 64 characters, else 0xFFFFFFFF). Returns the
 * search's PKCS#11 result.
 */
ZV_API unsigned int DeleteDataPendingCNS(unsigned long session, char* label);

/* ---- Inventory (inventory/)
 * ------------------------------------------------------------------------------------------ */

/**
 * Lists the certificates of a card that is not a services card, its pending pair and free identifiers; see
 * rinnovo_Card_readCerts for the lists.
 *
 * @param praRecord, autRecord    empty work buffers of praRecordSize and autRecordSize bytes, one record each
 * @param praSubject, autSubject  2048 bytes: description of the last PRA / AUT certificate
 * @param autId, praId            64 bytes: identifier of the last AUT / PRA certificate
 * @param pendingPRA, pendingAUT  set to 1, never to 0
 * @param ckaidPRA, ckaidAUT      32 bytes: pending or free identifier
 * @return 0; -1 on a PKCS#11 failure (records already written stay, counts are not written)
 */
ZV_API int NewFind_ALL_CertsKeysRenew(char** praList, char** autList, char* praRecord, long praRecordSize,
                                      char* praSubject, long praSubjectSize, char* autRecord,
                                      long autRecordSize, char* autSubject, long autSubjectSize, char* autId,
                                      char* praId, int* pendingPRA, int* pendingAUT, char* ckaidPRA,
                                      char* ckaidAUT);
/** Pending pair or free identifiers. Returns 0; 65535 on a PKCS#11 failure; 1 when a series is full. */
ZV_API int Find_ALL_Pending(int* pendingPRA, int* pendingAUT, char* ckaidPRA, char* ckaidAUT);
/**
 * Rewrites "/CN=..." names to numeric OIDs in place; name and scratch have 4096 characters of room, what goes
 * past is cut. Returns 0.
 */
ZV_API int __DescrToOid(char* name, char* scratch);
/**
 * The same for a services card: lists only certificates with a private key; expiry is 9 bytes of room for the
 * card's expiry date.
 */
ZV_API int NewFind_ALL_CertsKeysRenewCNS(char** cnsList, char** praList, char** autList, char* praRecord,
                                         long praRecordSize, char* praSubject, long praSubjectSize,
                                         char* autRecord, long autRecordSize, char* autSubject,
                                         long autSubjectSize, char* autId, char* praId, int* pendingPRA,
                                         int* pendingAUT, int* pendingCNS, char* ckaidPRA, char* ckaidAUT,
                                         char* expiry, bool unused);
/**
 * Pending pair, pending marker, expiry date or free identifiers of a services card. Returns as
 * Find_ALL_Pending.
 */
ZV_API int Find_ALL_PendingCNS(int* pendingPRA, int* pendingAUT, int* pendingCNS, char* ckaidPRA,
                               char* ckaidAUT, char* expiry, bool unused);
/** __DescrToOid for a services card: the common name goes last. Returns 0; 1 without a common name. */
ZV_API int __DescrToOidCNS(char* name, char* scratch);
/**
 * Takes the expiry date (8 characters) out of the card's personal data; out, of 9 bytes, stays as it is when
 * there is none.
 */
ZV_API void getDtScadenza(char* pdata, char* out);
/**
 * Pending or free identifiers of both kinds.
 * @param[out] keyPRA, keyAUT  32 bytes each
 * @return 0; 1 when a series is full; -1 on a PKCS#11 failure
 */
ZV_API int findFreeCKAID(char* keyPRA, char* keyAUT, bool unused);
/** True when one of the ten records of table equals id. */
ZV_API bool presente(const ckaid* table, const char* id);
/**
 * Lists every object of the card, one line each, in a session of its own that is closed again.
 * @param[out] out  the listing; a listing that stops early holds what was read
 * @return 0; the result of __Initialize when the session cannot be opened
 */
ZV_API int renewDump(char* libPath, char* pin, int slot, std::string& out);
/**
 * Describes every object of the card, one line each.
 * @param[in,out] text  1536 bytes, appended to; whole lines only, as many as fit
 * @return 0 no objects; 2 objects, no pending key; 3 a pending key and fewer than three objects; 4 a pending
 *         key and three or more; 1 on a PKCS#11 failure
 */
ZV_API int FindAllObjects(unsigned long unusedSession, char* text);
/** Returns 1 when text has the shape of a codice fiscale, or is not 16 characters long; else 0. */
ZV_API int isCodFisc(char* text);

/* ---- Request (request/)
 * ---------------------------------------------------------------------------------------------- */

/** New piece of size bytes (X.690), the first copyLength of them copied from src. Null without memory. */
ZV_API ADATA* CreateADATA(unsigned char* src, unsigned long size, unsigned long copyLength);
/** New piece: first, then second; both are released. Null counts as an empty piece. */
ZV_API ADATA* ConcatenateADATA(ADATA* first, ADATA* second);
/** New piece: tag, length, and the pieces up to the first null of the list; they are released. */
ZV_API ADATA* ConstructADATA(unsigned char tag, ADATA* first, va_list list);
/** ConstructADATA with the pieces as arguments, a null pointer last. */
ZV_API ADATA* var_tlv(unsigned char tag, ADATA* first, ...);
/** var_tlv with the tag of a SET (0x31). */
ZV_API ADATA* SET(ADATA* first, ...);
/** var_tlv with the tag of a SEQUENCE (0x30). */
ZV_API ADATA* SEQUENCE(ADATA* first, ...);
/** INTEGER of big-endian bytes, a zero byte in front when the top bit is set; leading zeros stay. */
ZV_API ADATA* _INTEGER(unsigned char* bytes, unsigned long length);
/**
 * Signs SHA-1 of data with a key of the card: PKCS#1 v1.5 DigestInfo through CKM_RSA_PKCS.
 * @param[in,out] signatureLength  room in signature, then the signature's bytes
 * @return 0; 0x101 when the card says that nobody is logged in; 1 otherwise
 */
ZV_API unsigned short SignIt(void*, unsigned char* data, unsigned long dataLength, unsigned char* signature,
                             unsigned long* signatureLength, unsigned long privateKey);
/**
 * Builds a PKCS#10 request (RFC 2986) for the pending pair, generating the pair when there is none, as PEM
 * with one base64 line.
 * @param[out] pemOut      8192 bytes
 * @param[in]  pin         user PIN, for a new login
 * @param[in]  modulePath  path of the module, for a new login
 * @return 0; 1 with the reason in szSockMsg on most paths
 * After a failure: a generated pair stays on the card under the pending label.
 */
ZV_API unsigned short RequestCertificate(void*, char* pemOut, char* pin, unsigned short, char* modulePath,
                                         char*);
/**
 * RequestCertificate for the services card's own pair "CNS0"; marks the card with "pending_CNS_key" when
 * done.
 */
ZV_API unsigned short RequestCertificateCNS(void*, char* pemOut, char* pin, unsigned short, char* modulePath,
                                            char*);
/**
 * Takes the census, discards an old pending pair when asked to, builds the request and closes the session.
 * @param[in] cardType  exactly "CNS" for a services card's own pair
 * @return the builder's result; 0 with nothing done when no session is open
 */
ZV_API unsigned short RichiestaCertificato(char* pemOut, char* modulePath, char* pin, char* cardType);

/* ---- Installation (install/)
 * ------------------------------------------------------------------------------------------ */

/**
 * Stores an issued certificate next to the pending pair.
 * @param[in]     certText       certificate text, at most 8191 characters
 * @param[in,out] pkcs11Library  path of the module, lower-cased in place
 * @return 0; 1 otherwise (the pair keeps, or gets back, its pending identifier)
 */
ZV_API int MemorizzazioneCertificato(void*, char* certText, char* pkcs11Library, char*);
/** Gives the pending pair newId (at most 255 characters) as CKA_ID and CKA_LABEL. Returns 0 or 1. */
ZV_API int ChangeValueObject(void*, char* newId);
/**
 * Checks that the certificate carries the pending key and writes it (nine attributes).
 * @param[in]     cert           record with the certificate's DER
 * @param[in]     derLength      its bytes
 * @param[in]     label          identifier and label to be, at most 255 characters
 * @param[in,out] pkcs11Library  path of the module; lower-cased in place after a failure
 * @return 0; 1 otherwise, the pair's keys relabelled to the pending identifier
 */
ZV_API int InstallUserCertificate(void*, datiCert* cert, unsigned long derLength, char* label,
                                  char* pkcs11Library);
/**
 * Gives every object whose CKA_LABEL equals currentLabel the identifier and label newText. Returns 0 or 1.
 */
ZV_API int RechangeValueObject(void*, const char* currentLabel, char* newText);
/** Logs the creation of a certificate. */
ZV_API void LogInstallCertificate(unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count,
                                  unsigned long* certificate);
/**
 * Writes an authority's certificate, no key checked, its serial number as it is. Returns 0 or 1. No caller
 * inside the library.
 */
ZV_API int InstallCACertificate(void*, datiCert* cert, unsigned long derLength, char* label);
/**
 * Decodes a PEM certificate into der (8191 bytes of room); pem is cut at its end marker. Returns the bytes, 0
 * on a failure, also when there are more than 8191.
 */
ZV_API int CrtB64ToDer(char* pem, char* der);
/**
 * Rewrites short attribute names to numeric OIDs in place; dn and work have 8216 characters of room each,
 * what goes past is cut. Returns CommaToSlash's count.
 */
ZV_API int DescrToOid(char* dn, char* work);
/** Rewrites every second ", D=" and the ", N=" behind a ", D=" with a slash. Returns the rounds made. */
ZV_API int CommaToSlash(char* dn, char* work);
/**
 * DescrToOid for each text (8216 characters of room) of an array of 16 pointers, null ones skipped. Returns
 * the last result.
 */
ZV_API int ConvertiCertificato(char** dns);

/* ---- Command block and names (api/)
 * ------------------------------------------------------------------------------------ */

/**
 * Brings a name text (a buffer of size characters) to one attribute a line and parses it into the request's
 * name.
 */
ZV_API void _RiempiDN(char* dn, unsigned int size);
/** Parses a text with one attribute a line into the request's name; what it does not name stays. */
ZV_API void CaricaDN(char* text);
/**
 * Writes text, every from replaced by to, into a text of the library of 1023 characters; what does not fit is
 * dropped.
 */
ZV_API void replace(char* text, char* from, char* to);
/** Empties the request's name. */
ZV_API void ResettaDN(void);
/**
 * Writes a command block into the library's request buffer (8000 characters).
 * @return its length without the end line; 0 with an empty buffer when it does not fit
 */
ZV_API unsigned long RichiestaMinInfo(char* certLabel, const char* pin, const char* certChain,
                                      char* pendingLabel, const char* certKind, const char* keepFlag);
/**
 * Parses a command block and runs it.
 * @param[in]     command   "REQREN" (request) or "REQSCA" (storing)
 * @param[in]     blockLen  not read
 * @param[out]    out       the command's text
 * @param[in,out] outLen    room in out, then the text's length; its low 32 bits
 * @return 0; 0xFFFFFFFF unknown command or no memory; -10000 a text too long; the command's result
 */
ZV_API int miExecCmd(const char* command, char* block, long blockLen, char* out, long* outLen);
/** Makes the request of a parsed block in the open session. Returns 0; the builder's result; -10000. */
ZV_API int ReqCert(REQRENIN* rec, datiDN* dn, char* out, unsigned* outLen);
/** Stores the certificate of a parsed block in the open session. Returns 0; the storing's result; -10000. */
ZV_API int ScaCert(REQRENIN* rec, datiDN* dn, char* out, unsigned* outLen);
/** Opens the session, removes what is replaced unless the keep flag is 'R', and stores. */
ZV_API int Scarica(REQRENIN* rec, char* out, unsigned* outLen);
/** Opens the session and makes the request. No caller inside the library. */
ZV_API int Rinnova(REQRENIN* rec, char* out, unsigned* outLen);
/**
 * Breaks lines longer than 64 characters in place; text is a buffer of 8192 characters, zero behind its end,
 * and keeps 8190 at most. Returns the length.
 */
ZV_API unsigned long SepRows(char* text);

} // extern "C"

#endif
