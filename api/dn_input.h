#ifndef ZV_API_DN_INPUT_H
#define ZV_API_DN_INPUT_H

#include <string_view>

#include "records.h"

namespace zv {

/** The name that a host's text would give if the text that it is worked on in had no end. */
[[nodiscard]] datiDN wholeName(std::string_view dn);

} // namespace zv

#endif
