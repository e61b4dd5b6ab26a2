#include "card/detection.h"

#include "card/slot_probe.h"
#include "diag/log.h"
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

namespace {

constexpr int UNSUPPORTED = 100;
// A serial number has 16 characters; the rest of its buffer is left as it is.
constexpr std::size_t SERIAL_CLEARED = 17;

bool serial_begins(std::string_view series) {
    return bounded_text(szSerialNumber, sizeof szSerialNumber).starts_with(series);
}

int not_detected(const char* operation, int code) {
    char text[64] = "CheckSmartCard ";
    append_text(text, operation);
    append_text(text, " fallita");
    write_line(text);
    return code;
}

// Takes the given reader, or else the first of the list. False: there is none.
bool select_reader(const char* reader, char (&list)[ZVC_READER_LIST_SIZE]) {
    char* separator = std::strchr(list, '|');
    if (reader == nullptr && separator == nullptr) return false;
    if (separator != nullptr) *separator = '\0';
    copy_text(scReader, reader != nullptr ? reader : list);
    write_line("Lettore selezionato:");
    write_line(scReader);
    return true;
}

int find_module(char (&module)[ZVC_MODULE_NAME_SIZE]) {
    if (g_ATRINI_dir[0] != '\0') {
        const int code = kvGetPKCS11FromATRLite(scReader, module, g_ATRINI_dir);
        if (code != 0) return not_detected("kvGetPKCS11FromATRLite", code);
    } else {
        const int code = kvGetPKCS11FromATR(scReader, module);
        if (code != 0) return not_detected("kvGetPKCS11FromATR", code);
    }
    module[sizeof module - 1] = '\0';
    return 0;
}

void select_module(const char* file_name) {
    copy_text(Libreria, pwd);
    append_text(Libreria, "/");
    append_text(Libreria, file_name);
}

int read_serial_number() {
    kvFinalize();
    int code = kvInitialize(Libreria, slot);
    if (code != 0) return not_detected("kvInitialize", code);
    char label[ZVC_TOKEN_LABEL_SIZE] = {}, manufacturer[ZVC_TOKEN_MANUFACTURER_SIZE] = {};
    char model[ZVC_TOKEN_MODEL_SIZE] = {};
    code = kvCheckSmartCard(label, manufacturer, model, szSerialNumber);
    if (code != 0) return not_detected("kvCheckSmartCard", code);
    szSerialNumber[sizeof szSerialNumber - 1] = '\0';
    const int closed = kvFinalize();
    write_line("Numero seriale smart card: ");
    write_line(szSerialNumber);
    is1205SerialToken = serial_begins("1205");
    // Cards of this series are refused on purpose.
    return serial_begins(ZV_REFUSED_SERIES) ? UNSUPPORTED : closed;
}

} // namespace

Detection detect_card(const char* reader) {
    std::fill_n(szSerialNumber, SERIAL_CLEARED, '\0');
    Libreria[0] = '\0';
    scReader[0] = '\0';
    isCNS = false;
    char list[1024] = {};
    int code = kvGetReader(list);
    if (code != 0) return {code};
    list[sizeof list - 1] = '\0';
    write_line("Lista lettori:");
    write_line(list);
    if (!select_reader(reader, list)) return {0};

    char module[512] = {};
    code = find_module(module);
    if (code != 0) return {code};
    if (module[0] == '\0') return {UNSUPPORTED};
    if (kvIsCNSINCARD() != 0) isCNS = true;
    const bool touch_sign = kvIsTOUCHSIGN() != 0;
    select_module(module);
    write_line(Libreria);

    const std::optional<unsigned> found = slot_of_reader(scReader, Libreria);
    if (!found) return {not_detected("getSlot", -1), touch_sign};
    slot = static_cast<int>(*found);
    return {read_serial_number(), touch_sign};
}

void set_atr_folder(std::string_view path) {
    copy_text(g_ATRINI_dir, path.size() < sizeof g_ATRINI_dir ? path : std::string_view());
}

} // namespace zv
