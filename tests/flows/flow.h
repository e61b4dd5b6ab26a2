#pragma once

#include "card/session.h"
#include "simcard/authority/authority.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/host.h"
#include "tests/support/log_file.h"
#include "tests/support/module.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvtest {

// A card in a software reader, the library's log, and the control of the module that the card goes through.
class Flow : public testing::Test {
  protected:
    static constexpr const char* READER = "Simulated Reader 0";
    static constexpr const char* PIN = "12345678";

    // A signature card.
    Flow();
    // Another one; with a name, through a copy of the module under that name.
    explicit Flow(const simcard::CardPlan& plan, const char* module_name = nullptr);
    ~Flow() override;

    Reading read(std::string pin = PIN, const char* reader = READER);
    int find_free(std::string& pra, std::string& aut, std::string pin = PIN);
    // A request for the pair `pending`, signed with `key`.
    int request(std::string pending = "DS3", std::string key = "DS0", bool discard = false,
                std::string pin = PIN);
    int request_authentication(std::string pending, std::string key);
    [[nodiscard]] simcard::Authority authority() const;
    // The authority's answer to the last request, as PEM.
    std::string issue();
    int save(const std::string& certificate, bool keep_old, std::string label = "DS0",
             std::string pending = "DS3", std::string pin = PIN);
    int save_authentication(const std::string& certificate, bool keep_old, std::string label,
                            std::string pending);

    // The card's objects as pkcs11 users see them: "certificate DS0", ...; one a line, in the card's order.
    std::vector<std::string> objects();
    // Certificates that are nobody's, and pairs, as many as there are identifiers: put on the card behind the others.
    void add(const std::vector<std::string>& certificates, const std::vector<std::string>& pairs = {});
    // Signs with the private key of that identifier and verifies with its certificate.
    bool pair_works(const std::string& id);
    [[nodiscard]] int tries_left() const;
    // The module's path.
    [[nodiscard]] std::string path() const { return module_path; }
    [[nodiscard]] std::string module_dir() const { return module_path.parent_path(); }
    // The log, an entry a line ("|" where the log breaks it), everything that differs from run to run masked.
    [[nodiscard]] std::string masked_log() const;

    simcard::TestCards cards;
    simcard::Card card;
    LogFile log;
    std::filesystem::path module_path;
    Module module;
    // Of the next request; a reading sets it to that of its first certificate for a CNS or a signature.
    std::string subject;
    std::string request_text;
};

// A card in a session of the test's own.
class OpenFlow : public Flow {
  protected:
    void SetUp() override;
    void add_data(const char* label, const std::string& value, bool modifiable = true);
    unsigned delete_one(CK_OBJECT_CLASS object_class, std::string id);
    int delete_all(std::string text);
};

// A card with the pending pair DS3 and the certificate that the authority issued for it.
class PendingFlow : public Flow {
  protected:
    void SetUp() override {
        ASSERT_EQ(read().result, 0);
        ASSERT_EQ(request(), 0);
        certificate = issue();
        before = objects();
        module.reset();
        log.clear();
    }
    std::string certificate;
    std::vector<std::string> before;
};

// True when text contains part.
inline bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// The fields of a record.
std::vector<std::string> fields(const std::string& record);

// The calls of one function in a record, a line each.
std::vector<std::string> calls_of(const std::string& function, const std::string& recorded);

// Compares with the file of that name beside the tests; ZV_WRITE_GOLDEN=1 writes it instead.
void expect_golden(const std::string& name, const std::string& text);

} // namespace zvtest
