/**
 * zvRenew: renews the certificates on a smart card. What a host program calls and reads; plain C.
 *
 * Conventions
 *
 *  1. Texts are NUL-terminated. A null text argument is taken as an empty text (a null `reader` stays "the
 *     first reader"); null output buffers, lists and list entries are skipped.
 *  2. Every buffer belongs to the caller, who gives the sizes stated here; nothing is returned for the caller
 *     to free.
 *  3. A result of 0 is success. Otherwise it is one of the ZV_ codes below, a PKCS#11 result (CKR_...,
 *     pkcs11.h) of the step that failed, or a code of the crypto library (zvCrypt.h, from 0x2000 up). The
 *     entry points rinnovo_... put the text for the user into szBuffErr. Where a text comes from the crypto
 *     library (kvLastError) it is empty when nothing failed there, as after a wrong PIN, or is about
 *     something that failed earlier: the text is then the one of the code in errorMessages.
 *  4. Calls must not overlap: the library keeps its state in variables of the process and takes no locks.
 *  5. Call loadErrorCodes() once before anything else; the library never does, and without it the Italian
 *     messages of PKCS#11 failures are empty.
 *  6. Every step goes to the user's log, "/.trevallo/zvRenew.log" below the home directory of the user
 *     database. The library does not create that directory: the host does (mode 0700). Without it nothing is
 *     logged. A PIN never is.
 *  7. Requests and installing work on the module and the slot of the last card detection, that is of the last
 *     rinnovo_Card_readCerts or rinnovo_Card_findFreeCKAID: read the card first, go on only after a success,
 *     and do not let a search in another reader come between. Only slots 0 to ZV_LAST_SLOT can be used
 *     by them.
 *  8. Each call opens the card's PKCS#11 module itself and finalises it (C_Finalize) for the whole process
 *     when done: a host that uses the same module loses its sessions.
 *  9. "Identifier" always means a CKA_ID, read as text. Signature (PRA) pairs are "DS"
 *     (ZV_SIGNATURE_SERIES) and a digit, authentication (AUT) pairs "AUTHCertificate"
 *     (ZV_AUTHENTICATION_SERIES) and a digit, the national services card's own pair is "CNS0" (ZV_OWN_PAIR).
 *     The digits ZV_FIRST_DIGITS are the card's first keys; renewed keys take ZV_RENEWED_DIGITS.
 * 10. Guards: a call whose arguments would cost a key or a PIN try, or would not reach the card unchanged, is
 *     stopped before the card is touched. The log then has a line "Operazione non inviata: " and the reason,
 *     szBuffErr is "Errore nella mininfo", the result -10000 (1 for a certificate text that cannot be read
 *     and would be installed with deletion). Stopped are: an empty pendingLabel (but for a services card's own
 *     pair whose old request is kept); a request whose pendingLabel is part of keyId; installing whose
 *     pendingLabel is a proper part of certLabel; whatever would delete "CNS0" (a request that discards a
 *     pending "CNS0", installing with deletion and a certLabel that is part of "CNS0"); installing with
 *     deletion and a certLabel that is part of pendingLabel; a request whose subject has no known
 *     attribute, or would lose one for its length; and values that would not come through the command block
 *     as they are: longer than their fields or than the block, with a line feed or a key of the block
 *     inside, a PIN of more than ZV_PIN_MAX characters or with trailing blanks, a slot above ZV_LAST_SLOT.
 *     Two stand in front of the deletion of an old pending pair, with the same line and the result 1 of a
 *     deletion that failed: the pair has a certificate, or the search for one failed; the login that
 *     follows the deletion would not reach the slot in use (0 that is not the first of the module's list,
 *     8, 9). A login anew within a call that would not reach it is not made either. Two more leave result
 *     and texts as they are without them: after a PIN that the first login of a reading was refused with,
 *     the second is left out; and no call goes to a module that is not loaded or gave no function list. See
 *     docs/guards.md.
 * 11. The PIN: an empty one is sent to the card like any other and costs a try. Reading logs in twice (once
 *     for the dump that goes to the log, once for the lists); after a wrong, locked or expired PIN the second
 *     login is left out, so that one typing error costs one try. A request logs in twice as well: for the
 *     pair, and for the signed wrapping; three times when it discards a pair, after which the session is
 *     opened anew.
 */
#ifndef ZV_RENEW_H
#define ZV_RENEW_H

#include "zvConstants.h"

#include <stdbool.h>

/** Version of the library that this header came with; the build takes its own from here. */
#define ZV_VERSION_MAJOR 1
#define ZV_VERSION_MINOR 0
#define ZV_VERSION_PATCH 4

#define ZV_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/** Success. */
#define ZV_OK 0
/** The command or the certificate was refused by the machinery; szSockMsg may say more. */
#define ZV_FAILED 1
/** Card not supported, or a temporary file that could not be used. */
#define ZV_UNSUPPORTED 100
/** No module, no slot, unknown command or no memory. */
#define ZV_UNUSABLE (-1)
/**
 * A call stopped by a guard before the card was touched (the log says so), or a request too large for its
 * buffer.
 */
#define ZV_NOT_SENT (-10000)

/**
 * Text for the user after a failed rinnovo_ call, which clears it at its start (rinnovo_Card_findFreeCKAID
 * does not).
 */
extern ZV_API char szBuffErr[ZV_MESSAGE_SIZE];

/**
 * Text for the user of the last failure inside the request machinery (session, key generation, signature).
 * Never cleared by the library: empty it before a call to know whether it belongs to that call.
 */
extern ZV_API char szSockMsg[ZV_MESSAGE_SIZE];

/**
 * True when the card of the last services-card reading or free search holds a certificate whose identifier
 * begins "DS3", "DS4" or "DS5". Other readings leave it.
 */
extern ZV_API bool use2048Bit;

/** Always true: new signature keys are to have 2048 bits. */
extern ZV_API bool force2048PraGen;

/**
 * True when the serial number read last begins with "1205"; a detection that ends before reading one leaves
 * it.
 */
extern ZV_API bool is1205SerialToken;

/**
 * Italian texts of the PKCS#11 results, indexed by result code (PKCS#11 section 11.1); empty until
 * loadErrorCodes. Only results from 0 to below ZV_MESSAGES are an index: ZV_UNUSABLE, ZV_NOT_SENT and any other
 * negative result are none, nor are codes of ZV_MESSAGES and more. Check before indexing.
 */
extern ZV_API char errorMessages[ZV_MESSAGES][ZV_MESSAGE_SIZE];

/** Fills errorMessages. May be called again. */
ZV_API void loadErrorCodes(void);

/**
 * Says where an ATR table of the host's own (atr.ini) is; it is then asked before the built-in one.
 *
 * @param[in] dir  directory, 1 to ZV_ATR_DIR_MAX characters; null, empty or longer: back to the crypto library's
 *                 configuration and built-in table
 */
ZV_API void set_ATRini_path(const char* dir);

/**
 * Detects the card and lists its certificates, pending keys and free identifiers.
 *
 * A certificate list is an array of ZV_LIST_ENTRIES pointers to buffers of ZV_LIST_ENTRY_SIZE characters.
 * Entry 0 receives the number of certificates in decimal, entries 1 to n one record each, fields joined by
 * "#" (a "#" inside a field is not marked). The lists have ten records at most together; what is pending or
 * free is answered from everything on the card. Every entry must be an empty text before every call, since
 * counts and records are appended. listCNS is written for a services card only: take an empty entry 0 as 0.
 *
 * Records: subject, issuer (attributes as numeric OIDs, "2.5.4.6=IT2.5.4.10=..."), IUT (dnQualifier),
 * policies, serial number, start, end ("DD/MM/YYYY HH:MM:SS", UTC), identifier, then for PRA: notice text,
 * subject key identifier, codice fiscale; for AUT and CNS: subject key identifier, codice fiscale.
 *
 * Signature cards: PRA are the identifiers "DS" and a digit or "Sign_Keypair...", all others AUT; the
 * authority's certificate is left out. When there are PRA certificates and a PRA pair is pending, the first PRA
 * record and the first AUT record each get one more field: keyPRA and keyAUT.
 *
 * Services cards: PRA are "DS...", CNS "CNS0...", AUT the rest (an identifier that is not an AUT one repeats
 * the last one known); certificates without a private key are left out; a "CNS0" behind ten others takes the
 * tenth's place. In names of a "CNS0" certificate the common name comes last, and what followed it stays as it was
 * within the first 62 characters behind "CN=".
 * The first record of each list gets one more field when a pair (or, for CNS, a request) of that kind is
 * pending: its identifier.
 *
 * @param[in]  reader        reader to use; null: the first that holds a card. The first slot whose
 *                           description is part of the reader's name is taken: of a reader "X" and one "X
 *                           01", "X" answers for both, and the PIN goes there. A description holds 64
 *                           characters: of readers whose names agree in 64, the first slot with a card
 *                           answers for all. A text containing ".dll" is taken as the module path
 *                           itself: no detection, slot 0, services card
 * @param[in]  pin           user PIN; see convention 11
 * @param[in]  reservedInt   not used
 * @param[out] listCNS, listPRA, listAUT  lists as described
 * @param[out] pendingCNS  1 when the card's marker says that a request for its own pair is under way, else 0
 * @param[out] pendingPRA, pendingAUT  1 when a pair generated for a request waits for its certificate, else
 *                                     0. The first pending pair found ends the search: at most one of the two
 *                                        is reported. A search that failed leaves 0 and empty keys
 * @param[out] keyPRA, keyAUT  ZV_KEY_ID_SIZE characters each: the pending pair's identifier; else a free
 *                             identifier for a new pair; else empty. A text without a digit ("DS",
 *                             "AUTHCertificate") means that none is free; a full DS series also stops the
 *                             proposal for AUT. "Free" looks at public keys only. A kind without a
 *                             certificate on the card gets no proposal here (rinnovo_Card_findFreeCKAID
 *                             gives one); on a signature card the authority's certificate counts as an AUT
 *                             one
 * @param[in]  reservedText  not used
 * @param[in]  moduleDir     directory of the PKCS#11 modules, at most ZV_MODULE_DIR_MAX characters
 *
 * @return 0; 100 unknown card, or one of the refused series "1201" ("Tipo di Smart Card non supportato"); -1
 *         no slot of the module belongs to the reader, the module cannot be used, or the inventory failed;
 *         the PKCS#11 result of the session that could not be opened; a code of the crypto library. With no
 *         reader at all, detection ends without a module and the session fails with -1.
 * After a failure: nothing on the card has changed and no list entry is written. A wrong PIN has cost one
 * try.
 */
ZV_API int rinnovo_Card_readCerts(char* reader, char* pin, int reservedInt, char** listCNS, char** listPRA,
                                  char** listAUT, int* pendingCNS, int* pendingPRA, int* pendingAUT,
                                  char* keyPRA, char* keyAUT, char* reservedText, const char* moduleDir);

/**
 * Finds the identifiers for a new PRA and a new AUT pair: a pending pair's, else the first of 3, 4, 5 that no
 * public key has.
 *
 * The module directory of the last rinnovo_Card_readCerts is used; szBuffErr is not cleared at the start.
 *
 * @param[in]  reader, pin     as in rinnovo_Card_readCerts, but without the ".dll" form; one login
 * @param[out] keyPRA, keyAUT  ZV_KEY_ID_SIZE characters each; a text without a digit means that none is free
 *
 * @return 0; 1 none free in one of the series (keyPRA is "DS": none for PRA, and AUT was not looked for);
 *         otherwise as rinnovo_Card_readCerts
 * After a failure: nothing on the card has changed.
 */
ZV_API int rinnovo_Card_findFreeCKAID(char* reader, char* pin, char* keyPRA, char* keyAUT);

/**
 * Makes a signature-certificate request: a PKCS#10 request (RFC 2986) for a key pair generated on the card,
 * signed by that pair, and wrapped as CMS SignedData (RFC 5652) by an existing key of the card.
 *
 * The pair: one whose identifier contains pendingLabel and that is on the card already is used again;
 * otherwise 2048 bits are generated, which can take a minute. The request carries SHA-1
 * (sha1WithRSAEncryption); the wrapping SHA-256.
 *
 * @param[out] requestOut    ZV_REQUEST_SIZE characters: the DER of the CMS in base64, lines of 64
 *                           characters. A longer one is cut, with result 0: take a text of exactly
 *                           ZV_REQUEST_SIZE - 1 characters as a failure. A terminator is always written
 *                           there. Not touched after a failure
 * @param[in]  pendingLabel  the whole and final identifier of the new pair, at most ZV_ID_MAX characters, such as
 *                           keyPRA of a reading: it becomes the CKA_ID and CKA_LABEL of both keys. Must not
 *                           be empty, nor a part of keyId
 * @param[in]  pin           user PIN, at most ZV_PIN_MAX characters, no trailing blank
 * @param[in]  keyId         identifier of the card's key that signs the wrapping (the certificate being
 *                           renewed), whole and without blanks behind it: with them the pair is made, and
 *                           then no key is found to sign. On a services card the identifier "CNS0" goes
 *                           through rinnovo_Card_createCertRequestAUT
 * @param[in]  dn            subject: attributes as OID and "=", one directly behind the other
 *                           ("2.5.4.6=IT2.5.4.3=NAME...", as the records give them), or "/OU=",
 *                           "/emailAddress=", "/gn=", "/serialNumber=", in these letters. Other names
 *                           ("/CN=") are not known, and an OID inside a value starts a new attribute. There
 *                           is no separator: whatever stands between two attributes (", ", "/", an unknown
 *                           one) belongs to the value in front of it, but for trailing blanks; in front of
 *                           the first it is dropped. Values are cut to 64 bytes (country 2, description,
 *                           e-mail and locality 127), never within a character of UTF-8. A sixth
 *                           organisational unit is ignored; an attribute that comes again takes the place of
 *                           the first. At most ZV_SUBJECT_MAX bytes, as given and with names written as OIDs and one
 *                           byte more for each attribute: what is longer and would lose an attribute is
 *                           stopped, as is a subject without any
 * @param[in]  keepFlag      true *discards*, before the request, the old pending pair whose CKA_ID is exactly
 *                           pendingLabel: a certificate issued for it can no longer be installed. It is looked
 *                           for when a public key has the CKA_LABEL pendingLabel, as a request leaves it, or
 *                           a private key one that begins "pending_"; else nothing is discarded. A pair that
 *                           has a certificate stays, and the request fails. False keeps an old pair and uses
 *                           it again
 *
 * @return 0; -10000 a guard, or a request too large; 1 the request machinery (szSockMsg may hold the reason);
 *         100 a temporary file; -1 no module (no reading before) or no memory; a PKCS#11 result of the
 *         session; a code of the crypto library
 * After a failure: the pair, if it was generated, stays on the card under pendingLabel, and the next call
 * with that label uses it again; with keepFlag true an old pair may be gone. When only half of it is there
 * the discarding fails, and with it the request. The temporary files (ZV_REQUEST_FILE, ZV_SIGNED_FILE,
 * ZV_BASE64_FILE; no secrets) are left. With another maker's crypto library the card may stay logged in,
 * to any PIN, when the wrapping failed: DoFinalize ends that.
 */
ZV_API int rinnovo_Card_createCertRequestPRA(char* requestOut, const char* pendingLabel, char* pin,
                                             char* keyId, const char* dn, bool keepFlag);

/**
 * Makes a request for the authentication certificate, or, with keyId exactly "CNS0", for the services card's
 * own pair.
 *
 * For "CNS0" no pair is generated: the card's key is used, the subject has no title and no pseudonym, and a
 * marker object "pending_CNS_key" says that a request is under way. pendingLabel then names no pair of the
 * request, but with keepFlag true the old pending pair of that name is discarded all the same; installing wants
 * "CNS0". Everything else as rinnovo_Card_createCertRequestPRA.
 */
ZV_API int rinnovo_Card_createCertRequestAUT(char* requestOut, const char* pendingLabel, char* pin,
                                             char* keyId, const char* dn, bool keepFlag);

/**
 * Installs the issued signature certificate on the card, next to its pending pair.
 *
 * With keepOld false, *before the new certificate is compared with its pair*, every object whose identifier
 * contains certLabel is removed, keys included ("DS" would remove every signature pair), and with them the
 * authority's certificate "Korvalenta Firma Dig" (ZV_AUTHORITY_ID), which nothing puts back. Then the
 * pending pair is looked for, gets pendingLabel as CKA_ID and CKA_LABEL, and the certificate is compared
 * with it and written under the same text; when it is refused, the pair is given pendingLabel again.
 * (Modules named bit4ipki, bit4hipki, incryptoki2 or cnspkcs11 keep the pair's old texts; a module that
 * does not read keys leaves out the comparison.) The marker "pending_CNS_key" of a services card is removed
 * after any success.
 *
 * @param[in]     pin           user PIN, at most ZV_PIN_MAX characters, no trailing blank
 * @param[in,out] certLabel     identifier of the certificate to replace, room for 4 characters at least:
 *                              trailing blanks are removed in place, and an empty text becomes "DS0" in place
 *                              (so an empty label *means* DS0). Give a whole identifier. It must not be a
 *                              part of pendingLabel when keepOld is false
 * @param[in]     pendingLabel  identifier of the pending pair, whole. A wrong one renames another key, also
 *                              when the certificate is refused: every key whose identifier contains it
 *                              matches, the last one found is taken. Must not be empty
 * @param[in]     certChain     the certificate: base64 DER, PEM or a PKCS#7 bundle, line breaks allowed. Some
 *                              ZV_CERT_TEXT_MAX characters at most, since the whole command must fit 8,000.
 *                              Subject and issuer up to ZVC_CARD_NAME_SIZE bytes of DER, keys up to ZV_KEY_BITS
 *                              bits
 * @param[in]     keepOld       true keeps the old certificate and its keys, false removes them first
 *
 * @return 0; -10000 a guard; 1 no pending pair, the certificate was refused (no certificate, not of the pair,
 *         not written) or a deletion failed; -1 no module (no reading before) or no memory; a PKCS#11 result
 *         of the session
 * After a failure: the pending pair is on the card, under its pending identifier; with keepOld false the old
 * objects may be gone already. The same call with keepOld true can be repeated.
 */
ZV_API int rinnovo_Card_saveCertPRA(char* pin, char* certLabel, char* pendingLabel, char* certChain,
                                    bool keepOld);

/**
 * Installs the issued authentication certificate, or, with certLabel exactly "CNS0", the services card's own.
 *
 * For "CNS0" pendingLabel is "CNS0" too. As rinnovo_Card_saveCertPRA, but an empty certLabel becomes
 * "AUTHCertificate0" (room for 17 characters), and the authority's certificate is left alone. For "CNS0" with
 * keepOld false only the certificate with exactly that identifier is removed, first of all: after a failure a
 * second try with keepOld false fails because it is gone (result -1); repeat with keepOld true. Over a "CNS0"
 * that is still there, keepOld true leaves two certificates of that identifier, where the card takes a second
 * (else 1); keepOld false then removes the first that the card gives, be it the new one. The marker
 * "pending_CNS_key" is removed once the certificate is installed.
 */
ZV_API int rinnovo_Card_saveCertAUT(char* pin, char* certLabel, char* pendingLabel, char* certChain,
                                    bool keepOld);

/**
 * Opens the crypto library's own session on the slot of the last reading and logs it in. Not used by the
 * calls above.
 *
 * @param[in] libPath  path of the PKCS#11 module
 * @param[in] pin      user PIN
 * @return 0, or the crypto library's code
 * After a failure: a session that was opened but not logged in stays open until DoFinalize.
 */
ZV_API int DoInitialize(char* libPath, char* pin);

/**
 * Closes the crypto library's own session, also one that a failed request left. Returns 0, or the crypto
 * library's code.
 */
ZV_API int DoFinalize(void);

#ifdef __cplusplus
}
#endif

#endif
