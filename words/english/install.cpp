#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row INSTALL_ROWS[] = {
    {"certificate-not-stored", N_("The certificate could not be stored{reason}.")},
};

} // namespace

Rows install_rows() {
    return INSTALL_ROWS;
}

} // namespace words
