#include "object_id.h"

#include "failure.h"

namespace zvcrypt {
namespace {

using ObjectPtr = OpensslPtr<ASN1_OBJECT, ASN1_OBJECT_free>;

[[noreturn]] void fail() {
    throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Un identificativo (OID) nel certificato non è leggibile");
}

ObjectPtr objectOf(der::Span identifier) {
    const unsigned char* end = identifier.data();
    ObjectPtr object(d2i_ASN1_OBJECT(nullptr, &end, static_cast<long>(identifier.size())));
    if (!object) fail();
    return object;
}

std::string numberOf(const ASN1_OBJECT& object) {
    const int length = OBJ_obj2txt(nullptr, 0, &object, 1);
    if (length <= 0) fail();
    std::string number(static_cast<std::size_t>(length) + 1, '\0');
    (void)OBJ_obj2txt(number.data(), length + 1, &object, 1);
    number.pop_back();
    return number;
}

} // namespace

std::string dottedNumber(der::Span identifier) {
    return numberOf(*objectOf(identifier));
}

std::string shortName(der::Span identifier) {
    const auto object = objectOf(identifier);
    // The host may have added the number to OpenSSL's table, and without a name.
    const int nid = OBJ_obj2nid(object.get());
    const char* name = nid == NID_undef ? nullptr : OBJ_nid2sn(nid);
    return name == nullptr ? numberOf(*object) : name;
}

} // namespace zvcrypt
