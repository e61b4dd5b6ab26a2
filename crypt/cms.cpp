#include "crypt/cms.h"

#include "crypt/der.h"
#include "crypt/failure.h"
#include "ossl/owners.h"

namespace zvcrypt {
namespace {

using der::tlv;

Bytes null() {
    return {0x05, 0x00};
}

Bytes version_one() {
    return {der::integer, 0x01, 0x01};
}

Bytes attribute(int nid, const Bytes& value) {
    return tlv(der::sequence, {der::object_identifier(nid), tlv(der::set, {value})});
}

// RFC 5754: the parameters of the SHA-2 digests are left out.
Bytes digest_algorithm(const HashAlgorithm& hash) {
    return tlv(der::sequence, {der::object_identifier(hash.nid)});
}

// UTCTime up to 2049, GeneralizedTime from then on: RFC 5652, section 11.3.
Bytes time_value(std::time_t time) {
    const ossl::Time encoded_time(ASN1_TIME_set(nullptr, time));
    if (!encoded_time) throw Failure(ZVC_ERR_INTERNAL, "L'ora del sistema non è utilizzabile");
    return der::encoded(i2d_ASN1_TIME, static_cast<const ASN1_TIME*>(encoded_time.get()));
}

// RFC 5035. The digest is SHA-256, the default, which DER leaves unsaid.
Bytes signing_certificate(const Certificate& signer) {
    const Bytes digest = digest_of(hash_algorithm("SHA256"), signer.der);
    const auto parts = signer.parts();
    const Bytes issuer = tlv(der::sequence, {tlv(der::context4, {parts.issuer})});
    const Bytes issuer_serial = tlv(der::sequence, {issuer, parts.serial_number});
    const Bytes certificate_id = tlv(der::sequence, {tlv(der::octet_string, {digest}), issuer_serial});
    return tlv(der::sequence, {tlv(der::sequence, {certificate_id})});
}

// The attributes as they stand in the SignerInfo: the same SET under the tag [0].
Bytes retagged(Bytes attributes) {
    attributes.at(0) = der::context0;
    return attributes;
}

Bytes signer_info(const HashAlgorithm& hash, const Bytes& attributes, const Bytes& signature,
                  const Certificate& signer) {
    const auto parts = signer.parts();
    return tlv(der::sequence, {version_one(), tlv(der::sequence, {parts.issuer, parts.serial_number}),
                               digest_algorithm(hash), retagged(attributes),
                               tlv(der::sequence, {der::object_identifier(NID_rsaEncryption), null()}),
                               tlv(der::octet_string, {signature})});
}

} // namespace

Bytes signed_attributes(const Bytes& content_digest, const Certificate& signer, std::time_t signing_time) {
    return der::set_of(der::set,
                       {attribute(NID_pkcs9_contentType, der::object_identifier(NID_pkcs7_data)),
                        attribute(NID_pkcs9_messageDigest, tlv(der::octet_string, {content_digest})),
                        attribute(NID_pkcs9_signingTime, time_value(signing_time)),
                        attribute(NID_id_smime_aa_signingCertificateV2, signing_certificate(signer))});
}

Bytes digest_info(const HashAlgorithm& hash, const Bytes& digest) {
    const Bytes algorithm = tlv(der::sequence, {der::object_identifier(hash.nid), null()});
    return tlv(der::sequence, {algorithm, tlv(der::octet_string, {digest})});
}

SignedDataFrame signed_data_frame(std::size_t content_length, const HashAlgorithm& hash,
                                  const Bytes& attributes, const Bytes& signature, const Certificate& signer,
                                  const Certificate* issuer) {
    std::vector<Bytes> certificates{signer.der};
    if (issuer != nullptr) certificates.push_back(issuer->der);
    const Bytes tail = der::joined({der::set_of(der::context0, certificates),
                                    tlv(der::set, {signer_info(hash, attributes, signature, signer)})});

    // From the inside out: each header needs the length of all that it holds, the content among it.
    Bytes head = der::header(der::octet_string, content_length);
    const auto enclose = [&](der::Tag tag, const Bytes& before, std::size_t after) {
        head = der::joined({before, head});
        head = der::joined({der::header(tag, head.size() + content_length + after), head});
    };
    enclose(der::context0, {}, 0);
    enclose(der::sequence, der::object_identifier(NID_pkcs7_data), 0);
    enclose(der::sequence, der::joined({version_one(), tlv(der::set, {digest_algorithm(hash)})}),
            tail.size());
    enclose(der::context0, {}, tail.size());
    enclose(der::sequence, der::object_identifier(NID_pkcs7_signed), tail.size());
    return {head, tail};
}

} // namespace zvcrypt
