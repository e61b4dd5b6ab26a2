/**
 * Records that the layers share. Plain C; every text field is NUL-terminated within its width.
 */
#ifndef ZV_RECORDS_H
#define ZV_RECORDS_H

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
    char slot;                  /**< slot digit, "0" to "9" */
    char szDll[512];            /**< path of the PKCS#11 module */
    char szPin[32];             /**< user PIN */
    char szTipoCert[4];         /**< certificate kind: "PRA", "AUT" or "CNS" */
    char cKeepKeys;             /**< 'R' keep old objects, 'D' delete them, 'K' keep an old pending pair */
    char certificateLabel[256]; /**< identifier of the certificate to renew */
    char pendingLabel[256];     /**< identifier of the pending key pair */
    datiDN dn;                  /**< subject of the request */
    char szCertChain[8192];     /**< text of the issued certificate */
} REQRENIN;

/** Records in an identifier table. */
#define ZV_CKAIDS 10

/** One CKA_ID as text, at most 31 characters; the rest is cut. */
typedef struct ckaid {
    char id[32];
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
