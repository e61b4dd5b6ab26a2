/**
 * What a host shares with the library: identifiers on a card, limits of texts, sizes of buffers. Plain C; zvRenew.h
 * includes it.
 */
#ifndef ZV_CONSTANTS_H
#define ZV_CONSTANTS_H

/* ---- On the card. Identifiers are CKA_IDs, read as text. ---- */

/** What the identifiers of signature pairs (PRA) begin with; a digit follows. */
#define ZV_SIGNATURE_SERIES "DS"
/** The same of authentication pairs (AUT). */
#define ZV_AUTHENTICATION_SERIES "AUTHCertificate"
/** What the identifiers of other makers' signature pairs begin with. */
#define ZV_OTHER_SIGNATURE_SERIES "Sign_Keypair"
/** Digits of the pairs that a card comes with. */
#define ZV_FIRST_DIGITS "012"
/** Digits that renewed pairs take, in this order. */
#define ZV_RENEWED_DIGITS "345"
/** Identifier of a services card's own pair (CNS) and of its certificate. */
#define ZV_OWN_PAIR "CNS0"
/** Identifier and label of the authority's certificate on a signature card. */
#define ZV_AUTHORITY_ID "Korvalenta Firma Dig"
/** Label of the data object that marks a request for a services card's own pair. */
#define ZV_PENDING_MARKER "pending_CNS_key"
/** What the labels of an unfinished request's objects begin with. */
#define ZV_PENDING_PREFIX "pending_"
/** What the serial numbers of cards begin with that are not supported. */
#define ZV_REFUSED_SERIES "1201"

/* ---- Texts that a host gives: characters, terminator not counted ---- */

/** Of a user PIN. */
#define ZV_PIN_MAX 31
/** Of an identifier that a reading gives. */
#define ZV_ID_MAX 31
/** Of a pending identifier that survives a reading. */
#define ZV_PENDING_LABEL_MAX ZV_ID_MAX
/** Of a reader's name. */
#define ZV_READER_MAX 127
/** Of a slot's description, that are compared with a reader's name. */
#define ZV_DESCRIPTION_MAX 63
/** Of the directory of the PKCS#11 modules. */
#define ZV_MODULE_DIR_MAX 511
/** Of the directory of a host's own ATR table. */
#define ZV_ATR_DIR_MAX 1023
/** Of a request's subject in bytes, as given and with names written as OIDs, one byte more for each attribute. */
#define ZV_SUBJECT_MAX 1023
/** Of an issued certificate's text that fits the command block with everything else, roughly. */
#define ZV_CERT_TEXT_MAX 7500
/** Number of the last slot that requests and installing work with. */
#define ZV_LAST_SLOT 9
/** Objects of a card that a search gives; one that gives more fails, as it may have no end. */
#define ZV_OBJECTS_MAX 4096
/** Bits of the keys that are generated, and of the largest that a certificate is stored for. */
#define ZV_KEY_BITS 2048
/** What a text given for a reader contains when it is the path of a PKCS#11 module. */
#define ZV_MODULE_PATH_MARK ".dll"

/* ---- Buffers that a host gives: characters, terminator included ---- */

/** Characters of the path of a PKCS#11 module. */
#define ZV_MODULE_PATH_SIZE 512
/** Pointers of a certificate list: the count, then at most ten certificates. */
#define ZV_LIST_ENTRIES 11
/** Characters of each list entry. */
#define ZV_LIST_ENTRY_SIZE 4096
/** Characters of a name within a record; a longer one comes cut. */
#define ZV_RECORD_NAME_SIZE 512
/** Characters of a key identifier buffer. */
#define ZV_KEY_ID_SIZE (ZV_ID_MAX + 1)
/** Characters of a label buffer that holds whatever installing may write into it. */
#define ZV_LABEL_SIZE 256
/** Characters of the buffer for a request. */
#define ZV_REQUEST_SIZE 16384

/* ---- Files that a request passes through; a folder or another user's file of the name stops it ---- */

/** Where they are, and the program's locks. */
#define ZV_TEMP_FOLDER "/tmp"
/** The request, to be signed. */
#define ZV_REQUEST_FILE ZV_TEMP_FOLDER "/tmpReqFile"
/** What the crypto library signed. */
#define ZV_SIGNED_FILE ZV_TEMP_FOLDER "/szP7MName"
/** The same as base64. */
#define ZV_BASE64_FILE ZV_TEMP_FOLDER "/szP7MNameB64"

/* ---- What a host reads ---- */

/** Characters of a text for the user, szBuffErr or szSockMsg. */
#define ZV_MESSAGE_SIZE 512
/** Texts of PKCS#11 results in errorMessages. */
#define ZV_MESSAGES 512

#endif
