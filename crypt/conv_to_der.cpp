#include "crypt/certificate_parts.h"
#include "crypt/failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

struct Output {
    der::Span value;
    char* buffer;
    unsigned long* length;
};

} // namespace
} // namespace zvcrypt

int ConvToDer(unsigned char* der, unsigned long der_length, char* subject, unsigned long* subject_length,
              char* issuer, unsigned long* issuer_length, char* serial, unsigned long* serial_length) {
    return zvcrypt::run_operation([&] {
        zvcrypt::require_arguments(
            {der, subject, subject_length, issuer, issuer_length, serial, serial_length});
        const auto parts = zvcrypt::take_apart({der, der_length});
        const zvcrypt::Output outputs[] = {{parts.subject, subject, subject_length},
                                           {parts.issuer, issuer, issuer_length},
                                           {parts.serial, serial, serial_length}};
        for (const auto& output : outputs)
            if (output.value.size() > *output.length)
                throw zvcrypt::Failure(ZVC_ERR_ROOM, "Titolare, emittente o numero di serie troppo lungo");
        for (const auto& output : outputs) {
            std::copy(output.value.begin(), output.value.end(), output.buffer);
            *output.length = output.value.size();
        }
    });
}
