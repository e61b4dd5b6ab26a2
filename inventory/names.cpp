#include "inventory/names.h"

#include <string_view>

#include "inventory/oid_names.h"
#include "routines.h"
#include "util/text.h"

namespace {

constexpr std::size_t SCRATCH_SIZE = 4096;
constexpr std::size_t MOST_COMMON_NAME = 62;
constexpr const zv::NameAttributeRow& COMMON_NAME = zv::nameAttribute(zv::NameAttribute::commonName);

void rewrite(char* name, std::size_t size, char* scratch) {
    for (const auto& [key, replacement] : zv::__DescrOid)
        while (zv::replaceFirst(name, size, key, replacement, scratch)) {
        }
}

int rewriteCNS(char* name, std::size_t size, char* scratch) {
    char* place = strstrICase(name, COMMON_NAME.slash);
    if (place == nullptr) return 1;
    const std::string_view value = place + std::string_view(COMMON_NAME.slash).size();
    char commonName[64], tail[512];
    zv::copyText(commonName, value.substr(0, MOST_COMMON_NAME));
    zv::copyText(tail, value.size() > MOST_COMMON_NAME ? value.substr(MOST_COMMON_NAME) : std::string_view());
    *place = '\0';
    rewrite(name, size, scratch);
    rewrite(tail, sizeof tail, scratch);
    zv::appendText(name, size, COMMON_NAME.oid);
    zv::appendText(name, size, commonName);
    zv::appendText(name, size, tail);
    return 0;
}

} // namespace

int __DescrToOid(char* name, char* scratch) {
    rewrite(name, SCRATCH_SIZE, scratch);
    return 0;
}

int __DescrToOidCNS(char* name, char* scratch) {
    return rewriteCNS(name, SCRATCH_SIZE, scratch);
}

namespace zv {

int rewriteName(char* name, std::size_t size) {
    char scratch[SCRATCH_SIZE];
    rewrite(name, size, scratch);
    return 0;
}

int rewriteNameCNS(char* name, std::size_t size) {
    char scratch[SCRATCH_SIZE];
    return rewriteCNS(name, size, scratch);
}

} // namespace zv
