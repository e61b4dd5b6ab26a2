#pragma once

#include "records.h"

// Buffers of the entry points; they live between calls.
namespace zv {

extern char buffer[8192];            // text result of the command that runs
extern char szBufferRichiesta[8000]; // command block
extern char szBufferDatiOut[8000];   // text result handed to the entry point
extern datiDN dNameRen;              // subject given by the host
extern char newstring[1024];         // result of the last replacement

constexpr long WORK_SIZE = 4096;
extern char sSubjectSott[WORK_SIZE],
    sBuffSott[WORK_SIZE]; // description and record of a signature certificate
extern char sSubjectAute[WORK_SIZE], sBuffAute[WORK_SIZE]; // the same of an authentication certificate
extern char sLabelSott[64], sLabelAute[64];                // identifiers of the last of both
extern char dtScadenza[16];                                // expiry date of a services card

} // namespace zv
