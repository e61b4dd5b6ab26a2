#pragma once

#include "card/session.h"
#include "simcard/authority/authority.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/log_file.h"
#include "tests/support/module.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvtest {

/// What a reading gives back.
struct Reading {
    int result = 0;
    std::vector<std::string> cns, pra, aut;
    int pendingCNS = 0, pendingPRA = 0, pendingAUT = 0;
    std::string keyPRA, keyAUT;
};

/// A signature card in a software reader, the library's log, and the control of the module that it goes through.
class Flow : public testing::Test {
  protected:
    static constexpr const char* READER = "Simulated Reader 0";
    static constexpr const char* PIN = "12345678";

    Flow();
    ~Flow() override;

    Reading read(std::string pin = PIN, const char* reader = READER);
    int findFree(std::string& pra, std::string& aut, std::string pin = PIN);
    /// A request for the pair `pending`, signed with `key`.
    int request(std::string pending = "DS3", std::string key = "DS0", bool discard = false,
                std::string pin = PIN);
    int requestAuthentication(std::string pending, std::string key);
    [[nodiscard]] simcard::Authority authority() const;
    /// The authority's answer to the last request, as PEM.
    std::string issue();
    int save(const std::string& certificate, bool keepOld, std::string label = "DS0",
             std::string pending = "DS3", std::string pin = PIN);
    int saveAuthentication(const std::string& certificate, bool keepOld, std::string label,
                           std::string pending);

    /// The card's objects as pkcs11 users see them: "certificate DS0", ...; one a line, in the card's order.
    std::vector<std::string> objects();
    /// Signs with the private key of that identifier and verifies with its certificate.
    bool pairWorks(const std::string& id);
    [[nodiscard]] int triesLeft() const;
    [[nodiscard]] std::string path(const std::string& name = "libzvsimcard.so") const {
        return moduleDir_ + "/" + name;
    }
    /// The log, everything that differs from run to run masked.
    [[nodiscard]] std::string maskedLog() const;

    simcard::TestCards cards;
    simcard::Card card;
    LogFile log;
    Module module;
    std::string subject; ///< of the next request; a reading sets it to its first signature certificate's
    std::string requestText;

  private:
    std::string moduleDir_;
};

/// A card with the pending pair DS3 and the certificate that the authority issued for it.
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

/// True when text contains part.
inline bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The module calls of a record, one name a line.
std::vector<std::string> callNames(const std::string& recorded);

} // namespace zvtest
