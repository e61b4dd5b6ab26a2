#include "card/detection.h"

#include "card/session.h"
#include "diag/log.h"
#include "routines/card.h"
#include "util/text.h"
#include "zvCrypt.h"

#include <algorithm>
#include <cstring>
#include <string_view>

bool is1205SerialToken = false;

namespace zv {

char scReader[ZV_READER_MAX + 1];
char Libreria[ZV_MODULE_PATH_SIZE];
char pwd[ZV_MODULE_DIR_MAX + 1];
int slot = 0;
char szSerialNumber[ZVC_TOKEN_SERIAL_SIZE];
bool isCNS = false;
char g_ATRINI_dir[ZV_ATR_DIR_MAX + 1];

} // namespace zv

namespace {

constexpr int UNSUPPORTED = 100;
// A serial number has 16 characters; the rest of its buffer is left as it is.
constexpr std::size_t SERIAL_CLEARED = 17;

bool serial_begins(std::string_view series) {
    return zv::bounded_text(zv::szSerialNumber, sizeof zv::szSerialNumber).starts_with(series);
}

int failed(const char* operation, int code) {
    char text[64] = "CheckSmartCard ";
    zv::append_text(text, operation);
    zv::append_text(text, " fallita");
    zv::write_line(text);
    return code;
}

// Takes the given reader, or else the first of the list. False: there is none.
bool select_reader(const char* reader, char (&list)[ZVC_READER_LIST_SIZE]) {
    char* separator = std::strchr(list, '|');
    if (reader == nullptr && separator == nullptr) return false;
    if (separator != nullptr) *separator = '\0';
    zv::copy_text(zv::scReader, reader != nullptr ? reader : list);
    zv::write_line("Lettore selezionato:");
    zv::write_line(zv::scReader);
    return true;
}

int find_module(char (&module)[ZVC_MODULE_NAME_SIZE]) {
    if (zv::g_ATRINI_dir[0] != '\0') {
        const int code = kvGetPKCS11FromATRLite(zv::scReader, module, zv::g_ATRINI_dir);
        if (code != 0) return failed("kvGetPKCS11FromATRLite", code);
    } else {
        const int code = kvGetPKCS11FromATR(zv::scReader, module);
        if (code != 0) return failed("kvGetPKCS11FromATR", code);
    }
    module[sizeof module - 1] = '\0';
    return 0;
}

void select_module(const char* file_name) {
    zv::copy_text(zv::Libreria, zv::pwd);
    zv::append_text(zv::Libreria, "/");
    zv::append_text(zv::Libreria, file_name);
}

int read_serial_number() {
    kvFinalize();
    int code = kvInitialize(zv::Libreria, zv::slot);
    if (code != 0) return failed("kvInitialize", code);
    char label[ZVC_TOKEN_LABEL_SIZE] = {}, manufacturer[ZVC_TOKEN_MANUFACTURER_SIZE] = {};
    char model[ZVC_TOKEN_MODEL_SIZE] = {};
    code = kvCheckSmartCard(label, manufacturer, model, zv::szSerialNumber);
    if (code != 0) return failed("kvCheckSmartCard", code);
    zv::szSerialNumber[sizeof zv::szSerialNumber - 1] = '\0';
    const int closed = kvFinalize();
    zv::write_line("Numero seriale smart card: ");
    zv::write_line(zv::szSerialNumber);
    is1205SerialToken = serial_begins("1205");
    // Cards of this series are refused on purpose.
    return serial_begins("1201") ? UNSUPPORTED : closed;
}

} // namespace

int CheckSmartCard(bool& is_touch_sign, char* reader) {
    std::fill_n(zv::szSerialNumber, SERIAL_CLEARED, '\0');
    zv::Libreria[0] = '\0';
    zv::scReader[0] = '\0';
    zv::isCNS = false;
    char list[ZVC_READER_LIST_SIZE] = {};
    int code = kvGetReader(list);
    if (code != 0) return code;
    list[sizeof list - 1] = '\0';
    zv::write_line("Lista lettori:");
    zv::write_line(list);
    if (!select_reader(reader, list)) return 0;

    char module[ZVC_MODULE_NAME_SIZE] = {};
    code = find_module(module);
    if (code != 0) return code;
    if (module[0] == '\0') return UNSUPPORTED;
    if (kvIsCNSINCARD() != 0) zv::isCNS = true;
    if (kvIsTOUCHSIGN() != 0) is_touch_sign = true;
    select_module(module);
    zv::write_line(zv::Libreria);

    const unsigned found = getSlot(zv::scReader, zv::Libreria);
    if (found == zv::NO_SLOT) return failed("getSlot", -1);
    zv::slot = static_cast<int>(found);
    return read_serial_number();
}

void set_ATRini_path(const char* dir) {
    const std::string_view path = zv::or_empty(dir);
    zv::copy_text(zv::g_ATRINI_dir, path.size() < sizeof zv::g_ATRINI_dir ? path : std::string_view());
}

int DoInitialize(char* lib_path, char* pin) {
    char none[] = "";
    kvFinalize();
    const int code = kvInitialize(lib_path != nullptr ? lib_path : none, zv::slot);
    return code == 0 ? kvLogin(zv::or_empty(pin)) : code;
}

int DoFinalize() {
    return kvFinalize();
}
