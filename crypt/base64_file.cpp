#include "crypt/base64.h"
#include "crypt/failure.h"
#include "crypt/files.h"
#include "crypt/session.h"

#include <string_view>

namespace zvcrypt {
namespace {

// A multiple of the bytes in a line, and little more than what a request has room for.
constexpr std::size_t PIECE_SIZE = 256 * BYTES_PER_BASE64_LINE;

void encode(InputFile& input, OutputFile& output) {
    Bytes piece(PIECE_SIZE);
    while (const std::size_t count = input.read(piece)) {
        std::string lines;
        lines.reserve(base64_length(count));
        for (std::size_t start = 0; start < count; start += BYTES_PER_BASE64_LINE)
            lines += base64_line({piece.data() + start, std::min(BYTES_PER_BASE64_LINE, count - start)});
        output.write({reinterpret_cast<const unsigned char*>(lines.data()), lines.size()});
    }
}

void decode(InputFile& input, OutputFile& output) {
    Base64Decoder decoder;
    Bytes piece(PIECE_SIZE);
    while (const std::size_t count = input.read(piece))
        output.write(decoder.decode({reinterpret_cast<const char*>(piece.data()), count}));
    decoder.finish();
}

} // namespace
} // namespace zvcrypt

int kvFileToBase64(char* in_path, char* out_path, const char* mode) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({in_path, out_path, mode});
        const std::string_view wanted = mode;
        if (wanted != "e" && wanted != "d")
            throw zvcrypt::Failure(ZVC_ERR_MODE, "Conversione sconosciuta: \"" + std::string(wanted) + "\"");
        zvcrypt::InputFile input(in_path, zvcrypt::Links::refused);
        zvcrypt::OutputFile output(out_path, input);
        (wanted == "e" ? zvcrypt::encode : zvcrypt::decode)(input, output);
        output.keep();
    });
}
