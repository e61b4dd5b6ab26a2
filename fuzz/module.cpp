// Everything a host calls, on a card whose module answers as it likes. Lines: the calls (R read, F free
// identifiers, P and A requests, S and T installing, X single steps; k keep, c services card, 5 and 1 series of serial
// numbers, l with a log); pending label; key; subject; certificate ("@": the card's); objects ("c|id|label|value") up to
// an empty line. Bytes behind it spoil the card's answers.
#include "api/state.h"
#include "card/detection.h"
#include "card/session.h"
#include "fuzz/fake_card.h"
#include "fuzz/log_file.h"
#include "inventory/certificates.h"
#include "routines.h"
#include "store/renewal_state.h"
#include "util/text.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <dlfcn.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <iterator>

namespace {

constexpr char PIN[] = "PIN-9517";
constexpr std::string_view CALLS = "RFPASTX";
constexpr int MOST_CALLS = 8;

struct Call {
    std::string flags, pendingLabel, key, subject, certificate;
    bool has(char flag) const { return flags.find(flag) != std::string::npos; }
};

class List {
  public:
    List() {
        for (fuzz::Room& room : rooms_)
            entries_.push_back(room.get());
    }
    char** entries() { return entries_.data(); }
    void clear() {
        for (char* entry : entries_)
            *entry = '\0';
    }
    bool empty() const {
        return std::all_of(entries_.begin(), entries_.end(),
                           [](const char* entry) { return *entry == '\0'; });
    }
    // The count, then as many records of ten or eleven fields, or one more.
    long count() const {
        const long count = std::strtol(std::string(rooms_[0].text()).c_str(), nullptr, 10);
        HOLDS(count >= 0 && count < ZV_LIST_ENTRIES);
        for (int i = 1; i < ZV_LIST_ENTRIES; ++i) {
            const std::string_view record = rooms_[static_cast<std::size_t>(i)].text();
            HOLDS(record.empty() == (i > count));
            HOLDS(i > count || std::count(record.begin(), record.end(), '#') >= 9);
        }
        return count;
    }

  private:
    std::vector<fuzz::Room> rooms_ = [] {
        std::vector<fuzz::Room> rooms;
        for (int i = 0; i < ZV_LIST_ENTRIES; ++i)
            rooms.emplace_back(std::size_t{ZV_LIST_ENTRY_SIZE}, "");
        return rooms;
    }();
    std::vector<char*> entries_;
};

void holds_keys(const fuzz::Room& key_pra, const fuzz::Room& key_aut, int code) {
    if (code == 0) HOLDS(key_pra.text().size() < ZV_KEY_ID_SIZE && key_aut.text().size() < ZV_KEY_ID_SIZE);
}

void read_card(char* reader, char* pin) {
    static List cns, pra, aut;
    for (List* list : {&cns, &pra, &aut})
        list->clear();
    fuzz::Room key_pra(ZV_KEY_ID_SIZE), key_aut(ZV_KEY_ID_SIZE);
    int pending[3] = {7, 7, 7};
    const int code =
        rinnovo_Card_readCerts(reader, pin, 0, cns.entries(), pra.entries(), aut.entries(), &pending[0],
                               &pending[1], &pending[2], key_pra.get(), key_aut.get(), nullptr, FUZZ_MODULES);
    if (code != 0) HOLDS(cns.empty() && pra.empty() && aut.empty());
    HOLDS(code != 0 || cns.count() + pra.count() + aut.count() <= 10);
    for (const int flag : pending)
        HOLDS(flag == 0 || flag == 1);
    HOLDS(pending[1] + pending[2] < 2 && fuzz::card.refused_pins <= 1);
    holds_keys(key_pra, key_aut, code);
}

void find_free(char* reader, char* pin) {
    fuzz::Room key_pra(ZV_KEY_ID_SIZE), key_aut(ZV_KEY_ID_SIZE);
    holds_keys(key_pra, key_aut, rinnovo_Card_findFreeCKAID(reader, pin, key_pra.get(), key_aut.get()));
    HOLDS(fuzz::card.refused_pins <= 1);
}

// What comes out is a CMS file in base64, whole unless it fills its buffer.
void request(const Call& call, char* pin, bool signature) {
    fuzz::Room out(ZV_REQUEST_SIZE);
    std::string key = call.key;
    const auto create = signature ? rinnovo_Card_createCertRequestPRA : rinnovo_Card_createCertRequestAUT;
    if (create(out.get(), call.pendingLabel.c_str(), pin, key.data(), call.subject.c_str(), !call.has('k')) !=
        0) {
        HOLDS(out.untouched());
        return;
    }
    if (out.text().size() == ZV_REQUEST_SIZE - 1) return;
    BIO* decoder = BIO_push(BIO_new(BIO_f_base64()), BIO_new_mem_buf(out.get(), -1));
    CMS_ContentInfo* file = d2i_CMS_bio(decoder, nullptr);
    HOLDS(file != nullptr);
    CMS_ContentInfo_free(file);
    BIO_free_all(decoder);
}

// A certificate that is said to be installed is on the card, under the pending label.
void install(const Call& call, char* pin, bool signature) {
    fuzz::Room label(64, call.key);
    std::string pending = call.pendingLabel, text = call.certificate;
    if (text == "@") {
        const std::string& der = fuzz::own_certificate();
        text.assign(der.size() * 2, '\0');
        text.resize(static_cast<std::size_t>(EVP_EncodeBlock(
            reinterpret_cast<unsigned char*>(text.data()), reinterpret_cast<const unsigned char*>(der.data()),
            static_cast<int>(der.size()))));
    }
    const auto save = signature ? rinnovo_Card_saveCertPRA : rinnovo_Card_saveCertAUT;
    const int code = save(pin, label.get(), pending.data(), text.data(), call.has('k'));
    HOLDS(label.text().size() < label.size() && fuzz::card.refused_pins <= 1);
    if (code != 0 || call.certificate != "@") return;
    const std::string installed = RTrim(pending.data());
    HOLDS(std::any_of(fuzz::card.objects.begin(), fuzz::card.objects.end(),
                      [&](const fuzz::FakeObject& object) {
                          return object.object_class == CKO_CERTIFICATE && object.id == installed &&
                                 object.value == fuzz::own_certificate();
                      }));
}

// Routines that no entry point reaches, or not so.
void single_steps(const Call& call, char* pin) {
    zv::copy_text(zv::pendingLabel, call.pendingLabel);
    std::string key = call.key;
    if (__Initialize(3, pin, zv::Libreria) != CKR_OK) return;
    fuzz::Room census(1536, "");
    const int code = FindAllObjects(zv::hSession, census.get());
    HOLDS(code >= 0 && code <= 4 && census.text().size() < census.size());
    HOLDS(census.text().empty() || census.text().ends_with("\r\n"));
    DataStore(zv::hSession, call.key.c_str(), call.subject.c_str(), nullptr, false, true);
    DeleteDataPendingCNS(zv::hSession, key.data());
    DeleteAllPending(nullptr);
    DeleteCertCA(zv::hSession, key.data(), nullptr);
    const auto certificate = std::make_unique<datiCert>();
    certificate->derLength =
        fuzz::own_certificate().copy(reinterpret_cast<char*>(certificate->der), sizeof certificate->der);
    InstallCACertificate(nullptr, certificate.get(), certificate->derLength, key.data());
    RechangeValueObject(nullptr, call.key.c_str(), key.data());
}

fuzz::FakeObject object_from(const std::string& line) {
    std::string parts[4];
    std::size_t part = 0;
    for (const char c : line)
        if (c == '|' && part < 3)
            ++part;
        else
            parts[part] += c;
    static constexpr std::string_view CLASSES = "dcups"; // data, certificate, public, private, secret: 0 to 4
    const std::size_t number = parts[0].empty() ? 0 : CLASSES.find(parts[0][0]);
    return {number, parts[1], parts[2], parts[3] == "@" ? fuzz::own_certificate() : parts[3]};
}

void reset() {
    static fuzz::Input none(nullptr, 0);
    fuzz::card.answers = &none;
    finalizza();
    kvFinalize();
    zv::clear(zv::szBufferRichiesta, zv::pendingLabel, zv::certificateLabel, zv::certAlias, szSockMsg,
              szBuffErr);
    std::fill(std::begin(zv::vettoreSlotID), std::end(zv::vettoreSlotID), CK_SLOT_ID{0});
    std::memset(zv::Certificati, 0, sizeof zv::Certificati);
    zv::numCertificate = 0;
    zv::cKeepKeys = '\0';
    zv::dName = {};
    zv::dNameRen = {};
    zv::hPrivateKey = zv::hPublicKey = 0;
    ERR_clear_error(); // what the next execution would free, libFuzzer takes for a leak, and runs this one again
    is1205SerialToken = false;
    fuzz::card = {};
}

// The PIN is not in the log, and not in the block that went to the card machinery, unless another text holds it.
void holds_no_pin(bool in_input) {
    getLogPath()[0] = '\0';
    const std::string log = fuzz::take_log();
    HOLDS(in_input || fuzz::field_of(zv::szBufferRichiesta).find(PIN) == std::string_view::npos);
    HOLDS(in_input || log.find(PIN) == std::string::npos);
}

void run(const Call& call) {
    char pin[sizeof PIN];
    std::string reader = fuzz::card.reader;
    int calls = 0;
    for (const char letter : call.flags) {
        if (CALLS.find(letter) == std::string_view::npos) continue;
        if (++calls > MOST_CALLS) return;
        fuzz::card.refused_pins = 0;
        zv::copy_text(pin, PIN);
        if (letter == 'R') read_card(reader.data(), pin);
        if (letter == 'F') find_free(reader.data(), pin);
        if (letter == 'P' || letter == 'A') request(call, pin, letter == 'P');
        if (letter == 'S' || letter == 'T') install(call, pin, letter == 'S');
        if (letter == 'X') single_steps(call, pin);
        HOLDS(letter == 'X' || (zv::hSession == 0 && zv::hModule == nullptr));
        HOLDS(fuzz::field_of(szBuffErr).size() < sizeof szBuffErr &&
              fuzz::field_of(szSockMsg).size() < sizeof szSockMsg);
        if (letter == 'X') finalizza();
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string configuration = [] {
        const std::string path = fuzz::scratch() + "/zvcrypt.conf", module = "\nmodule = " FUZZ_MODULE "\n";
        fuzz::write_file(
            path, "[card A]\natr = 3B01" + module + "[card B]\natr = 3B02" + module +
                      "flags = cns touchsign\n[reader Carta]\natr = 3B01\n[reader Servizi]\natr = 3B02\n");
        // Once loaded it stays, whatever the library does.
        HOLDS(::dlopen(FUZZ_MODULES "/" FUZZ_MODULE, RTLD_NOW) != nullptr);
        return path;
    }();
    ::setenv("ZVCRYPT_CONF", configuration.c_str(), 1);
    fuzz::Input input(data, size);
    const std::string_view all = input.bytes();
    Call call;
    for (std::string* text : {&call.flags, &call.pendingLabel, &call.key, &call.subject, &call.certificate})
        *text = input.line();
    for (std::string line = input.line(); !line.empty(); line = input.line())
        fuzz::card.objects.push_back(object_from(line));
    fuzz::card.answers = &input;
    fuzz::card.reader = call.has('c') ? "Servizi" : "Carta";
    fuzz::card.serial = call.has('5') ? "1205000000000001" : call.has('1') ? "1201000000000001" : "7";
    if (call.has('l')) zv::copy_text(getLogPath(), 512, fuzz::log_path());
    zv::copy_text(zv::pwd, FUZZ_MODULES);
    zv::copy_text(zv::Libreria, FUZZ_MODULES "/" FUZZ_MODULE);
    zv::slot = 3;
    run(call);
    reset();
    holds_no_pin(all.find(PIN) != std::string_view::npos);
    return 0;
}
