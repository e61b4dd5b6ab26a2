// inizializza: the opener that starts from nothing, takes a slot index and words its failures for the user.
#include "card/session.h"
#include "diag/failure.h"
#include "diag/messages.h"
#include "diag/report.h"
#include "routines/card.h"
#include "util/numbers.h"
#include "util/text.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>

namespace {

constexpr char FULL_TITLE[] = " .... Inizializza FUN                .... ";
constexpr int WRONG_PIN = 2;

using zv::rv;

int failed(const char* step, const char* format) {
    return zv::Failure(FULL_TITLE).step(step, rv).sentence(format, rv).user(format, zv::error_message(rv));
}

int loading_failed() {
    static constexpr char format[] =
        "Errore nel caricamento della libreria di gestione della smartcard\n (error %s)";
    zv::Sentence sentence;
    (void)std::snprintf(sentence, sizeof sentence, format, zv::or_empty(::dlerror()));
    zv::trace(FULL_TITLE, "LoadLibrary", zv::with_hex("hModule = ", 0));
    // The loader's text can be asked for once: the user's message has none.
    return zv::Failure(FULL_TITLE).user(format, ::dlerror()).sentence(sentence);
}

int no_functions() {
    if (::dlsym(zv::hModule, "C_GetFunctionList") != nullptr)
        return failed("pC_GetFunctionList",
                      "Errore nella lista delle funzioni dalla libreria di gestione della smartcard (%s)");
    // Nothing is logged for a missing function, and its reason is used up before the user's message is made.
    ::dlerror();
    return zv::Failure(FULL_TITLE)
        .user("Errore nel caricamento delle funzioni dalla libreria di gestione della smartcard (error %s)",
              ::dlerror());
}

int load_module(const char* path) {
    zv::hModule = zv::open_module(path);
    if (zv::hModule == nullptr) return loading_failed();
    if (!zv::take_function_list()) return no_functions();
    zv::trace(FULL_TITLE, "C_Initialize");
    rv = zv::call<&zv::Functions::C_Initialize>(nullptr);
    if (rv != CKR_OK)
        return failed("C_Initialize",
                      "Errore nella inizializzazione della libreria di gestione della smartcard (%s)");
    return 0;
}

// Set while a command runs.
std::optional<CK_SLOT_ID> command_slot;

bool stays_on(CK_SLOT_ID slot) {
    return !command_slot || *command_slot == slot;
}

void trace_list(const CK_SLOT_ID* slots, CK_ULONG count) {
    const auto address = zv::with_hex("SlotList = ", reinterpret_cast<long>(slots));
    zv::trace(FULL_TITLE, address, zv::with_hex("Count = ", static_cast<long>(count)));
    zv::trace(FULL_TITLE, "C_GetSlotList FALSE");
}

CK_RV list_slots(unsigned slot_index, CK_SLOT_ID& slot, bool traced) {
    CK_ULONG count = 0;
    CK_RV result = zv::call<&zv::Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    if (result != CKR_OK) return result;
    count = std::min(count, zv::MOST_SLOTS);
    const std::unique_ptr<CK_SLOT_ID[]> slots(new (std::nothrow) CK_SLOT_ID[count + 1]());
    if (slots == nullptr) return CKR_HOST_MEMORY;
    if (traced) trace_list(slots.get(), count);
    CK_ULONG listed = count;
    result = zv::call<&zv::Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, slots.get(), &listed);
    if (result != CKR_OK) return result;
    if (slot_index >= std::min(count, listed)) return CKR_SLOT_ID_INVALID;
    slot = slots[slot_index];
    return CKR_OK;
}

bool is_cached(unsigned slot_index) {
    return slot_index < zv::CACHED_SLOTS && zv::vettoreSlotID[slot_index] != 0;
}

CK_RV look_up_slot(unsigned slot_index, CK_SLOT_ID& slot) {
    if (is_cached(slot_index)) {
        slot = zv::vettoreSlotID[slot_index];
        return CKR_OK;
    }
    zv::trace(FULL_TITLE, "C_GetSlotList FALSE",
              zv::with_decimal("SlotNum = ", static_cast<int>(slot_index)));
    return rv = slot_index < zv::CACHED_SLOTS ? list_slots(slot_index, slot, true) : CKR_SLOT_ID_INVALID;
}

int find_slot(unsigned slot_index) {
    CK_SLOT_ID slot = 0;
    CK_RV result = look_up_slot(slot_index, slot);
    if (result == CKR_OK && !stays_on(slot)) result = rv = CKR_SLOT_ID_INVALID;
    if (result == CKR_OK) {
        zv::slotID = zv::vettoreSlotID[slot_index] = slot;
        return 0;
    }
    if (command_slot && result == CKR_SLOT_ID_INVALID) zv::report_not_sent(zv::OTHER_SLOT);
    return failed("C_GetSlotList", "Errore nella ricerca slots (%s)");
}

int open() {
    static constexpr char format[] = "Errore aprendo la sessione con la smartcard (%s)";
    zv::trace(FULL_TITLE, "C_OpenSession", zv::with_decimal("SlotID = ", static_cast<int>(zv::slotID)));
    rv = zv::open_session(zv::slotID);
    if (rv == CKR_OK) return 0;
    if (rv != CKR_TOKEN_NOT_PRESENT) return failed("C_OpenSession", format);
    return zv::Failure(FULL_TITLE)
        .step("C_OpenSession", rv)
        .sentence("Errore aprendo la sessione con la smartcard.\r\n"
                  "Introdurre correttamente la smartcard nel lettore e riprovare")
        .user(format, zv::error_message(rv));
}

int log_in(const char* pin, int user_type) {
    if (pin[0] == '\0') return 0;
    zv::trace(FULL_TITLE, "C_Login");
    rv = zv::login(static_cast<CK_USER_TYPE>(user_type), pin);
    // Worded by the caller.
    if (rv == CKR_PIN_INCORRECT) return WRONG_PIN;
    return rv == CKR_OK ? 0 : failed("C_Login", "Errore nel login alla smartcard (%s)");
}

} // namespace

namespace zv {

CommandSlot::CommandSlot(CK_SLOT_ID slot) {
    command_slot = slot;
}

CommandSlot::~CommandSlot() {
    command_slot.reset();
}

bool login_stays(unsigned slot_index) {
    if (!command_slot) return true;
    if (is_cached(slot_index)) return stays_on(vettoreSlotID[slot_index]);
    CK_SLOT_ID slot = 0;
    return slot_index < CACHED_SLOTS && list_slots(slot_index, slot, false) == CKR_OK && stays_on(slot);
}

} // namespace zv

int inizializza(char* lib_path, char* pin, unsigned int slot_index, void*, int user_type) {
    zv::trace(FULL_TITLE, "I N I Z I O");
    finalizza();
    int status = load_module(zv::or_empty(lib_path));
    if (status == 0) status = find_slot(slot_index);
    if (status == 0) status = open();
    if (status == 0) status = log_in(zv::or_empty(pin), user_type);
    if (status == 0) zv::trace(FULL_TITLE, "F I N E");
    return status;
}
