#include "card/crypto_session.h"

#include "card/detection.h"
#include "zvCrypt.h"

namespace zv {

int open_crypto_session(char* module_path, const char* pin) {
    kvFinalize();
    const int code = kvInitialize(module_path, slot);
    return code == 0 ? kvLogin(pin) : code;
}

int close_crypto_session() {
    return kvFinalize();
}

} // namespace zv
