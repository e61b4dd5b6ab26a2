// inizializza: the opener that starts from nothing, takes a slot index and words its failures for the user.
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>

#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "diag/messages.h"
#include "util/text.h"

namespace {

constexpr char FULL_TITLE[] = " .... Inizializza FUN                .... ";
constexpr int WRONG_PIN = 2;

using zv::rv;

int failed(const char* step, const char* format) {
    return zv::Failure(FULL_TITLE).step(step, rv).sentence(format, rv).user(format, zv::errorMessage(rv));
}

int loadingFailed() {
    static constexpr char FORMAT[] =
        "Errore nel caricamento della libreria di gestione della smartcard\n (error %s)";
    zv::Sentence sentence;
    (void)std::snprintf(sentence, sizeof sentence, FORMAT, zv::orEmpty(::dlerror()));
    WriteErr(FULL_TITLE, "LoadLibrary", 0, CatLtoAHex1("hModule = ", 0), 0);
    // The loader's text can be asked for once: the user's message has none.
    return zv::Failure(FULL_TITLE).user(FORMAT, ::dlerror()).sentence(sentence);
}

int noFunctions() {
    if (::dlsym(zv::hModule, "C_GetFunctionList") != nullptr)
        return failed("pC_GetFunctionList",
                      "Errore nella lista delle funzioni dalla libreria di gestione della smartcard (%s)");
    // Nothing is logged for a missing function, and its reason is used up before the user's message is made.
    ::dlerror();
    return zv::Failure(FULL_TITLE)
        .user("Errore nel caricamento delle funzioni dalla libreria di gestione della smartcard (error %s)",
              ::dlerror());
}

int loadModule(const char* path) {
    zv::hModule = zv::openModule(path);
    if (zv::hModule == nullptr) return loadingFailed();
    if (!zv::takeFunctionList()) return noFunctions();
    zv::trace(FULL_TITLE, "C_Initialize");
    rv = zv::call<&zv::Functions::C_Initialize>(nullptr);
    if (rv != CKR_OK)
        return failed("C_Initialize",
                      "Errore nella inizializzazione della libreria di gestione della smartcard (%s)");
    return 0;
}

// Set while a command runs.
std::optional<CK_SLOT_ID> commandSlot;

bool staysOn(CK_SLOT_ID slot) {
    return !commandSlot || *commandSlot == slot;
}

void traceList(const CK_SLOT_ID* slots, CK_ULONG count) {
    char* address = CatLtoAHex1("SlotList = ", reinterpret_cast<long>(slots));
    WriteLog(FULL_TITLE, address, 0, CatLtoAHex2("Count = ", static_cast<long>(count)), 0);
    zv::trace(FULL_TITLE, "C_GetSlotList FALSE");
}

CK_RV listSlots(unsigned slotIndex, CK_SLOT_ID& slot, bool traced) {
    CK_ULONG count = 0;
    CK_RV result = zv::call<&zv::Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    if (result != CKR_OK) return result;
    count = std::min(count, zv::MOST_SLOTS);
    const std::unique_ptr<CK_SLOT_ID[]> slots(new (std::nothrow) CK_SLOT_ID[count + 1]());
    if (slots == nullptr) return CKR_HOST_MEMORY;
    if (traced) traceList(slots.get(), count);
    CK_ULONG listed = count;
    result = zv::call<&zv::Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, slots.get(), &listed);
    if (result != CKR_OK) return result;
    if (slotIndex >= std::min(count, listed)) return CKR_SLOT_ID_INVALID;
    slot = slots[slotIndex];
    return CKR_OK;
}

bool isCached(unsigned slotIndex) {
    return slotIndex < zv::CACHED_SLOTS && zv::vettoreSlotID[slotIndex] != 0;
}

CK_RV lookUpSlot(unsigned slotIndex, CK_SLOT_ID& slot) {
    if (isCached(slotIndex)) {
        slot = zv::vettoreSlotID[slotIndex];
        return CKR_OK;
    }
    zv::trace(FULL_TITLE, "C_GetSlotList FALSE", CatItoA("SlotNum = ", static_cast<int>(slotIndex)));
    return rv = slotIndex < zv::CACHED_SLOTS ? listSlots(slotIndex, slot, true) : CKR_SLOT_ID_INVALID;
}

int findSlot(unsigned slotIndex) {
    CK_SLOT_ID slot = 0;
    CK_RV result = lookUpSlot(slotIndex, slot);
    if (result == CKR_OK && !staysOn(slot)) result = rv = CKR_SLOT_ID_INVALID;
    if (result == CKR_OK) {
        zv::slotID = zv::vettoreSlotID[slotIndex] = slot;
        return 0;
    }
    if (commandSlot && result == CKR_SLOT_ID_INVALID) zv::reportNotSent(zv::OTHER_SLOT);
    return failed("C_GetSlotList", "Errore nella ricerca slots (%s)");
}

int open() {
    static constexpr char FORMAT[] = "Errore aprendo la sessione con la smartcard (%s)";
    zv::trace(FULL_TITLE, "C_OpenSession", CatItoA("SlotID = ", static_cast<int>(zv::slotID)));
    rv = zv::openSession(zv::slotID);
    if (rv == CKR_OK) return 0;
    if (rv != CKR_TOKEN_NOT_PRESENT) return failed("C_OpenSession", FORMAT);
    return zv::Failure(FULL_TITLE)
        .step("C_OpenSession", rv)
        .sentence("Errore aprendo la sessione con la smartcard.\r\n"
                  "Introdurre correttamente la smartcard nel lettore e riprovare")
        .user(FORMAT, zv::errorMessage(rv));
}

int logIn(const char* pin, int userType) {
    if (pin[0] == '\0') return 0;
    zv::trace(FULL_TITLE, "C_Login");
    rv = zv::login(static_cast<CK_USER_TYPE>(userType), pin);
    // Worded by the caller.
    if (rv == CKR_PIN_INCORRECT) return WRONG_PIN;
    return rv == CKR_OK ? 0 : failed("C_Login", "Errore nel login alla smartcard (%s)");
}

} // namespace

namespace zv {

CommandSlot::CommandSlot(CK_SLOT_ID slot) {
    commandSlot = slot;
}

CommandSlot::~CommandSlot() {
    commandSlot.reset();
}

bool loginStays(unsigned slotIndex) {
    if (!commandSlot) return true;
    if (isCached(slotIndex)) return staysOn(vettoreSlotID[slotIndex]);
    CK_SLOT_ID slot = 0;
    return slotIndex < CACHED_SLOTS && listSlots(slotIndex, slot, false) == CKR_OK && staysOn(slot);
}

} // namespace zv

int inizializza(char* libPath, char* pin, unsigned int slotIndex, void*, int userType) {
    zv::trace(FULL_TITLE, "I N I Z I O");
    finalizza();
    int status = loadModule(zv::orEmpty(libPath));
    if (status == 0) status = findSlot(slotIndex);
    if (status == 0) status = open();
    if (status == 0) status = logIn(zv::orEmpty(pin), userType);
    if (status == 0) zv::trace(FULL_TITLE, "F I N E");
    return status;
}
