// Entry points that read the card.
#include "api/entry.h"
#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "diag/log.h"
#include "inventory/dump.h"
#include "inventory/host_buffers.h"
#include "routines/card.h"
#include "util/guarded.h"
#include "util/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace {

using zv::dtScadenza;

constexpr char DASHES_34[] = "----------------------------------";
constexpr char DASHES_33[] = "---------------------------------";
constexpr char NOT_SUPPORTED[] = "Tipo di Smart Card non supportato";

// The host's buffers, stand-ins where it gave none.
struct Reading {
    char** list_cns;
    char** list_pra;
    char** list_aut;
    int* pending_cns;
    int* pending_pra;
    int* pending_aut;
    char* key_pra;
    char* key_aut;
    bool touch_sign = false;
    int dump_result = 0;
};

void clear_state() {
    zv::clear(szBuffErr, zv::szBufferRichiesta, zv::sSubjectSott, zv::sBuffSott, zv::sSubjectAute,
              zv::sBuffAute, zv::sLabelSott, zv::sLabelAute, zv::pwd);
    zv::slot = 0;
}

void clear_expiry() {
    std::fill_n(dtScadenza, 9, '\0');
}

int detect(Reading& reading, char* reader) {
    zv::write_line("CheckSmartCard");
    const int code = CheckSmartCard(reading.touch_sign, reader);
    if (code == 0) return 0;
    zv::write_line("CheckSmartCard fallita");
    if (code == ZV_UNSUPPORTED)
        zv::copy_text(szBuffErr, NOT_SUPPORTED);
    else
        zv::fetch_reason();
    zv::write_line(szBuffErr);
    return code;
}

void dump_card(Reading& reading, char* pin) {
    std::string text;
    reading.dump_result = zv::dump_card(zv::Libreria, pin, zv::slot, text);
    zv::write_line(reading.dump_result == 0 ? text.c_str() : "Funzione 'renewDump': errore dump Smart Card");
}

// A PIN that the dump's session was refused with is not sent again: its result stands for the second one too.
int open_session(const Reading& reading, char* pin) {
    if (zv::guard_second_login(reading.dump_result)) return reading.dump_result;
    return static_cast<int>(__Initialize(zv::slot, pin, zv::Libreria));
}

// The lines that name the kind of card and the routine, and what is done in between.
template <typename Inventory>
int read_inventory(const Reading& reading, char* pin, const char* card, const char* routine,
                   Inventory inventory) {
    const auto line = [card](const char* what, const char* outcome) {
        std::array<char, 128> text{};
        for (const char* part : {"Smart Card ", card, ": ", what, outcome})
            zv::append_text(text.data(), text.size(), part);
        return text;
    };
    int code = open_session(reading, pin);
    if (code != 0) {
        zv::fail(line("(int)__Initialize()", " error!").data(), code);
        finalizza();
        return code;
    }
    zv::write_line(line("(int)__Initialize()", " completata con successo!").data());
    code = inventory();
    finalizza();
    if (code != 0) return zv::fail(line(routine, " error!").data(), code);
    zv::write_line(line(routine, " completata con successo").data());
    return 0;
}

zv::HostInventory buffers_of(const Reading& reading) {
    return {.pra = {reading.list_pra, zv::sSubjectSott, zv::sLabelSott},
            .aut = {reading.list_aut, zv::sSubjectAute, zv::sLabelAute},
            .cns = {reading.list_cns},
            .state = {reading.pending_pra, reading.pending_aut, reading.key_pra, reading.key_aut,
                      reading.pending_cns, dtScadenza}};
}

int read_card(const Reading& reading, char* pin) {
    return read_inventory(reading, pin, "NON CNS", "NewFind_ALL_CertsKeysRenew()", [&reading] {
        clear_expiry();
        zv::write_line("NewFind_ALL_CertsKeysRenew: INIZIO");
        return zv::fill_card(buffers_of(reading));
    });
}

int read_services_card(const Reading& reading, char* pin) {
    return read_inventory(reading, pin, "CNS", "NewFind_ALL_CertsKeysRenewCNS()",
                          [&reading] { return zv::fill_services_card(buffers_of(reading)); });
}

int count_of(char** list) {
    if (list == nullptr || list[0] == nullptr) return 0;
    return static_cast<int>(std::min(std::strtol(list[0], nullptr, 10), long{ZV_LIST_ENTRIES - 1}));
}

void trace_list(const char* title, char** list) {
    const int count = count_of(list);
    for (int i = 1; i <= count; ++i) {
        zv::write_line(title);
        zv::write_line(list[i]);
        zv::write_line("-----");
    }
}

void trace_key(int pending, const char* key, const char* pending_title, const char* free_title) {
    if (pending == 1)
        zv::write_line(pending_title);
    else if (pending == 0 && key[0] != '\0')
        zv::write_line(free_title);
    else
        return;
    zv::write_line(key);
}

void trace_summary(const Reading& reading) {
    zv::write_line(DASHES_33);
    zv::write_line("Certificati presenti nella Smart Card..");
    trace_list("CNS:", reading.list_cns);
    trace_list("PRA:", reading.list_pra);
    trace_list("AUT:", reading.list_aut);
    trace_key(*reading.pending_pra, reading.key_pra, "Chiave Pending PRA:", "FREE CKAID PRA:");
    trace_key(*reading.pending_aut, reading.key_aut, "Chiave Pending AUT:", "FREE CKAID AUT:");
    if (*reading.pending_cns == 1) zv::write_line("Chiave Pending CNS: Si");
    zv::write_line(DASHES_33);
}

int read(Reading& reading, char* reader, char* pin) {
    if (reader != nullptr && std::string_view(reader).find(".dll") != std::string_view::npos) {
        zv::copy_text(zv::Libreria, reader);
        zv::isCNS = true;
        clear_expiry();
        return read_services_card(reading, pin);
    }
    if (const int code = detect(reading, reader)) return code;
    zv::trace_module("Libreria pkcs #11 selezionata: ");
    dump_card(reading, pin);
    if (!zv::isCNS) return read_card(reading, pin);
    clear_expiry();
    return read_services_card(reading, pin);
}

int close_unusable() {
    finalizza();
    return ZV_UNUSABLE;
}

int read_all(Reading& reading, char* reader, char* pin, const char* module_dir) {
    for (int* flag : {reading.pending_cns, reading.pending_pra, reading.pending_aut})
        *flag = 0;
    clear_state();
    for (const char* line : {"zvRenew", ZV_VERSION, DASHES_34, "Funzione 'rinnovo_Card_readCerts': INIZIO"})
        zv::write_line(line);
    zv::copy_text(zv::pwd, zv::or_empty(module_dir));
    zv::write_line(zv::pwd);
    if (const int code = read(reading, reader, pin)) return code;
    trace_summary(reading);
    zv::write_line("Funzione 'rinnovo_Card_readCerts' correttamente Eseguita!");
    return 0;
}

int find_free(char* reader, char* pin, char* key_pra, char* key_aut) {
    static constexpr char detection_failed[] = "Funzione CheckSmartCard() error!";
    bool touch_sign = false;
    int code = CheckSmartCard(touch_sign, reader);
    if (code == ZV_UNSUPPORTED) return zv::fail(detection_failed, code, NOT_SUPPORTED);
    if (code != 0) return zv::fail(detection_failed, code);
    code = static_cast<int>(__Initialize(zv::slot, pin, zv::Libreria));
    if (code != 0) {
        zv::fail("Funzione (int)__Initialize() error!", code);
        finalizza();
        return code;
    }
    code = zv::fill_state({.ckaid_pra = key_pra, .ckaid_aut = key_aut}, ZV_UNUSABLE, zv::find_free_ids);
    finalizza();
    return code == 0 ? 0 : zv::fail("Funzione findFreeCKAID() error!", code);
}

} // namespace

int rinnovo_Card_readCerts(char* reader, char* pin, int, char** list_cns, char** list_pra, char** list_aut,
                           int* pending_cns, int* pending_pra, int* pending_aut, char* key_pra, char* key_aut,
                           char*, const char* module_dir) {
    int flags[3] = {};
    char keys[2][ZV_KEY_ID_SIZE] = {}, no_pin[] = "";
    Reading reading = {list_cns,
                       list_pra,
                       list_aut,
                       pending_cns != nullptr ? pending_cns : &flags[0],
                       pending_pra != nullptr ? pending_pra : &flags[1],
                       pending_aut != nullptr ? pending_aut : &flags[2],
                       key_pra != nullptr ? key_pra : keys[0],
                       key_aut != nullptr ? key_aut : keys[1]};
    return zv::guarded(close_unusable,
                       [&] { return read_all(reading, reader, pin != nullptr ? pin : no_pin, module_dir); });
}

int rinnovo_Card_findFreeCKAID(char* reader, char* pin, char* key_pra, char* key_aut) {
    char keys[2][ZV_KEY_ID_SIZE] = {}, no_pin[] = "";
    if (key_pra == nullptr) key_pra = keys[0];
    if (key_aut == nullptr) key_aut = keys[1];
    zv::write_line("Funzione 'rinnovo_Card_findFreeCKAID': INIZIO");
    if (const int code = find_free(reader, pin != nullptr ? pin : no_pin, key_pra, key_aut)) return code;
    for (const char* line :
         {DASHES_33, "Free CKAID:", static_cast<const char*>(key_pra), static_cast<const char*>(key_aut),
          DASHES_33, "Funzione 'rinnovo_Card_findFreeCKAID()' completata con successo!"})
        zv::write_line(line);
    return 0;
}
