#include "api/state.h"

#include "zvRenew.h"

char szBuffErr[512];

namespace zv {

char buffer[8192];
char szBufferRichiesta[8000];
char szBufferDatiOut[8000];
datiDN dNameRen;
char newstring[1024];

} // namespace zv
