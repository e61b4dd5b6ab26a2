// Entry points that read the card.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "api/entry.h"
#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

using zv::dtScadenza, zv::sBuffAute, zv::sBuffSott, zv::sLabelAute, zv::sLabelSott, zv::sSubjectAute;
using zv::sSubjectSott, zv::WORK_SIZE;

constexpr char DASHES_34[] = "----------------------------------";
constexpr char DASHES_33[] = "---------------------------------";
constexpr char NOT_SUPPORTED[] = "Tipo di Smart Card non supportato";

// The host's buffers, stand-ins where it gave none.
struct Reading {
    char** listCNS;
    char** listPRA;
    char** listAUT;
    int* pendingCNS;
    int* pendingPRA;
    int* pendingAUT;
    char* keyPRA;
    char* keyAUT;
    bool touchSign = false;
    int dumpResult = 0;
};

void clearState() {
    zv::clear(szBuffErr, zv::szBufferRichiesta, sSubjectSott, sBuffSott, sSubjectAute, sBuffAute, sLabelSott,
              sLabelAute, zv::pwd);
    zv::slot = 0;
}

void clearExpiry() {
    std::fill_n(dtScadenza, 9, '\0');
}

int detect(Reading& reading, char* reader) {
    scriviLog("CheckSmartCard");
    const int code = CheckSmartCard(reading.touchSign, reader);
    if (code == 0) return 0;
    scriviLog("CheckSmartCard fallita");
    if (code == ZV_UNSUPPORTED)
        zv::copyText(szBuffErr, NOT_SUPPORTED);
    else
        zv::fetchReason();
    scriviLog(szBuffErr);
    return code;
}

void dumpCard(Reading& reading, char* pin) {
    std::string text;
    reading.dumpResult = renewDump(zv::Libreria, pin, zv::slot, text);
    scriviLog(reading.dumpResult == 0 ? text.c_str() : "Funzione 'renewDump': errore dump Smart Card");
}

// A PIN that the dump's session was refused with is not sent again: its result stands for the second one too.
int openSession(const Reading& reading, char* pin) {
    if (zv::guardSecondLogin(reading.dumpResult)) return reading.dumpResult;
    return static_cast<int>(__Initialize(zv::slot, pin, zv::Libreria));
}

// The lines that name the kind of card and the routine, and what is done in between.
template <typename Inventory>
int readInventory(const Reading& reading, char* pin, const char* card, const char* routine,
                  Inventory inventory) {
    const auto line = [card](const char* what, const char* outcome) {
        std::array<char, 128> text{};
        for (const char* part : {"Smart Card ", card, ": ", what, outcome})
            zv::appendText(text.data(), text.size(), part);
        return text;
    };
    int code = openSession(reading, pin);
    if (code != 0) {
        zv::fail(line("(int)__Initialize()", " error!").data(), code);
        finalizza();
        return code;
    }
    scriviLog(line("(int)__Initialize()", " completata con successo!").data());
    code = inventory();
    finalizza();
    if (code != 0) return zv::fail(line(routine, " error!").data(), code);
    scriviLog(line(routine, " completata con successo").data());
    return 0;
}

int readCard(const Reading& reading, char* pin) {
    return readInventory(reading, pin, "NON CNS", "NewFind_ALL_CertsKeysRenew()", [&reading] {
        clearExpiry();
        scriviLog("NewFind_ALL_CertsKeysRenew: INIZIO");
        return NewFind_ALL_CertsKeysRenew(reading.listPRA, reading.listAUT, sBuffSott, WORK_SIZE,
                                          sSubjectSott, WORK_SIZE, sBuffAute, WORK_SIZE, sSubjectAute,
                                          WORK_SIZE, sLabelAute, sLabelSott, reading.pendingPRA,
                                          reading.pendingAUT, reading.keyPRA, reading.keyAUT);
    });
}

int readServicesCard(const Reading& reading, char* pin) {
    return readInventory(reading, pin, "CNS", "NewFind_ALL_CertsKeysRenewCNS()", [&reading] {
        return NewFind_ALL_CertsKeysRenewCNS(reading.listCNS, reading.listPRA, reading.listAUT, sBuffSott,
                                             WORK_SIZE, sSubjectSott, WORK_SIZE, sBuffAute, WORK_SIZE,
                                             sSubjectAute, WORK_SIZE, sLabelAute, sLabelSott,
                                             reading.pendingPRA, reading.pendingAUT, reading.pendingCNS,
                                             reading.keyPRA, reading.keyAUT, dtScadenza, reading.touchSign);
    });
}

int countOf(char** list) {
    if (list == nullptr || list[0] == nullptr) return 0;
    return static_cast<int>(std::min(std::strtol(list[0], nullptr, 10), long{ZV_LIST_ENTRIES - 1}));
}

void traceList(const char* title, char** list) {
    const int count = countOf(list);
    for (int i = 1; i <= count; ++i) {
        scriviLog(title);
        scriviLog(list[i]);
        scriviLog("-----");
    }
}

void traceKey(int pending, const char* key, const char* pendingTitle, const char* freeTitle) {
    if (pending == 1)
        scriviLog(pendingTitle);
    else if (pending == 0 && key[0] != '\0')
        scriviLog(freeTitle);
    else
        return;
    scriviLog(key);
}

void traceSummary(const Reading& reading) {
    scriviLog(DASHES_33);
    scriviLog("Certificati presenti nella Smart Card..");
    traceList("CNS:", reading.listCNS);
    traceList("PRA:", reading.listPRA);
    traceList("AUT:", reading.listAUT);
    traceKey(*reading.pendingPRA, reading.keyPRA, "Chiave Pending PRA:", "FREE CKAID PRA:");
    traceKey(*reading.pendingAUT, reading.keyAUT, "Chiave Pending AUT:", "FREE CKAID AUT:");
    if (*reading.pendingCNS == 1) scriviLog("Chiave Pending CNS: Si");
    scriviLog(DASHES_33);
}

int read(Reading& reading, char* reader, char* pin) {
    if (reader != nullptr && std::string_view(reader).find(".dll") != std::string_view::npos) {
        zv::copyText(zv::Libreria, reader);
        zv::isCNS = true;
        clearExpiry();
        return readServicesCard(reading, pin);
    }
    if (const int code = detect(reading, reader)) return code;
    zv::traceModule("Libreria pkcs #11 selezionata: ");
    dumpCard(reading, pin);
    if (!zv::isCNS) return readCard(reading, pin);
    clearExpiry();
    return readServicesCard(reading, pin);
}

int closeUnusable() {
    finalizza();
    return ZV_UNUSABLE;
}

int readAll(Reading& reading, char* reader, char* pin, const char* moduleDir) {
    for (int* flag : {reading.pendingCNS, reading.pendingPRA, reading.pendingAUT})
        *flag = 0;
    clearState();
    for (const char* line : {"zvRenew", ZV_VERSION, DASHES_34, "Funzione 'rinnovo_Card_readCerts': INIZIO"})
        scriviLog(line);
    zv::copyText(zv::pwd, zv::orEmpty(moduleDir));
    scriviLog(zv::pwd);
    if (const int code = read(reading, reader, pin)) return code;
    traceSummary(reading);
    scriviLog("Funzione 'rinnovo_Card_readCerts' correttamente Eseguita!");
    return 0;
}

int findFree(char* reader, char* pin, char* keyPRA, char* keyAUT) {
    static constexpr char DETECTION_FAILED[] = "Funzione CheckSmartCard() error!";
    bool touchSign = false;
    int code = CheckSmartCard(touchSign, reader);
    if (code == ZV_UNSUPPORTED) return zv::fail(DETECTION_FAILED, code, NOT_SUPPORTED);
    if (code != 0) return zv::fail(DETECTION_FAILED, code);
    code = static_cast<int>(__Initialize(zv::slot, pin, zv::Libreria));
    if (code != 0) {
        zv::fail("Funzione (int)__Initialize() error!", code);
        finalizza();
        return code;
    }
    code = findFreeCKAID(keyPRA, keyAUT, touchSign);
    finalizza();
    return code == 0 ? 0 : zv::fail("Funzione findFreeCKAID() error!", code);
}

} // namespace

int rinnovo_Card_readCerts(char* reader, char* pin, int, char** listCNS, char** listPRA, char** listAUT,
                           int* pendingCNS, int* pendingPRA, int* pendingAUT, char* keyPRA, char* keyAUT,
                           char*, const char* moduleDir) {
    int flags[3] = {};
    char keys[2][ZV_KEY_ID_SIZE] = {}, noPin[] = "";
    Reading reading = {listCNS,
                       listPRA,
                       listAUT,
                       pendingCNS != nullptr ? pendingCNS : &flags[0],
                       pendingPRA != nullptr ? pendingPRA : &flags[1],
                       pendingAUT != nullptr ? pendingAUT : &flags[2],
                       keyPRA != nullptr ? keyPRA : keys[0],
                       keyAUT != nullptr ? keyAUT : keys[1]};
    return zv::guarded(closeUnusable,
                       [&] { return readAll(reading, reader, pin != nullptr ? pin : noPin, moduleDir); });
}

int rinnovo_Card_findFreeCKAID(char* reader, char* pin, char* keyPRA, char* keyAUT) {
    char keys[2][ZV_KEY_ID_SIZE] = {}, noPin[] = "";
    if (keyPRA == nullptr) keyPRA = keys[0];
    if (keyAUT == nullptr) keyAUT = keys[1];
    scriviLog("Funzione 'rinnovo_Card_findFreeCKAID': INIZIO");
    if (const int code = findFree(reader, pin != nullptr ? pin : noPin, keyPRA, keyAUT)) return code;
    for (const char* line :
         {DASHES_33, "Free CKAID:", static_cast<const char*>(keyPRA), static_cast<const char*>(keyAUT),
          DASHES_33, "Funzione 'rinnovo_Card_findFreeCKAID()' completata con successo!"})
        scriviLog(line);
    return 0;
}
