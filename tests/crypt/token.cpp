#include "token.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/param_build.h>

#include <array>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <stdexcept>

namespace test {
namespace {

constexpr const char* officerPin = "12345678";

void require(CK_RV result) {
    if (result != CKR_OK) throw std::runtime_error("SoftHSM answered " + std::to_string(result));
}

CK_UTF8CHAR_PTR bytes(const char* text) {
    return reinterpret_cast<CK_UTF8CHAR_PTR>(const_cast<char*>(text));
}

CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, const void* value, std::size_t size) {
    return {type, const_cast<void*>(value), size};
}

KeyPtr rsaKey(const Bytes& modulus, const Bytes& exponent) {
    BIGNUM* n = BN_bin2bn(modulus.data(), static_cast<int>(modulus.size()), nullptr);
    BIGNUM* e = BN_bin2bn(exponent.data(), static_cast<int>(exponent.size()), nullptr);
    OSSL_PARAM_BLD* builder = OSSL_PARAM_BLD_new();
    OSSL_PARAM_BLD_push_BN(builder, OSSL_PKEY_PARAM_RSA_N, n);
    OSSL_PARAM_BLD_push_BN(builder, OSSL_PKEY_PARAM_RSA_E, e);
    OSSL_PARAM* parameters = OSSL_PARAM_BLD_to_param(builder);
    EVP_PKEY_CTX* context = EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr);
    EVP_PKEY* key = nullptr;
    const bool made = EVP_PKEY_fromdata_init(context) == 1 &&
                      EVP_PKEY_fromdata(context, &key, EVP_PKEY_PUBLIC_KEY, parameters) == 1;
    EVP_PKEY_CTX_free(context);
    OSSL_PARAM_free(parameters);
    OSSL_PARAM_BLD_free(builder);
    BN_free(e);
    BN_free(n);
    if (!made) throw std::runtime_error("the token's public key is none");
    return {key, EVP_PKEY_free};
}

} // namespace

Token::Token(const std::filesystem::path& folder) : handle_(::dlopen(SOFTHSM_MODULE, RTLD_NOW)) {
    std::filesystem::create_directories(folder / "tokens");
    const auto file = folder / "softhsm2.conf";
    std::ofstream(file) << "directories.tokendir = " << (folder / "tokens").string()
                        << "\nlog.level = ERROR\n";
    ::setenv("SOFTHSM2_CONF", file.c_str(), 1);
    const auto getList = reinterpret_cast<CK_C_GetFunctionList>(::dlsym(handle_, "C_GetFunctionList"));
    require(getList(&list_));
    require(list_->C_Initialize(nullptr));
    CK_ULONG count = 1;
    require(list_->C_GetSlotList(CK_TRUE, &slot_, &count));
    std::string label = "card";
    label.resize(32, ' ');
    require(list_->C_InitToken(slot_, bytes(officerPin), 8, bytes(label.c_str())));
    // Only from the next start on does the slot bear the number that stays. The blank token's comes last.
    release();
    require(list_->C_Initialize(nullptr));
    std::array<CK_SLOT_ID, 4> slots{};
    count = slots.size();
    require(list_->C_GetSlotList(CK_TRUE, slots.data(), &count));
    slot_ = slots[0];
    require(list_->C_OpenSession(slot_, CKF_SERIAL_SESSION | CKF_RW_SESSION, nullptr, nullptr, &session_));
    require(list_->C_Login(session_, CKU_SO, bytes(officerPin), 8));
    require(list_->C_InitPIN(session_, bytes(userPin), std::strlen(userPin)));
    require(list_->C_Logout(session_));
    require(list_->C_Login(session_, CKU_USER, bytes(userPin), std::strlen(userPin)));
}

Token::~Token() {
    (void)list_->C_Finalize(nullptr);
    (void)::dlclose(handle_);
}

KeyPtr Token::generate(const std::string& id) {
    const CK_BBOOL yes = CK_TRUE;
    const CK_ULONG bits = 2048;
    CK_MECHANISM mechanism{CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
    CK_ATTRIBUTE publicKey[] = {attribute(CKA_TOKEN, &yes, sizeof yes),
                                attribute(CKA_MODULUS_BITS, &bits, sizeof bits),
                                attribute(CKA_ID, id.data(), id.size())};
    CK_ATTRIBUTE privateKey[] = {
        attribute(CKA_TOKEN, &yes, sizeof yes), attribute(CKA_PRIVATE, &yes, sizeof yes),
        attribute(CKA_SIGN, &yes, sizeof yes), attribute(CKA_ID, id.data(), id.size())};
    CK_OBJECT_HANDLE pair[2];
    require(list_->C_GenerateKeyPair(session_, &mechanism, publicKey, 3, privateKey, 4, &pair[0], &pair[1]));
    Bytes modulus(256), exponent(8);
    CK_ATTRIBUTE values[] = {attribute(CKA_MODULUS, modulus.data(), modulus.size()),
                             attribute(CKA_PUBLIC_EXPONENT, exponent.data(), exponent.size())};
    require(list_->C_GetAttributeValue(session_, pair[0], values, 2));
    exponent.resize(values[1].ulValueLen);
    return rsaKey(modulus, exponent);
}

void Token::store(const Certificate& certificate, const std::string& id) {
    const CK_OBJECT_CLASS kind = CKO_CERTIFICATE;
    const CK_CERTIFICATE_TYPE type = CKC_X_509;
    const CK_BBOOL yes = CK_TRUE;
    CK_ATTRIBUTE all[] = {attribute(CKA_CLASS, &kind, sizeof kind),
                          attribute(CKA_CERTIFICATE_TYPE, &type, sizeof type),
                          attribute(CKA_TOKEN, &yes, sizeof yes),
                          attribute(CKA_ID, id.data(), id.size()),
                          attribute(CKA_SUBJECT, "0", 1),
                          attribute(CKA_VALUE, certificate.der.data(), certificate.der.size())};
    CK_OBJECT_HANDLE object = 0;
    require(list_->C_CreateObject(session_, all, 6, &object));
}

void Token::release() {
    require(list_->C_Finalize(nullptr));
}

} // namespace test
