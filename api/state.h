#ifndef ZV_API_STATE_H
#define ZV_API_STATE_H

#include "records.h"

/** Buffers of the entry points; they live between calls. */
namespace zv {

extern char buffer[8192];            ///< text result of the command that runs
extern char szBufferRichiesta[8000]; ///< command block
extern char szBufferDatiOut[8000];   ///< text result handed to the entry point
extern datiDN dNameRen;              ///< subject given by the host
extern char newstring[1024];         ///< result of the last replacement

} // namespace zv

#endif
