#include "store/renewal_state.h"

namespace zv {

char pendingLabel[ZV_LABEL_SIZE];
char certificateLabel[ZV_LABEL_SIZE];
char certAlias[ZV_LABEL_SIZE];
char CAcertificateLabel[ZV_LABEL_SIZE] = ZV_AUTHORITY_ID;
char szPendingLabel[ZV_LABEL_SIZE] = ZV_PENDING_PREFIX;
char cKeepKeys = '\0';
datiDN dName;
int slotUtente = 0;
CK_OBJECT_HANDLE hPrivateKey = 0;
CK_OBJECT_HANDLE hPublicKey = 0;

} // namespace zv
