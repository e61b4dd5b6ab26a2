#include "host/certificate.h"
#include "host/read_file.h"
#include "host/signed_request.h"
#include "tests/cli/program.h"

#include <algorithm>

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class InstallProgramTest : public ProgramTest {
  protected:
    // A card with a pair that waits, its request in "request" and its certificate in "certificate".
    void prepare(const std::string& issue_options = {}) {
        make_card();
        ASSERT_EQ(with_pin("request signature --out request").code, 0);
        issue("request", "certificate", issue_options);
    }
    void issue(const std::string& request, const std::string& out, const std::string& options = {}) {
        const Outcome outcome = tool("issue " + request + " --out " + out + " " + options);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    }
    std::vector<std::string> identifiers() {
        std::vector<std::string> ids;
        const auto list = json("list");
        for (const auto& entry : list["certificates"])
            ids.push_back(entry["id"]);
        return ids;
    }
    using Ids = std::vector<std::string>;
};

TEST_F(InstallProgramTest, TakesTheHoldersCertificateOutOfEveryFormAndKeepsTheOldOne) {
    prepare();
    const zvhost::Bytes key = zvhost::modulus_of_request(simcard::read_file(file("request")));
    for (const std::string form : {"", "--der", "--p7b", "--p7b --der"}) {
        issue("request", "form", form);
        const auto found = zvhost::certificates_in_file(file("form"));
        EXPECT_EQ(found.size(), form.starts_with("--p7b") ? 2U : 1U) << form;
        const auto is_the_holders = [&](const auto& one) { return zvhost::modulus_of(*one) == key; };
        EXPECT_EQ(std::count_if(found.begin(), found.end(), is_the_holders), 1) << form;
        EXPECT_EQ(simcard::read_file(file("form")).starts_with("-----BEGIN"), !form.ends_with("--der"));
    }
    const zvhost::Bytes der = zvhost::certificates_in_file(file("form")).front().der();
    simcard::write_file(file("base64"), zvhost::base64_of(der), simcard::Access::owner_only);
    EXPECT_EQ(zvhost::certificates_in_file(file("base64")).size(), 1U);

    const Outcome outcome = with_pin("install certificate --request request --backup old.pem");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(outcome.says("Signed with DS3 and verified with the new certificate"));
    EXPECT_EQ(outcome.count("C_DestroyObject"), 0U);
    EXPECT_EQ(identifiers(), (Ids{"DS0", "DS3", "AUTHCertificate0"}));
    const auto list = json("list");
    EXPECT_EQ(list["certificates"][0]["replaced"], true);
    EXPECT_EQ(list["certificates"][0]["due"], false);
    EXPECT_TRUE(list["pending"].empty());
    EXPECT_EQ(zvhost::certificates_in_file(file("old.pem")).size(), 2U) << "what a removal would take";
    const Outcome again = with_pin("install certificate");
    EXPECT_EQ(again.code, 2) << "it is there already";
    EXPECT_EQ(again.count("C_Sign"), 1U) << "its key is tried";
    ASSERT_EQ(with_pin("request signature --force --out second").code, 0);
    issue("second", "new");
    ASSERT_EQ(shell("cat old.pem certificate new >all").code, 0);
    EXPECT_EQ(json("install all")["stored"], "DS4") << "what is on the card already is not meant";
    EXPECT_EQ(json("install all")["stored"], "DS4");
}

// A Latin-1 letter in a UTF8String: OpenSSL does not read it.
TEST_F(InstallProgramTest, TakesWhatAuthoritiesIssue) {
    prepare("--der");
    std::string odd = simcard::read_file(file("certificate"));
    for (std::size_t at = 0; (at = odd.find("Collaudo", at)) != std::string::npos;)
        odd[at + 7] = '\xF2';
    simcard::write_file(file("odd"), odd, simcard::Access::owner_only);
    const Outcome outcome = with_pin("install odd --request request --remove-old --backup old.pem");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(with_pin("install odd").code, 2) << "it is there already";
    const Outcome request = with_pin("request signature --certificate DS3 --force --out again");
    EXPECT_EQ(request.code, 0) << request.err;
    EXPECT_TRUE(request.says("CN=Ada Collaudò")) << request.out;
    EXPECT_EQ(zvhost::signer_of_request(simcard::read_file(file("again"))),
              zvhost::Bytes(odd.begin(), odd.end()));
}

TEST_F(InstallProgramTest, RenewsAndRemovesTheOldOne) {
    prepare("--p7b --der");
    const auto result = json("install certificate --remove-old --backup old.pem");
    EXPECT_EQ(result["result"], "done") << result;
    EXPECT_EQ(result["stored"], "DS3");
    EXPECT_EQ(result["verified"], true);
    EXPECT_EQ(result["removed"], (Ids{"DS0", "Korvalenta Firma Dig"}));
    EXPECT_EQ(result["on_card"], zvtest::whole({"AUTHCertificate0", "DS3"}));
    EXPECT_EQ(identifiers(), (Ids{"DS3", "AUTHCertificate0"}));
    EXPECT_EQ(zvhost::certificates_in_file(file("old.pem")).size(), 2U) << "the authority's goes too";
    EXPECT_NE(simcard::read_file(file("old.pem")).find("BEGIN PUBLIC KEY"), std::string::npos);
}

TEST_F(InstallProgramTest, RenewsTheAuthenticationCertificate) {
    make_card();
    ASSERT_EQ(with_pin("request authentication --force --out request").code, 0);
    issue("request", "certificate");
    const auto result = json("install certificate --remove-old");
    EXPECT_EQ(result["stored"], "AUTHCertificate3") << result;
    EXPECT_EQ(result["removed"], Ids{"AUTHCertificate0"}) << "the authority's stays";
}

TEST_F(InstallProgramTest, RefusesWhatWouldLoseSomething) {
    prepare();
    ASSERT_EQ(tool("create --name two --reader Two --days 5 --keys " ZV_TEST_KEYS " --config " +
                   file("conf").string())
                  .code,
              0);
    const std::string elsewhere = "request signature --reader Two --out foreign.request --pin-file ";
    ASSERT_EQ(shell("ZVCRYPT_CONF=conf " + command(elsewhere + pin_file().string())).code, 0);
    issue("foreign.request", "foreign");
    Outcome outcome = with_pin("install foreign --request request");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_EQ(outcome.calls, "") << "the files tell";
    outcome = with_pin("install foreign --remove-old");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_FALSE(outcome.changed_card()) << "the card tells";
    outcome = with_pin("install foreign --request foreign.request");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_FALSE(outcome.changed_card());
    EXPECT_TRUE(with_pin("install request").says("request is a request, not"));
    simcard::write_file(file("mine"), "mine", simcard::Access::owner_only);
    outcome = with_pin("install certificate --remove-old --backup mine");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_FALSE(outcome.changed_card());
    EXPECT_EQ(simcard::read_file(file("mine")), "mine");
    EXPECT_TRUE(outcome.says("another name with --backup"));
    outcome = with_pin("install certificate --remove-old", "C_GetAttributeValue:3+:answer:0x30");
    EXPECT_EQ(outcome.code, 1) << "what is not read is in no backup: " << outcome.err;
    EXPECT_TRUE(outcome.says("reader and run the same command again")) << outcome.err;
    EXPECT_FALSE(outcome.changed_card());
    const std::string full = command("install certificate --remove-old --pin-file " + pin_file().string());
    outcome = shell("(trap '' XFSZ; ulimit -f 4; " + full + " 2>&1) | cat");
    EXPECT_TRUE(outcome.says("Give the backup another name")) << "no room: " << outcome.out;
    outcome = with_pin("install certificate --backup no/such/folder");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.calls, "") << "told before the PIN";
    EXPECT_EQ(with_pin("install certificate --backup other").code, 0);
    EXPECT_EQ(identifiers(), (Ids{"DS0", "DS3", "AUTHCertificate0"}));
}

// Also when it ends in the middle, what was asked for and no more is gone in the end.
TEST_F(InstallProgramTest, TakesTheSameCertificateWhenItIsRepeated) {
    const std::string install = "install certificate --remove-old", card = card_folder().string();
    make_card_with({"DS0", "DS1"});
    ASSERT_EQ(with_pin("request signature --certificate DS0 --out request").code, 0);
    issue("request", "certificate");
    ASSERT_EQ(shell("cp -r " + card + " ../card && cp -r ../home ../as_home").code, 0);
    Outcome outcome = with_pin(install);
    EXPECT_EQ(outcome.code, 2) << "either could be meant: " << outcome.err;
    EXPECT_TRUE(outcome.says("--replace DS0 or --replace DS1")) << outcome.err;
    outcome = with_pin("install certificate", "C_CreateObject:1:answer:0x31");
    EXPECT_TRUE(outcome.says("give --remove-old --replace DS")) << outcome.err;
    for (const std::string options : {" --replace DS0", " --request request"})
        for (const char* rule : {"C_DestroyObject:1:kill-after", "C_DestroyObject:2:kill-after",
                                 "C_DestroyObject:3:kill-after", "C_CreateObject:1:kill-before"}) {
            ASSERT_EQ(
                shell("rm -r " + card + " ../home && cp -r ../card " + card + " && cp -r ../as_home ../home")
                    .code,
                0);
            EXPECT_NE(with_pin(install + options, rule).code, 0);
            outcome = with_pin(install + options);
            EXPECT_EQ(outcome.code, 0) << options << rule << outcome.err;
            EXPECT_TRUE(outcome.says("Now on the card: DS1 (certificate and keys), ")) << outcome.out;
            EXPECT_TRUE(outcome.says("DS3 (certificate and keys)\n")) << options << rule << outcome.out;
        }
}

TEST_F(InstallProgramTest, OffersNoKeysThatARemovalLeft) {
    prepare("--days 40");
    ASSERT_EQ(with_pin("install certificate --remove-old").code, 0);
    ASSERT_EQ(with_pin("request signature --out second").code, 0);
    issue("second", "certificate");
    const Outcome stuck = with_pin("install certificate --remove-old",
                                   "C_DestroyObject:1:answer:0x6;C_DestroyObject:2:answer:0x6");
    EXPECT_EQ(stuck.code, 1);
    EXPECT_TRUE(stuck.says("DS3 (keys without a certificate)")) << stuck.err;
    const auto list = json("list");
    EXPECT_TRUE(list["pending"].empty()) << list;
    EXPECT_EQ(list["retired"][0]["id"], "DS3");
    EXPECT_EQ(zvrenew("status").code, 0) << "they wait for nothing";
    EXPECT_TRUE(with_pin("request signature --force --out third").says("the new pair DS5"));
    EXPECT_TRUE(with_pin("install certificate").says("removed before: DS3. zvrenew remove"));
    EXPECT_TRUE(with_pin("list").says("zvrenew remove DS3"));
    EXPECT_EQ(with_pin("remove DS3").code, 0) << "as advised";
}

TEST_F(InstallProgramTest, RefusesACertificateThatIsWorthNothing) {
    prepare();
    const struct {
        const char *issued, *options, *reasons;
    } cases[] = {{"--starts-in -30 --days 20", "", "expired"},
                 {"--other-person RSSMRA80A01H501U", "", "holder"},
                 {"--kind authentication", "", "purpose"},
                 {"--days 5", "--remove-old", "ends-earlier"},
                 {"--starts-in 1", "--remove-old", "starts-later"},
                 {"--starts-in -30 --days 20 --other-person X --kind cns", "--remove-old",
                  "expired,ends-earlier,holder,purpose"}};
    for (const auto& [issued, options, reasons] : cases) {
        issue("request", "worthless", issued);
        const Outcome outcome = with_pin(std::string("install worthless ") + options);
        EXPECT_EQ(outcome.code, 2) << reasons;
        EXPECT_TRUE(outcome.says(std::string("--accept ") + reasons + ".")) << outcome.err;
        EXPECT_FALSE(outcome.changed_card()) << reasons;
    }
    EXPECT_EQ(with_pin("install worthless --remove-old --accept expired,ends-earlier,holder,purpose").code,
              0);
}

TEST_F(InstallProgramTest, RefusesPartsOfIdentifiers) {
    make_card_with({"DS1", "DS10"});
    ASSERT_EQ(with_pin("request signature --certificate DS1 --out request").code, 0);
    issue("request", "certificate");
    for (const char* options : {"--replace DS", "--replace DS1 --remove-old"}) {
        const Outcome outcome = with_pin(std::string("install certificate ") + options);
        EXPECT_EQ(outcome.code, 2) << options << outcome.err;
        EXPECT_FALSE(outcome.changed_card()) << options;
    }
}

TEST_F(InstallProgramTest, SaysWhatIsLeftAndFinishesLater) {
    prepare();
    const Outcome full =
        with_pin("install certificate --remove-old --backup old.pem", "C_CreateObject:1:answer:0x31");
    EXPECT_EQ(full.code, 1);
    EXPECT_TRUE(full.says(
        "Now on the card: AUTHCertificate0 (certificate and keys), DS3 (keys without a certificate)"))
        << full.err;
    EXPECT_TRUE(full.says("run the same command again"));
    EXPECT_TRUE(full.says("A copy of the old certificate: old.pem"));
    EXPECT_TRUE(std::filesystem::exists(file("old.pem")));

    const Outcome finished = with_pin("install certificate --remove-old --backup old.pem");
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_EQ(identifiers(), (Ids{"DS3", "AUTHCertificate0"}));
}

TEST_F(InstallProgramTest, SaysSoWhenTheNewKeyOrTheOldOneIsNotRight) {
    const struct {
        const char *options, *rule, *sentence;
    } cases[] = {
        {"", "C_Sign:1:answer:0x6", "The certificate was stored, but the new key could not be tried"},
        {"", "C_Sign:1:absurd:length", "a signature of the key DS3 does not verify"},
        {"--remove-old", "C_DestroyObject:1:answer:0x6",
         "stored and verified, as DS3, but DS0 could not be removed whole"}};
    for (const auto& [options, rule, sentence] : cases) {
        ASSERT_NO_FATAL_FAILURE(prepare());
        const Outcome outcome = with_pin(std::string("install certificate ") + options, rule);
        EXPECT_EQ(outcome.code, 1) << rule;
        EXPECT_TRUE(outcome.says(sentence)) << outcome.err;
        ASSERT_EQ(shell(ZVSIMCARD_TOOL " remove card && rm *").code, 0);
    }
}

} // namespace
