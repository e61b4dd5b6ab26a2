// findFreeCKAID: which identifier a new signature key and a new authentication key should carry.
#include "inventory/identifiers.h"
#include "util/guarded.h"
#include "util/text.h"

bool use2048Bit = false;
bool force2048PraGen = true;

namespace {

// Unlike an inventory, which reports one pending pair, this takes the first of each kind.
void take_pending(const zv::IdentifierTables& tables, char* key_pra, char* key_aut) {
    zv::for_each_pending(tables, [key_pra, key_aut](std::string_view id) {
        char* key = zv::is_authentication(id) ? key_aut : key_pra;
        if (key[0] == '\0') zv::copy_text(key, ZV_KEY_ID_SIZE, id);
        return true;
    });
}

int settle(char* key_pra, char* key_aut) {
    zv::IdentifierTables tables;
    if (!zv::gather_identifiers(tables)) return -1;
    take_pending(tables, key_pra, key_aut);
    zv::read_signature_certificates(tables, key_pra);
    if (key_pra[0] == '\0' && !zv::propose_free(tables.public_keys, zv::SIGNATURE_SERIES, key_pra))
        return zv::SERIES_FULL;
    if (key_aut[0] == '\0' && !zv::propose_free(tables.public_keys, zv::AUTHENTICATION_SERIES, key_aut))
        return zv::SERIES_FULL;
    return 0;
}

} // namespace

int findFreeCKAID(char* key_pra, char* key_aut, bool) {
    char found_pra[ZV_KEY_ID_SIZE] = {}, found_aut[ZV_KEY_ID_SIZE] = {};
    use2048Bit = false;
    force2048PraGen = true;
    const int result = zv::guarded(-1, [&] { return settle(found_pra, found_aut); });
    zv::copy_text(key_pra, ZV_KEY_ID_SIZE, found_pra);
    zv::copy_text(key_aut, ZV_KEY_ID_SIZE, found_aut);
    return result;
}
