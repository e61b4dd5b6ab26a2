#include "store/renewal_state.h"

namespace zv {

char pendingLabel[256];
char certificateLabel[256];
char certAlias[256];
char CAcertificateLabel[256] = "Korvalenta Firma Dig";
char szPendingLabel[256] = "pending_";
char cKeepKeys = '\0';
datiDN dName;
int slotUtente = 0;
CK_OBJECT_HANDLE hPrivateKey = 0;
CK_OBJECT_HANDLE hPublicKey = 0;

} // namespace zv
