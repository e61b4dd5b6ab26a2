#ifndef PKCS11_H
#define PKCS11_H

/*
 * PKCS#11 version 2: types, records and the function list, as the published standard (2.20, 2.40) lays them
 * out. The constants are in pkcs11_constants.h.
 *
 * Conventions that hold for every function:
 *  1. The result is CKR_OK (0) or one of the CKR_ codes; on a failure the outputs are not to be used.
 *  2. Texts are not terminated. A text of fixed size is padded with blanks; the others have a length beside
 *     them.
 *  3. An output of variable size is a buffer and its length in bytes: the length says the room on entry and
 *     the size on return. A null buffer asks for the size alone; too little room is CKR_BUFFER_TOO_SMALL,
 *     with the size needed in the length, and the operation goes on.
 *  4. Handles are the module's; 0 is none. A session's handle ends with the session, an object's at the
 *     latest with the module.
 *  5. Numbers are CK_ULONG, as wide as a pointer on the platforms that are served here.
 *  6. Callers keep what they pass in; a module keeps no pointer after its function returned, but for the
 *     notification of a session and its argument.
 */

#include "pkcs11_constants.h"
#include "pkcs11_functions.h"

#ifdef __cplusplus
extern "C" {
#endif

#define NULL_PTR 0

/* Plain types. */
typedef unsigned char CK_BYTE;
typedef CK_BYTE CK_CHAR;
typedef CK_BYTE CK_UTF8CHAR;
typedef CK_BYTE CK_BBOOL;
typedef unsigned long CK_ULONG;
typedef long CK_LONG;
typedef CK_ULONG CK_FLAGS;
typedef CK_BYTE* CK_BYTE_PTR;
typedef CK_CHAR* CK_CHAR_PTR;
typedef CK_UTF8CHAR* CK_UTF8CHAR_PTR;
typedef CK_BBOOL* CK_BBOOL_PTR;
typedef CK_ULONG* CK_ULONG_PTR;
typedef void* CK_VOID_PTR;
typedef CK_VOID_PTR* CK_VOID_PTR_PTR;

/* Numbers with a meaning. */
typedef CK_ULONG CK_RV;
typedef CK_ULONG CK_SLOT_ID;
typedef CK_ULONG CK_SESSION_HANDLE;
typedef CK_ULONG CK_OBJECT_HANDLE;
typedef CK_ULONG CK_NOTIFICATION;
typedef CK_ULONG CK_USER_TYPE;
typedef CK_ULONG CK_STATE;
typedef CK_ULONG CK_OBJECT_CLASS;
typedef CK_ULONG CK_HW_FEATURE_TYPE;
typedef CK_ULONG CK_KEY_TYPE;
typedef CK_ULONG CK_CERTIFICATE_TYPE;
typedef CK_ULONG CK_ATTRIBUTE_TYPE;
typedef CK_ULONG CK_MECHANISM_TYPE;
typedef CK_ULONG CK_RSA_PKCS_MGF_TYPE;
typedef CK_ULONG CK_RSA_PKCS_OAEP_SOURCE_TYPE;
typedef CK_SLOT_ID* CK_SLOT_ID_PTR;
typedef CK_SESSION_HANDLE* CK_SESSION_HANDLE_PTR;
typedef CK_OBJECT_HANDLE* CK_OBJECT_HANDLE_PTR;
typedef CK_OBJECT_CLASS* CK_OBJECT_CLASS_PTR;
typedef CK_MECHANISM_TYPE* CK_MECHANISM_TYPE_PTR;

/* A version; the hundredths of 2.40 are minor 40. */
typedef struct CK_VERSION {
    CK_BYTE major;
    CK_BYTE minor;
} CK_VERSION;
typedef CK_VERSION* CK_VERSION_PTR;

/* The module (C_GetInfo). */
typedef struct CK_INFO {
    CK_VERSION cryptokiVersion;
    CK_UTF8CHAR manufacturerID[32];
    CK_FLAGS flags;
    CK_UTF8CHAR libraryDescription[32];
    CK_VERSION libraryVersion;
} CK_INFO;
typedef CK_INFO* CK_INFO_PTR;

/* A slot, that is a reader (C_GetSlotInfo). */
typedef struct CK_SLOT_INFO {
    CK_UTF8CHAR slotDescription[64];
    CK_UTF8CHAR manufacturerID[32];
    CK_FLAGS flags;
    CK_VERSION hardwareVersion;
    CK_VERSION firmwareVersion;
} CK_SLOT_INFO;
typedef CK_SLOT_INFO* CK_SLOT_INFO_PTR;

/* A token, that is a card (C_GetTokenInfo). The counts may be CK_UNAVAILABLE_INFORMATION, the maxima also
 * CK_EFFECTIVELY_INFINITE. */
typedef struct CK_TOKEN_INFO {
    CK_UTF8CHAR label[32];
    CK_UTF8CHAR manufacturerID[32];
    CK_UTF8CHAR model[16];
    CK_CHAR serialNumber[16];
    CK_FLAGS flags;
    CK_ULONG ulMaxSessionCount;
    CK_ULONG ulSessionCount;
    CK_ULONG ulMaxRwSessionCount;
    CK_ULONG ulRwSessionCount;
    CK_ULONG ulMaxPinLen; /* in bytes */
    CK_ULONG ulMinPinLen;
    CK_ULONG ulTotalPublicMemory; /* in bytes */
    CK_ULONG ulFreePublicMemory;
    CK_ULONG ulTotalPrivateMemory;
    CK_ULONG ulFreePrivateMemory;
    CK_VERSION hardwareVersion;
    CK_VERSION firmwareVersion;
    CK_CHAR utcTime[16]; /* YYYYMMDDhhmmss00, where the token has a clock */
} CK_TOKEN_INFO;
typedef CK_TOKEN_INFO* CK_TOKEN_INFO_PTR;

/* A session (C_GetSessionInfo). */
typedef struct CK_SESSION_INFO {
    CK_SLOT_ID slotID;
    CK_STATE state;
    CK_FLAGS flags;
    CK_ULONG ulDeviceError;
} CK_SESSION_INFO;
typedef CK_SESSION_INFO* CK_SESSION_INFO_PTR;

/* One entry of a template. A length of CK_UNAVAILABLE_INFORMATION on return says that the value is not to be
 * had. */
typedef struct CK_ATTRIBUTE {
    CK_ATTRIBUTE_TYPE type;
    CK_VOID_PTR pValue;
    CK_ULONG ulValueLen; /* in bytes */
} CK_ATTRIBUTE;
typedef CK_ATTRIBUTE* CK_ATTRIBUTE_PTR;

/* A date in digits. */
typedef struct CK_DATE {
    CK_CHAR year[4];
    CK_CHAR month[2];
    CK_CHAR day[2];
} CK_DATE;

/* A mechanism and its parameter. */
typedef struct CK_MECHANISM {
    CK_MECHANISM_TYPE mechanism;
    CK_VOID_PTR pParameter;
    CK_ULONG ulParameterLen; /* in bytes */
} CK_MECHANISM;
typedef CK_MECHANISM* CK_MECHANISM_PTR;

/* What a token offers of a mechanism (C_GetMechanismInfo). The sizes are of keys, in the mechanism's own
 * unit. */
typedef struct CK_MECHANISM_INFO {
    CK_ULONG ulMinKeySize;
    CK_ULONG ulMaxKeySize;
    CK_FLAGS flags;
} CK_MECHANISM_INFO;
typedef CK_MECHANISM_INFO* CK_MECHANISM_INFO_PTR;

/* Parameter of the PSS mechanisms. */
typedef struct CK_RSA_PKCS_PSS_PARAMS {
    CK_MECHANISM_TYPE hashAlg;
    CK_RSA_PKCS_MGF_TYPE mgf;
    CK_ULONG sLen;
} CK_RSA_PKCS_PSS_PARAMS;
typedef CK_RSA_PKCS_PSS_PARAMS* CK_RSA_PKCS_PSS_PARAMS_PTR;

/* Parameter of CKM_RSA_PKCS_OAEP. */
typedef struct CK_RSA_PKCS_OAEP_PARAMS {
    CK_MECHANISM_TYPE hashAlg;
    CK_RSA_PKCS_MGF_TYPE mgf;
    CK_RSA_PKCS_OAEP_SOURCE_TYPE source;
    CK_VOID_PTR pSourceData;
    CK_ULONG ulSourceDataLen;
} CK_RSA_PKCS_OAEP_PARAMS;
typedef CK_RSA_PKCS_OAEP_PARAMS* CK_RSA_PKCS_OAEP_PARAMS_PTR;

/* Callbacks that an application hands over: news of a session, and its own locks. */
typedef CK_RV (*CK_NOTIFY)(CK_SESSION_HANDLE hSession, CK_NOTIFICATION event, CK_VOID_PTR pApplication);
typedef CK_RV (*CK_CREATEMUTEX)(CK_VOID_PTR_PTR ppMutex);
typedef CK_RV (*CK_DESTROYMUTEX)(CK_VOID_PTR pMutex);
typedef CK_RV (*CK_LOCKMUTEX)(CK_VOID_PTR pMutex);
typedef CK_RV (*CK_UNLOCKMUTEX)(CK_VOID_PTR pMutex);

/* Argument of C_Initialize: all four locks or none; pReserved is null. */
typedef struct CK_C_INITIALIZE_ARGS {
    CK_CREATEMUTEX CreateMutex;
    CK_DESTROYMUTEX DestroyMutex;
    CK_LOCKMUTEX LockMutex;
    CK_UNLOCKMUTEX UnlockMutex;
    CK_FLAGS flags;
    CK_VOID_PTR pReserved;
} CK_C_INITIALIZE_ARGS;
typedef CK_C_INITIALIZE_ARGS* CK_C_INITIALIZE_ARGS_PTR;

typedef struct CK_FUNCTION_LIST CK_FUNCTION_LIST;
typedef CK_FUNCTION_LIST* CK_FUNCTION_LIST_PTR;
typedef CK_FUNCTION_LIST_PTR* CK_FUNCTION_LIST_PTR_PTR;

/* The prototypes, and for each function the type of a pointer to it (CK_C_Initialize, ...). */
#define CK_DECLARE_FUNCTION(name, parameters, names)                                                         \
    /* NOLINTNEXTLINE(bugprone-macro-parentheses): parameters come with their own */                         \
    typedef CK_RV(*CK_##name) parameters;                                                                    \
    CK_RV name parameters;
CK_EACH_FUNCTION(CK_DECLARE_FUNCTION)
#undef CK_DECLARE_FUNCTION

/* The function list that C_GetFunctionList gives: the version of the standard, then a pointer to each
 * function. */
struct CK_FUNCTION_LIST {
    CK_VERSION version;
#define CK_LIST_FUNCTION(name, parameters, names) CK_##name name;
    CK_EACH_FUNCTION(CK_LIST_FUNCTION)
#undef CK_LIST_FUNCTION
};

#ifdef __cplusplus
}
#endif

#endif
