// The C face of this folder.
#include "card/crypto_session.h"
#include "card/detection.h"
#include "card/full_opener.h"
#include "card/light_opener.h"
#include "card/session.h"
#include "card/slot_probe.h"
#include "routines/card.h"
#include "util/text.h"

int CheckSmartCard(bool& is_touch_sign, char* reader) {
    const zv::Detection detection = zv::detect_card(reader);
    if (detection.touch_sign) is_touch_sign = true;
    return detection.code;
}

void set_ATRini_path(const char* dir) {
    zv::set_atr_folder(zv::or_empty(dir));
}

unsigned int getSlot(char* reader_name, char* lib_path) {
    return zv::slot_of_reader(zv::or_empty(reader_name), zv::or_empty(lib_path)).value_or(0xFFFFFFFF);
}

CK_RV __Initialize(int slot, char* pin, char* lib_path) {
    return zv::open_slot(slot, pin, lib_path);
}

int inizializza(char* lib_path, char* pin, unsigned int slot_index, void*, int user_type) {
    return static_cast<int>(
        zv::open_slot_at(slot_index, {lib_path, pin}, static_cast<CK_USER_TYPE>(user_type)));
}

void finalizza() {
    zv::close_card();
}

int DoInitialize(char* lib_path, char* pin) {
    char none[] = "";
    return zv::open_crypto_session(lib_path != nullptr ? lib_path : none, zv::or_empty(pin));
}

int DoFinalize() {
    return zv::close_crypto_session();
}
