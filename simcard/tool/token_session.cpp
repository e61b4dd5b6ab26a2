#include "simcard/tool/token_session.h"

#include "simcard/common/object_order.h"

namespace simcard {
namespace {

void check(CK_RV result, const char* step) {
    if (result != CKR_OK) throw SoftHsmProblem(std::string("SoftHSM refused to ") + step + ".", result);
}

} // namespace

TokenSession::TokenSession(const SoftHsm& hsm, const Card& card) : hsm_(hsm), folder_(card.folder) {
    const auto slot = hsm_.slot_of(card.token);
    if (!slot) throw CardProblem("The card's token is missing or damaged.");
    check(hsm_->C_OpenSession(*slot, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &session_),
          "open a session");
}

TokenSession::~TokenSession() {
    hsm_->C_CloseSession(session_);
}

bool TokenSession::login(const Secret& pin) {
    auto* bytes = reinterpret_cast<CK_UTF8CHAR*>(const_cast<char*>(pin.text().data()));
    const CK_RV result = hsm_->C_Login(session_, CKU_USER, bytes, pin.text().size());
    if (result == CKR_PIN_INCORRECT || result == CKR_PIN_LEN_RANGE) return false;
    check(result, "log the user in");
    return true;
}

void TokenSession::create(Attributes object) {
    CK_OBJECT_HANDLE handle = 0;
    check(hsm_->C_CreateObject(session_, object.data(), object.size(), &handle), "store an object");
    add_object(folder_, fingerprint(*hsm_.get(), session_, handle));
}

std::vector<CK_OBJECT_HANDLE> TokenSession::objects() {
    check(hsm_->C_FindObjectsInit(session_, nullptr, 0), "list the objects");
    std::vector<CK_OBJECT_HANDLE> found;
    CK_OBJECT_HANDLE next = 0;
    CK_ULONG count = 0;
    while (hsm_->C_FindObjects(session_, &next, 1, &count) == CKR_OK && count == 1)
        found.push_back(next);
    check(hsm_->C_FindObjectsFinal(session_), "list the objects");
    return found;
}

std::optional<std::string> TokenSession::attribute(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type) {
    CK_ATTRIBUTE wanted{type, nullptr, 0};
    if (hsm_->C_GetAttributeValue(session_, object, &wanted, 1) != CKR_OK) return {};
    std::string value(wanted.ulValueLen, '\0');
    wanted.pValue = value.data();
    if (hsm_->C_GetAttributeValue(session_, object, &wanted, 1) != CKR_OK) return {};
    return value;
}

} // namespace simcard
