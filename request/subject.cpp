#include "request/subject.h"

#include "diag/log.h"
#include "request/der.h"
#include "util/text.h"

namespace zv {

namespace {

constexpr std::size_t MOST_VALUE = 127;

ADATA* buildRdn(const SubjectRow& row, std::string_view text) {
    const std::span value(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    return SET(SEQUENCE(leaf(row.oid), var_tlv(row.stringType, leaf(value), END), END), END);
}

} // namespace

ADATA* buildName(const datiDN& subject, const SubjectTable& table) {
    ADATA* rdns = nullptr;
    std::size_t count = 0;
    for (const SubjectRow& row : table.rows) {
        const char* field = reinterpret_cast<const char*>(&subject) + row.offset;
        const std::string_view value = cutAtCharacter(boundedText(field, MOST_VALUE + 1), MOST_VALUE);
        if (value.empty()) continue;
        rdns = ConcatenateADATA(rdns, buildRdn(row, value));
        ++count;
    }
    if (count == 0) {
        reportSentence("Dati per costruire il distinguished name non specificati");
        return nullptr;
    }
    Der owned(rdns);
    if (count > table.limit) {
        reportSentence("Specificati troppi dati per costruire il distinguished name");
        return nullptr;
    }
    return SEQUENCE(owned.release(), END);
}

} // namespace zv
