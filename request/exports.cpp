// The C face of this folder.
#include "request/der.h"
#include "request/pieces.h"
#include "request/request.h"
#include "request/sign.h"
#include "routines/request.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

template <typename Work> unsigned short worked(Work work) {
    return zv::guarded(static_cast<unsigned short>(ZV_FAILED), work);
}

} // namespace

ADATA* CreateADATA(unsigned char* src, unsigned long size, unsigned long copy_length) {
    return zv::create_piece(src, size, copy_length);
}

ADATA* ConcatenateADATA(ADATA* first, ADATA* second) {
    return zv::join_pieces(first, second);
}

ADATA* ConstructADATA(unsigned char tag, ADATA* first, va_list list) {
    return zv::wrap_pieces(tag, first, list);
}

ADATA* var_tlv(unsigned char tag, ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = zv::wrap_pieces(tag, first, list);
    va_end(list);
    return piece;
}

ADATA* SET(ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = zv::wrap_pieces(zv::der::TAG_SET, first, list);
    va_end(list);
    return piece;
}

ADATA* SEQUENCE(ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = zv::wrap_pieces(zv::der::TAG_SEQUENCE, first, list);
    va_end(list);
    return piece;
}

ADATA* _INTEGER(unsigned char* bytes, unsigned long length) {
    return zv::integer_piece(bytes, length);
}

unsigned short SignIt(void*, unsigned char* data, unsigned long data_length, unsigned char* signature,
                      unsigned long* signature_length, unsigned long private_key) {
    return worked([=] {
        return zv::sign_on_card({data, data_length}, private_key, signature, signature_length);
    });
}

unsigned short RequestCertificate(void*, char* pem_out, char* pin, unsigned short, char* module_path, char*) {
    return worked([=] { return zv::request_for_pending_pair({module_path, pin}, pem_out); });
}

unsigned short RequestCertificateCNS(void*, char* pem_out, char* pin, unsigned short, char* module_path,
                                     char*) {
    return worked([=] { return zv::request_for_own_pair({module_path, pin}, pem_out); });
}

unsigned short RichiestaCertificato(char* pem_out, char* module_path, char* pin, char* card_type) {
    return zv::request_certificate({module_path, pin}, zv::or_empty(card_type), pem_out);
}
