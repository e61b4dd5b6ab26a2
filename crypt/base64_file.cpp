#include "base64.h"
#include "failure.h"
#include "files.h"
#include "session.h"

#include <string_view>

namespace zvcrypt {
namespace {

// A multiple of the bytes in a line.
constexpr std::size_t pieceSize = 1024 * bytesPerBase64Line;

void encode(InputFile& input, OutputFile& output) {
    Bytes piece(pieceSize);
    while (const std::size_t count = input.read(piece)) {
        std::string lines;
        for (std::size_t start = 0; start < count; start += bytesPerBase64Line)
            lines += base64Line({piece.data() + start, std::min(bytesPerBase64Line, count - start)});
        output.write({reinterpret_cast<const unsigned char*>(lines.data()), lines.size()});
    }
}

void decode(InputFile& input, OutputFile& output) {
    Base64Decoder decoder;
    Bytes piece(pieceSize);
    while (const std::size_t count = input.read(piece))
        output.write(decoder.decode({reinterpret_cast<const char*>(piece.data()), count}));
    decoder.finish();
}

} // namespace
} // namespace zvcrypt

int kvFileToBase64(char* inPath, char* outPath, const char* mode) {
    return zvcrypt::runCardOperation([&] {
        zvcrypt::requireArguments({inPath, outPath, mode});
        const std::string_view wanted = mode;
        if (wanted != "e" && wanted != "d")
            throw zvcrypt::Failure(ZVC_ERR_MODE, "Conversione sconosciuta: \"" + std::string(wanted) + "\"");
        zvcrypt::InputFile input(inPath, zvcrypt::Links::refused);
        zvcrypt::OutputFile output(outPath, input);
        (wanted == "e" ? zvcrypt::encode : zvcrypt::decode)(input, output);
        output.keep();
    });
}
