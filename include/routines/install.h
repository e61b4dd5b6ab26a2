/** Installation. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_INSTALL_H
#define ZV_ROUTINES_INSTALL_H

#include "pkcs11.h"
#include "zvCrypt.h"
#include "zvRenew.h"

extern "C" {

/**
 * Installs an issued certificate next to the pending pair.
 *
 * The pair found by CheckPendingKeys gets the identifier to be, which Scarica sets, as CKA_ID and CKA_LABEL
 * (ChangeValueObject; not with modules named incryptoki2, bit4ipki, bit4hipki or cnspkcs11), then
 * InstallUserCertificate writes the certificate under the same text. The last argument is not read.
 *
 * @param[in]     certText       certificate as SplitCert takes it, at most ZVC_CERT_TEXT_MAX characters
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
 * Writes a certificate that carries the pending key on the card, and removes a marker ZV_PENDING_MARKER.
 *
 * The key's modulus (256 bytes at most) must stand in the certificate; a module that answers its reading
 * with CKR_FUNCTION_FAILED is spared the comparison. Subject and issuer have at most ZVC_CARD_NAME_SIZE
 * bytes of DER, the serial number 256, zero bytes in front dropped.
 *
 * @param[in]     cert           record with the certificate's DER
 * @param[in]     derLength      its bytes, at most ZVC_CERT_DER_SIZE
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
 * @param[in] derLength  its bytes, at most ZVC_CERT_DER_SIZE
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

} // extern "C"

#endif
