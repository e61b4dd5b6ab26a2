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
        for (const KindRow& row : KINDS) {
            KindBuffers& buffers = (*this)[row.id];
            if (buffers.pending == nullptr) buffers.pending = &flags[row.id];
            if (buffers.key == nullptr) buffers.key = keys[row.id].data();
        }
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

    ByKind<int> flags;
    ByKind<std::array<char, ZV_KEY_ID_SIZE>> keys;
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

HostBuffers buffers_of(const Reading& reading) {
    HostBuffers host;
    for (const KindRow& row : KINDS) {
        const KindBuffers& given = reading[row.id];
        host.kinds[row.id] = {.list = given.list, .pending = given.pending, .id = given.key};
    }
    auto& signature = host.kinds[Kind::signature];
    auto& authentication = host.kinds[Kind::authentication];
    signature.description = sSubjectSott;
    signature.last_id = sLabelSott;
    authentication.description = sSubjectAute;
    authentication.last_id = sLabelAute;
    host.expiry = dtScadenza;
    return host;
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

void trace_list(const char* code, char** list) {
    const std::string title = std::string(code) + ":";
    const int count = count_of(list);
    for (int i = 1; i <= count; ++i) {
        write_line(title.c_str());
        write_line(list[i]);
        write_line("-----");
    }
}

void trace_key(const KindRow& kind, const KindBuffers& buffers) {
    const int pending = *buffers.pending;
    if (!kind.new_pair) {
        if (pending == 1) write_line((std::string("Chiave Pending ") + kind.code + ": Si").c_str());
        return;
    }
    if (pending != 1 && (pending != 0 || buffers.key[0] == '\0')) return;
    write_line((std::string(pending == 1 ? "Chiave Pending " : "FREE CKAID ") + kind.code + ":").c_str());
    write_line(buffers.key);
}

// The lists begin with the services card's own.
void trace_summary(const Reading& reading) {
    write_line(DASHES_33);
    write_line("Certificati presenti nella Smart Card..");
    for (const bool new_pair : {false, true})
        for (const KindRow& kind : KINDS)
            if (kind.new_pair == new_pair) trace_list(kind.code, reading[kind.id].list);
    for (const KindRow& kind : KINDS)
        trace_key(kind, reading[kind.id]);
    write_line(DASHES_33);
}

int read(UnderWay& reading, char* reader, char* pin) {
    if (reader != nullptr && std::string_view(reader).find(ZV_MODULE_PATH_MARK) != std::string_view::npos) {
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

// The search takes no flag from the host.
HostBuffers keys_of(const Reading& reading) {
    HostBuffers host;
    for (const KindRow& row : KINDS)
        host.kinds[row.id].id = reading[row.id].key;
    return host;
}

int find_free(char* reader, char* pin, const Reading& reading) {
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
    code = fill_state(keys_of(reading), ZV_UNUSABLE, find_free_ids);
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
    for (const KindRow& row : KINDS)
        *reading[row.id].pending = 0;
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

int find_free_identifiers(const Reading& buffers, char* reader, char* pin) {
    const UnderWay reading(buffers);
    write_line("Funzione 'rinnovo_Card_findFreeCKAID': INIZIO");
    if (const int code = find_free(reader, pin, reading)) return code;
    write_line(DASHES_33);
    write_line("Free CKAID:");
    for (const KindRow& kind : KINDS)
        if (kind.new_pair) write_line(reading[kind.id].key);
    write_line(DASHES_33);
    write_line("Funzione 'rinnovo_Card_findFreeCKAID()' completata con successo!");
    return 0;
}

} // namespace zv
