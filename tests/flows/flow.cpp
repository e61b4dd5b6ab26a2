#include "tests/flows/flow.h"

#include "install/certificate_object.h"
#include "install/label.h"
#include "routines.h"
#include "simcard/authority/certificate_file.h"
#include "simcard/authority/renewal.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/object_view.h"
#include "tests/simcard/objects.h"
#include "zvCrypt.h"

#include <openssl/pem.h>

#include <regex>
#include <span>

namespace zvtest {

namespace {

// The simulated card's module, or a copy of it under that name.
std::filesystem::path module_file(const std::filesystem::path& folder, const char* name) {
    if (name == nullptr) return ZVSIMCARD_MODULE;
    std::filesystem::copy_file(ZVSIMCARD_MODULE, folder / name);
    return folder / name;
}

} // namespace

Flow::Flow() : Flow(simcard::CardPlan{.serial = "9000111122223333"}) {}

Flow::Flow(const simcard::CardPlan& plan, const char* module_name)
    : card(cards.make(plan)), module_path(module_file(log.folder(), module_name)), module(module_path) {
    loadErrorCodes();
    const std::filesystem::path conf = cards.configure();
    const std::string text = simcard::read_file(conf);
    std::ofstream(conf) << std::regex_replace(text, std::regex("module = .*"),
                                              "module = " + module_path.filename().string());
    module.use_keys(ZV_TEST_KEYS);
    set_ATRini_path(nullptr);
    szSockMsg[0] = '\0';
    std::fill(std::begin(zv::vettoreSlotID), std::end(zv::vettoreSlotID), 0);
}

Flow::~Flow() {
    finalizza();
    kvFinalize();
}

Reading Flow::read(std::string pin, const char* reader) {
    Reading reading = read_card(reader, pin.data(), module_dir());
    subject = reading.subject();
    return reading;
}

int Flow::find_free(std::string& pra, std::string& aut, std::string pin) {
    char key_pra[ZV_KEY_ID_SIZE] = "?", key_aut[ZV_KEY_ID_SIZE] = "?";
    const int result = rinnovo_Card_findFreeCKAID(nullptr, pin.data(), key_pra, key_aut);
    pra = key_pra, aut = key_aut;
    return result;
}

int Flow::request(std::string pending, std::string key, bool discard, std::string pin) {
    std::vector<char> out(ZV_REQUEST_SIZE, '?');
    const int result = rinnovo_Card_createCertRequestPRA(out.data(), pending.c_str(), pin.data(), key.data(),
                                                         subject.c_str(), discard);
    if (result == 0) request_text = out.data();
    return result;
}

int Flow::request_authentication(std::string pending, std::string key) {
    std::vector<char> out(ZV_REQUEST_SIZE, '?');
    std::string pin = PIN;
    const int result = rinnovo_Card_createCertRequestAUT(out.data(), pending.c_str(), pin.data(), key.data(),
                                                         subject.c_str(), false);
    if (result == 0) request_text = out.data();
    return result;
}

simcard::Authority Flow::authority() const {
    return simcard::Authority::open(simcard::Authority::folder_beside_cards(cards.path()));
}

std::string Flow::issue() {
    simcard::RenewalTerms terms;
    terms.bare_requests = true;
    const auto signed_request = simcard::answer_request(authority(), request_text, terms);
    BIO* memory = BIO_new(BIO_s_mem());
    PEM_write_bio_X509(memory, signed_request.certificate.get());
    char* text = nullptr;
    const long length = BIO_get_mem_data(memory, &text);
    std::string pem(text, static_cast<std::size_t>(length));
    BIO_free(memory);
    return pem;
}

int Flow::save(const std::string& certificate, bool keep_old, std::string label, std::string pending,
               std::string pin) {
    std::string chain = certificate;
    label.resize(ZV_KEY_ID_SIZE);
    return rinnovo_Card_saveCertPRA(pin.data(), label.data(), pending.data(), chain.data(), keep_old);
}

int Flow::save_authentication(const std::string& certificate, bool keep_old, std::string label,
                              std::string pending) {
    std::string chain = certificate, pin = PIN;
    label.resize(ZV_KEY_ID_SIZE);
    return rinnovo_Card_saveCertAUT(pin.data(), label.data(), pending.data(), chain.data(), keep_old);
}

std::vector<std::string> Flow::objects() {
    std::vector<std::string> all;
    for (const simcard::ObjectView& object : simcard::view_objects(card, PIN)) {
        std::string line = object.object_class + " " + object.id;
        if (object.label != object.id) line += " labelled " + object.label;
        all.push_back(line);
    }
    return all;
}

void Flow::add(const std::vector<std::string>& certificates, const std::vector<std::string>& pairs) {
    std::string pin = PIN, library = path();
    ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
    Pair pair;
    for (const std::string& id : pairs)
        ASSERT_EQ(generate(module, zv::hSession, id, pair), CKR_OK);
    for (const std::string& id : certificates) {
        zv::label_certificate(zv::CertTemplate[3], zv::CertTemplate[4], id.c_str());
        for (CK_ATTRIBUTE& part : std::span(zv::CertTemplate).subspan(5))
            part.ulValueLen = 1;
        ASSERT_EQ(zv::create_certificate(""), CKR_OK);
    }
    finalizza();
}

void OpenFlow::SetUp() {
    std::string pin = PIN, library = path();
    ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
    log.clear();
}

void OpenFlow::add_data(const char* label, const std::string& value, bool modifiable) {
    ASSERT_EQ(DataStore(zv::hSession, label, value.c_str(), "", modifiable, true), 0u);
}

unsigned OpenFlow::delete_one(CK_OBJECT_CLASS object_class, std::string id) {
    return DeleteAnObject(zv::hSession, object_class, id.data());
}

int OpenFlow::delete_all(std::string text) {
    return DeleteObjectByLabel(zv::hSession, text.data());
}

bool Flow::pair_works(const std::string& id) {
    const std::filesystem::path data = log.folder() / "data", signed_data = log.folder() / "data.p7m";
    std::ofstream(data) << "signed";
    std::string library = path();
    const bool works = kvInitialize(library.data(), 0) == 0 && kvLogin(PIN) == 0 &&
                       kvSignFile(id.c_str(), "SHA256", data.c_str(), signed_data.c_str()) == 0;
    kvFinalize();
    return works;
}

int Flow::tries_left() const {
    return static_cast<int>(simcard::load_card(card.folder).pin_tries_left);
}

std::string Flow::masked_log() const {
    static const std::vector<std::pair<std::regex, std::string>> masks = {
        {std::regex(R"((ZVSIM08)\d{8}(08)\d{8})"), "$1(DAY)$2(DAY)"},
        {std::regex(R"((hSession|hModule|hPrivateKey|hPublicKey|SlotList) = 0x[1-9][0-9]*)"), "$1 = 0x#"},
        {std::regex(R"(hObject0x[1-9][0-9]*)"), "hObject0x#"},
        {std::regex(R"(hSession = <\d+> ulCount = <9> hCert = <\d+>)"),
         "hSession = <#> ulCount = <9> hCert = <#>"},
        {std::regex(R"([0-9A-F]{512})"), "MODULUS"},
        {std::regex(R"(\b[0-9A-F]{40}\b)"), "SHA1"},
        {std::regex(R"(\b[0-9A-F]{16,39}\b)"), "SERIAL"},
        {std::regex(R"([A-Za-z0-9+/]{48,}={0,2}\n)"), "BASE64\n"},
        {std::regex(R"((BASE64\n)+)"), "BASE64\n"},
        {std::regex(R"([A-Za-z0-9+/]{1,47}={0,2}(\n-----END))"), "BASE64$1"},
        {std::regex(R"(BASE64\n[A-Za-z0-9+/]{1,47}={0,2}\n)"), "BASE64\n"},
        {std::regex(R"(BASE64\nBASE64)"), "BASE64"},
        {std::regex(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d)"), "DATE"},
    };
    std::string text = log.text();
    const std::string folder = module_dir();
    for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
        text.replace(at, folder.size(), "MODULES");
    for (const auto& [pattern, mask] : masks)
        text = std::regex_replace(text, pattern, mask);
    return std::regex_replace(text, std::regex(R"(\n(?!\*\* |\[\]: )(?=[\s\S]))"), "|");
}

std::vector<std::string> fields(const std::string& record) {
    std::vector<std::string> all;
    std::istringstream text(record + "#");
    for (std::string field; std::getline(text, field, '#');)
        all.push_back(field);
    return all;
}

std::vector<std::string> calls_of(const std::string& function, const std::string& recorded) {
    std::vector<std::string> calls;
    std::istringstream lines(recorded);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(function + " ")) calls.push_back(line);
    return calls;
}

void expect_golden(const std::string& name, const std::string& text) {
    const std::string file = std::string(GOLDEN_LOGS) + "/" + name;
    if (std::getenv("ZV_WRITE_GOLDEN") != nullptr) std::ofstream(file) << text;
    std::ifstream golden(file);
    std::ostringstream expected;
    expected << golden.rdbuf();
    EXPECT_EQ(text, expected.str()) << "the log differs from " << name;
}

} // namespace zvtest
