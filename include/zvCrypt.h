/**
 * The crypto library's operations (libmin_zvCrypt): card readers, the module that serves a card, a card
 * session of its own, signed files, certificate fields.
 *
 * Conventions
 *
 *  1. A result of 0 is success, anything else one of the codes of zvCryptError. A code keeps its meaning.
 *  2. Texts are NUL-terminated; those that come out are UTF-8. Every output text is terminated, whatever the
 *     result, and nothing is written past the size stated or given. Where a text does not fit, it ends after
 *     the last whole character that does, and the result is ZVC_ERR_CUT.
 *  3. A null argument is ZVC_ERR_ARGUMENT and touches nothing else (but see 8).
 *  4. Each operation forgets the reason of the failure before it and keeps its own for kvLastError, in
 *     Italian; kvLastError itself, kvIsCNSINCARD, kvIsTOUCHSIGN, Sha1Digest and writeBuff leave it as it is.
 *  5. Files are opened without following a link in their last component; what is no plain file is not read.
 *     An output file is created once the input is open: anew, with mode 0600, after a leftover of that name is
 *     removed (a link itself, never its target; no folder and no device). A failure from then on leaves none;
 *     one before leaves what has the name, and so does one because another took the name meanwhile. Files go
 *     through in pieces: a large one takes no more memory than a small one.
 *  6. The session, the flags of the last card and the last reason belong to the process; calls must not
 *     overlap.
 *  7. No text and no file ever holds the PIN. One copy of it is kept: from a login that the card answered with
 *     CKR_OK until its session ends, in memory that is locked, not dumped and wiped. It is given again only for a
 *     key that asks for it at each signature (kvSignFile).
 *  8. An operation on readers, cards or files that fails while the session is logged in ends that session as
 *     kvFinalize does, with the reason kept: an open card would take any PIN for the right one. A refused kvLogin
 *     leaves the session; so do the operations on certificates and texts.
 *  9. Every operation may be called until the process ends, from exit handlers and destructors too. To those set up
 *     before kvInitialize the session is closed already: its module ends before they run.
 */

// clang-format off
/*
 * Configuration: the first of these files that exists. The one that the environment variable ZVCRYPT_CONF names
 * (it must exist; /dev/null stands for none at all), $XDG_CONFIG_HOME/zvcrypt.conf or, without that variable,
 * ~/.config/zvcrypt.conf, /etc/zvcrypt.conf (the folder is the build's CMAKE_INSTALL_SYSCONFDIR). In a set-user-id
 * process only the last one. It, the built-in table and a host's atr.ini have one form, of which docs/cards.md tells
 * more:
 *
 *     [card ANY NAME]           ; a kind of card; the first entry whose pattern matches wins
 *     atr = 3BFF18..0081        ; hexadecimal; '.', 'X' and '?' stand for any digit, blanks and ':' for nothing
 *     module = libmodule.so     ; file name of the PKCS#11 module, without a folder
 *     flags = cns touchsign     ; optional
 *
 *     [reader ANY NAME]         ; a software reader (not in an atr.ini)
 *     name = Scrivania 00 00    ; optional: the name, when it is long or has a ']' in it
 *     atr = 3BFF1800            ; of the card that is always in it
 */
// clang-format on

#ifndef ZV_CRYPT_H
#define ZV_CRYPT_H

#include <stdint.h>

#define ZVCRYPT_API __attribute__((visibility("default")))

/** Of the configuration: the variable that names it, its file name, and the folder that it has in the user's home. */
#define ZVC_CONFIGURATION_VARIABLE "ZVCRYPT_CONF"
#define ZVC_CONFIGURATION_FILE "zvcrypt.conf"
#define ZVC_CONFIGURATION_HOME ".config"

#ifdef __cplusplus
extern "C" {
#endif

/** Results. PKCS#11 codes, 100 and -1 are never among them. */
enum zvCryptError {
    ZVC_OK = 0,
    ZVC_ERR_ARGUMENT = 0x2000,       /* a null argument, or one that makes no sense */
    ZVC_ERR_INTERNAL = 0x2001,       /* memory is exhausted or OpenSSL failed */
    ZVC_ERR_CUT = 0x2002,            /* a text did not fit its buffer */
    ZVC_ERR_NO_SERVICE = 0x2010,     /* no PC/SC service that answers, and no software reader */
    ZVC_ERR_READER = 0x2011,         /* PC/SC failed on the readers */
    ZVC_ERR_UNKNOWN_READER = 0x2012, /* nobody knows the reader */
    ZVC_ERR_NO_CARD = 0x2013,        /* no card in the reader */
    ZVC_ERR_MUTE_CARD = 0x2014,   /* a card in the reader that does not answer, as one put in the wrong way */
    ZVC_ERR_CONFIG_FILE = 0x2018, /* a configuration file or atr.ini cannot be read */
    ZVC_ERR_CONFIG = 0x2019,      /* a malformed line in one of them */
    ZVC_ERR_MODULE_LOAD = 0x2020, /* the PKCS#11 module cannot be loaded */
    ZVC_ERR_MODULE = 0x2021,      /* a call to the module failed; the reason has its code */
    ZVC_ERR_MODULE_ANSWER = 0x2022,   /* the module answered what it never may */
    ZVC_ERR_NO_SESSION = 0x2023,      /* no session is open */
    ZVC_ERR_CARD_REMOVED = 0x2024,    /* the card is not in the slot, or was taken out */
    ZVC_ERR_NOT_LOGGED_IN = 0x2025,   /* the card wants the PIN first */
    ZVC_ERR_PIN_EMPTY = 0x2028,       /* an empty PIN; the card was not asked */
    ZVC_ERR_PIN_INCORRECT = 0x2029,   /* a wrong PIN: one try is spent */
    ZVC_ERR_PIN_LOCKED = 0x202A,      /* the PIN is locked */
    ZVC_ERR_PIN_EXPIRED = 0x202B,     /* the PIN has expired */
    ZVC_ERR_PIN_FORM = 0x202C,        /* a length or characters that the card's PIN cannot have */
    ZVC_ERR_KEY_PIN = 0x202D,         /* refused to a key that wants it at each signature */
    ZVC_ERR_PIN_UNSENT = 0x202E,      /* not sent for a key that wants it at each signature */
    ZVC_ERR_KEY = 0x2030,             /* no private key with that identifier, or one of no use here */
    ZVC_ERR_CERTIFICATE = 0x2031,     /* no certificate on the card for the key */
    ZVC_ERR_HASH = 0x2032,            /* a hash name that is not supported */
    ZVC_ERR_SIGNATURE = 0x2033,       /* the card's signature does not verify with the certificate */
    ZVC_ERR_INPUT = 0x2038,           /* the input cannot be read, or is no plain file */
    ZVC_ERR_OUTPUT = 0x2039,          /* the output file cannot be created or written */
    ZVC_ERR_MODE = 0x203A,            /* a conversion mode that is not supported */
    ZVC_ERR_BASE64 = 0x203B,          /* a text that is not base64 */
    ZVC_ERR_BAD_CERTIFICATE = 0x2040, /* no X.509 certificate, or a field is malformed */
    ZVC_ERR_TEXT_LENGTH = 0x2041,     /* a certificate text of more than ZVC_CERT_TEXT_MAX characters */
    ZVC_ERR_TEXT_FORM = 0x2042,       /* a text that holds no certificate in a known form, or none at all */
    ZVC_ERR_NO_HOLDER = 0x2043,       /* only certificates of authorities in the text */
    ZVC_ERR_TWO_HOLDERS = 0x2044,     /* certificates of more than one holder in the text */
    ZVC_ERR_ROOM = 0x2045             /* a binary result does not fit its buffer */
};

/* Sizes, in bytes, of the buffers that a caller gives without saying their size; NUL included. */
#define ZVC_READER_LIST_SIZE 1024
#define ZVC_MODULE_NAME_SIZE 512
#define ZVC_DATE_SIZE 24
#define ZVC_DESCRIPTION_SIZE 2048
#define ZVC_CERT_TEXT_SIZE 8192
#define ZVC_CERT_DER_SIZE 8192
#define ZVC_CARD_NAME_SIZE 512   /* a subject or an issuer in DER, as it is stored on a card */
#define ZVC_CARD_SERIAL_SIZE 256 /* a serial number's content bytes */
#define ZVC_SHA1_SIZE 20
#define ZVC_TOKEN_LABEL_SIZE 80
#define ZVC_TOKEN_MANUFACTURER_SIZE 48
#define ZVC_TOKEN_MODEL_SIZE 32
#define ZVC_TOKEN_SERIAL_SIZE 32
/* Characters of a certificate text, NUL not counted. */
#define ZVC_CERT_TEXT_MAX (ZVC_CERT_TEXT_SIZE - 1)

/** A certificate read from text: 8709 bytes, without padding. */
#pragma pack(push, 1)
typedef struct datiCert {
    unsigned char der[ZVC_CERT_DER_SIZE]; /* the certificate, DER */
    uint64_t derLength;                   /* its length in bytes */
    unsigned char reserved[509];          /* the crypto library's own */
} datiCert;
#pragma pack(pop)

/* ---- Readers and cards ---- */

/**
 * Lists the card readers: those of PC/SC with a card that answers, with another, without a card, the configured
 * software readers.
 *
 * @param[out] list  ZVC_READER_LIST_SIZE bytes; each name followed by "|"; whole names only, as many as
 *                   fit; empty without readers. A name with a "|" in it is left out (its reader can be
 *                   looked up all the same); where that leaves none, the result is ZVC_ERR_READER
 * @return 0; ZVC_ERR_NO_SERVICE; ZVC_ERR_READER; ZVC_ERR_CONFIG_FILE; ZVC_ERR_CONFIG
 * After a failure: the list is empty. A PC/SC failure is none when there are software readers: they are
 * listed. Standard: PC/SC (SCardListReaders, SCardGetStatusChange).
 */
ZVCRYPT_API int kvGetReader(char* list);

/**
 * Finds the PKCS#11 module for the card in a reader by its ATR: the configuration's entries first, then the
 * built-in table. A reader name that is both a software reader's and PC/SC's is the software reader.
 *
 * @param[in]  reader  reader name, whole
 * @param[out] module  ZVC_MODULE_NAME_SIZE bytes; the module's file name, or empty for an unknown card
 * @return 0, also for an unknown card; ZVC_ERR_UNKNOWN_READER; ZVC_ERR_NO_CARD; ZVC_ERR_MUTE_CARD;
 *         ZVC_ERR_NO_SERVICE; ZVC_ERR_READER; ZVC_ERR_CONFIG_FILE; ZVC_ERR_CONFIG
 * After a failure, and for an unknown card: module is empty, and no flag of a card looked up before stands.
 * Standard: ISO/IEC 7816-3 (answer to reset).
 */
ZVCRYPT_API int kvGetPKCS11FromATR(char* reader, char* module);

/**
 * The same as kvGetPKCS11FromATR, with a table of the host's own before the others.
 *
 * @param[in]  reader  reader name, whole
 * @param[out] module  ZVC_MODULE_NAME_SIZE bytes; the module's file name, or empty for an unknown card
 * @param[in]  iniDir  folder that holds the file "atr.ini", which must exist
 * @return as kvGetPKCS11FromATR
 */
ZVCRYPT_API int kvGetPKCS11FromATRLite(char* reader, char* module, const char* iniDir);

/** Tells whether the card last looked up is a national services card (CNS): 1 or 0. */
ZVCRYPT_API int kvIsCNSINCARD(void);

/** Tells whether the card last looked up is a touch-sign card: 1 or 0. */
ZVCRYPT_API int kvIsTOUCHSIGN(void);

/* ---- The crypto library's own session ---- */

/**
 * Loads a PKCS#11 module and opens a read-only session on one of its slots, after closing the one before.
 *
 * @param[in] libPath  path of the module
 * @param[in] slot     slot identifier; its 32 bits are taken as unsigned
 * @return 0; ZVC_ERR_MODULE_LOAD; ZVC_ERR_CARD_REMOVED; ZVC_ERR_MODULE; ZVC_ERR_MODULE_ANSWER
 * After a failure: nothing is open. A module that was initialised already stays so in every case.
 * Standard: PKCS#11 (C_Initialize, C_OpenSession).
 */
ZVCRYPT_API int kvInitialize(char* libPath, int slot);

/**
 * Logs the session in with the user PIN. Being logged in already is success.
 *
 * @param[in] pin  user PIN
 * @return 0; ZVC_ERR_PIN_EMPTY (the card is not asked); ZVC_ERR_PIN_INCORRECT; ZVC_ERR_PIN_LOCKED;
 *         ZVC_ERR_PIN_EXPIRED; ZVC_ERR_PIN_FORM (CKR_PIN_INVALID, CKR_PIN_LEN_RANGE: whether a try is spent is not
 *         known); ZVC_ERR_NO_SESSION; ZVC_ERR_CARD_REMOVED; ZVC_ERR_MODULE
 * After ZVC_ERR_PIN_INCORRECT: one try is spent; the reason says so when the card tells that few are left. The
 * session stays in every case.
 * Standard: PKCS#11 (C_Login, CKU_USER).
 */
ZVCRYPT_API int kvLogin(const char* pin);

/**
 * Logs out what kvLogin logged in, closes the session and unloads the module; finalises the module if
 * kvInitialize initialised it. With nothing open it is success, and so when the module was finalised or the card
 * taken out meanwhile.
 *
 * @return 0; ZVC_ERR_MODULE
 * After a failure: nothing is open all the same.
 * Standard: PKCS#11 (C_Logout, C_CloseSession, C_Finalize).
 */
ZVCRYPT_API int kvFinalize(void);

/**
 * Reads what the card in the session's slot says of itself; blanks around each text are removed, and a '?' stands for
 * each byte that is no UTF-8 and each control character or mark of direction.
 *
 * @param[out] label         ZVC_TOKEN_LABEL_SIZE bytes; the token's label
 * @param[out] manufacturer  ZVC_TOKEN_MANUFACTURER_SIZE bytes; its manufacturer
 * @param[out] model         ZVC_TOKEN_MODEL_SIZE bytes; its model
 * @param[out] serial        ZVC_TOKEN_SERIAL_SIZE bytes; its serial number, 16 characters at most
 * @return 0; ZVC_ERR_NO_SESSION; ZVC_ERR_CARD_REMOVED; ZVC_ERR_MODULE
 * After a failure: all four are empty; a session that is not logged in stays as it is (convention 8).
 * Standard: PKCS#11 (C_GetTokenInfo).
 */
ZVCRYPT_API int kvCheckSmartCard(char* label, char* manufacturer, char* model, char* serial);

/* ---- Files ---- */

/**
 * Signs a file with a key of the card: CMS SignedData in DER with the content in it (CAdES-BES), the signer's
 * certificate and its issuer's if the card holds it. The issuer's is left out where the result, in base64
 * lines of 64 characters, would pass 16383 characters. The card makes one RSA signature (CKM_RSA_PKCS), which
 * is verified with the certificate before anything is written. It takes eleven calls to the module and one for
 * each certificate of the card (while there are at most 64), and where several keys, or certificates of
 * different keys, have keyId, one for each key.
 *
 * A key with CKA_ALWAYS_AUTHENTICATE wants the PIN between C_SignInit and C_Sign. It is given the one that kvLogin
 * kept, once a signature (two calls more). It is not sent (ZVC_ERR_PIN_UNSENT) when none is kept (the card
 * was open before kvLogin, or memory cannot be locked), when the token's flags say that one try or none is left, and
 * after any refusal in this process (ZVC_ERR_KEY_PIN): the key may have a PIN of its own.
 *
 * Where several certificates with keyId are the key's own, one that is valid now signs rather than one that
 * is not; among equals the one that ends last, then the one that begins last. An expired one signs when there
 * is no better: what that signature is worth is for its receiver to say.
 *
 * @param[in] keyId     CKA_ID of the private key; the signer's certificate has the same
 * @param[in] hashName  "SHA256", "SHA384" or "SHA512"
 * @param[in] inPath    file to sign; what is signed is the file opened, even if it loses its name meanwhile
 * @param[in] outPath   result; not the input file
 * @return 0; ZVC_ERR_NO_SESSION; ZVC_ERR_NOT_LOGGED_IN; ZVC_ERR_HASH; ZVC_ERR_INPUT (also when the file
 *         changed while it was signed); ZVC_ERR_OUTPUT; ZVC_ERR_KEY (none, or one that the card does not sign
 *         with); ZVC_ERR_CERTIFICATE (none, of several none that is the key's, or not an RSA key's);
 *         ZVC_ERR_SIGNATURE (the only certificate is another key's); ZVC_ERR_KEY_PIN;
 *         ZVC_ERR_PIN_UNSENT; ZVC_ERR_CARD_REMOVED; ZVC_ERR_MODULE; ZVC_ERR_MODULE_ANSWER
 * After a failure: no result file is left (convention 5); a session that was logged in is closed (convention 8).
 * Standard: RFC 5652 (SignedData), RFC 5035 (signing-certificate-v2), ETSI EN 319 122-1, RFC 8017 (PKCS#1
 * v1.5).
 */
ZVCRYPT_API int kvSignFile(const char* keyId, const char* hashName, const char* inPath, const char* outPath);

/**
 * Writes a file in base64, or back.
 *
 * @param[in] inPath   file to convert
 * @param[in] outPath  result; not the input file
 * @param[in] mode     "e" to encode, in lines of 64 characters that each end with a line feed; "d" to decode
 *                     a text of which blanks and line ends do not count
 * @return 0; ZVC_ERR_MODE; ZVC_ERR_INPUT; ZVC_ERR_OUTPUT; ZVC_ERR_BASE64
 * After a failure: no result file is left (convention 5).
 * Standard: RFC 4648, section 4.
 */
ZVCRYPT_API int kvFileToBase64(char* inPath, char* outPath, const char* mode);

/**
 * Gives the reason of the last failure, in Italian; an empty text when the last operation succeeded.
 *
 * @param[out] buffer  the text; null is allowed and does nothing
 * @param[in]  size    its size in bytes; 0 or less does nothing
 * @return the code of that failure, or 0
 */
ZVCRYPT_API int kvLastError(char* buffer, int size);

/* ---- Fields of a certificate ----
 *
 * Each takes the certificate in DER (bytes after its end are ignored, as cards pad) and gives one text. What
 * is asked for is read as it was issued: a wrong character in a name or a needless byte in front of the serial
 * number is no failure, and neither signature nor validity are looked at. kvSignFile and SplitCert take such
 * certificates as well; their bytes are carried as they are.
 *
 * Texts of the certificate come as UTF-8: a BMPString is read as UTF-16, T61String and the other types of one
 * byte a character as Latin-1. A control character and a backslash come as \xNN, a mark of direction, a line
 * separator or a C1 control as \UNNNN, bytes that are no character of their type as \xNN each (upper-case
 * hexadecimal).
 *
 * @param[in]  der     the certificate
 * @param[in]  length  its length in bytes
 * @param[out] out     the text; empty when the certificate has no such field, which is success
 * @param[in]  size    size of out in bytes
 * @return 0; ZVC_ERR_BAD_CERTIFICATE; ZVC_ERR_CUT (out holds the beginning; an escape, the two digits of a
 *         byte and a policy are not cut either)
 * After another failure: out is empty.
 * Standard: RFC 5280, X.690 (DER).
 */

/**
 * Gives the subject's name in slash form ("/C=IT/O=.../CN=..."), with OpenSSL's short names, or the number of
 * an attribute without one, in the certificate's order; those of one RDN follow each other in the same way. A
 * "/", "=" or "+" inside a value stays as it is: the form is for people, names are compared by what ConvToDer
 * gives. Otherwise as told under "Fields of a certificate".
 */
ZVCRYPT_API int kvGetSubjectDN(unsigned char* der, unsigned long length, char* out, int size);

/** Gives the issuer's name in the same form. */
ZVCRYPT_API int kvGetIssuerDN(unsigned char* der, unsigned long length, char* out, int size);

/**
 * Gives the serial number in upper-case hexadecimal, two digits a byte, without zero bytes in front ("00" is
 * zero) and with "-" before a negative one.
 */
ZVCRYPT_API int kvX509GetSerial(unsigned char* der, unsigned long length, char* out, int size);

/** Gives the IUT, the holder's number at the authority: the subject's dnQualifier. */
ZVCRYPT_API int kvGetIUT(unsigned char* der, unsigned long length, char* out, int size);

/**
 * Gives the codice fiscale: from the subject's serialNumber ("IT:...", "TINIT-..."; ETSI EN 319 412-1), or
 * from the common name in front of its "/", as on a national services card.
 */
ZVCRYPT_API int kvGetCodFisc(unsigned char* der, unsigned long length, char* out, int size);

/** Gives the certificate policies as object identifiers joined by ",". */
ZVCRYPT_API int kvGetCertificatePolicies(unsigned char* der, unsigned long length, char* out, int size);

/** Gives the first explicit text of a user notice among the certificate policies. */
ZVCRYPT_API int kvGetExplicitText(unsigned char* der, unsigned long length, char* out, int size);

/** Gives the subject key identifier in upper-case hexadecimal. */
ZVCRYPT_API int zv_X509V3_get_subject_key_identifier(unsigned char* der, unsigned long length, char* out,
                                                     int size);

/**
 * Gives the first and the last day of a certificate as "DD/MM/YYYY HH:MM:SS", UTC, also of dates that were
 * written without seconds or in another zone.
 *
 * @param[in]  der, length  the certificate, DER, and its length in bytes
 * @param[out] date1        ZVC_DATE_SIZE bytes; valid from
 * @param[out] date2        ZVC_DATE_SIZE bytes; valid to
 * @return 0; ZVC_ERR_BAD_CERTIFICATE
 * After a failure: both are empty.
 */
ZVCRYPT_API int kvGetCertDate(unsigned char* der, unsigned long length, char* date1, char* date2);

/**
 * Gives both dates of a certificate, joined by " - ", and its subject in slash form.
 *
 * @param[in]  der, length  the certificate, DER, and its length in bytes
 * @param[out] dateText     the dates, as kvGetCertDate gives them
 * @param[in]  dateSize     size of dateText in bytes
 * @param[out] description  ZVC_DESCRIPTION_SIZE bytes; the subject, as kvGetSubjectDN gives it
 * @return 0; ZVC_ERR_BAD_CERTIFICATE; ZVC_ERR_CUT (a text did not fit and holds its beginning)
 * After another failure: both are empty.
 */
ZVCRYPT_API int GiveMeCertDate(unsigned char* der, unsigned long length, char* dateText, int dateSize,
                               char* description);

/* ---- Digest, certificate text ---- */

/**
 * Computes a SHA-1 digest.
 *
 * @param[in]  length  length of data in bytes; below 0 counts as 0
 * @param[in]  data    the data; may be null when length is 0
 * @param[out] digest  ZVC_SHA1_SIZE bytes; zeros when data is missing
 * Standard: FIPS 180-4.
 */
ZVCRYPT_API void Sha1Digest(int length, unsigned char* data, unsigned char* digest);

/**
 * Copies a certificate text for SplitCert.
 *
 * @param[in]  in   the text, ZVC_CERT_TEXT_MAX characters at most
 * @param[out] out  ZVC_CERT_TEXT_SIZE bytes; the text. A longer one is not cut: a mark takes its place, to
 *                  which SplitCert answers ZVC_ERR_TEXT_LENGTH
 */
ZVCRYPT_API void writeBuff(char* in, char* out);

/**
 * Reads the holder's certificate from a text: base64 of DER, PEM, or a PKCS#7 bundle in PEM or base64, on
 * one line or many, with a UTF-8 byte order mark or without. In PEM, several blocks may follow one another,
 * and what stands around them is passed over; blocks have no headers (RFC 1421). Of several certificates it
 * takes the one that is no authority's and issued none of the others, wherever it stands; one of several
 * copies counts once. A single one is taken unless it is an authority's that may sign others (keyCertSign).
 *
 * @param[in]  text     the text, ZVC_CERT_TEXT_MAX characters at most
 * @param[out] out      the certificate; zeros after a failure
 * @param[out] errText  the reason of a failure, in Italian (also in kvLastError); may be null
 * @param[in]  errSize  size of errText in bytes
 * @return 0; ZVC_ERR_TEXT_LENGTH; ZVC_ERR_TEXT_FORM (an empty text, PEM that lost its BEGIN or END or has
 *         headers or another label, a bundle that is none or has data behind it, no certificate);
 *         ZVC_ERR_BASE64 (a character that is none, or an end amid a group); ZVC_ERR_BAD_CERTIFICATE (malformed,
 *         or with data behind it); ZVC_ERR_NO_HOLDER; ZVC_ERR_TWO_HOLDERS; ZVC_ERR_ROOM (more than 8192 bytes,
 *         or names or a serial number that ConvToDer could not give for a card)
 * Standard: RFC 7468 (labels CERTIFICATE, X509 CERTIFICATE, X.509 CERTIFICATE; PKCS7, CMS, CERTIFICATE CHAIN;
 * besides, OpenSSL's TRUSTED CERTIFICATE), RFC 5652.
 */
ZVCRYPT_API int SplitCert(char* text, datiCert* out, char* errText, int errSize);

/**
 * Takes out of a certificate what a certificate object on a card carries beside it.
 *
 * @param[in]     der, derLength  the certificate, DER, and its length in bytes
 * @param[out]    subject         the subject name, DER
 * @param[in,out] subjectLength   room in bytes; then its length
 * @param[out]    issuer          the issuer name, DER
 * @param[in,out] issuerLength    room in bytes; then its length
 * @param[out]    serial          content bytes of the serial number as they stand, with the zero byte that DER
 *                                puts before a first byte of 0x80 and up
 * @param[in,out] serialLength    room in bytes; then its length
 * @return 0; ZVC_ERR_BAD_CERTIFICATE; ZVC_ERR_ROOM
 * After a failure: nothing is written, the lengths stay.
 * Standard: RFC 5280.
 */
ZVCRYPT_API int ConvToDer(unsigned char* der, unsigned long derLength, char* subject,
                          unsigned long* subjectLength, char* issuer, unsigned long* issuerLength,
                          char* serial, unsigned long* serialLength);

#ifdef __cplusplus
}

static_assert(sizeof(datiCert) == 8709, "datiCert has no padding");
#else
_Static_assert(sizeof(datiCert) == 8709, "datiCert has no padding");
#endif

#endif
