#include "crypt/object_id.h"

#include "crypt/failure.h"
#include "ossl/owners.h"

namespace zvcrypt {
namespace {

using ObjectPtr = ossl::Owner<ASN1_OBJECT, ASN1_OBJECT_free>;

[[noreturn]] void no_object_id() {
    throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Un identificativo (OID) nel certificato non è leggibile");
}

ObjectPtr object_of(der::Span identifier) {
    const unsigned char* end = identifier.data();
    ObjectPtr object(d2i_ASN1_OBJECT(nullptr, &end, static_cast<long>(identifier.size())));
    if (!object) no_object_id();
    return object;
}

std::string number_of(const ASN1_OBJECT& object) {
    const int length = OBJ_obj2txt(nullptr, 0, &object, 1);
    if (length <= 0) no_object_id();
    std::string number(static_cast<std::size_t>(length) + 1, '\0');
    (void)OBJ_obj2txt(number.data(), length + 1, &object, 1);
    number.pop_back();
    return number;
}

} // namespace

std::string dotted_number(der::Span identifier) {
    return number_of(*object_of(identifier));
}

std::string short_name(der::Span identifier) {
    const auto object = object_of(identifier);
    // The host may have added the number to OpenSSL's table, and without a name.
    const int nid = OBJ_obj2nid(object.get());
    const char* name = nid == NID_undef ? nullptr : OBJ_nid2sn(nid);
    return name == nullptr ? number_of(*object) : name;
}

} // namespace zvcrypt
