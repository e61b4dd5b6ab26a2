#include "request/subject.h"

#include "diag/log.h"
#include "request/der.h"
#include "util/text.h"

namespace zv {

namespace {

ADATA* buildRdn(const NameAttributeRow& row, std::string_view text) {
    const std::span value(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    return SET(
        SEQUENCE(leaf(row.der()), var_tlv(static_cast<unsigned char>(row.type), leaf(value), END), END), END);
}

} // namespace

ADATA* buildName(const datiDN& subject, SubjectTable table) {
    ADATA* rdns = nullptr;
    std::size_t count = 0;
    for (const NamePlace& place : table) {
        const NameAttributeRow& row = nameAttribute(place.attribute);
        const std::string_view value = cutAtCharacter(nameText(subject, place), row.longest());
        if (value.empty()) continue;
        rdns = ConcatenateADATA(rdns, buildRdn(row, value));
        ++count;
    }
    if (count == 0) {
        reportSentence("Dati per costruire il distinguished name non specificati");
        return nullptr;
    }
    Der owned(rdns);
    if (count > table.size()) {
        reportSentence("Specificati troppi dati per costruire il distinguished name");
        return nullptr;
    }
    return SEQUENCE(owned.release(), END);
}

} // namespace zv
