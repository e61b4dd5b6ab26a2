#ifndef PKCS11_FUNCTIONS_H
#define PKCS11_FUNCTIONS_H

/*
 * The functions of PKCS#11 version 2, once, in the order of the function list. The macro given to
 * CK_EACH_FUNCTION is called with each function's name, its parameters and the parameters' names alone;
 * pkcs11.h makes the prototypes, the pointer types and the record from it, and a module or a program that
 * wraps one can make its own table.
 */

/* General purpose, slots and tokens. */
#define CK_EACH_TOKEN_FUNCTION(F)                                                                            \
    /* Starts the module; CKR_CRYPTOKI_ALREADY_INITIALIZED if it was. Null or CK_C_INITIALIZE_ARGS. */       \
    F(C_Initialize, (CK_VOID_PTR pInitArgs), (pInitArgs))                                                    \
    /* Ends the module with its sessions, for the whole process; the argument is null. */                    \
    F(C_Finalize, (CK_VOID_PTR pReserved), (pReserved))                                                      \
    F(C_GetInfo, (CK_INFO_PTR pInfo), (pInfo))                                                               \
    /* Gives the module's function list, which stays the module's. May be called before C_Initialize. */     \
    F(C_GetFunctionList, (CK_FUNCTION_LIST_PTR_PTR ppFunctionList), (ppFunctionList))                        \
    /* Lists slots, all or those that hold a token; a null list asks for the count, an entry each. */        \
    F(C_GetSlotList, (CK_BBOOL tokenPresent, CK_SLOT_ID_PTR pSlotList, CK_ULONG_PTR pulCount),               \
      (tokenPresent, pSlotList, pulCount))                                                                   \
    F(C_GetSlotInfo, (CK_SLOT_ID slotID, CK_SLOT_INFO_PTR pInfo), (slotID, pInfo))                           \
    F(C_GetTokenInfo, (CK_SLOT_ID slotID, CK_TOKEN_INFO_PTR pInfo), (slotID, pInfo))                         \
    F(C_GetMechanismList, (CK_SLOT_ID slotID, CK_MECHANISM_TYPE_PTR pMechanismList, CK_ULONG_PTR pulCount),  \
      (slotID, pMechanismList, pulCount))                                                                    \
    F(C_GetMechanismInfo, (CK_SLOT_ID slotID, CK_MECHANISM_TYPE type, CK_MECHANISM_INFO_PTR pInfo),          \
      (slotID, type, pInfo))                                                                                 \
    /* Erases a token; the label has 32 bytes, padded with blanks. */                                        \
    F(C_InitToken, (CK_SLOT_ID slotID, CK_UTF8CHAR_PTR pPin, CK_ULONG ulPinLen, CK_UTF8CHAR_PTR pLabel),     \
      (slotID, pPin, ulPinLen, pLabel))                                                                      \
    /* Sets the user's PIN, by the security officer. */                                                      \
    F(C_InitPIN, (CK_SESSION_HANDLE hSession, CK_UTF8CHAR_PTR pPin, CK_ULONG ulPinLen),                      \
      (hSession, pPin, ulPinLen))                                                                            \
    F(C_SetPIN,                                                                                              \
      (CK_SESSION_HANDLE hSession, CK_UTF8CHAR_PTR pOldPin, CK_ULONG ulOldLen, CK_UTF8CHAR_PTR pNewPin,      \
       CK_ULONG ulNewLen),                                                                                   \
      (hSession, pOldPin, ulOldLen, pNewPin, ulNewLen))

/* Sessions. */
#define CK_EACH_SESSION_FUNCTION(F)                                                                          \
    /* CKF_SERIAL_SESSION must be among the flags. */                                                        \
    F(C_OpenSession,                                                                                         \
      (CK_SLOT_ID slotID, CK_FLAGS flags, CK_VOID_PTR pApplication, CK_NOTIFY Notify,                        \
       CK_SESSION_HANDLE_PTR phSession),                                                                     \
      (slotID, flags, pApplication, Notify, phSession))                                                      \
    F(C_CloseSession, (CK_SESSION_HANDLE hSession), (hSession))                                              \
    F(C_CloseAllSessions, (CK_SLOT_ID slotID), (slotID))                                                     \
    F(C_GetSessionInfo, (CK_SESSION_HANDLE hSession, CK_SESSION_INFO_PTR pInfo), (hSession, pInfo))          \
    F(C_GetOperationState,                                                                                   \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pOperationState, CK_ULONG_PTR pulOperationStateLen),          \
      (hSession, pOperationState, pulOperationStateLen))                                                     \
    F(C_SetOperationState,                                                                                   \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pOperationState, CK_ULONG ulOperationStateLen,                \
       CK_OBJECT_HANDLE hEncryptionKey, CK_OBJECT_HANDLE hAuthenticationKey),                                \
      (hSession, pOperationState, ulOperationStateLen, hEncryptionKey, hAuthenticationKey))                  \
    /* Logs in for all of the application's sessions with the token. A wrong PIN may count against it. */    \
    F(C_Login, (CK_SESSION_HANDLE hSession, CK_USER_TYPE userType, CK_UTF8CHAR_PTR pPin, CK_ULONG ulPinLen), \
      (hSession, userType, pPin, ulPinLen))                                                                  \
    F(C_Logout, (CK_SESSION_HANDLE hSession), (hSession))

/* Objects. */
#define CK_EACH_OBJECT_FUNCTION(F)                                                                           \
    F(C_CreateObject,                                                                                        \
      (CK_SESSION_HANDLE hSession, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount,                             \
       CK_OBJECT_HANDLE_PTR phObject),                                                                       \
      (hSession, pTemplate, ulCount, phObject))                                                              \
    F(C_CopyObject,                                                                                          \
      (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount,   \
       CK_OBJECT_HANDLE_PTR phNewObject),                                                                    \
      (hSession, hObject, pTemplate, ulCount, phNewObject))                                                  \
    F(C_DestroyObject, (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject), (hSession, hObject))          \
    F(C_GetObjectSize, (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject, CK_ULONG_PTR pulSize),         \
      (hSession, hObject, pulSize))                                                                          \
    /* Reads attributes; each entry answers for itself and the result is that of the worst one. */           \
    F(C_GetAttributeValue,                                                                                   \
      (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount),  \
      (hSession, hObject, pTemplate, ulCount))                                                               \
    F(C_SetAttributeValue,                                                                                   \
      (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hObject, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount),  \
      (hSession, hObject, pTemplate, ulCount))                                                               \
    /* Starts a search for the objects that carry every attribute given; without any, for all. */            \
    F(C_FindObjectsInit, (CK_SESSION_HANDLE hSession, CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulCount),         \
      (hSession, pTemplate, ulCount))                                                                        \
    /* Gives up to ulMaxObjectCount more handles; a count of 0 says that there are none left. */             \
    F(C_FindObjects,                                                                                         \
      (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE_PTR phObject, CK_ULONG ulMaxObjectCount,                 \
       CK_ULONG_PTR pulObjectCount),                                                                         \
      (hSession, phObject, ulMaxObjectCount, pulObjectCount))                                                \
    F(C_FindObjectsFinal, (CK_SESSION_HANDLE hSession), (hSession))

/* Encryption, decryption and digests: started, then done in one call or in parts. */
#define CK_EACH_CIPHER_FUNCTION(F)                                                                           \
    F(C_EncryptInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey),       \
      (hSession, pMechanism, hKey))                                                                          \
    F(C_Encrypt,                                                                                             \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pEncryptedData,        \
       CK_ULONG_PTR pulEncryptedDataLen),                                                                    \
      (hSession, pData, ulDataLen, pEncryptedData, pulEncryptedDataLen))                                     \
    F(C_EncryptUpdate,                                                                                       \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen, CK_BYTE_PTR pEncryptedPart,        \
       CK_ULONG_PTR pulEncryptedPartLen),                                                                    \
      (hSession, pPart, ulPartLen, pEncryptedPart, pulEncryptedPartLen))                                     \
    F(C_EncryptFinal,                                                                                        \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pLastEncryptedPart, CK_ULONG_PTR pulLastEncryptedPartLen),    \
      (hSession, pLastEncryptedPart, pulLastEncryptedPartLen))                                               \
    F(C_DecryptInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey),       \
      (hSession, pMechanism, hKey))                                                                          \
    F(C_Decrypt,                                                                                             \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedData, CK_ULONG ulEncryptedDataLen,                  \
       CK_BYTE_PTR pData, CK_ULONG_PTR pulDataLen),                                                          \
      (hSession, pEncryptedData, ulEncryptedDataLen, pData, pulDataLen))                                     \
    F(C_DecryptUpdate,                                                                                       \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedPart, CK_ULONG ulEncryptedPartLen,                  \
       CK_BYTE_PTR pPart, CK_ULONG_PTR pulPartLen),                                                          \
      (hSession, pEncryptedPart, ulEncryptedPartLen, pPart, pulPartLen))                                     \
    F(C_DecryptFinal, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pLastPart, CK_ULONG_PTR pulLastPartLen),      \
      (hSession, pLastPart, pulLastPartLen))                                                                 \
    F(C_DigestInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism), (hSession, pMechanism))       \
    F(C_Digest,                                                                                              \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pDigest,               \
       CK_ULONG_PTR pulDigestLen),                                                                           \
      (hSession, pData, ulDataLen, pDigest, pulDigestLen))                                                   \
    F(C_DigestUpdate, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen),                   \
      (hSession, pPart, ulPartLen))                                                                          \
    F(C_DigestKey, (CK_SESSION_HANDLE hSession, CK_OBJECT_HANDLE hKey), (hSession, hKey))                    \
    F(C_DigestFinal, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pDigest, CK_ULONG_PTR pulDigestLen),           \
      (hSession, pDigest, pulDigestLen))

/* Signatures: started, then made or verified in one call or in parts. */
#define CK_EACH_SIGNATURE_FUNCTION(F)                                                                        \
    F(C_SignInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey),          \
      (hSession, pMechanism, hKey))                                                                          \
    F(C_Sign,                                                                                                \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,            \
       CK_ULONG_PTR pulSignatureLen),                                                                        \
      (hSession, pData, ulDataLen, pSignature, pulSignatureLen))                                             \
    F(C_SignUpdate, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen),                     \
      (hSession, pPart, ulPartLen))                                                                          \
    F(C_SignFinal, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pSignature, CK_ULONG_PTR pulSignatureLen),       \
      (hSession, pSignature, pulSignatureLen))                                                               \
    F(C_SignRecoverInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey),   \
      (hSession, pMechanism, hKey))                                                                          \
    F(C_SignRecover,                                                                                         \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,            \
       CK_ULONG_PTR pulSignatureLen),                                                                        \
      (hSession, pData, ulDataLen, pSignature, pulSignatureLen))                                             \
    F(C_VerifyInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey),        \
      (hSession, pMechanism, hKey))                                                                          \
    F(C_Verify,                                                                                              \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pData, CK_ULONG ulDataLen, CK_BYTE_PTR pSignature,            \
       CK_ULONG ulSignatureLen),                                                                             \
      (hSession, pData, ulDataLen, pSignature, ulSignatureLen))                                              \
    F(C_VerifyUpdate, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen),                   \
      (hSession, pPart, ulPartLen))                                                                          \
    F(C_VerifyFinal, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pSignature, CK_ULONG ulSignatureLen),          \
      (hSession, pSignature, ulSignatureLen))                                                                \
    F(C_VerifyRecoverInit, (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hKey), \
      (hSession, pMechanism, hKey))                                                                          \
    F(C_VerifyRecover,                                                                                       \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pSignature, CK_ULONG ulSignatureLen, CK_BYTE_PTR pData,       \
       CK_ULONG_PTR pulDataLen),                                                                             \
      (hSession, pSignature, ulSignatureLen, pData, pulDataLen))

/* Two operations at once. */
#define CK_EACH_DUAL_FUNCTION(F)                                                                             \
    F(C_DigestEncryptUpdate,                                                                                 \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen, CK_BYTE_PTR pEncryptedPart,        \
       CK_ULONG_PTR pulEncryptedPartLen),                                                                    \
      (hSession, pPart, ulPartLen, pEncryptedPart, pulEncryptedPartLen))                                     \
    F(C_DecryptDigestUpdate,                                                                                 \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedPart, CK_ULONG ulEncryptedPartLen,                  \
       CK_BYTE_PTR pPart, CK_ULONG_PTR pulPartLen),                                                          \
      (hSession, pEncryptedPart, ulEncryptedPartLen, pPart, pulPartLen))                                     \
    F(C_SignEncryptUpdate,                                                                                   \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pPart, CK_ULONG ulPartLen, CK_BYTE_PTR pEncryptedPart,        \
       CK_ULONG_PTR pulEncryptedPartLen),                                                                    \
      (hSession, pPart, ulPartLen, pEncryptedPart, pulEncryptedPartLen))                                     \
    F(C_DecryptVerifyUpdate,                                                                                 \
      (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pEncryptedPart, CK_ULONG ulEncryptedPartLen,                  \
       CK_BYTE_PTR pPart, CK_ULONG_PTR pulPartLen),                                                          \
      (hSession, pEncryptedPart, ulEncryptedPartLen, pPart, pulPartLen))

/* Keys. */
#define CK_EACH_KEY_FUNCTION(F)                                                                              \
    F(C_GenerateKey,                                                                                         \
      (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_ATTRIBUTE_PTR pTemplate,                  \
       CK_ULONG ulCount, CK_OBJECT_HANDLE_PTR phKey),                                                        \
      (hSession, pMechanism, pTemplate, ulCount, phKey))                                                     \
    F(C_GenerateKeyPair,                                                                                     \
      (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_ATTRIBUTE_PTR pPublicKeyTemplate,         \
       CK_ULONG ulPublicKeyAttributeCount, CK_ATTRIBUTE_PTR pPrivateKeyTemplate,                             \
       CK_ULONG ulPrivateKeyAttributeCount, CK_OBJECT_HANDLE_PTR phPublicKey,                                \
       CK_OBJECT_HANDLE_PTR phPrivateKey),                                                                   \
      (hSession, pMechanism, pPublicKeyTemplate, ulPublicKeyAttributeCount, pPrivateKeyTemplate,             \
       ulPrivateKeyAttributeCount, phPublicKey, phPrivateKey))                                               \
    F(C_WrapKey,                                                                                             \
      (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hWrappingKey,               \
       CK_OBJECT_HANDLE hKey, CK_BYTE_PTR pWrappedKey, CK_ULONG_PTR pulWrappedKeyLen),                       \
      (hSession, pMechanism, hWrappingKey, hKey, pWrappedKey, pulWrappedKeyLen))                             \
    F(C_UnwrapKey,                                                                                           \
      (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hUnwrappingKey,             \
       CK_BYTE_PTR pWrappedKey, CK_ULONG ulWrappedKeyLen, CK_ATTRIBUTE_PTR pTemplate,                        \
       CK_ULONG ulAttributeCount, CK_OBJECT_HANDLE_PTR phKey),                                               \
      (hSession, pMechanism, hUnwrappingKey, pWrappedKey, ulWrappedKeyLen, pTemplate, ulAttributeCount,      \
       phKey))                                                                                               \
    F(C_DeriveKey,                                                                                           \
      (CK_SESSION_HANDLE hSession, CK_MECHANISM_PTR pMechanism, CK_OBJECT_HANDLE hBaseKey,                   \
       CK_ATTRIBUTE_PTR pTemplate, CK_ULONG ulAttributeCount, CK_OBJECT_HANDLE_PTR phKey),                   \
      (hSession, pMechanism, hBaseKey, pTemplate, ulAttributeCount, phKey))

/* Random numbers, what is left of parallel sessions, and the waiting for readers. */
#define CK_EACH_OTHER_FUNCTION(F)                                                                            \
    F(C_SeedRandom, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pSeed, CK_ULONG ulSeedLen),                     \
      (hSession, pSeed, ulSeedLen))                                                                          \
    F(C_GenerateRandom, (CK_SESSION_HANDLE hSession, CK_BYTE_PTR pRandomData, CK_ULONG ulRandomLen),         \
      (hSession, pRandomData, ulRandomLen))                                                                  \
    /* The next two answer CKR_FUNCTION_NOT_PARALLEL. */                                                     \
    F(C_GetFunctionStatus, (CK_SESSION_HANDLE hSession), (hSession))                                         \
    F(C_CancelFunction, (CK_SESSION_HANDLE hSession), (hSession))                                            \
    /* Tells the slot where a token came or went; CKR_NO_EVENT with CKF_DONT_BLOCK when there was none. */   \
    F(C_WaitForSlotEvent, (CK_FLAGS flags, CK_SLOT_ID_PTR pSlot, CK_VOID_PTR pReserved),                     \
      (flags, pSlot, pReserved))

/* clang-format off */
#define CK_EACH_FUNCTION(F) \
    CK_EACH_TOKEN_FUNCTION(F) \
    CK_EACH_SESSION_FUNCTION(F) \
    CK_EACH_OBJECT_FUNCTION(F) \
    CK_EACH_CIPHER_FUNCTION(F) \
    CK_EACH_SIGNATURE_FUNCTION(F) \
    CK_EACH_DUAL_FUNCTION(F) \
    CK_EACH_KEY_FUNCTION(F) \
    CK_EACH_OTHER_FUNCTION(F)
/* clang-format on */

#endif
