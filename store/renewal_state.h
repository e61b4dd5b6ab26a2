#pragma once

#include "pkcs11.h"
#include "records.h"
#include "zvConstants.h"

// The renewal in progress: filled from the command block, read by every layer from here up.
namespace zv {

extern char pendingLabel[ZV_LABEL_SIZE];     // identifier of the pending pair
extern char certificateLabel[ZV_LABEL_SIZE]; // identifier of the certificate being renewed
extern char certAlias[ZV_LABEL_SIZE];        // identifier and label that the certificate and its pair receive
extern char CAcertificateLabel[ZV_LABEL_SIZE]; // identifier and label of the authority's certificate
extern char szPendingLabel[ZV_LABEL_SIZE];     // label prefix of an unfinished request's objects
extern char cKeepKeys;                         // keep flag of the command block
extern datiDN dName;                           // subject of the request
extern int slotUtente;                         // slot index of the card, for a new login
extern CK_OBJECT_HANDLE hPrivateKey;           // pending private key; 0: none
extern CK_OBJECT_HANDLE hPublicKey;            // pending public key; 0: none

} // namespace zv
