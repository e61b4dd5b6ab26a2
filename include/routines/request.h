/** Request. The conventions stand in routines.h. */
#ifndef ZV_ROUTINES_REQUEST_H
#define ZV_ROUTINES_REQUEST_H

#include "records.h"
#include "zvRenew.h"

#include <cstdarg>

extern "C" {

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
 * Makes a certificate request for the services card's own pair ZV_OWN_PAIR, and marks the card with a data object
 * ZV_PENDING_MARKER.
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

} // extern "C"

#endif
