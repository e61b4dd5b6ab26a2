#include "inventory/names.h"

#include "util/name_forms.h"
#include "util/text.h"

#include <string_view>

namespace zv {

namespace {

constexpr std::size_t MOST_COMMON_NAME = 62;
constexpr const NameAttributeRow& common_name_row = name_attribute(NameAttribute::commonName);

} // namespace

void rewrite_name(char* name, std::size_t size) {
    char scratch[NAME_SIZE];
    for (const NameAttribute attribute : forms::CARD) {
        const NameAttributeRow& row = name_attribute(attribute);
        while (replace_first(name, size, row.slash, row.oid, scratch)) {
        }
    }
}

bool rewrite_name_cns(char* name, std::size_t size) {
    const std::size_t found = find_ignoring_case(or_empty(name), common_name_row.slash);
    if (found == std::string_view::npos) return false;
    char* place = name + found;
    const std::string_view value = place + std::string_view(common_name_row.slash).size();
    char common_name[64], tail[512];
    copy_text(common_name, value.substr(0, MOST_COMMON_NAME));
    copy_text(tail, value.size() > MOST_COMMON_NAME ? value.substr(MOST_COMMON_NAME) : std::string_view());
    *place = '\0';
    rewrite_name(name, size);
    rewrite_name(tail, sizeof tail);
    append_text(name, size, common_name_row.oid);
    append_text(name, size, common_name);
    append_text(name, size, tail);
    return true;
}

} // namespace zv
