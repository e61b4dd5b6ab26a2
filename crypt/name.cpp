#include "name.h"

#include "asn1_text.h"
#include "object_id.h"

#include <vector>

namespace zvcrypt {
namespace {

struct Attribute {
    der::Span type;
    der::Element value;
};

// In their order; those of one RDN follow each other like the others.
std::vector<Attribute> attributesOf(der::Span name) {
    der::Reader rdns = der::Reader(name, "Un nome nel certificato non è leggibile").enter(der::sequence);
    std::vector<Attribute> attributes;
    while (!rdns.atEnd()) {
        for (der::Reader rdn = rdns.enter(der::set); !rdn.atEnd();) {
            der::Reader attribute = rdn.enter(der::sequence);
            const auto type = attribute.next(der::oid).whole;
            attributes.push_back({type, attribute.next()});
        }
    }
    return attributes;
}

std::string textOf(const Attribute& attribute) {
    return displayText(attribute.value.tag, attribute.value.content);
}

} // namespace

std::string slashName(der::Span name) {
    std::string text;
    for (const auto& attribute : attributesOf(name))
        text += "/" + shortName(attribute.type) + "=" + textOf(attribute);
    return text;
}

std::string nameAttribute(der::Span name, int nid) {
    const Bytes kind = der::objectIdentifier(nid);
    for (const auto& attribute : attributesOf(name))
        if (der::isSame(attribute.type, kind)) return textOf(attribute);
    return {};
}

} // namespace zvcrypt
