#include "cms.h"

#include "der.h"
#include "failure.h"

namespace zvcrypt {
namespace {

using der::tlv;

Bytes null() {
    return {0x05, 0x00};
}

Bytes versionOne() {
    return {der::integer, 0x01, 0x01};
}

Bytes attribute(int nid, const Bytes& value) {
    return tlv(der::sequence, {der::objectIdentifier(nid), tlv(der::set, {value})});
}

// RFC 5754: the parameters of the SHA-2 digests are left out.
Bytes digestAlgorithm(const HashAlgorithm& hash) {
    return tlv(der::sequence, {der::objectIdentifier(hash.nid)});
}

// UTCTime up to 2049, GeneralizedTime from then on: RFC 5652, section 11.3.
Bytes timeValue(std::time_t time) {
    const TimePtr encodedTime(ASN1_TIME_set(nullptr, time));
    if (!encodedTime) throw Failure(ZVC_ERR_INTERNAL, "L'ora del sistema non è utilizzabile");
    return der::encoded(i2d_ASN1_TIME, static_cast<const ASN1_TIME*>(encodedTime.get()));
}

// RFC 5035. The digest is SHA-256, the default, which DER leaves unsaid.
Bytes signingCertificate(const Certificate& signer) {
    const Bytes digest = digestOf(hashAlgorithm("SHA256"), signer.der);
    const auto parts = signer.parts();
    const Bytes issuer = tlv(der::sequence, {tlv(der::context4, {parts.issuer})});
    const Bytes issuerSerial = tlv(der::sequence, {issuer, parts.serialNumber});
    const Bytes certificateId = tlv(der::sequence, {tlv(der::octetString, {digest}), issuerSerial});
    return tlv(der::sequence, {tlv(der::sequence, {certificateId})});
}

// The attributes as they stand in the SignerInfo: the same SET under the tag [0].
Bytes retagged(Bytes attributes) {
    attributes.at(0) = der::context0;
    return attributes;
}

Bytes signerInfo(const HashAlgorithm& hash, const Bytes& attributes, const Bytes& signature,
                 const Certificate& signer) {
    const auto parts = signer.parts();
    return tlv(der::sequence,
               {versionOne(), tlv(der::sequence, {parts.issuer, parts.serialNumber}), digestAlgorithm(hash),
                retagged(attributes), tlv(der::sequence, {der::objectIdentifier(NID_rsaEncryption), null()}),
                tlv(der::octetString, {signature})});
}

} // namespace

Bytes signedAttributes(const Bytes& contentDigest, const Certificate& signer, std::time_t signingTime) {
    return der::setOf(der::set,
                      {attribute(NID_pkcs9_contentType, der::objectIdentifier(NID_pkcs7_data)),
                       attribute(NID_pkcs9_messageDigest, tlv(der::octetString, {contentDigest})),
                       attribute(NID_pkcs9_signingTime, timeValue(signingTime)),
                       attribute(NID_id_smime_aa_signingCertificateV2, signingCertificate(signer))});
}

Bytes digestInfo(const HashAlgorithm& hash, const Bytes& digest) {
    const Bytes algorithm = tlv(der::sequence, {der::objectIdentifier(hash.nid), null()});
    return tlv(der::sequence, {algorithm, tlv(der::octetString, {digest})});
}

SignedDataFrame signedDataFrame(std::size_t contentLength, const HashAlgorithm& hash, const Bytes& attributes,
                                const Bytes& signature, const Certificate& signer,
                                const Certificate* issuer) {
    std::vector<Bytes> certificates{signer.der};
    if (issuer != nullptr) certificates.push_back(issuer->der);
    const Bytes tail = der::joined({der::setOf(der::context0, certificates),
                                    tlv(der::set, {signerInfo(hash, attributes, signature, signer)})});

    // From the inside out: each header needs the length of all that it holds, the content among it.
    Bytes head = der::header(der::octetString, contentLength);
    const auto enclose = [&](der::Tag tag, const Bytes& before, std::size_t after) {
        head = der::joined({before, head});
        head = der::joined({der::header(tag, head.size() + contentLength + after), head});
    };
    enclose(der::context0, {}, 0);
    enclose(der::sequence, der::objectIdentifier(NID_pkcs7_data), 0);
    enclose(der::sequence, der::joined({versionOne(), tlv(der::set, {digestAlgorithm(hash)})}), tail.size());
    enclose(der::context0, {}, tail.size());
    enclose(der::sequence, der::objectIdentifier(NID_pkcs7_signed), tail.size());
    return {head, tail};
}

} // namespace zvcrypt
