#pragma once

#include <vector>

namespace zvcrypt {

using Bytes = std::vector<unsigned char>;

} // namespace zvcrypt
