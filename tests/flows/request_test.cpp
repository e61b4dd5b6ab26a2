// Requests: what goes to the card, what comes back, and what a failure leaves.
#include "api/request_files.h"
#include "request/pkcs10.h"
#include "simcard/authority/request_encoding.h"
#include "simcard/authority/signed_request.h"
#include "store/renewal_state.h"
#include "tests/flows/flow.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace zvtest;
using Lines = std::vector<std::string>;

// The authority verifies the old key's signature around the request and the new key's in it.
ossl::Request verified(const std::string& file, const simcard::Authority& authority) {
    const auto decoded = simcard::decode_request(file);
    return simcard::verify_signed_request(*std::get<ossl::Message>(decoded), authority.certificate()).request;
}

TEST_F(Flow, RequestCarriesTheNewKeySignedByItAndWrappedByTheOld) {
    ASSERT_EQ(read().result, 0);
    subject = "2.5.4.4=Rossi2.5.4.3=Ada Rossi/serialNumber=TINIT-X2.5.4.6=IT";
    ASSERT_EQ(request(), 0) << szBuffErr;
    const auto pkcs10 = verified(request_text, authority());
    EXPECT_EQ(X509_REQ_get_signature_nid(pkcs10.get()), NID_sha1WithRSAEncryption);
    EXPECT_EQ(simcard::readable(*X509_REQ_get_subject_name(pkcs10.get())),
              "C=IT, CN=Ada Rossi, serialNumber=TINIT-X, SN=Rossi");
    const Lines all = objects();
    EXPECT_EQ(Lines(all.begin() + 6, all.end()),
              (Lines{"private key DS3", "public key DS3", "certificate Korvalenta Firma Dig"}));
}

TEST_F(Flow, APendingPairIsUsedAgainAndDiscardedWhenAsked) {
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request(), 0);
    const auto first = verified(request_text, authority());
    module.reset();
    ASSERT_EQ(request(), 0);
    EXPECT_EQ(module.calls("C_GenerateKeyPair"), 0u);
    const auto again = verified(request_text, authority());
    EXPECT_EQ(EVP_PKEY_eq(X509_REQ_get0_pubkey(first.get()), X509_REQ_get0_pubkey(again.get())), 1);
    module.use_keys(ZV_TEST_KEYS);
    log.clear();
    ASSERT_EQ(request("DS3", "DS0", true), 0);
    EXPECT_EQ(module.calls("C_GenerateKeyPair"), 1u);
    EXPECT_TRUE(has(log.text(), "** DeleteAllPending32\nI N I Z I O\n"));
    EXPECT_EQ(objects().size(), 9u) << "one pending pair";
    EXPECT_TRUE(has(log.text(), "Codice FindObjects: 0x4\n* Chiave pubblica \tkey type: RSA key\r\n"));
}

TEST_F(Flow, ACommandGivesTheLengthOfItsResultInTheLowHalfOfTheVariable) {
    constexpr long HIGH_HALF = 7L << 32;
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request(), 0);
    std::string label = "DS0", pending = "DS3";
    RichiestaMinInfo(label.data(), PIN, "none", pending.data(), "PRA", "R");
    std::string block = zv::szBufferRichiesta;
    char out[8000];
    long length = HIGH_HALF | static_cast<long>(sizeof out);
    ASSERT_EQ(miExecCmd("REQREN", block.data(), 0, out, &length), 0);
    EXPECT_TRUE(has(out, "-----END CERTIFICATE REQUEST-----"));
    EXPECT_EQ(length, HIGH_HALF | static_cast<long>(std::strlen(out)));
    long too_little = static_cast<long>(std::strlen(out));
    EXPECT_EQ(miExecCmd("REQREN", block.data(), 0, out, &too_little), ZV_NOT_SENT);
    EXPECT_EQ(too_little, static_cast<long>(std::strlen(out)));
}

TEST_F(Flow, RefusalsOfAGenerationReachTheUser) {
    ASSERT_EQ(read().result, 0);
    const std::vector<std::pair<const char*, const char*>> refusals = {
        {"0x6", ".Provare a sbloccare il PIN di carta ed il PIN di firma al medesimo valore utilizzando la "
                "funzione \"Sblocco "
                "PIN\" del zvPennaro."},
        {"0x30", "Errore nella comunicazione con il lettore di Smart Card.\n\nGenerazione delle chiavi di "
                 "firma fallita."},
        {"0x31", "nuovo certificato.\n\nSi prega di rivolgersi"}};
    for (const auto& [code, sentence] : refusals) {
        module.add_rules(std::string("C_GenerateKeyPair:1:answer:") + code);
        EXPECT_EQ(request(), 1);
        EXPECT_EQ(std::string(szSockMsg), "Errore nella generazione delle chiavi sulla smartcard (error " +
                                              std::string(code).substr(2) + ")");
        EXPECT_STREQ(szBuffErr, "Errore nella mininfo");
        EXPECT_TRUE(has(log.text(), sentence)) << code;
    }
    szSockMsg[0] = '\0';
    module.add_rules("C_GenerateKeyPair:1:answer:0x32");
    EXPECT_EQ(request(), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nella lettura del modulo/esponente delle chiavi generate sulla smartcard (error 82)")
        << "an unknown code goes on to the reading of the key";
    EXPECT_EQ(objects().size(), 7u);
}

TEST_F(Flow, NotLoggedInEndsTheRequestWhenTheNewLoginSucceeds) {
    ASSERT_EQ(read().result, 0);
    module.add_rules("C_GenerateKeyPair:1:answer:0x101");
    EXPECT_EQ(request(), 1);
    EXPECT_STREQ(szSockMsg, "Errore nella generazione delle chiavi sulla smartcard (error inizializza 0)");
    EXPECT_TRUE(has(log.text(),
                    "C_Login\nErrore = 0x0\n** Messaggio di Errore\nGenerazione chiavi fallita error "
                    "inizializza (Operazione completata con successo)\n"));
    module.add_rules("C_Sign:1:answer:0x101");
    EXPECT_EQ(request(), 1);
    EXPECT_STREQ(szSockMsg, "Firma sequenza di hash fallita (error login 0)");
    module.add_rules("C_GenerateKeyPair:1:answer:0x101;C_Login:2:answer:0x30");
    EXPECT_EQ(request("DS4"), 1);
    EXPECT_EQ(module.calls("C_GenerateKeyPair"), 4u) << "a failing login leads to the second try";
    EXPECT_EQ(tries_left(), 3);
}

TEST_F(Flow, SignatureFailuresNameTheirCode) {
    ASSERT_EQ(read().result, 0);
    module.add_rules("C_SignInit:1:answer:0x60");
    EXPECT_EQ(request(), 1);
    EXPECT_TRUE(
        has(log.text(),
            "C_SignInit\nErrore = 0x96\n** Messaggio di Errore\nInizializzazione firma della sequenza di "
            "hash fallita (L'handle selezionato non e' una chiave valida)\n"));
    EXPECT_STREQ(szSockMsg,
                 "Errore nella operazione di firma richiesta certificato con chiavi pending sulla smartcard "
                 "(error 1)");
    for (const std::string kind : {"length", "unavailable", "brief"}) {
        module.add_rules("C_Sign:1:absurd:" + kind);
        EXPECT_EQ(request(), 1) << "a signature of another length than the modulus is none";
        EXPECT_TRUE(has(szSockMsg, "pending sulla smartcard (error 1)")) << szSockMsg;
        module.reset();
        // Of the key, behind census and pending pair.
        module.add_rules("C_GetAttributeValue:52:absurd:" + kind);
        EXPECT_EQ(request(), 1) << "no number is read, the exponent alone may lack";
        EXPECT_TRUE(has(szSockMsg, "Errore nella lettura del modulo/esponente")) << szSockMsg;
    }
    EXPECT_TRUE(has(log.text(), "C_Sign\nErrore = 0x193\n** Messaggio di Errore\nFirma della sequenza"));
    EXPECT_EQ(request(), 0) << "the pair is used again";
    zv::PublicKey key;
    key.modulus[1] = 0x80, key.modulus_length = 129;
    EXPECT_EQ(key.size(), 128u) << "a zero in front is no part of its length";
}

TEST_F(Flow, FailuresOfTheSigningStep) {
    ASSERT_EQ(read().result, 0);
    EXPECT_EQ(request("DS3", "DS9"), static_cast<int>(ZVC_ERR_KEY));
    EXPECT_TRUE(has(log.text(), "Richiesta firma con chiave CKA_ID: DS9\n"));
    EXPECT_TRUE(has(log.text(), "[]: Funzione kvSignFile() error!\n"));
    EXPECT_STRNE(szBuffErr, "");
    EXPECT_TRUE(std::filesystem::exists("/tmp/tmpReqFile")) << "the files of a failure are left";
    module.add_rules("C_Login:2:answer:0xA4");
    EXPECT_EQ(request(), static_cast<int>(ZVC_ERR_PIN_LOCKED));
    EXPECT_TRUE(has(log.text(), "[]: Funzione DoInitialize() error!\n"));
    EXPECT_EQ(request(), 0);
}

TEST(RequestFile, StaysOursWhenAModuleClosesADescriptorAgain) {
    const int stale = ::dup(1);
    ::close(stale);
    zv::RequestFile file;
    ASSERT_TRUE(file.create("request"));
    ::close(stale);
    EXPECT_TRUE(file.is_ours());
    zv::remove_request_files();
}

TEST_F(Flow, RequestFileIsOursOrTheRequestFails) {
    namespace fs = std::filesystem;
    ASSERT_EQ(read().result, 0);
    const auto target = log.folder() / "target";
    std::ofstream(target) << "kept";
    fs::create_directory_symlink(log.folder(), log.folder() / "link");
    log.use(log.folder() / "link" / "other.log");
    for (const char* name : {zv::BASE64_FILE, zv::SIGNED_FILE, zv::REQUEST_FILE}) {
        fs::remove(name);
        fs::create_symlink(target, name);
        EXPECT_EQ(request(), 0) << "a link itself is removed: " << name;
        ASSERT_EQ(::mkfifo(name, 0600), 0);
        EXPECT_EQ(request(), 0) << name;
        std::ofstream(name) << "another user's";
        ASSERT_TRUE(::geteuid() != 0 || ::chown(name, 65534, 65534) == 0);
        EXPECT_EQ(request(), 0) << name;
        fs::create_directory(name);
        EXPECT_NE(request(), 0) << name;
        EXPECT_STRNE(szBuffErr, "");
        fs::remove(name);
    }
    EXPECT_EQ(fs::file_size(target), 4u);
    fs::create_directory(zv::REQUEST_FILE);
    EXPECT_EQ(request(), 100);
    EXPECT_STREQ(szBuffErr, "Primo File temporaneo non trovato");
    EXPECT_TRUE(has(log.text(), "[]: Primo File temporaneo non trovato\n[]: Funzione fopen() error!\n"));
    EXPECT_EQ(objects().size(), 9u) << "the pending pair stays";
    fs::remove(zv::REQUEST_FILE);
}

TEST_F(PendingFlow, SecondSignatureNeedsThePairAgain) {
    module.add_rules("C_Sign:1:answer:0x101;C_Login:2:answer:0x30");
    EXPECT_EQ(request(), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nella ricerca delle chiavi pending generate sulla smartcard (per SignIt error 64)")
        << "without a login the private key is not seen";
    EXPECT_EQ(module.calls("C_Sign"), 1U);
    EXPECT_EQ(objects(), before);
    for (const char* id : {"DS3", "DS4"}) { // a pair that was found, one that is made
        module.add_rules("C_Sign:1:answer:0x101;C_Login:2:do-and-answer:0x30");
        EXPECT_EQ(request(id), 0) << szSockMsg;
    }
}

} // namespace
