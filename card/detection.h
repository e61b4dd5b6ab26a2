#pragma once

// What the last card detection found.
namespace zv {

extern char scReader[128];      // selected reader
extern char Libreria[512];      // path of the card's PKCS#11 module
extern char pwd[512];           // directory of the modules, set by the host
extern int slot;                // slot identifier of the card
extern char szSerialNumber[32]; // the card's serial number
extern bool isCNS;              // a national services card
extern char g_ATRINI_dir[1024]; // directory of the host's atr.ini; empty: the built-in table

} // namespace zv
