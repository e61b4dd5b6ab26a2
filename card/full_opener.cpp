#include "card/full_opener.h"

#include "card/session.h"
#include "diag/failure.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "util/numbers.h"
#include "util/text.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>

namespace zv {

namespace {

constexpr char FULL_TITLE[] = " .... Inizializza FUN                .... ";

int failed(const char* step, const char* format) {
    return Failure(FULL_TITLE).step(step, rv).sentence(format, rv).user(format, error_message(rv));
}

int loading_failed() {
    static constexpr char format[] =
        "Errore nel caricamento della libreria di gestione della smartcard\n (error %s)";
    Sentence sentence;
    (void)std::snprintf(sentence, sizeof sentence, format, or_empty(::dlerror()));
    trace(FULL_TITLE, "LoadLibrary", with_hex("hModule = ", 0));
    // The loader's text can be asked for once: the user's message has none.
    return Failure(FULL_TITLE).user(format, ::dlerror()).sentence(sentence);
}

int no_functions() {
    if (::dlsym(hModule, "C_GetFunctionList") != nullptr)
        return failed("pC_GetFunctionList",
                      "Errore nella lista delle funzioni dalla libreria di gestione della smartcard (%s)");
    // Nothing is logged for a missing function, and its reason is used up before the user's message is made.
    ::dlerror();
    return Failure(FULL_TITLE)
        .user("Errore nel caricamento delle funzioni dalla libreria di gestione della smartcard (error %s)",
              ::dlerror());
}

int load_module(const char* path) {
    hModule = open_module(path);
    if (hModule == nullptr) return loading_failed();
    if (!take_function_list()) return no_functions();
    trace(FULL_TITLE, "C_Initialize");
    rv = call<&Functions::C_Initialize>(nullptr);
    if (rv != CKR_OK)
        return failed("C_Initialize",
                      "Errore nella inizializzazione della libreria di gestione della smartcard (%s)");
    return 0;
}

bool allows(const LoginData& who, CK_SLOT_ID slot_id) {
    return !who.only_slot || *who.only_slot == slot_id;
}

void trace_list(const CK_SLOT_ID* slots, CK_ULONG count) {
    const auto address = with_hex("SlotList = ", reinterpret_cast<long>(slots));
    trace(FULL_TITLE, address, with_hex("Count = ", static_cast<long>(count)));
    trace(FULL_TITLE, "C_GetSlotList FALSE");
}

CK_RV list_slots(unsigned slot_index, CK_SLOT_ID& slot_id, bool traced) {
    CK_ULONG count = 0;
    CK_RV result = call<&Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    if (result != CKR_OK) return result;
    count = std::min(count, MOST_SLOTS);
    const std::unique_ptr<CK_SLOT_ID[]> slots(new (std::nothrow) CK_SLOT_ID[count + 1]());
    if (slots == nullptr) return CKR_HOST_MEMORY;
    if (traced) trace_list(slots.get(), count);
    CK_ULONG listed = count;
    result = call<&Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, slots.get(), &listed);
    if (result != CKR_OK) return result;
    if (slot_index >= std::min(count, listed)) return CKR_SLOT_ID_INVALID;
    slot_id = slots[slot_index];
    return CKR_OK;
}

bool is_cached(unsigned slot_index) {
    return slot_index < CACHED_SLOTS && vettoreSlotID[slot_index] != 0;
}

CK_RV look_up_slot(unsigned slot_index, CK_SLOT_ID& slot_id) {
    if (is_cached(slot_index)) {
        slot_id = vettoreSlotID[slot_index];
        return CKR_OK;
    }
    trace(FULL_TITLE, "C_GetSlotList FALSE", with_decimal("SlotNum = ", static_cast<int>(slot_index)));
    return rv = slot_index < CACHED_SLOTS ? list_slots(slot_index, slot_id, true) : CKR_SLOT_ID_INVALID;
}

int find_slot(unsigned slot_index, const LoginData& who) {
    CK_SLOT_ID slot_id = 0;
    CK_RV result = look_up_slot(slot_index, slot_id);
    if (result == CKR_OK && !allows(who, slot_id)) result = rv = CKR_SLOT_ID_INVALID;
    if (result == CKR_OK) {
        slotID = vettoreSlotID[slot_index] = slot_id;
        return 0;
    }
    if (who.only_slot && result == CKR_SLOT_ID_INVALID) report_not_sent(OTHER_SLOT);
    return failed("C_GetSlotList", "Errore nella ricerca slots (%s)");
}

int open() {
    static constexpr char format[] = "Errore aprendo la sessione con la smartcard (%s)";
    trace(FULL_TITLE, "C_OpenSession", with_decimal("SlotID = ", static_cast<int>(slotID)));
    rv = open_session(slotID);
    if (rv == CKR_OK) return 0;
    if (rv != CKR_TOKEN_NOT_PRESENT) return failed("C_OpenSession", format);
    return Failure(FULL_TITLE)
        .step("C_OpenSession", rv)
        .sentence("Errore aprendo la sessione con la smartcard.\r\n"
                  "Introdurre correttamente la smartcard nel lettore e riprovare")
        .user(format, error_message(rv));
}

int log_in(const char* pin, CK_USER_TYPE user) {
    if (pin[0] == '\0') return 0;
    trace(FULL_TITLE, "C_Login");
    rv = login(user, pin);
    // Worded by the caller.
    if (rv == CKR_PIN_INCORRECT) return static_cast<int>(Opening::wrong_pin);
    return rv == CKR_OK ? 0 : failed("C_Login", "Errore nel login alla smartcard (%s)");
}

} // namespace

Opening open_slot_at(unsigned slot_index, const LoginData& who, CK_USER_TYPE user) {
    trace(FULL_TITLE, "I N I Z I O");
    close_card();
    int status = load_module(or_empty(who.module_path));
    if (status == 0) status = find_slot(slot_index, who);
    if (status == 0) status = open();
    if (status == 0) status = log_in(or_empty(who.pin), user);
    if (status == 0) trace(FULL_TITLE, "F I N E");
    return static_cast<Opening>(status);
}

bool login_stays(unsigned slot_index, const LoginData& who) {
    if (!who.only_slot) return true;
    if (is_cached(slot_index)) return allows(who, vettoreSlotID[slot_index]);
    CK_SLOT_ID slot_id = 0;
    return slot_index < CACHED_SLOTS && list_slots(slot_index, slot_id, false) == CKR_OK &&
           allows(who, slot_id);
}

} // namespace zv
