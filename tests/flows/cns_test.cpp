// Services cards: what a reading says of them, and the renewal of their own certificate with their own key.
#include "api/state.h"
#include "card/detection.h"
#include "inventory/certificates.h"
#include "ossl/memory_bio.h"
#include "routines.h"
#include "simcard/authority/certificate_file.h"
#include "simcard/common/card_folder.h"
#include "tests/flows/flow.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <ctime>

namespace {

using namespace zvtest;
using Lines = std::vector<std::string>;

class ServicesCard : public Flow {
  protected:
    explicit ServicesCard(const char* profile = "cns")
        : Flow({.profile = &simcard::profile_named(profile), .serial = "6090010012345678"}) {}

    int request_own() { return request_authentication("CNS0", "CNS0"); }
    int save_own(const std::string& certificate, bool keep_old) {
        return save_authentication(certificate, keep_old, "CNS0", "CNS0");
    }
    void relabel(const char* from, std::string to) {
        std::string pin = PIN, library = path();
        ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
        ASSERT_EQ(RechangeValueObject(nullptr, from, to.data()), 0);
        finalizza();
    }
    // The recorded calls that change the card.
    std::string changes() {
        std::string names;
        std::istringstream calls(module.recorded());
        for (std::string call; calls >> call; std::getline(calls, call))
            if (call == "C_DestroyObject" || call == "C_SetAttributeValue" || call == "C_CreateObject")
                names += call.substr(2) + " ";
        return names;
    }
    const Lines marked = {"data  labelled PDATA", "data  labelled pending_CNS_key", "certificate CNS0",
                          "private key CNS0", "public key CNS0"};
};

class ServicesCardWithSignature : public ServicesCard {
  protected:
    ServicesCardWithSignature() : ServicesCard("cns-signature") {}
};

ossl::Certificate parsed(const std::string& pem) {
    const ossl::Bio text = ossl::reading(pem);
    return ossl::Certificate(PEM_read_bio_X509(text.get(), nullptr, nullptr, nullptr));
}

ossl::Certificate certificate_of(const zv::Certificate& read) {
    const unsigned char* bytes = read.value;
    return ossl::Certificate(d2i_X509(nullptr, &bytes, static_cast<long>(read.value_length)));
}

std::string date_of(const ASN1_TIME* time, const char* form = "%d/%m/%Y %H:%M:%S", int days_later = 0) {
    std::tm parts{};
    ASN1_TIME_to_tm(time, &parts);
    parts.tm_mday += days_later;
    timegm(&parts);
    char text[32];
    std::strftime(text, sizeof text, form, &parts);
    return text;
}

std::string hex_of(const ASN1_STRING* bytes) {
    std::string text;
    for (int i = 0; i < ASN1_STRING_length(bytes); ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", ASN1_STRING_get0_data(bytes)[i]);
        text += digits;
    }
    return text;
}

TEST_F(ServicesCardWithSignature, RecordsSayWhatOpenSslSays) {
    const Reading reading = read();
    ASSERT_EQ(reading.result, 0) << szBuffErr;
    ASSERT_EQ(reading.cns.size(), 1u);
    ASSERT_EQ(reading.pra.size(), 1u);
    EXPECT_TRUE(reading.aut.empty());
    const auto own = certificate_of(zv::Certificati[0]), signature = certificate_of(zv::Certificati[1]);
    for (const auto& [record, certificate] :
         {std::pair{fields(reading.cns[0]), own.get()}, {fields(reading.pra[0]), signature.get()}}) {
        EXPECT_EQ(record[2], simcard::value_in_name(*X509_get_subject_name(certificate), NID_dnQualifier));
        EXPECT_EQ(record[4], hex_of(X509_get0_serialNumber(certificate)));
        EXPECT_EQ(record[5], date_of(X509_get0_notBefore(certificate)));
        EXPECT_EQ(record[6], date_of(X509_get0_notAfter(certificate)));
        EXPECT_EQ(record[record.size() - 2], hex_of(X509_get0_subject_key_id(certificate)));
    }
    EXPECT_EQ(zv::sSubjectAute, fields(reading.cns[0])[0]);
    EXPECT_STREQ(zv::sLabelAute, "CNS0");
    EXPECT_EQ(date_of(X509_get0_notAfter(own.get()), "%d%m%Y", 3 * 365), zv::dtScadenza);
    EXPECT_EQ(reading.key_pra, "DS3");
    EXPECT_EQ(reading.key_aut, "") << "no authentication certificate";
    EXPECT_EQ(reading.pending_cns + reading.pending_pra + reading.pending_aut, 0);
    EXPECT_FALSE(use2048Bit);
    EXPECT_TRUE(force2048PraGen);
}

TEST_F(ServicesCard, OnlyTheHoldersNameIsRewrittenAroundItsCommonName) {
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request_own(), 0);
    const auto named = [](const char* common_name, const char* organisation) {
        ossl::Name name(X509_NAME_new());
        simcard::add_to_name(*name, NID_commonName, common_name);
        simcard::add_to_name(*name, NID_organizationName, organisation);
        return name;
    };
    const auto certificate = parsed(issue());
    X509_set_subject_name(certificate.get(), named("Holder", "Somewhere").get());
    X509_set_issuer_name(certificate.get(), named("Issuer", "Elsewhere").get());
    X509_sign(certificate.get(), simcard::KeySource::from_file(ZV_TEST_KEYS).next().get(), EVP_sha256());
    ASSERT_EQ(save_own(simcard::certificate_text(*certificate, simcard::CertificateForm::pem), false), 0);
    const Lines record = fields(read().cns[0]);
    EXPECT_EQ(record[0], "2.5.4.3=Holder/O=Somewhere");
    EXPECT_EQ(record[1], "2.5.4.3=Issuer2.5.4.10=Elsewhere");
}

TEST_F(ServicesCard, KeysAreSearchedWhileTheFirstSearchIsOpen) {
    const auto key_searches = [this] { return calls_of("C_FindObjectsInit", module.recorded()); };
    const std::string search =
        "C_FindObjectsInit hSession=1 pTemplate={CKA_CLASS 8 0300000000000000} ulCount=1";
    module.record();
    EXPECT_EQ(read().cns.size(), 1u);
    EXPECT_TRUE(has(module.recorded(), "\n" + search + " -> 0x90\nC_FindObjectsFinal hSession=1 -> 0x0\n" +
                                           search + " -> 0x0\n"))
        << module.recorded();
    const std::size_t searches = key_searches().size();
    module.reset();
    module.record();
    module.add_rules("C_FindObjectsInit:3:answer:0");
    EXPECT_EQ(read().result, 0);
    EXPECT_EQ(key_searches().size(), searches - 1) << "a module may allow it";
}

TEST_F(ServicesCardWithSignature, InventoryFailsWithoutAWordOfItsOwn) {
    for (const char* rule : {"C_FindObjectsInit:2:answer:0x30", "C_FindObjects:9:answer:0x30",
                             "C_FindObjectsInit:3:answer:0x30", "C_FindObjectsFinal:1:answer:0x30",
                             "C_FindObjects:12:answer:0x30", "C_FindObjectsFinal:2:answer:0x30"}) {
        log.clear();
        module.reset();
        module.add_rules(rule);
        EXPECT_EQ(read().result, -1) << rule;
        EXPECT_TRUE(has(log.text(), "completata con successo!\n**  .... Finalizza FUN")) << log.text();
        EXPECT_TRUE(has(log.text(), "[]: Smart Card CNS: NewFind_ALL_CertsKeysRenewCNS() error!\n")) << rule;
    }
    module.reset();
    module.add_rules("C_FindObjectsInit:5:answer:0x30");
    const Reading reading = read();
    EXPECT_EQ(reading.result, 0) << "a failed search for pending pairs is no failure";
    EXPECT_EQ(reading.key_pra, "");
}

TEST_F(ServicesCardWithSignature, IdentifiersDecideTheList) {
    const char* id = "DS0";
    for (const auto& [next, pra, aut] : {std::tuple{"DSx", "DSx", ""},
                                         {"Sign_Keypair0", "", "CNS0"},
                                         {"xAUTHCertificate0", "", "xAUTHCertificate0"}}) {
        relabel(id, next);
        id = next;
        const Reading reading = read();
        ASSERT_EQ(reading.pra.size() + reading.aut.size(), 1u);
        EXPECT_EQ(reading.pra.empty() ? "" : fields(reading.pra[0])[7], pra);
        EXPECT_EQ(reading.aut.empty() ? "" : fields(reading.aut[0])[7], aut)
            << "an unknown one repeats the last";
    }
    relabel(id, "DS0");
    std::string pin = PIN, library = path(), label = "DS0";
    ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
    ASSERT_EQ(DeleteAnObject(zv::hSession, CKO_PRIVATE_KEY, label.data()), 0u);
    finalizza();
    const Reading reading = read();
    EXPECT_TRUE(reading.pra.empty()) << "no private key";
    EXPECT_EQ(reading.cns.size(), 1u);
}

TEST_F(ServicesCardWithSignature, OfMoreThanTenWithAKeyTenAreListedAndTheCardsOwn) {
    Lines pairs(10, "DS1x"), certificates(11, "alone");
    pairs.emplace_back("DS6");
    certificates.emplace_back("DS6");
    certificates.insert(certificates.end(), 9, "DS0");
    relabel("CNS0", "DS2");
    add(certificates, pairs);
    add({"CNS0"}, {"CNS0"});
    const Reading reading = read();
    ASSERT_EQ(reading.pra.size(), 9u);
    EXPECT_EQ(fields(reading.pra[2])[7], "DS6") << "found behind eleven keys and thirteen certificates";
    ASSERT_EQ(reading.cns.size(), 1u) << "in the tenth's place";
}

TEST_F(ServicesCardWithSignature, SeriesNumbersDecide) {
    const Lines before = objects();
    const auto named = [this](const char* serial) {
        simcard::update_card(card.folder, [serial](simcard::Card& changed) { changed.serial = serial; });
        return read();
    };
    const Reading reading = named("1205000000000001");
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.key_pra, "DS3");
    EXPECT_TRUE(is1205SerialToken && force2048PraGen);
    EXPECT_EQ(objects(), before) << "first keys are never deleted";
    EXPECT_EQ(named("1201000000000001").result, 100);
    EXPECT_STREQ(szBuffErr, "Tipo di Smart Card non supportato");
    EXPECT_FALSE(is1205SerialToken);
    EXPECT_EQ(named("1300000000000001").result, 0);
}

TEST_F(ServicesCard, ADllPathIsAServicesCard) {
    const std::string copy = (log.folder() / "own.dll").string();
    std::filesystem::copy_file(path(), copy);
    const Reading reading = read(PIN, copy.c_str());
    EXPECT_EQ(reading.cns.size(), 1u) << szBuffErr;
    EXPECT_EQ(std::strlen(zv::dtScadenza), 8u);
    EXPECT_EQ(zv::Libreria, copy);
    EXPECT_FALSE(has(log.text(), "Lista lettori") || has(log.text(), "Dump Smart Card"))
        << "neither detection nor dump";
    ASSERT_EQ(request_own(), 0) << "requests and installing go to the same module";
    EXPECT_EQ(save_own(issue(), false), 0);
}

TEST_F(ServicesCard, RenewalKeepsTheKeyAndItsLogIsTheGoldenOne) {
    ASSERT_EQ(read().result, 0) << szBuffErr;
    const auto old = certificate_of(zv::Certificati[0]);
    ASSERT_EQ(request_own(), 0) << szBuffErr << szSockMsg;
    EXPECT_EQ(module.calls("C_GenerateKeyPair"), 0u);
    EXPECT_EQ(objects(), marked);
    const std::string certificate = issue();
    EXPECT_EQ(EVP_PKEY_eq(X509_get0_pubkey(parsed(certificate).get()), X509_get0_pubkey(old.get())), 1);
    module.record();
    ASSERT_EQ(save_own(certificate, false), 0) << szBuffErr << szSockMsg;
    expect_golden("cns.log", masked_log());
    EXPECT_EQ(changes(), "DestroyObject SetAttributeValue SetAttributeValue CreateObject DestroyObject ")
        << "the old certificate first, the marker last";
    EXPECT_EQ(objects().size(), 4u) << "the marker and the old certificate are gone";
    EXPECT_TRUE(pair_works("CNS0"));
    const Reading after = read();
    EXPECT_EQ(after.pending_cns, 0);
    EXPECT_EQ(after.cns.size(), 1u);
    EXPECT_EQ(X509_cmp(certificate_of(zv::Certificati[0]).get(), parsed(certificate).get()), 0);
}

TEST_F(ServicesCardWithSignature, EachKindHasItsOwnPendingMark) {
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request_own(), 0);
    Reading reading = read();
    EXPECT_EQ(reading.pending_cns, 1);
    EXPECT_EQ(fields(reading.cns[0]).size(), 11u);
    EXPECT_TRUE(reading.cns[0].ends_with("#CNS0"));
    EXPECT_EQ(fields(reading.pra[0]).size(), 11u) << "no mark";
    ASSERT_EQ(request("DS3", "DS0"), 0);
    reading = read();
    EXPECT_EQ(reading.pending_pra, 1);
    EXPECT_TRUE(reading.pra[0].ends_with("#DS3")) << reading.pra[0];
    EXPECT_TRUE(reading.cns[0].ends_with("#CNS0"));
    EXPECT_TRUE(has(log.text(), "[]: Chiave Pending PRA:\n[]: DS3\n[]: Chiave Pending CNS: Si\n"));
}

TEST_F(ServicesCard, RequestMarksTheCardOnceWhole) {
    ASSERT_EQ(read().result, 0);
    const Lines before = objects();
    const std::pair<const char*, const char*> failures[] = {
        {"C_Sign:1:absurd:brief", "chiavi pending sulla smartcard (error 1)"},
        {"C_GetAttributeValue:17:absurd:brief", "generate sulla smartcard (error 13)"},
        {"C_FindObjectsInit:2:answer:0x30", "della chiave CNS0 sulla smartcard (error 30)"},
        {"C_FindObjects:6:answer:0x30", "della chiave CNS0 sulla smartcard (error 30)"},
        {"C_FindObjectsFinal:2:answer:0x30", "Generazione chiavi fallita (Ripetere l'operazione)"},
        {"C_Sign:1:answer:0x30", "chiavi pending sulla smartcard (error 1)"}};
    for (const auto& [call, sentence] : failures) {
        module.reset();
        module.add_rules(call);
        EXPECT_EQ(request_own(), 1) << call;
        EXPECT_TRUE(std::string(szSockMsg).ends_with(sentence)) << call << ": " << szSockMsg;
    }
    EXPECT_TRUE(has(log.text(),
                    "ErrAttributeValue\nErrore = 0x48\n** Messaggio di Errore\nGenerazione chiavi "
                    "fallita (Ripetere l'operazione)\n"));
    relabel("CNS0", "CNS1");
    EXPECT_EQ(request_own(), 1) << "no key of that identifier";
    EXPECT_STREQ(
        szSockMsg,
        "Errore nella lettura del modulo/esponente delle chiavi generate sulla smartcard (error 82)");
    relabel("CNS1", "CNS0");
    EXPECT_EQ(objects(), before);
    module.reset();
    module.record();
    subject += "2.5.4.12=Dott.2.5.4.65=Nome2.5.4.8=RM";
    ASSERT_EQ(request_own(), 0);
    EXPECT_TRUE(calls_of("C_CreateObject", module.recorded())[0].starts_with(
        "C_CreateObject hSession=1 pTemplate={CKA_CLASS 8 0000000000000000, CKA_LABEL 15 "
        "70656E64696E675F434E535F6B6579, CKA_PRIVATE 1 01, CKA_MODIFIABLE 1 00, CKA_TOKEN 1 01, CKA_VALUE 1 "
        "31}"));
    EXPECT_TRUE(simcard::readable(*X509_get_subject_name(parsed(issue()).get()))
                    .ends_with("SN=Collaudo, GN=Ada, ST=RM"))
        << "neither title nor pseudonym";
    subject = "2.5.4.6=IT2.5.4.3=" + std::string(990, 'n') + "2.5.4.12=Lost";
    ASSERT_EQ(request_own(), 0) << "a title is left out anyway";
    subject = "2.5.4.12=Dott.";
    EXPECT_EQ(request_own(), 1);
    EXPECT_TRUE(has(log.text(), "Errore\nDati per costruire il distinguished name non specificati\n"));
    subject = "2.5.4.6=IT";
    ASSERT_EQ(request_own(), 0) << "a marker that cannot be written again is no failure";
    EXPECT_EQ(objects(), marked);
}

TEST_F(ServicesCard, SecondSignatureIsThatOfTheSameKey) {
    ASSERT_EQ(read().result, 0);
    module.add_rules("C_Sign:1:answer:0x101;C_Login:2:do-and-answer:0x30");
    EXPECT_EQ(request_own(), 0) << szSockMsg;
    add({}, {"CNS0b"});
    module.reset();
    module.add_rules("C_Sign:1:answer:0x101;C_Login:2:do-and-answer:0x30");
    EXPECT_EQ(request_own(), 1);
    EXPECT_TRUE(has(szSockMsg, "(per SignIt error 64)")) << szSockMsg;
    EXPECT_TRUE(has(log.text(), "** Messaggio di Errore\nNon esiste alcuna chiave privata da certificare"));
    EXPECT_EQ(module.calls("C_Sign"), 1U);
}

TEST_F(ServicesCardWithSignature, ALivePairIsNotTheOldPendingOne) {
    ASSERT_EQ(read().result, 0);
    const Lines before = objects();
    std::string pin = PIN, key = "CNS0";
    std::vector<char> out(ZV_REQUEST_SIZE);
    EXPECT_EQ(
        rinnovo_Card_createCertRequestAUT(out.data(), "DS0", pin.data(), key.data(), subject.c_str(), true),
        1);
    EXPECT_TRUE(has(log.text(), "Operazione non inviata: la coppia di chiavi da scartare ha un certificato"));
    EXPECT_EQ(objects(), before);
}

TEST_F(ServicesCard, AFailedInstallingIsRepeatedWithKeeping) {
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request_own(), 0);
    const std::string certificate = issue();
    relabel("CNS0", "CNS0b"); // no certificate is exactly "CNS0"
    EXPECT_EQ(save_own(certificate, false), -1);
    relabel("CNS0b", "CNS0");
    EXPECT_EQ(objects(), marked);
    module.add_rules("C_CreateObject:1:answer:0x31");
    EXPECT_EQ(save_own(certificate, false), 1);
    Lines left = marked;
    std::erase(left, "certificate CNS0");
    EXPECT_EQ(objects(), left) << "the old one is gone, the marker is not";
    log.clear();
    EXPECT_EQ(save_own(certificate, false), -1);
    EXPECT_TRUE(has(log.text(), "** DeleteAnObject\nErrore nella cancellazione\nLabel = CNS0\n"));
    EXPECT_EQ(objects(), left);
    EXPECT_EQ(save_own(certificate, true), 0) << szBuffErr;
    EXPECT_TRUE(pair_works("CNS0"));
    EXPECT_EQ(objects().size(), 4u);
    EXPECT_EQ(save_own(certificate, true), 0) << "keeping keeps";
    EXPECT_EQ(read().cns.size(), 2u);
}

} // namespace
