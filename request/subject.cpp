#include "request/subject.h"

#include "diag/report.h"
#include "util/text.h"

namespace zv {

namespace {

der::Bytes rdn(const NameAttributeRow& row, std::string_view text) {
    const der::View value(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    const der::Bytes typed = der::tlv(static_cast<unsigned char>(row.type), {value});
    return der::tlv(der::TAG_SET, {der::tlv(der::TAG_SEQUENCE, {row.der(), typed})});
}

} // namespace

der::Bytes build_name(const datiDN& subject, SubjectTable table) {
    der::Bytes rdns;
    std::size_t count = 0;
    for (const NamePlace& place : table) {
        const NameAttributeRow& row = name_attribute(place.attribute);
        const std::string_view value = cut_at_character(name_text(subject, place), row.longest());
        if (value.empty()) continue;
        rdns = der::joined({rdns, rdn(row, value)});
        ++count;
    }
    if (count == 0) {
        report_sentence("Dati per costruire il distinguished name non specificati");
        return {};
    }
    if (count > table.size()) {
        report_sentence("Specificati troppi dati per costruire il distinguished name");
        return {};
    }
    return der::tlv(der::TAG_SEQUENCE, {rdns});
}

} // namespace zv
