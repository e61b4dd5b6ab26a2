#include "crypt/name.h"

#include "crypt/asn1_text.h"
#include "crypt/object_id.h"

#include <vector>

namespace zvcrypt {
namespace {

struct Attribute {
    der::Span type;
    der::Element value;
};

// In their order; those of one RDN follow each other like the others.
std::vector<Attribute> attributes_of(der::Span name) {
    der::Reader rdns = der::Reader(name, "Un nome nel certificato non è leggibile").enter(der::sequence);
    std::vector<Attribute> attributes;
    while (!rdns.at_end()) {
        for (der::Reader rdn = rdns.enter(der::set); !rdn.at_end();) {
            der::Reader attribute = rdn.enter(der::sequence);
            const auto type = attribute.next(der::oid).whole;
            attributes.push_back({type, attribute.next()});
        }
    }
    return attributes;
}

std::string text_of(const Attribute& attribute) {
    return display_text(attribute.value.tag, attribute.value.content);
}

} // namespace

std::string slash_name(der::Span name) {
    std::string text;
    for (const auto& attribute : attributes_of(name))
        text += "/" + short_name(attribute.type) + "=" + text_of(attribute);
    return text;
}

std::string name_attribute(der::Span name, int nid) {
    const Bytes kind = der::object_identifier(nid);
    for (const auto& attribute : attributes_of(name))
        if (der::is_same(attribute.type, kind)) return text_of(attribute);
    return {};
}

} // namespace zvcrypt
