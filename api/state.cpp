#include "api/state.h"

#include "zvRenew.h"

char szBuffErr[ZV_MESSAGE_SIZE];

namespace zv {

char buffer[8192];
char szBufferRichiesta[8000];
char szBufferDatiOut[8000];
datiDN dNameRen;
char newstring[1024];
char sSubjectSott[WORK_SIZE], sBuffSott[WORK_SIZE];
char sSubjectAute[WORK_SIZE], sBuffAute[WORK_SIZE];
char sLabelSott[64], sLabelAute[64];
char dtScadenza[16];

} // namespace zv
