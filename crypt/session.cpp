#include "crypt/session.h"

#include "crypt/asn1_text.h"
#include "crypt/text.h"

#include <unistd.h>

#include <memory>

// The C++ ABI's: what std::atexit and the destructors of static objects are made of.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
int __cxa_atexit(void (*handler)(void*), void* argument, void* owner);
void __cxa_finalize(void* owner);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace zvcrypt {
namespace {

std::unique_ptr<Session>& current() {
    static auto& session = undying<std::unique_ptr<Session>>();
    return session;
}

void close_current() {
    if (!current()) return;
    const auto outcome = current()->close();
    current().reset();
    if (outcome.result != CKR_OK) throw module_failure(outcome.function, outcome.result);
}

void close_at_exit(void*) noexcept {
    if (current() && current()->is_of_this_process()) current().reset();
}

// A module ends before the exit handlers that were set up before it was loaded: those would call what is no more. So each
// opening sets up its own, and takes it back, or the process's list of them would grow with every reading.
int handlers_owner;

void set_exit_handler() noexcept {
    (void)__cxa_atexit(close_at_exit, nullptr, &handlers_owner);
}

// When this library is unloaded, too.
[[gnu::destructor]] void take_exit_handlers_back() noexcept {
    __cxa_finalize(&handlers_owner);
}

// The module or the card ended the session already.
bool is_gone(CK_RV result) {
    return result == CKR_SESSION_HANDLE_INVALID || result == CKR_SESSION_CLOSED ||
           result == CKR_DEVICE_REMOVED || result == CKR_TOKEN_NOT_PRESENT ||
           result == CKR_CRYPTOKI_NOT_INITIALIZED;
}

// A module's text of fixed size, which it may have left without padding.
template <std::size_t size> std::string fixed_text(const CK_UTF8CHAR (&field)[size]) {
    const std::string_view text{reinterpret_cast<const char*>(field), size};
    return plain_text(trimmed(text.substr(0, text.find('\0'))));
}

} // namespace

Session::Session(const std::string& module_path, CK_SLOT_ID slot)
    : module_(module_path), slot_(slot), opener_(::getpid()) {
    const CK_RV initialised = module_.call(&CK_FUNCTION_LIST::C_Initialize, nullptr);
    initialised_here_ = initialised == CKR_OK;
    if (initialised != CKR_CRYPTOKI_ALREADY_INITIALIZED) check("C_Initialize", initialised);
    try {
        open_session();
    } catch (...) {
        (void)close();
        throw;
    }
}

Session::~Session() {
    (void)close();
    take_exit_handlers_back();
}

// A child of the process that opened it would log its parent out.
bool Session::is_of_this_process() const noexcept {
    return opener_ == ::getpid();
}

void Session::open_session() {
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
        if (logged_in_here_) (void)call(&CK_FUNCTION_LIST::C_Logout);
        const CK_RV closed = call(&CK_FUNCTION_LIST::C_CloseSession);
        if (closed != CKR_OK && !is_gone(closed)) outcome = {"C_CloseSession", closed};
    }
    if (initialised_here_) {
        const CK_RV finalised = module_.call(&CK_FUNCTION_LIST::C_Finalize, nullptr);
        if (finalised != CKR_OK && !is_gone(finalised) && outcome.result == CKR_OK)
            outcome = {"C_Finalize", finalised};
    }
    handle_ = CK_INVALID_HANDLE;
    initialised_here_ = logged_in_ = logged_in_here_ = false;
    return outcome;
}

CK_RV Session::call_login(CK_USER_TYPE user, std::span<unsigned char> pin) const {
    return call(&CK_FUNCTION_LIST::C_Login, user, pin.data(), static_cast<CK_ULONG>(pin.size()));
}

void Session::login(std::string_view pin) {
    // The standard's type is not const, but a PIN is only read.
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(pin.data()));
    const CK_RV result = call_login(CKU_USER, {bytes, pin.size()});
    if (result == CKR_OK) {
        logged_in_here_ = true;
        pin_.keep(pin);
    }
    if (result == CKR_OK || result == CKR_USER_ALREADY_LOGGED_IN) {
        logged_in_ = true;
        return;
    }
    pin_.wipe();
    const Failure failure = module_failure("C_Login", result);
    throw Failure(failure.code(), failure.reason() + (result == CKR_PIN_INCORRECT ? tries_warning() : ""));
}

std::string Session::tries_warning() const {
    CK_TOKEN_INFO info{};
    if (module_.call(&CK_FUNCTION_LIST::C_GetTokenInfo, slot_, &info) != CKR_OK) return {};
    if ((info.flags & CKF_USER_PIN_LOCKED) != 0) return ". Il PIN ora è bloccato";
    if ((info.flags & CKF_USER_PIN_FINAL_TRY) != 0) return ". Resta un solo tentativo prima del blocco";
    return {};
}

CK_TOKEN_INFO Session::token_info() const {
    CK_TOKEN_INFO info{};
    check("C_GetTokenInfo", module_.call(&CK_FUNCTION_LIST::C_GetTokenInfo, slot_, &info));
    return info;
}

Session& current_session() {
    if (!current()) throw Failure(ZVC_ERR_NO_SESSION, "Nessuna sessione aperta con la smart card");
    return *current();
}

void close_after_failure() noexcept {
    if (current() && current()->logged_in()) current().reset();
}

} // namespace zvcrypt

int kvInitialize(char* lib_path, int slot) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({lib_path});
        zvcrypt::current().reset();
        zvcrypt::current() = std::make_unique<zvcrypt::Session>(lib_path, static_cast<unsigned>(slot));
        zvcrypt::set_exit_handler();
    });
}

int kvLogin(const char* pin) {
    return zvcrypt::run_operation([&] {
        zvcrypt::require_arguments({pin});
        if (*pin == '\0')
            throw zvcrypt::Failure(ZVC_ERR_PIN_EMPTY, "PIN mancante: la smart card non è stata usata");
        zvcrypt::current_session().login(pin);
    });
}

int kvFinalize() {
    return zvcrypt::run_operation(zvcrypt::close_current);
}

int kvCheckSmartCard(char* label, char* manufacturer, char* model, char* serial) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({label, manufacturer, model, serial});
        *label = *manufacturer = *model = *serial = '\0';
        const CK_TOKEN_INFO info = zvcrypt::current_session().token_info();
        zvcrypt::write_text(zvcrypt::fixed_text(info.label), {label, ZVC_TOKEN_LABEL_SIZE});
        zvcrypt::write_text(zvcrypt::fixed_text(info.manufacturerID),
                            {manufacturer, ZVC_TOKEN_MANUFACTURER_SIZE});
        zvcrypt::write_text(zvcrypt::fixed_text(info.model), {model, ZVC_TOKEN_MODEL_SIZE});
        zvcrypt::write_text(zvcrypt::fixed_text(info.serialNumber), {serial, ZVC_TOKEN_SERIAL_SIZE});
    });
}
