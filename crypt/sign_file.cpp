#include "base64.h"
#include "card_objects.h"
#include "cms.h"
#include "files.h"

#include <functional>

namespace zvcrypt {
namespace {

// What the renewal request has room for.
constexpr std::size_t longestBase64 = 16383;

constexpr std::size_t pieceSize = 65536;

// Reads the file through once, piece by piece; gives its digest and length.
struct Content {
    Bytes digest;
    std::size_t length = 0;
};

Content readThrough(InputFile& file, const HashAlgorithm& hash,
                    const std::function<void(std::span<const unsigned char>)>& use) {
    Digest digest(hash);
    Content content;
    Bytes piece(pieceSize);
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
void writeContent(OutputFile& output, InputFile& input, const HashAlgorithm& hash, const Content& content,
                  const char* path) {
    const auto changed = [path] {
        return Failure(ZVC_ERR_INPUT, std::string(path) + " è cambiato durante la firma");
    };
    input.rewind();
    std::size_t left = content.length;
    const Content written = readThrough(input, hash, [&](auto bytes) {
        if (bytes.size() > left) throw changed();
        left -= bytes.size();
        output.write(bytes);
    });
    if (written.digest != content.digest) throw changed();
}

void requireValid(const HashAlgorithm& hash, const Bytes& attributes, const Bytes& signature,
                  const Certificate& signer) {
    const MdContextPtr context = newDigestContext();
    const bool valid =
        EVP_DigestVerifyInit(context.get(), nullptr, hash.digest(), nullptr, signer.key()) == 1 &&
        EVP_DigestVerify(context.get(), signature.data(), signature.size(), attributes.data(),
                         attributes.size()) == 1;
    if (!valid)
        throw Failure(ZVC_ERR_SIGNATURE,
                      "La firma della smart card non corrisponde al certificato della chiave");
}

SignedDataFrame frameWithin(std::size_t contentLength, const HashAlgorithm& hash, const Bytes& attributes,
                            const Bytes& signature, const CardSigner& signer) {
    const auto frame = [&](const Certificate* issuer) {
        return signedDataFrame(contentLength, hash, attributes, signature, signer.certificate, issuer);
    };
    const SignedDataFrame whole = frame(signer.issuer ? &signer.issuer : nullptr);
    const std::size_t size = whole.head.size() + contentLength + whole.tail.size();
    return base64Length(size) > longestBase64 ? frame(nullptr) : whole;
}

void signFile(const Session& session, const char* keyId, const HashAlgorithm& hash, const char* inPath,
              const char* outPath) {
    InputFile input(inPath, Links::refused);
    OutputFile output(outPath, input);
    const Content content = readThrough(input, hash, [](auto) {});

    const CardSigner signer = findSigner(session, keyId);
    const Bytes attributes = signedAttributes(content.digest, signer.certificate, std::time(nullptr));
    const Bytes signature = signOnCard(session, signer.key, digestInfo(hash, digestOf(hash, attributes)));
    requireValid(hash, attributes, signature, signer.certificate);
    const auto [head, tail] = frameWithin(content.length, hash, attributes, signature, signer);

    output.write(head);
    writeContent(output, input, hash, content, inPath);
    output.write(tail);
    output.keep();
}

} // namespace
} // namespace zvcrypt

int kvSignFile(const char* keyId, const char* hashName, const char* inPath, const char* outPath) {
    return zvcrypt::runCardOperation([&] {
        zvcrypt::requireArguments({keyId, hashName, inPath, outPath});
        const auto& hash = zvcrypt::hashAlgorithm(hashName);
        zvcrypt::signFile(zvcrypt::currentSession(), keyId, hash, inPath, outPath);
    });
}
