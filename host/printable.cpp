#include "host/printable.h"

namespace zvhost {

std::string printable(std::string text) {
    for (char& c : text)
        if ((static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F) c = '?';
    return text;
}

} // namespace zvhost
