/** Command block and names. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_API_H
#define ZV_ROUTINES_API_H

#include "records.h"
#include "zvRenew.h"

extern "C" {

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
 * first slot). A block without "BEGIN_STRING" leaves the record empty, and the command runs all the same;
 * one that was cut runs with what is left of it, and without a keep flag of "R" it deletes. What guards
 * against that stands at the entry points.
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
 * Installs the certificate of a parsed block in the open session, which stays open.
 *
 * Identifier and label to be are those that Scarica set last; the record gives certificate and module.
 *
 * @param[in,out] rec     parsed block; the module's path is lower-cased
 * @param[in]     dn      not read
 * @param[out]    out     an empty text
 * @param[in,out] outLen  room in out in bytes, at least 1; then 0
 * @return 0; 1 as MemorizzazioneCertificato; -10000 no room, the certificate is installed
 * After a failure: as MemorizzazioneCertificato.
 */
ZV_API int ScaCert(REQRENIN* rec, datiDN* dn, char* out, unsigned* outLen);
/**
 * Opens the session, removes what is replaced unless the keep flag is 'R', installs the certificate, closes.
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
