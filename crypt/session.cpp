#include "session.h"

#include "asn1_text.h"
#include "text.h"

#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace zvcrypt {
namespace {

std::unique_ptr<Session>& current() {
    static auto& session = undying<std::unique_ptr<Session>>();
    return session;
}

void closeCurrent() {
    if (!current()) return;
    const auto outcome = current()->close();
    current().reset();
    if (outcome.result != CKR_OK) throw moduleFailure(outcome.function, outcome.result);
}

// A module ends before the exit handlers that were set up before it was loaded: those would call what is no more.
void closeAtExit() noexcept {
    if (current() && current()->isOfThisProcess()) current().reset();
}

// The module or the card ended the session already.
bool isGone(CK_RV result) {
    return result == CKR_SESSION_HANDLE_INVALID || result == CKR_SESSION_CLOSED ||
           result == CKR_DEVICE_REMOVED || result == CKR_TOKEN_NOT_PRESENT ||
           result == CKR_CRYPTOKI_NOT_INITIALIZED;
}

// A module's text of fixed size, which it may have left without padding.
template <std::size_t size> std::string fixedText(const CK_UTF8CHAR (&field)[size]) {
    const std::string_view text{reinterpret_cast<const char*>(field), size};
    return plainText(trimmed(text.substr(0, text.find('\0'))));
}

} // namespace

Session::Session(const std::string& modulePath, CK_SLOT_ID slot)
    : module_(modulePath), slot_(slot), opener_(::getpid()) {
    const CK_RV initialised = module_.call(&CK_FUNCTION_LIST::C_Initialize, nullptr);
    initialisedHere_ = initialised == CKR_OK;
    if (initialised != CKR_CRYPTOKI_ALREADY_INITIALIZED) check("C_Initialize", initialised);
    try {
        openSession();
    } catch (...) {
        (void)close();
        throw;
    }
}

Session::~Session() {
    (void)close();
}

// A child of the process that opened it would log its parent out.
bool Session::isOfThisProcess() const noexcept {
    return opener_ == ::getpid();
}

void Session::openSession() {
    check("C_OpenSession", module_.call(&CK_FUNCTION_LIST::C_OpenSession, slot_, CK_FLAGS{CKF_SERIAL_SESSION},
                                        nullptr, nullptr, &handle_));
    if (handle_ == CK_INVALID_HANDLE)
        throw Failure(ZVC_ERR_MODULE_ANSWER, "Il modulo PKCS#11 ha aperto una sessione senza identificativo");
}

Session::Outcome Session::close() noexcept {
    Outcome outcome{nullptr, CKR_OK};
    pin_.wipe();
    if (handle_ != CK_INVALID_HANDLE) {
        // Other sessions of the process would keep the card open; where it was open before, it stays so.
        if (loggedInHere_) (void)call(&CK_FUNCTION_LIST::C_Logout);
        const CK_RV closed = call(&CK_FUNCTION_LIST::C_CloseSession);
        if (closed != CKR_OK && !isGone(closed)) outcome = {"C_CloseSession", closed};
    }
    if (initialisedHere_) {
        const CK_RV finalised = module_.call(&CK_FUNCTION_LIST::C_Finalize, nullptr);
        if (finalised != CKR_OK && !isGone(finalised) && outcome.result == CKR_OK)
            outcome = {"C_Finalize", finalised};
    }
    handle_ = CK_INVALID_HANDLE;
    initialisedHere_ = loggedIn_ = loggedInHere_ = false;
    return outcome;
}

CK_RV Session::callLogin(CK_USER_TYPE user, std::span<unsigned char> pin) const {
    return call(&CK_FUNCTION_LIST::C_Login, user, pin.data(), static_cast<CK_ULONG>(pin.size()));
}

void Session::login(std::string_view pin) {
    // The standard's type is not const, but a PIN is only read.
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(pin.data()));
    const CK_RV result = callLogin(CKU_USER, {bytes, pin.size()});
    if (result == CKR_OK) {
        loggedInHere_ = true;
        pin_.keep(pin);
    }
    if (result == CKR_OK || result == CKR_USER_ALREADY_LOGGED_IN) {
        loggedIn_ = true;
        return;
    }
    pin_.wipe();
    const Failure failure = moduleFailure("C_Login", result);
    throw Failure(failure.code(), failure.reason() + (result == CKR_PIN_INCORRECT ? triesWarning() : ""));
}

std::string Session::triesWarning() const {
    CK_TOKEN_INFO info{};
    if (module_.call(&CK_FUNCTION_LIST::C_GetTokenInfo, slot_, &info) != CKR_OK) return {};
    if ((info.flags & CKF_USER_PIN_LOCKED) != 0) return ". Il PIN ora è bloccato";
    if ((info.flags & CKF_USER_PIN_FINAL_TRY) != 0) return ". Resta un solo tentativo prima del blocco";
    return {};
}

CK_TOKEN_INFO Session::tokenInfo() const {
    CK_TOKEN_INFO info{};
    check("C_GetTokenInfo", module_.call(&CK_FUNCTION_LIST::C_GetTokenInfo, slot_, &info));
    return info;
}

Session& currentSession() {
    if (!current()) throw Failure(ZVC_ERR_NO_SESSION, "Nessuna sessione aperta con la smart card");
    return *current();
}

void closeAfterFailure() noexcept {
    if (current() && current()->loggedIn()) current().reset();
}

} // namespace zvcrypt

int kvInitialize(char* libPath, int slot) {
    return zvcrypt::runCardOperation([&] {
        zvcrypt::requireArguments({libPath});
        zvcrypt::current().reset();
        zvcrypt::current() = std::make_unique<zvcrypt::Session>(libPath, static_cast<unsigned>(slot));
        (void)std::atexit(zvcrypt::closeAtExit);
    });
}

int kvLogin(const char* pin) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({pin});
        if (*pin == '\0')
            throw zvcrypt::Failure(ZVC_ERR_PIN_EMPTY, "PIN mancante: la smart card non è stata usata");
        zvcrypt::currentSession().login(pin);
    });
}

int kvFinalize() {
    return zvcrypt::runOperation(zvcrypt::closeCurrent);
}

int kvCheckSmartCard(char* label, char* manufacturer, char* model, char* serial) {
    return zvcrypt::runCardOperation([&] {
        zvcrypt::requireArguments({label, manufacturer, model, serial});
        *label = *manufacturer = *model = *serial = '\0';
        const CK_TOKEN_INFO info = zvcrypt::currentSession().tokenInfo();
        zvcrypt::writeText(zvcrypt::fixedText(info.label), {label, 80});
        zvcrypt::writeText(zvcrypt::fixedText(info.manufacturerID), {manufacturer, 48});
        zvcrypt::writeText(zvcrypt::fixedText(info.model), {model, 32});
        zvcrypt::writeText(zvcrypt::fixedText(info.serialNumber), {serial, 32});
    });
}
