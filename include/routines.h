/**
 * Every exported routine below the entry points of zvRenew.h, for hosts and tests that drive single steps.
 * C++; C linkage.
 *
 * Conventions
 *
 *  1. Texts are NUL-terminated. "n bytes" is the room of a buffer, terminator included; "n characters" is
 *     what a text holds, terminator not counted. A text that does not fit is cut unless the routine says
 *     otherwise.
 *  2. Buffers belong to the caller; only UnEscape and the DER pieces (ADATA) are for the caller to free. A
 *     routine that returns a buffer of the process says so: its text is valid until the next routine that
 *     shares the buffer, and every routine that logs uses the "Cat" buffers.
 *  3. Null means something only where it is stated. Elsewhere a routine that is given it fails, does nothing
 *     or takes it as empty. A `void*` first argument is not read.
 *  4. Card routines work on the one session that __Initialize or inizializza opened; a `session` argument is
 *     a handle of the same module. Without a module each call to the card answers
 *     CKR_CRYPTOKI_NOT_INITIALIZED. "Pending label", "certificate label", "keep flag" and "subject" are those
 *     of the last command block (miExecCmd).
 *  5. A failure, unless the routine says otherwise, leaves the card and the output arguments as they were,
 *     the session open, and the search that the routine started closed. What a routine leaves holds for those
 *     that call it.
 *  6. Card routines log their steps and failures in the user's log (getLogPath); those that log nothing say
 *     so. A sentence for a person stands there under "Messaggio di Errore". Routines on texts and DER pieces
 *     log only where they say so.
 *  7. PKCS#11 results (CKR_...) and attributes are those of pkcs11.h (PKCS#11 version 2); a result is that of
 *     the call that failed. Kinds of certificate are "PRA" (signature), "AUT" (authentication) and "CNS" (a
 *     services card's own).
 *  8. Calls must not overlap. No exception leaves a routine.
 */
#ifndef ZV_ROUTINES_H
#define ZV_ROUTINES_H

#include "pkcs11.h"
#include "records.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <cstdarg>
#include <string>

extern "C" {

/* ---- Text and number helpers (util/): none fails but where it says so, none logs ---- */

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

/** Writes value in decimal into buffer (12 bytes; radix is not read). Returns buffer. */
ZV_API char* _itoa(int value, char* buffer, int radix);
/** Writes value in decimal into buffer (21 bytes; radix is not read). Returns buffer. */
ZV_API char* _ltoa(long value, char* buffer, int radix);
/** Upper-cases text in place, byte by byte. Returns text; null stays null. */
ZV_API char* _strupr(char* text);
/** Lower-cases text in place, byte by byte. Returns text; null stays null. */
ZV_API char* _strlwr(char* text);
/** Removes trailing blanks (the space only) in place. Returns text; null stays null. */
ZV_API char* RTrim(char* text);
/** Removes leading blanks (the space only) in place. Returns text; null stays null. */
ZV_API char* LTrim(char* text);
/** RTrim, then LTrim. Returns text; null stays null. */
ZV_API char* AllTrim(char* text);
/** Replaces every "," by "." in place. Returns text; null stays null. */
ZV_API char* VirgolaToPunto(char* text);
/**
 * Replaces every "+" by a blank, then decodes as UnEscape does, in place. Returns text, without memory not
 * decoded; null stays null.
 */
ZV_API char* Converte(char* text);
/** Returns ILtoAbuff with value in decimal. */
ZV_API char* ItoA(int value);
/** Returns ILtoAbuff with value in decimal. */
ZV_API char* LtoA(long value);
/** Returns ILtoAbuffHex with value in decimal digits, without a prefix. */
ZV_API char* ItoAHex(int value);
/** Returns ILtoAbuffHex with value in decimal digits, without a prefix. */
ZV_API char* LtoAHex(long value);
/** Returns CatILtoAbuff: prefix (cut to fit 127 characters in all; null is empty), then value in decimal. */
ZV_API char* CatItoA(const char* prefix, int value);
/** Returns CatILtoAbuff: prefix (cut to fit 127 characters in all; null is empty), then value in decimal. */
ZV_API char* CatLtoA(const char* prefix, long value);
/**
 * Writes prefix (null is empty), "0x" and the decimal digits of value into destination (14 bytes more than
 * the prefix has characters). Returns destination; null stays null.
 */
ZV_API char* CatItoAHex(char* destination, const char* prefix, int value);
/**
 * Writes prefix (null is empty), "0x" and the decimal digits of value into destination (23 bytes more than
 * the prefix has characters). Returns destination; null stays null.
 */
ZV_API char* CatLtoAHex(char* destination, const char* prefix, long value);
/**
 * Returns CatILtoAbuffHex1: prefix (cut to fit 127 characters in all; null is empty), "0x", the decimal
 * digits of value.
 */
ZV_API char* CatItoAHex1(const char* prefix, int value);
/** As CatItoAHex1, for a long. */
ZV_API char* CatLtoAHex1(const char* prefix, long value);
/** As CatItoAHex1, in CatILtoAbuffHex2: an entry with two such values needs both buffers. */
ZV_API char* CatItoAHex2(const char* prefix, int value);
/** As CatItoAHex2, for a long. */
ZV_API char* CatLtoAHex2(const char* prefix, long value);
/** Returns CatSZtoSZbuff: first, then second, cut to 255 characters; null is empty. */
ZV_API char* CatSZtoSZ(const char* first, const char* second);
/**
 * Finds needle in haystack whatever the case of the letters. Returns the place in haystack; null when it is
 * not there, for a null argument and without memory.
 */
ZV_API char* strstrICase(const char* haystack, const char* needle);
/** Returns length (bytes) less the zero bytes at the end of buffer; a length below 1 as it is. */
ZV_API int HexLen(char* buffer, int length);
/**
 * Decodes "%" and two hexadecimal digits to one byte each (RFC 3986, section 2.1). The two characters are not
 * checked; a percent sign without two characters after it is copied as it stands.
 *
 * @param[in] text  stays as it is
 * @return a text that the caller releases with free(); null for null or without memory
 */
ZV_API char* UnEscape(char* text);
/**
 * Finds the value of a named field in a text of name and value pairs.
 *
 * @param[in]  text            the pairs
 * @param[in]  name            the field's name; it counts where a pair starts or after one of "\n ,:;="
 * @param[out] output          the value without blanks around it; one byte more than text has characters
 * @param[in]  pairSeparator   text between pairs; null is empty
 * @param[in]  valueSeparator  text between a name and its value; null is empty
 * @return 0; -1 no such field, or text, name or output is null; -4 the name with no value separator anywhere
 *         behind it
 * After a failure: output is empty, but untouched when an argument was null.
 */
ZV_API int NWGetOpt(char* text, char* name, char* output, char* pairSeparator, char* valueSeparator);
/**
 * NWGetOpt for the form "a=1&b=2" with the value decoded as Converte does and blanks around it removed.
 * Always 0; a missing field and a null argument leave output empty.
 */
ZV_API int Valore(char* text, char* name, char* output);
/**
 * Returns a date DD?MM?YYYY as the number YYYYMMDD; 0 for an empty text and null. A part that is no number
 * counts as 0.
 */
ZV_API long DataToLong(char* date);
/**
 * Writes n x 28 + 13579 in decimal into output (21 bytes), n the number in text; empty for an empty text and
 * null. Returns output; null stays null.
 */
ZV_API char* XX(char* text, char* output);
/** As XX, into x1. */
ZV_API char* X1(char* text);
/** As XX, into x2. */
ZV_API char* X2(char* text);
/** As XX, into x3. */
ZV_API char* X3(char* text);

/* ---- Log (diag/) ---- */

/**
 * Gives the path of the user's log, 512 characters at most: home directory, "/.trevallo/zvRenew.log".
 *
 * The home directory is that of the user database; the variable HOME serves only when the database does not
 * know the user. The path is made on the first call and stays, unless a caller writes another one into it.
 *
 * @return a buffer of the process of 513 bytes; an empty text without a home directory: nothing is then
 *         logged
 */
ZV_API char* getLogPath(void);
/**
 * Appends one line to the log: "[DD Mon YYYY HH:MM:SS]: " in local time, and the message.
 *
 * A log of more than 1,048,576 bytes is emptied first: what it held is lost, a file with ".1" behind the
 * log's name is created empty, and the log begins with four lines that name the library. A missing log is
 * created with mode 0600, its directory is not; one that is there gets that mode once a process.
 *
 * @param[in] message  the text; null and empty become "MESSAGGIO VUOTO!"
 * After a failure (a log that cannot be opened, a link, no plain file, another user's): nothing is written, nobody is
 * told.
 */
ZV_API void scriviLog(const char* message);
/**
 * Appends an entry to the log: a title line with the local time, then up to two data. Never empties the log.
 *
 * @param[in] title         text of the title line; null is empty
 * @param[in] data1, data2  a datum
 * @param[in] len1, len2    0: the datum is a text, null writes nothing; positive: exactly that many raw bytes
 *                          and a line end, the line end alone for null; negative: an empty line
 * After a failure: as scriviLog.
 */
ZV_API void WriteLog(const char* title, const char* data1, int len1, const char* data2, int len2);
/** WriteLog, for entries that report an error: same arguments, same output. */
ZV_API void WriteErr(const char* title, const char* data1, int len1, const char* data2, int len2);
/**
 * Logs the fields of a subject down to the e-mail address (locality, title, pseudonym and province are left
 * out); null or a lack of memory logs nothing. No caller inside the library.
 */
ZV_API void LogDN(datiDN* dn);
/**
 * Logs certificate label and pending label of a request; null or a lack of memory logs nothing. No caller
 * inside the library.
 */
ZV_API void LogLabels(REQRENIN* request);

/* ---- Card, module and session (card/) ---- */

/**
 * Finds the reader, the module that serves its card, the slot, the kind of card and its serial number.
 *
 * What it finds serves every later call: readings, requests and storing. The module follows from the card's
 * ATR (a table given to set_ATRini_path is asked first); the serial number is read in a session of the crypto
 * library's own, without a login.
 *
 * @param[out] isTouchSign  set to true for a touch-sign card, never to false
 * @param[in]  reader       reader to use, listed or not, 127 characters kept; null: the first of the list
 * @return 0, also when there is neither a given nor a listed reader (the module's path stays empty); 100
 *         unknown card, or a serial number that begins "1201"; -1 no slot of the module belongs to the
 *         reader, or the module cannot be used; a code of the crypto library
 * After a failure: the module's path is empty, but set when finding the slot or a later step failed. When the
 * card's data cannot be read, the crypto library's session stays open until DoFinalize. A reader list that
 * fails and an unknown card have no log line of their own.
 * Standard: PC/SC (readers), ISO/IEC 7816-3 (ATR), PKCS#11 (C_GetSlotInfo, C_GetTokenInfo).
 */
ZV_API int CheckSmartCard(bool& isTouchSign, char* reader);
/**
 * Asks a module which of its slots belongs to a reader, apart from the open session.
 *
 * Loads, initialises, finalises and unloads the module. A module that is initialised already is finalised
 * first: its sessions in this process are lost.
 *
 * @param[in] readerName  reader; the first slot with a token is taken whose description (blanks at its end
 *                        removed; 63 characters where it fills its field) is part of this name. Null is
 *                        empty, which no slot belongs to
 * @param[in] libPath     path of the module; null and empty never load
 * @return the slot's identifier (low 32 bits); 0xFFFFFFFF none, or the module cannot be used
 * After a failure: the module is unloaded again; only a failed load is logged.
 * Standard: PKCS#11 (C_GetSlotList, C_GetSlotInfo).
 */
ZV_API unsigned int getSlot(char* readerName, char* libPath);
/**
 * Loads a module, opens a read/write session on a slot identifier and logs the user in.
 *
 * Closes nothing first: what is open is to be closed with finalizza before. A module that is initialised
 * already and a user who is logged in already count as success.
 *
 * @param[in] slot     slot identifier as the module knows it
 * @param[in] pin      user PIN; null and empty are sent as an empty one, which costs a try
 * @param[in] libPath  path of the module; null, empty and a blank in front stand for none
 * @return 0; all ones no module, or one without a function list; else the PKCS#11 result
 * After a failure: what was opened stays open until finalizza; szSockMsg is untouched. A wrong PIN has cost
 * one try.
 * Standard: PKCS#11 (C_Initialize, C_GetSlotList, C_OpenSession, C_Login).
 */
ZV_API CK_RV __Initialize(int slot, char* pin, char* libPath);
/**
 * Closes what is open, loads a module, opens a read/write session on a slot index and logs the user in.
 *
 * The identifier found for an index is kept for the process and not looked up again, unless it is 0;
 * miExecCmd puts that of its own session there. While it runs, an index that leads to another slot than that
 * session's counts as one that is not in the list: no session is opened, nothing kept. A module that is
 * initialised already and a user who is logged in already are failures here.
 *
 * @param[in] libPath    path of the module; null and empty never load
 * @param[in] pin        user PIN; null and empty open the session without a login
 * @param[in] slotIndex  0 to 7: place in the module's list of all slots, with or without a card
 * @param[in] reserved   not read
 * @param[in] userType   CKU_USER
 * @return 0; 2 wrong PIN (CKR_PIN_INCORRECT): one try is spent, the failure is not logged, szSockMsg stays; 1
 *         otherwise
 * After a failure: what was opened stays open until finalizza. After 1 the text for the user is in szSockMsg
 * (512 bytes) and in the log; in szSockMsg alone for a module without C_GetFunctionList.
 * Standard: PKCS#11 (C_Initialize, C_GetSlotList, C_OpenSession, C_Login).
 */
ZV_API int inizializza(char* libPath, char* pin, unsigned int slotIndex, void* reserved, int userType);
/**
 * Logs out, closes the session, finalises the module for the whole process and unloads it.
 *
 * Results are not looked at: nothing is open afterwards. Harmless when nothing was.
 * Standard: PKCS#11 (C_Logout, C_CloseSession, C_Finalize).
 */
ZV_API void finalizza(void);

/* ---- Token objects (store/) ---- */

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
/** Destroys the certificate "CNS0"; its keys stay. Results and failures as DeleteAnObject. */
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
 * from which requests and storing take them.
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

/* ---- Inventory (inventory/) ---- */

/**
 * Lists the certificates of a card that is not a services card, its pending pair and free identifiers.
 *
 * Records, lists and marks are described at rinnovo_Card_readCerts (zvRenew.h). The first ten certificates
 * that are not the authority's are listed. An attribute that cannot be read keeps what an earlier inventory left
 * in its place (of certificates behind the card's tenth: is empty). Null arguments are skipped, and change
 * nothing in the others.
 *
 * @param[in,out] praList, autList    11 pointers to texts of 4096 bytes each, empty before: entry 0 receives
 *                                    the count, entries 1 to n a record each
 * @param[in,out] praRecord, autRecord          work buffers of one record, empty before and afterwards
 * @param[in]     praRecordSize, autRecordSize  their bytes, 4096 at most used
 * @param[out]    praSubject, autSubject        2048 bytes: subject of the last PRA / AUT certificate
 * @param[in]     praSubjectSize, autSubjectSize  not read
 * @param[out]    autId, praId  64 bytes, AUT first: CKA_ID of the last certificate of the kind, without a
 *                              terminator when it has 64 bytes
 * @param[in,out] pendingPRA, pendingAUT  as in Find_ALL_Pending
 * @param[out]    ckaidPRA, ckaidAUT      32 bytes, as in Find_ALL_Pending
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
 * @param[out]    ckaidPRA, ckaidAUT      32 bytes: pending identifier, else the proposal, else empty
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
 * @param[in,out] pendingCNS              set to 1 when the card has the marker "pending_CNS_key"; may be null
 * @param[out]    ckaidPRA, ckaidAUT      32 bytes, as in Find_ALL_Pending
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
 * @param[out] keyPRA, keyAUT  32 bytes each; may be null
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

/* ---- Request (request/) ---- */

/*
 * DER pieces (X.690). Record and bytes of a piece come from the C heap; the last one is released by its
 * owner, each part with free(). Combining releases what it is given. A null among the pieces ends the list:
 * what stands behind it is neither encoded nor released. Without memory the result is null, or lacks what
 * could not be made.
 */

/**
 * Makes a piece of size zero bytes, over which copyLength bytes of src (size at most) are copied; none when
 * src is null. Returns it; null without memory.
 */
ZV_API ADATA* CreateADATA(unsigned char* src, unsigned long size, unsigned long copyLength);
/**
 * Joins two pieces; null counts as an empty one. Returns the new piece, with both released; null without
 * memory, with neither released.
 */
ZV_API ADATA* ConcatenateADATA(ADATA* first, ADATA* second);
/**
 * Wraps pieces in a tag and a length (X.690, definite form). Content of 65,536 bytes and more gets no length:
 * the result is then no DER.
 *
 * @param[in] tag    tag byte
 * @param[in] first  first piece; null: no content, and list is not read
 * @param[in] list   further pieces (ADATA*), a null pointer last
 * @return the new piece, with those that it holds released
 */
ZV_API ADATA* ConstructADATA(unsigned char tag, ADATA* first, va_list list);
/** ConstructADATA with the pieces as arguments, a null pointer last. */
ZV_API ADATA* var_tlv(unsigned char tag, ADATA* first, ...);
/** var_tlv with the tag of a SET (0x31). */
ZV_API ADATA* SET(ADATA* first, ...);
/** var_tlv with the tag of a SEQUENCE (0x30). */
ZV_API ADATA* SEQUENCE(ADATA* first, ...);
/**
 * Makes an INTEGER (X.690) of length big-endian bytes, a zero byte in front when the top bit is set; zeros
 * that lead stay. bytes[0] is read even when length is 0.
 */
ZV_API ADATA* _INTEGER(unsigned char* bytes, unsigned long length);
/**
 * Signs the SHA-1 digest of data with a key of the card.
 *
 * @param[in]     data             the bytes to sign
 * @param[in]     dataLength       how many, at most 2,147,483,647
 * @param[out]    signature        the signature, as long as the key's modulus
 * @param[in,out] signatureLength  room in signature in bytes; then the signature's bytes
 * @param[in]     privateKey       object handle of the key
 * @return 0; 0x101 (CKR_USER_NOT_LOGGED_IN) when C_Sign says that nobody is logged in; 1 otherwise, a
 *         signature that the module claims to be longer than the room included
 * After a failure: *signatureLength is what the module left there.
 * Standard: PKCS#11 (C_SignInit, C_Sign with CKM_RSA_PKCS); RFC 8017 (DigestInfo, PKCS#1 v1.5); FIPS 180-4.
 */
ZV_API unsigned short SignIt(void*, unsigned char* data, unsigned long dataLength, unsigned char* signature,
                             unsigned long* signatureLength, unsigned long privateKey);
/**
 * Makes a certificate request for the pending pair, generated on the card (RSA, 2048 bits) without one.
 *
 * Subject: the last command block's; country and serial number as PrintableString, e-mail address as
 * IA5String, the rest as UTF8String, 127 characters at most. Signature: sha1WithRSAEncryption. The module
 * chooses the exponent; one named libcardos11.dylib is told 65537. A code of C_GenerateKeyPair that is none
 * of the known failures is not one: reading the key back decides. A modulus or an exponent that is empty (or
 * zero) counts as not read, a signature that has not the modulus's length as failed. When the card wants a login
 * again, one that succeeds ends this call with 1: the next one goes through; after one that fails a second
 * signature is asked of the same CKA_ID's key alone.
 *
 * @param[out] pemOut      8192 bytes: the request in PEM, its base64 in one line
 * @param[in]  pin         user PIN, for a new login; null is empty
 * @param[in]  modulePath  path of the module, for a new login; null is empty
 * @return 0; 1
 * After a failure: a generated pair stays on the card under the pending label, where the next request finds
 * it. szSockMsg has the reason, unless the subject was empty, memory ran out or the text would not fit. After
 * a new login the session is as inizializza left it.
 * Standard: RFC 2986 (PKCS#10), RFC 7468 (PEM), X.520 (subject), PKCS#11 (C_GenerateKeyPair with
 * CKM_RSA_PKCS_KEY_PAIR_GEN).
 */
ZV_API unsigned short RequestCertificate(void*, char* pemOut, char* pin, unsigned short, char* modulePath,
                                         char*);
/**
 * Makes a certificate request for the services card's own pair "CNS0", and marks the card with a data object
 * "pending_CNS_key".
 *
 * As RequestCertificate, but no pair is generated, title and pseudonym are left out, the modulus has at most
 * 1024 bytes and the exponent 17. When the card has no private key "CNS0", the private key found last serves;
 * a command starts with none. What becomes of the marker is not looked at.
 *
 * @param pemOut, pin, modulePath  as in RequestCertificate
 * @return 0; 1
 * After a failure: no marker was written; szSockMsg as in RequestCertificate.
 */
ZV_API unsigned short RequestCertificateCNS(void*, char* pemOut, char* pin, unsigned short, char* modulePath,
                                            char*);
/**
 * Takes the census, discards an old pending pair when asked to, makes the request and closes the session.
 *
 * The old pair is discarded (DeleteAllPending32) when the census finds a pending key and the keep flag is
 * 'D', unless a certificate has the pending label as its CKA_ID, or inside miExecCmd the new login would not
 * reach the slot in use: both count as a deletion that failed. A census or a deletion that fails closes the
 * session, and the request fails for want of one.
 *
 * @param[in,out] pemOut      8192 bytes, an empty text before; logged whatever the result
 * @param[in]     modulePath  path of the module
 * @param[in]     pin         user PIN
 * @param[in]     cardType    exactly "CNS" for RequestCertificateCNS, else RequestCertificate; null is empty
 * @return the builder's result; 0 with nothing done when no session is open
 * After a failure: the session is closed; an old pair may be gone; otherwise as the builder.
 */
ZV_API unsigned short RichiestaCertificato(char* pemOut, char* modulePath, char* pin, char* cardType);

/* ---- Installation (install/) ---- */

/**
 * Stores an issued certificate next to the pending pair.
 *
 * The pair found by CheckPendingKeys gets the identifier to be, which Scarica sets, as CKA_ID and CKA_LABEL
 * (ChangeValueObject; not with modules named incryptoki2, bit4ipki, bit4hipki or cnspkcs11), then
 * InstallUserCertificate writes the certificate under the same text. The last argument is not read.
 *
 * @param[in]     certText       certificate as SplitCert takes it, at most 8191 characters
 * @param[in,out] pkcs11Library  path of the module, lower-cased in place once the pair is found; may be null
 * @return 0; 1
 * After a failure: no certificate was written. The pair is as it was before a failed ChangeValueObject, which
 * may have renamed the private key alone, and afterwards as InstallUserCertificate says.
 * Standard: RFC 7468, RFC 5652 (text); PKCS#11 (C_SetAttributeValue, C_CreateObject).
 */
ZV_API int MemorizzazioneCertificato(void*, char* certText, char* pkcs11Library, char*);
/**
 * Gives the pending pair, as CheckPendingKeys found it, a new CKA_ID and CKA_LABEL (C_SetAttributeValue).
 *
 * @param[in] newId  both texts, at most 255 characters
 * @return 0, also without a public key; 1
 * After a failure: the private key, which comes first, may have its new texts, and the public key the old.
 */
ZV_API int ChangeValueObject(void*, char* newId);
/**
 * Writes a certificate that carries the pending key on the card, and removes a marker "pending_CNS_key".
 *
 * The key's modulus (256 bytes at most) must stand in the certificate; a module that answers its reading with
 * CKR_FUNCTION_FAILED is spared the comparison. Subject and issuer have at most 512 bytes of DER, the serial
 * number 256, zero bytes in front dropped.
 *
 * @param[in]     cert           record with the certificate's DER
 * @param[in]     derLength      its bytes, at most 8192
 * @param[in]     label          CKA_ID and CKA_LABEL to be, at most 255 characters
 * @param[in,out] pkcs11Library  path of the module; lower-cased in place after a failure; may be null
 * @return 0, whatever became of the marker; 1
 * After a failure: no certificate was written. Every object labelled label has the pending label again
 * (RechangeValueObject, whose own failure is only logged); not with modules named incryptoki2,
 * libbit4xpki.dylib or cnspkcs11.
 * Standard: PKCS#11 (C_CreateObject, X.509 certificate object); RFC 5280.
 */
ZV_API int InstallUserCertificate(void*, datiCert* cert, unsigned long derLength, char* label,
                                  char* pkcs11Library);
/**
 * Gives every object with a label a new CKA_ID and CKA_LABEL (C_SetAttributeValue).
 *
 * @param[in] currentLabel  CKA_LABEL, whole; null is empty
 * @param[in] newText       both texts, at most 255 characters
 * @return 0; 1
 * After a failure: objects changed before it stay changed. C_FindObjects and C_SetAttributeValue leave the
 * search open.
 */
ZV_API int RechangeValueObject(void*, const char* currentLabel, char* newText);
/**
 * Logs that a certificate is about to be created: session, entries of the template, and the address where its
 * handle will go. `tmpl` is not read.
 */
ZV_API void LogInstallCertificate(unsigned long session, CK_ATTRIBUTE* tmpl, unsigned long count,
                                  unsigned long* certificate);
/**
 * Writes an authority's certificate on the card: no key checked, no other one of that label looked for. No
 * caller inside the library.
 *
 * @param[in] cert       record with the certificate's DER
 * @param[in] derLength  its bytes, at most 8192
 * @param[in] label      CKA_ID and CKA_LABEL to be, at most 255 characters
 * @return 0; 1. Sizes as in InstallUserCertificate; the serial number is written as it is
 * After a failure: no certificate was written.
 * Standard: PKCS#11 (C_CreateObject, X.509 certificate object); RFC 5280.
 */
ZV_API int InstallCACertificate(void*, datiCert* cert, unsigned long derLength, char* label);
/**
 * Decodes a certificate in PEM ("BEGIN CERTIFICATE") to DER. No caller inside the library.
 *
 * @param[in,out] pem  the text; cut in front of its end marker. It is logged
 * @param[out]    der  8191 bytes; when padding ends the text all of them are logged
 * @return bytes of DER; 0 without both markers, for a text that ends inside a group of four, and for more
 *         than 8191 bytes
 * After a failure: pem may have been cut, and der holds what was decoded.
 * Standard: RFC 7468, RFC 4648 (characters outside the alphabet are passed over).
 */
ZV_API int CrtB64ToDer(char* pem, char* der);
/**
 * Rewrites a name with short attribute names (" CN=", "/Email=") to numeric OIDs, after CommaToSlash.
 *
 * @param[in,out] dn    8216 bytes; 11 patterns are known, in letters of any case (X.520, PKCS#9)
 * @param[out]    work  8216 bytes
 * @return the rounds of CommaToSlash
 */
ZV_API int DescrToOid(char* dn, char* work);
/**
 * Rewrites every second ", D=" to "/D=", and a ", N=" behind a ", D=" to "/N=", in place; the text gets
 * shorter. `work` is not read. Returns the rounds made, 0 without ", D=".
 */
ZV_API int CommaToSlash(char* dn, char* work);
/**
 * DescrToOid for each text (8216 bytes) of an array of 16 pointers, null ones skipped. Returns the last
 * result, 0 without any. No caller inside the library.
 */
ZV_API int ConvertiCertificato(char** dns);

/* ---- Command block and names (api/) ---- */

/**
 * Brings a name text to one attribute a line and parses it into the request's name, emptied first.
 *
 * Known are the numeric OIDs of datiDN (X.520, PKCS#9), "/OU=", "/emailAddress=", "/gn=" and
 * "/serialNumber=", in these letters.
 *
 * @param[in,out] dn    the text, worked on in place; what goes past 1023 characters is lost. Null is empty
 * @param[in]     size  bytes of its buffer
 */
ZV_API void _RiempiDN(char* dn, unsigned int size);
/**
 * Parses a text with one attribute a line into the request's name.
 *
 * Values are cut to their fields (datiDN); units fill their five places in turn, a sixth is ignored; what the
 * text does not name stays.
 *
 * @param[in] text  lines of OID, "=" and value; null is empty
 */
ZV_API void CaricaDN(char* text);
/**
 * Writes text, every from replaced by to, into a text of the library of 1023 characters; what does not fit is
 * dropped. Null is empty.
 */
ZV_API void replace(char* text, char* from, char* to);
/** Empties the request's name. */
ZV_API void ResettaDN(void);
/**
 * Writes a command block into the library's request buffer (8000 bytes): the arguments, slot and module of
 * the last card detection, and the request's name.
 *
 * Values go in as they are, null as empty. The buffer then holds the PIN, until the next block.
 *
 * @param[in] certLabel     identifier of the certificate to renew
 * @param[in] pin           user PIN
 * @param[in] certChain     text of the issued certificate
 * @param[in] pendingLabel  identifier of the pending pair
 * @param[in] certKind      "PRA", "AUT" or "CNS"
 * @param[in] keepFlag      "R", "D" or "K", as in REQRENIN
 * @return the block's characters without its end line; 0 when it does not fit, with the buffer zeroed
 */
ZV_API unsigned long RichiestaMinInfo(char* certLabel, const char* pin, const char* certChain,
                                      char* pendingLabel, const char* certKind, const char* keepFlag);
/**
 * Parses a command block and runs a command on it.
 *
 * Labels, keep flag and subject that the block names become those of the library, and stay so when the
 * command fails. The handles of the pending pair are forgotten. The slot digit, 0 to 7, is the index for a
 * new login, which finds the slot of the opened session there or is refused (0 is looked up as the module's
 * first slot). A block
 * without "BEGIN_STRING" leaves the record empty, and the command runs all the same; one that was cut runs
 * with what is left of it, and without a keep flag of "R" it deletes. What guards against that stands at the
 * entry points.
 *
 * @param[in]     command   "REQREN" (Rinnova) or "REQSCA" (Scarica); null is empty
 * @param[in]     block     the block, as RichiestaMinInfo writes it; null is empty
 * @param[in]     blockLen  not read
 * @param[out]    out       the command's text
 * @param[in,out] outLen    room in out in bytes, then the text's characters; its low 32 bits alone
 * @return 0; 0xFFFFFFFF unknown command, no module or no memory; -10000 the text does not fit; else the
 *         command's result
 * After a failure, as after success: the session is closed and the module finalised (finalizza), but for a
 * record that found no memory and a null out or outLen: then nothing was done. out and outLen are untouched
 * after a failure.
 */
ZV_API int miExecCmd(const char* command, char* block, long blockLen, char* out, long* outLen);
/**
 * Makes a request in the open session, and closes the session.
 *
 * Pending label, keep flag and subject are the library's; the record gives module, PIN and kind.
 *
 * @param[in]     rec     parsed block
 * @param[in]     dn      not read
 * @param[out]    out     the request in PEM, lines of 64 characters
 * @param[in,out] outLen  room in out in bytes, then the text's characters
 * @return 0, with an empty text when no session is open; 1 as RichiestaCertificato; -10000 the text does not
 *         fit
 * After a failure: as RichiestaCertificato; after -10000 the pair is on the card all the same.
 */
ZV_API int ReqCert(REQRENIN* rec, datiDN* dn, char* out, unsigned* outLen);
/**
 * Stores the certificate of a parsed block in the open session, which stays open.
 *
 * Identifier and label to be are those that Scarica set last; the record gives certificate and module.
 *
 * @param[in,out] rec     parsed block; the module's path is lower-cased
 * @param[in]     dn      not read
 * @param[out]    out     an empty text
 * @param[in,out] outLen  room in out in bytes, at least 1; then 0
 * @return 0; 1 as MemorizzazioneCertificato; -10000 no room, the certificate is stored
 * After a failure: as MemorizzazioneCertificato.
 */
ZV_API int ScaCert(REQRENIN* rec, datiDN* dn, char* out, unsigned* outLen);
/**
 * Opens the session, removes what is replaced unless the keep flag is 'R', stores the certificate, closes.
 *
 * The pair is looked for under the library's pending label and gets that of the record. Removed are: for kind
 * CNS the certificate "CNS0"; else every object whose CKA_ID contains the record's certificate label (an
 * empty one: all), and for kind PRA then the authority's certificate "Korvalenta Firma Dig".
 *
 * @param[in,out] rec     parsed block
 * @param[out]    out     as in ScaCert
 * @param[in,out] outLen  as in ScaCert
 * @return 0; the result of __Initialize (low 32 bits); of DeleteCertCNS or DeleteCertAndKeys; of ScaCert
 * After a failure: what was removed is gone; the pair as ScaCert says; the session is closed, but after a
 * failed __Initialize what it opened stays open until finalizza.
 */
ZV_API int Scarica(REQRENIN* rec, char* out, unsigned* outLen);
/**
 * Opens the session and makes the request: __Initialize on the record's slot, then ReqCert.
 *
 * @param[in]     rec     parsed block
 * @param[out]    out     as in ReqCert
 * @param[in,out] outLen  as in ReqCert
 * @return the result of __Initialize (low 32 bits), when it failed; else of ReqCert
 * After a failure: as the step that failed; what a failed __Initialize opened stays open until finalizza.
 */
ZV_API int Rinnova(REQRENIN* rec, char* out, unsigned* outLen);
/**
 * Breaks lines longer than 64 characters in place; line ends that are there stay.
 *
 * @param[in,out] text  8192 bytes, zero behind the text's end: no terminator is written; 8191 characters at
 *                      most are kept
 * @return the new text's characters
 */
ZV_API unsigned long SepRows(char* text);

} // extern "C"

#endif
