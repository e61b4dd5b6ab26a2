/**
 * Records that the layers share. Plain C; every text field is NUL-terminated within its width.
 */
#ifndef ZV_RECORDS_H
#define ZV_RECORDS_H

#include "zvConstants.h"
#include "zvCrypt.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Organisational units that a request can carry. */
#define ZV_ORG_UNITS 5

/** The distinguished name of a request (X.520 attributes), one fixed-width field an attribute. */
typedef struct datiDN {
    char country[3];
    char organization[65];
    char orgUnit[ZV_ORG_UNITS][65];
    char commonName[65];
    char description[129];
    char dnQualifier[65];
    char serialNumber[65];
    char givenName[65];
    char surname[65];
    char email[129];
    char locality[129];
    char title[65];
    char pseudonym[65];
    char stateOrProvince[65];
} datiDN;

/** A parsed command block: everything that one request or one installation needs. */
typedef struct REQRENIN {
    char slot;                       /**< slot digit, "0" to "9" */
    char szDll[ZV_MODULE_PATH_SIZE]; /**< path of the PKCS#11 module */
    char szPin[ZV_PIN_MAX + 1];      /**< user PIN */
    char szTipoCert[4];              /**< certificate kind: "PRA", "AUT" or "CNS" */
    char cKeepKeys; /**< 'R' keep old objects, 'D' delete them, 'K' keep an old pending pair */
    char certificateLabel[ZV_LABEL_SIZE]; /**< identifier of the certificate to renew */
    char pendingLabel[ZV_LABEL_SIZE];     /**< identifier of the pending key pair */
    datiDN dn;                            /**< subject of the request */
    char szCertChain[ZVC_CERT_TEXT_SIZE]; /**< text of the issued certificate */
} REQRENIN;

/** Records in an identifier table. */
#define ZV_CKAIDS 10

/** One CKA_ID as text, at most ZV_ID_MAX characters; the rest is cut. */
typedef struct ckaid {
    char id[ZV_KEY_ID_SIZE];
} ckaid;

/** One encoded DER piece (X.690). Record and bytes come from the C heap, each released by free(). */
typedef struct ADATA {
    unsigned long length; /**< bytes in data */
    unsigned char* data;  /**< null when length is 0 */
} ADATA;

#ifdef __cplusplus
}
#endif

#endif
