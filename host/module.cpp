#include "host/module.h"

#include "host/error.h"
#include "host/front.h"
#include "host/library_text.h"
#include "host/refused_pin.h"
#include "zvConstants.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string_view>

namespace zvhost {
namespace {

// What a module answers is not trusted: no card has this many, and nothing on it is this large.
constexpr CK_ULONG MOST_SLOTS = 256;
constexpr std::size_t HANDLES_PER_CALL = 64;
constexpr CK_ULONG LONGEST_ATTRIBUTE = 65536;
constexpr CK_ULONG LONGEST_SIGNATURE = 1024;

using List = CK_FUNCTION_LIST;

void require(CK_RV result, const char* what) {
    if (result == CKR_OK) return;
    throw Error(Exit::failed,
                Sentence{"call-failed",
                         {{"what", std::vector{Sentence{what, {}}}}, {"reason", module_reason(result)}}});
}

pkcs11::Module load(const std::string& path) {
    try {
        return pkcs11::Module(module_way(path), pkcs11::Mapped::until_exit);
    } catch (const pkcs11::NotLoaded& reason) {
        throw Error(Exit::failed, Sentence{"module-unloaded", {{"module", path}, {"reason", reason.what()}}});
    } catch (const pkcs11::NotAModule&) {
        throw Error(Exit::failed, Sentence{"module-none", {{"file", path}}});
    }
}

} // namespace

std::vector<Sentence> module_reason(CK_RV result) {
    forget_library_texts();
    return library_reason(result <= 0x7FFFFFFF ? static_cast<int>(result) : -1);
}

Module::Module(const std::string& path) : loaded_(load(path)) {
    require(call<&List::C_Initialize>(nullptr), "call-start");
}

Module::~Module() {
    // Nothing can be done about a module that does not end.
    [[maybe_unused]] const CK_RV result = call<&List::C_Finalize>(nullptr);
}

std::vector<CK_SLOT_ID> Module::slots() const {
    CK_ULONG count = 0;
    require(call<&List::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count), "call-list");
    std::vector<CK_SLOT_ID> found(std::min(count, MOST_SLOTS));
    CK_ULONG filled = found.size();
    if (found.empty()) return found;
    require(call<&List::C_GetSlotList>(CK_BBOOL{CK_TRUE}, found.data(), &filled), "call-list");
    if (filled < found.size()) found.resize(filled);
    return found;
}

std::string Module::description(CK_SLOT_ID slot) const {
    CK_SLOT_INFO info{};
    if (call<&List::C_GetSlotInfo>(slot, &info) != CKR_OK) return {};
    if ((info.flags & CKF_TOKEN_PRESENT) == 0) return {};
    const auto* text = reinterpret_cast<const char*>(info.slotDescription);
    std::string found(text, strnlen(text, sizeof info.slotDescription));
    while (!found.empty() && std::isspace(static_cast<unsigned char>(found.back())) != 0)
        found.pop_back();
    return found;
}

CK_TOKEN_INFO Module::token(CK_SLOT_ID slot) const {
    CK_TOKEN_INFO info{};
    require(call<&List::C_GetTokenInfo>(slot, &info), "call-ask");
    return info;
}

Session::Session(const Module& module, CK_SLOT_ID slot, Access access) : module_(module), slot_(slot) {
    const CK_FLAGS flags = CKF_SERIAL_SESSION | (access == Access::writing ? CKF_RW_SESSION : 0);
    require(module_.call<&List::C_OpenSession>(slot, flags, nullptr, nullptr, &handle_), "call-open");
}

Session::~Session() {
    // A card that is gone closes the session by itself.
    [[maybe_unused]] const CK_RV result = module_.call<&List::C_CloseSession>(handle_);
}

CK_RV Session::try_login(Pin& pin) {
    auto* text = reinterpret_cast<CK_UTF8CHAR*>(pin.text());
    const auto ask = [&] {
        return module_.call<&List::C_Login>(handle_, CK_USER_TYPE{CKU_USER}, text,
                                            CK_ULONG{pin.view().size()});
    };
    CK_RV result = ask();
    // Somebody else has logged in who uses the module in this process, or it left the card open: the PIN did not reach it.
    if (result == CKR_USER_ALREADY_LOGGED_IN) {
        (void)module_.call<&List::C_Logout>(handle_);
        result = ask();
    }
    if (refuses_pin(result)) pin.refuse();
    return result;
}

void Session::log_in(Pin& pin) {
    const CK_RV result = try_login(pin);
    if (result != CKR_USER_ALREADY_LOGGED_IN) require(result, "call-login");
}

std::vector<CK_OBJECT_HANDLE> Session::objects() const {
    require(module_.call<&List::C_FindObjectsInit>(handle_, nullptr, CK_ULONG{0}), "call-search");
    std::vector<CK_OBJECT_HANDLE> found;
    CK_RV result = CKR_OK;
    CK_ULONG count = 0;
    do {
        std::array<CK_OBJECT_HANDLE, HANDLES_PER_CALL> some{};
        count = 0;
        result = module_.call<&List::C_FindObjects>(handle_, some.data(), CK_ULONG{some.size()}, &count);
        if (result == CKR_OK && (count > some.size() || found.size() + count > ZV_OBJECTS_MAX))
            result = CKR_GENERAL_ERROR;
        if (result == CKR_OK) found.insert(found.end(), some.begin(), some.begin() + count);
    } while (result == CKR_OK && count != 0);
    const CK_RV closed = module_.call<&List::C_FindObjectsFinal>(handle_);
    require(result, "call-search");
    require(closed, "call-search");
    return found;
}

CK_RV Session::read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, Bytes& value) const {
    CK_ATTRIBUTE wanted{type, nullptr, 0};
    const auto ask = [&] {
        return module_.call<&List::C_GetAttributeValue>(handle_, object, &wanted, CK_ULONG{1});
    };
    CK_RV result = ask();
    if (result != CKR_OK || wanted.ulValueLen == 0) return result;
    if (wanted.ulValueLen > LONGEST_ATTRIBUTE) return CKR_GENERAL_ERROR;
    value.resize(wanted.ulValueLen);
    wanted.pValue = value.data();
    result = ask();
    if (result == CKR_OK && wanted.ulValueLen > value.size()) result = CKR_GENERAL_ERROR;
    value.resize(result == CKR_OK ? wanted.ulValueLen : 0);
    return result;
}

Bytes Session::attribute(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type) const {
    Bytes value;
    const CK_RV result = read(object, type, value);
    if (result != CKR_ATTRIBUTE_SENSITIVE && result != CKR_ATTRIBUTE_TYPE_INVALID)
        require(result, "call-read");
    return value;
}

Bytes Session::attribute_if_given(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type) const {
    Bytes value;
    return read(object, type, value) == CKR_OK ? value : Bytes();
}

CK_RV Session::read_at_once(CK_OBJECT_HANDLE object, std::vector<CK_ATTRIBUTE>& wanted) const {
    return module_.call<&List::C_GetAttributeValue>(handle_, object, wanted.data(), CK_ULONG{wanted.size()});
}

void Session::destroy(CK_OBJECT_HANDLE object) {
    require(module_.call<&List::C_DestroyObject>(handle_, object), "call-remove");
}

void Session::create(std::vector<CK_ATTRIBUTE> attributes) {
    CK_OBJECT_HANDLE object = 0;
    require(
        module_.call<&List::C_CreateObject>(handle_, attributes.data(), CK_ULONG{attributes.size()}, &object),
        "call-store");
}

bool Session::last_try() const {
    return (module_.token(slot_).flags & (CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED)) != 0;
}

bool Session::takes(Pin& pin) const {
    auto* text = reinterpret_cast<CK_UTF8CHAR*>(pin.text());
    const CK_RV result = module_.call<&List::C_Login>(handle_, CK_USER_TYPE{CKU_CONTEXT_SPECIFIC}, text,
                                                      CK_ULONG{pin.view().size()});
    if (refuses_pin(result)) return false;
    // The key wants nothing more, or its module knows no such login.
    if (result != CKR_USER_ALREADY_LOGGED_IN && result != CKR_USER_TYPE_INVALID)
        require(result, "call-signature-login");
    return true;
}

std::optional<Bytes> Session::sign(CK_OBJECT_HANDLE key, Bytes digest_info, Pin* pin) const {
    CK_MECHANISM mechanism{CKM_RSA_PKCS, nullptr, 0};
    require(module_.call<&List::C_SignInit>(handle_, &mechanism, key), "call-begin-signature");
    if (pin != nullptr && !takes(*pin)) return std::nullopt;
    Bytes signature(LONGEST_SIGNATURE);
    CK_ULONG length = signature.size();
    require(module_.call<&List::C_Sign>(handle_, digest_info.data(), CK_ULONG{digest_info.size()},
                                        signature.data(), &length),
            "call-sign");
    signature.resize(std::min<std::size_t>(length, signature.size()));
    return signature;
}

} // namespace zvhost
