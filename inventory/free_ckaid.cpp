// findFreeCKAID: which identifier a new signature key and a new authentication key should carry.
#include "inventory/identifiers.h"
#include "util/guarded.h"
#include "util/text.h"

bool use2048Bit = false;
bool force2048PraGen = true;

namespace {

// Unlike an inventory, which reports one pending pair, this takes the first of each kind.
void takePending(const zv::IdentifierTables& tables, char* keyPRA, char* keyAUT) {
    zv::forEachPending(tables, [keyPRA, keyAUT](std::string_view id) {
        char* key = zv::isAuthentication(id) ? keyAUT : keyPRA;
        if (key[0] == '\0') zv::copyText(key, ZV_KEY_ID_SIZE, id);
        return true;
    });
}

int settle(char* keyPRA, char* keyAUT) {
    zv::IdentifierTables tables;
    if (!zv::gatherIdentifiers(tables)) return -1;
    takePending(tables, keyPRA, keyAUT);
    zv::readSignatureCertificates(tables, keyPRA);
    if (keyPRA[0] == '\0' && !zv::proposeFree(tables.publicKeys, zv::SIGNATURE_SERIES, keyPRA))
        return zv::SERIES_FULL;
    if (keyAUT[0] == '\0' && !zv::proposeFree(tables.publicKeys, zv::AUTHENTICATION_SERIES, keyAUT))
        return zv::SERIES_FULL;
    return 0;
}

} // namespace

int findFreeCKAID(char* keyPRA, char* keyAUT, bool) {
    char foundPRA[ZV_KEY_ID_SIZE] = {}, foundAUT[ZV_KEY_ID_SIZE] = {};
    use2048Bit = false;
    force2048PraGen = true;
    const int result = zv::guarded(-1, [&] { return settle(foundPRA, foundAUT); });
    zv::copyText(keyPRA, ZV_KEY_ID_SIZE, foundPRA);
    zv::copyText(keyAUT, ZV_KEY_ID_SIZE, foundAUT);
    return result;
}
