#pragma once

#include "zvCrypt.h"
#include "zvRenew.h"

#include <string_view>

// What the last card detection found.
namespace zv {

extern char scReader[ZV_READER_MAX + 1];           // selected reader
extern char Libreria[ZV_MODULE_PATH_SIZE];         // path of the card's PKCS#11 module
extern char pwd[ZV_MODULE_DIR_MAX + 1];            // directory of the modules, set by the host
extern int slot;                                   // slot identifier of the card
extern char szSerialNumber[ZVC_TOKEN_SERIAL_SIZE]; // the card's serial number
extern bool isCNS;                                 // a national services card
extern char g_ATRINI_dir[ZV_ATR_DIR_MAX + 1]; // directory of the host's atr.ini; empty: the built-in table

struct Detection {
    int code;                // as CheckSmartCard answers
    bool touch_sign = false; // of what was found before a failure, too
};

// Finds the reader, the module that serves its card, the slot, the kind of card and its serial number. Null
// is the first reader that is listed.
[[nodiscard]] Detection detect_card(const char* reader);

// A path that does not fit is none.
void set_atr_folder(std::string_view path);

} // namespace zv
