#include "inventory/names.h"

#include "inventory/oid_names.h"
#include "routines.h"
#include "util/text.h"

#include <string_view>

namespace {

constexpr std::size_t SCRATCH_SIZE = 4096;
constexpr std::size_t MOST_COMMON_NAME = 62;
constexpr const zv::NameAttributeRow& common_name_row = zv::nameAttribute(zv::NameAttribute::commonName);

void rewrite(char* name, std::size_t size, char* scratch) {
    for (const auto& [key, replacement] : zv::DESCR_OID)
        while (zv::replace_first(name, size, key, replacement, scratch)) {
        }
}

int rewrite_cns(char* name, std::size_t size, char* scratch) {
    char* place = strstrICase(name, common_name_row.slash);
    if (place == nullptr) return 1;
    const std::string_view value = place + std::string_view(common_name_row.slash).size();
    char common_name[64], tail[512];
    zv::copy_text(common_name, value.substr(0, MOST_COMMON_NAME));
    zv::copy_text(tail,
                  value.size() > MOST_COMMON_NAME ? value.substr(MOST_COMMON_NAME) : std::string_view());
    *place = '\0';
    rewrite(name, size, scratch);
    rewrite(tail, sizeof tail, scratch);
    zv::append_text(name, size, common_name_row.oid);
    zv::append_text(name, size, common_name);
    zv::append_text(name, size, tail);
    return 0;
}

} // namespace

int __DescrToOid(char* name, char* scratch) {
    rewrite(name, SCRATCH_SIZE, scratch);
    return 0;
}

int __DescrToOidCNS(char* name, char* scratch) {
    return rewrite_cns(name, SCRATCH_SIZE, scratch);
}

namespace zv {

int rewrite_name(char* name, std::size_t size) {
    char scratch[SCRATCH_SIZE];
    rewrite(name, size, scratch);
    return 0;
}

int rewrite_name_cns(char* name, std::size_t size) {
    char scratch[SCRATCH_SIZE];
    return rewrite_cns(name, size, scratch);
}

} // namespace zv
