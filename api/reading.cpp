// The readings of the entry points.
#include "api/reading.h"

#include "api/entry.h"
#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "card/light_opener.h"
#include "card/session.h"
#include "diag/log.h"
#include "inventory/dump.h"
#include "inventory/host_buffers.h"
#include "util/text.h"
#include "zvRenew.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace zv {

namespace {

constexpr char DASHES_34[] = "----------------------------------";
constexpr char DASHES_33[] = "---------------------------------";
constexpr char NOT_SUPPORTED[] = "Tipo di Smart Card non supportato";

// A reading under way: the host's buffers, and stand-ins for those that it did not give.
struct UnderWay : Reading {
    explicit UnderWay(const Reading& reading) : Reading(reading) {
        if (pending_cns == nullptr) pending_cns = &flags[0];
        if (pending_pra == nullptr) pending_pra = &flags[1];
        if (pending_aut == nullptr) pending_aut = &flags[2];
        if (key_pra == nullptr) key_pra = keys[0];
        if (key_aut == nullptr) key_aut = keys[1];
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

    int flags[3] = {};
    char keys[2][ZV_KEY_ID_SIZE] = {};
    bool touch_sign = false;
    int dump_result = 0;
};

void clear_state() {
    clear(szBuffErr, szBufferRichiesta, sSubjectSott, sBuffSott, sSubjectAute, sBuffAute, sLabelSott,
          sLabelAute, pwd);
    slot = 0;
}

void clear_expiry() {
    std::fill_n(dtScadenza, 9, '\0');
}

int detect(UnderWay& reading, char* reader) {
    write_line("CheckSmartCard");
    const auto [code, touch_sign] = detect_card(reader);
    if (touch_sign) reading.touch_sign = true;
    if (code == 0) return 0;
    write_line("CheckSmartCard fallita");
    if (code == ZV_UNSUPPORTED)
        copy_text(szBuffErr, NOT_SUPPORTED);
    else
        fetch_reason();
    write_line(szBuffErr);
    return code;
}

void log_dump(UnderWay& reading, char* pin) {
    std::string text;
    reading.dump_result = dump_card(Libreria, pin, slot, text);
    write_line(reading.dump_result == 0 ? text.c_str() : "Funzione 'renewDump': errore dump Smart Card");
}

// A PIN that the dump's session was refused with is not sent again: its result stands for the second one too.
int open_session(const UnderWay& reading, char* pin) {
    if (guard_second_login(reading.dump_result)) return reading.dump_result;
    return static_cast<int>(open_slot(slot, pin, Libreria));
}

// The lines that name the kind of card and the routine, and what is done in between.
template <typename Inventory>
int read_inventory(const UnderWay& reading, char* pin, const char* card, const char* routine,
                   Inventory inventory) {
    const auto line = [card](const char* what, const char* outcome) {
        std::array<char, 128> text{};
        for (const char* part : {"Smart Card ", card, ": ", what, outcome})
            append_text(text.data(), text.size(), part);
        return text;
    };
    int code = open_session(reading, pin);
    if (code != 0) {
        fail(line("(int)__Initialize()", " error!").data(), code);
        close_card();
        return code;
    }
    write_line(line("(int)__Initialize()", " completata con successo!").data());
    code = inventory();
    close_card();
    if (code != 0) return fail(line(routine, " error!").data(), code);
    write_line(line(routine, " completata con successo").data());
    return 0;
}

HostInventory buffers_of(const UnderWay& reading) {
    return {.pra = {reading.list_pra, sSubjectSott, sLabelSott},
            .aut = {reading.list_aut, sSubjectAute, sLabelAute},
            .cns = {reading.list_cns},
            .state = {reading.pending_pra, reading.pending_aut, reading.key_pra, reading.key_aut,
                      reading.pending_cns, dtScadenza}};
}

int read_signature_card(const UnderWay& reading, char* pin) {
    return read_inventory(reading, pin, "NON CNS", "NewFind_ALL_CertsKeysRenew()", [&reading] {
        clear_expiry();
        write_line("NewFind_ALL_CertsKeysRenew: INIZIO");
        return fill_card(buffers_of(reading));
    });
}

int read_cns(const UnderWay& reading, char* pin) {
    return read_inventory(reading, pin, "CNS", "NewFind_ALL_CertsKeysRenewCNS()",
                          [&reading] { return fill_services_card(buffers_of(reading)); });
}

int count_of(char** list) {
    if (list == nullptr || list[0] == nullptr) return 0;
    return static_cast<int>(std::min(std::strtol(list[0], nullptr, 10), long{ZV_LIST_ENTRIES - 1}));
}

void trace_list(const char* title, char** list) {
    const int count = count_of(list);
    for (int i = 1; i <= count; ++i) {
        write_line(title);
        write_line(list[i]);
        write_line("-----");
    }
}

void trace_key(int pending, const char* key, const char* pending_title, const char* free_title) {
    if (pending == 1)
        write_line(pending_title);
    else if (pending == 0 && key[0] != '\0')
        write_line(free_title);
    else
        return;
    write_line(key);
}

void trace_summary(const UnderWay& reading) {
    write_line(DASHES_33);
    write_line("Certificati presenti nella Smart Card..");
    trace_list("CNS:", reading.list_cns);
    trace_list("PRA:", reading.list_pra);
    trace_list("AUT:", reading.list_aut);
    trace_key(*reading.pending_pra, reading.key_pra, "Chiave Pending PRA:", "FREE CKAID PRA:");
    trace_key(*reading.pending_aut, reading.key_aut, "Chiave Pending AUT:", "FREE CKAID AUT:");
    if (*reading.pending_cns == 1) write_line("Chiave Pending CNS: Si");
    write_line(DASHES_33);
}

int read(UnderWay& reading, char* reader, char* pin) {
    if (reader != nullptr && std::string_view(reader).find(".dll") != std::string_view::npos) {
        copy_text(Libreria, reader);
        isCNS = true;
        clear_expiry();
        return read_cns(reading, pin);
    }
    if (const int code = detect(reading, reader)) return code;
    trace_module("Libreria pkcs #11 selezionata: ");
    log_dump(reading, pin);
    if (!isCNS) return read_signature_card(reading, pin);
    clear_expiry();
    return read_cns(reading, pin);
}

int find_free(char* reader, char* pin, char* key_pra, char* key_aut) {
    static constexpr char detection_failed[] = "Funzione CheckSmartCard() error!";
    int code = detect_card(reader).code;
    if (code == ZV_UNSUPPORTED) return fail(detection_failed, code, NOT_SUPPORTED);
    if (code != 0) return fail(detection_failed, code);
    code = static_cast<int>(open_slot(slot, pin, Libreria));
    if (code != 0) {
        fail("Funzione (int)__Initialize() error!", code);
        close_card();
        return code;
    }
    code = fill_state({.ckaid_pra = key_pra, .ckaid_aut = key_aut}, ZV_UNUSABLE, find_free_ids);
    close_card();
    return code == 0 ? 0 : fail("Funzione findFreeCKAID() error!", code);
}

} // namespace

int close_unusable() {
    close_card();
    return ZV_UNUSABLE;
}

int read_certificates(const Reading& buffers, char* reader, char* pin, const char* module_dir) {
    UnderWay reading(buffers);
    for (int* flag : {reading.pending_cns, reading.pending_pra, reading.pending_aut})
        *flag = 0;
    clear_state();
    for (const char* line : {"zvRenew", ZV_VERSION, DASHES_34, "Funzione 'rinnovo_Card_readCerts': INIZIO"})
        write_line(line);
    copy_text(pwd, module_dir);
    write_line(pwd);
    if (const int code = read(reading, reader, pin)) return code;
    trace_summary(reading);
    write_line("Funzione 'rinnovo_Card_readCerts' correttamente Eseguita!");
    return 0;
}

int find_free_identifiers(char* reader, char* pin, char* key_pra, char* key_aut) {
    char keys[2][ZV_KEY_ID_SIZE] = {};
    if (key_pra == nullptr) key_pra = keys[0];
    if (key_aut == nullptr) key_aut = keys[1];
    write_line("Funzione 'rinnovo_Card_findFreeCKAID': INIZIO");
    if (const int code = find_free(reader, pin, key_pra, key_aut)) return code;
    for (const char* line :
         {DASHES_33, "Free CKAID:", static_cast<const char*>(key_pra), static_cast<const char*>(key_aut),
          DASHES_33, "Funzione 'rinnovo_Card_findFreeCKAID()' completata con successo!"})
        write_line(line);
    return 0;
}

} // namespace zv
