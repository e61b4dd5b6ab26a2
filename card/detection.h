#pragma once

#include "zvCrypt.h"
#include "zvRenew.h"

// What the last card detection found.
namespace zv {

extern char scReader[ZV_READER_MAX + 1];           // selected reader
extern char Libreria[ZV_MODULE_PATH_SIZE];         // path of the card's PKCS#11 module
extern char pwd[ZV_MODULE_DIR_MAX + 1];            // directory of the modules, set by the host
extern int slot;                                   // slot identifier of the card
extern char szSerialNumber[ZVC_TOKEN_SERIAL_SIZE]; // the card's serial number
extern bool isCNS;                                 // a national services card
extern char g_ATRINI_dir[ZV_ATR_DIR_MAX + 1]; // directory of the host's atr.ini; empty: the built-in table

} // namespace zv
