#include "session.h"

#include "text.h"

#include <memory>

namespace zvcrypt {
namespace {

// Never destroyed: at the end of the process the module may be gone before this library is.
std::unique_ptr<Session>& current() {
    static auto& session = *new std::unique_ptr<Session>;
    return session;
}

void closeCurrent() {
    if (!current()) return;
    const auto outcome = current()->close();
    current().reset();
    if (outcome.result != CKR_OK) throw moduleFailure(outcome.function, outcome.result);
}

// The module or the card ended the session already.
bool isGone(CK_RV result) {
    return result == CKR_SESSION_HANDLE_INVALID || result == CKR_SESSION_CLOSED ||
           result == CKR_DEVICE_REMOVED || result == CKR_TOKEN_NOT_PRESENT ||
           result == CKR_CRYPTOKI_NOT_INITIALIZED;
}

// A module's text of fixed size, which it may have left without padding.
template <std::size_t size> std::string_view fixedText(const CK_UTF8CHAR (&field)[size]) {
    const std::string_view text{reinterpret_cast<const char*>(field), size};
    return trimmed(text.substr(0, text.find('\0')));
}

} // namespace

Session::Session(const std::string& modulePath, CK_SLOT_ID slot) : module_(modulePath), slot_(slot) {
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

void Session::openSession() {
    check("C_OpenSession", module_.call(&CK_FUNCTION_LIST::C_OpenSession, slot_, CK_FLAGS{CKF_SERIAL_SESSION},
                                        nullptr, nullptr, &handle_));
    if (handle_ == CK_INVALID_HANDLE)
        throw Failure(ZVC_ERR_MODULE_ANSWER, "Il modulo PKCS#11 ha aperto una sessione senza identificativo");
}

Session::Outcome Session::close() noexcept {
    Outcome outcome{nullptr, CKR_OK};
    if (handle_ != CK_INVALID_HANDLE) {
        const CK_RV closed = call(&CK_FUNCTION_LIST::C_CloseSession);
        if (closed != CKR_OK && !isGone(closed)) outcome = {"C_CloseSession", closed};
    }
    if (initialisedHere_) {
        const CK_RV finalised = module_.call(&CK_FUNCTION_LIST::C_Finalize, nullptr);
        if (finalised != CKR_OK && !isGone(finalised) && outcome.result == CKR_OK)
            outcome = {"C_Finalize", finalised};
    }
    handle_ = CK_INVALID_HANDLE;
    initialisedHere_ = loggedIn_ = false;
    return outcome;
}

void Session::login(std::string_view pin) {
    // The standard's type is not const, but a PIN is only read.
    const auto bytes = reinterpret_cast<CK_UTF8CHAR_PTR>(const_cast<char*>(pin.data()));
    const CK_RV result =
        call(&CK_FUNCTION_LIST::C_Login, CK_USER_TYPE{CKU_USER}, bytes, static_cast<CK_ULONG>(pin.size()));
    loggedIn_ = result == CKR_OK || result == CKR_USER_ALREADY_LOGGED_IN;
    if (loggedIn_) return;
    const Failure failure = moduleFailure("C_Login", result);
    CK_TOKEN_INFO info{};
    const bool told = result == CKR_PIN_INCORRECT &&
                      module_.call(&CK_FUNCTION_LIST::C_GetTokenInfo, slot_, &info) == CKR_OK;
    std::string warning;
    if (told && (info.flags & CKF_USER_PIN_LOCKED) != 0)
        warning = ". Il PIN ora è bloccato";
    else if (told && (info.flags & CKF_USER_PIN_FINAL_TRY) != 0)
        warning = ". Resta un solo tentativo prima del blocco";
    throw Failure(failure.code(), failure.reason() + warning);
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

} // namespace zvcrypt

int kvInitialize(char* libPath, int slot) {
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({libPath});
        zvcrypt::current().reset();
        zvcrypt::current() = std::make_unique<zvcrypt::Session>(libPath, static_cast<unsigned>(slot));
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
    return zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({label, manufacturer, model, serial});
        *label = *manufacturer = *model = *serial = '\0';
        const CK_TOKEN_INFO info = zvcrypt::currentSession().tokenInfo();
        zvcrypt::writeText(zvcrypt::fixedText(info.label), {label, 80});
        zvcrypt::writeText(zvcrypt::fixedText(info.manufacturerID), {manufacturer, 48});
        zvcrypt::writeText(zvcrypt::fixedText(info.model), {model, 32});
        zvcrypt::writeText(zvcrypt::fixedText(info.serialNumber), {serial, 32});
    });
}
