#include "crypt/base64.h"
#include "crypt/card_signature.h"
#include "crypt/cms.h"
#include "crypt/files.h"
#include "crypt/signer.h"
#include "zvConstants.h"

#include <functional>

namespace zvcrypt {
namespace {

// What the renewal request has room for.
constexpr std::size_t LONGEST_BASE64 = ZV_REQUEST_SIZE - 1;

constexpr std::size_t CONTENT_PIECE = 8192;

// Reads the file through once, piece by piece; gives its digest and length.
struct Content {
    Bytes digest;
    std::size_t length = 0;
};

Content read_through(InputFile& file, const HashAlgorithm& hash,
                     const std::function<void(std::span<const unsigned char>)>& use) {
    Digest digest(hash);
    Content content;
    Bytes piece(CONTENT_PIECE);
    while (const std::size_t count = file.read(piece)) {
        const std::span<const unsigned char> bytes(piece.data(), count);
        digest.update(bytes);
        content.length += count;
        use(bytes);
    }
    content.digest = digest.finish();
    return content;
}

// Writes the content out. A file that changes meanwhile, even one that never ends, goes no further than it
// was.
void write_content(OutputFile& output, InputFile& input, const HashAlgorithm& hash, const Content& content,
                   const char* path) {
    const auto changed = [path] {
        return Failure(ZVC_ERR_INPUT, std::string(path) + " è cambiato durante la firma");
    };
    input.rewind();
    std::size_t left = content.length;
    const Content written = read_through(input, hash, [&](auto bytes) {
        if (bytes.size() > left) throw changed();
        left -= bytes.size();
        output.write(bytes);
    });
    if (written.digest != content.digest) throw changed();
}

void require_valid(const HashAlgorithm& hash, const Bytes& attributes, const Bytes& signature,
                   const Certificate& signer) {
    const ossl::DigestContext context = new_digest_context();
    const bool valid =
        EVP_DigestVerifyInit(context.get(), nullptr, hash.digest(), nullptr, signer.key()) == 1 &&
        EVP_DigestVerify(context.get(), signature.data(), signature.size(), attributes.data(),
                         attributes.size()) == 1;
    if (!valid)
        throw Failure(ZVC_ERR_SIGNATURE,
                      "La firma della smart card non corrisponde al certificato della chiave");
}

SignedDataFrame frame_within(std::size_t content_length, const HashAlgorithm& hash, const Bytes& attributes,
                             const Bytes& signature, const CardSigner& signer) {
    const auto frame = [&](const Certificate* issuer) {
        return signed_data_frame(content_length, hash, attributes, signature, signer.certificate, issuer);
    };
    const SignedDataFrame whole = frame(signer.issuer ? &signer.issuer : nullptr);
    const std::size_t size = whole.head.size() + content_length + whole.tail.size();
    return base64_length(size) > LONGEST_BASE64 ? frame(nullptr) : whole;
}

void sign_file(const Session& session, const char* key_id, const HashAlgorithm& hash, const char* in_path,
               const char* out_path) {
    InputFile input(in_path, Links::refused);
    OutputFile output(out_path, input);
    const Content content = read_through(input, hash, [](auto) {});

    const CardSigner signer = find_signer(session, key_id);
    const Bytes attributes = signed_attributes(content.digest, signer.certificate, std::time(nullptr));
    const Bytes signature = sign_on_card(session, signer.key, digest_info(hash, digest_of(hash, attributes)));
    require_valid(hash, attributes, signature, signer.certificate);
    const auto [head, tail] = frame_within(content.length, hash, attributes, signature, signer);

    output.write(head);
    write_content(output, input, hash, content, in_path);
    output.write(tail);
    output.keep();
}

} // namespace
} // namespace zvcrypt

int kvSignFile(const char* key_id, const char* hash_name, const char* in_path, const char* out_path) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({key_id, hash_name, in_path, out_path});
        const auto& hash = zvcrypt::hash_algorithm(hash_name);
        zvcrypt::sign_file(zvcrypt::current_session(), key_id, hash, in_path, out_path);
    });
}
