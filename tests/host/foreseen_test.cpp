#include "host/error.h"
#include "host/foreseen.h"
#include "host/front.h"
#include "simcard/authority/certificate_file.h"
#include "simcard/authority/renewal.h"
#include "tests/host/given_pin.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/log_file.h"
#include "tests/support/module.h"
#include "words/words.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using zvhost::Kind, zvhost::Plan;
using zvtest::GivenPin;

constexpr const char* READER = "Simulated Reader 0";
constexpr const char* KEYS_MADE = "Two keys are made on the card.";
constexpr const char* STORED = "The new certificate is stored beside its keys.";
constexpr const char* NOTHING_REMOVED = "Nothing is removed.";
constexpr const char* NOTHING = "Nothing on the card is changed.";

struct AnswerInAFile : zvhost::Authority {
    [[nodiscard]] std::string at_hand() override { return file; }
    [[nodiscard]] std::string ask(const std::string& /*request*/) override { return {}; }
    std::string file;
};

class ForeseenTest : public testing::Test {
  protected:
    void make_card(const char* profile, Kind kind, int days = 30) {
        zvhost::end_modules();
        cards_.reset();
        cards_.emplace();
        ::setenv("XDG_STATE_HOME", cards_->path().c_str(), 1);
        cards_->make({.profile = &simcard::profile_named(profile), .reader = READER, .signature_days = days});
        cards_->configure();
        wishes = {};
        wishes.request.kind = kind;
        wishes.request.force = true;
        wishes.request.out = file("request");
        wishes.backup = file("backup");
        authority_.file.clear();
    }
    ~ForeseenTest() override {
        zvhost::end_modules();
        ::unsetenv("XDG_STATE_HOME");
    }
    // The authority answers the request that was made.
    void answer() {
        const auto authority =
            simcard::Authority::open(simcard::Authority::folder_beside_cards(cards_->path()));
        const auto issued = answer_request(authority, simcard::read_file(wishes.request.out), {});
        authority_.file = file("answer");
        std::ofstream(authority_.file)
            << certificate_text(*issued.certificate, simcard::CertificateForm::pem);
    }
    // What is foreseen without a PIN.
    [[nodiscard]] Plan foreseen() const {
        return foresee_renewal(look_at_card(choice_, zvhost::USUAL_DAYS), wishes, !authority_.file.empty());
    }
    zvhost::PlannedRenewal planned() { return plan_renewal(wishes, choice_, pin_, authority_); }
    // It is what is planned, too; this is carried out then.
    void foresees(const std::vector<std::string>& sentences) {
        const Plan before = foreseen();
        zvhost::PlannedRenewal renewal = planned();
        EXPECT_FALSE(goes_beyond(renewal.plan(), before));
        for (const Plan* plan : {&before, &renewal.plan()}) {
            std::string text, wanted;
            for (const zvhost::Sentence& one : told_plainly(*plan))
                text += words::of(one) + "\n";
            for (const std::string& one : sentences)
                wanted += one + "\n";
            EXPECT_EQ(text, wanted);
        }
        zvhost::Progress silent;
        (void)renewal.apply(silent);
    }
    void leave_room(int bytes) {
        zvhost::end_modules();
        std::ofstream(cards_->path() / "card" / "card.ini", std::ios::app)
            << "memory_left = " << bytes << "\n";
    }
    // "DS3 request, in the place of DS0"
    static std::string waits() {
        std::string text;
        for (const zvhost::WaitingRenewal& one : waiting_renewals(look_at_card(choice_, zvhost::USUAL_DAYS)))
            text += one.pair + " " + std::filesystem::path(one.request).filename().string() +
                    ", in the place of " + one.replaces + (one.stored.empty() ? "" : ", stored");
        return text;
    }
    // What was broken off when the new certificate was on the card and the mark not yet removed.
    void store_without_more() {
        const std::filesystem::path journal = file("zvrenew"), before = file("before");
        std::filesystem::copy(journal, before, std::filesystem::copy_options::recursive);
        zvtest::Module module;
        zvhost::PlannedRenewal renewal = planned();
        module.add_rules("C_DestroyObject:1+:answer:0x30");
        zvhost::Progress silent;
        try {
            (void)renewal.apply(silent);
        } catch (const zvhost::Error&) {
        }
        std::filesystem::remove_all(journal);
        std::filesystem::rename(before, journal);
        zvhost::end_modules();
    }
    // Where the old certificate is on the card.
    static std::string gone(const std::string& id) {
        const auto status = look_at_card(choice_, zvhost::USUAL_DAYS);
        for (const zvhost::ListedCertificate& one : status.list.certificates)
            if (one.record.id == id) return id + ", valid until " + zvhost::day_of(one.record.ends);
        return id;
    }
    [[nodiscard]] std::string file(const char* name) const { return cards_->path() / name; }

    zvhost::RenewalWishes wishes;

  private:
    static inline const zvhost::CardChoice choice_{
        READER, std::filesystem::path(ZVSIMCARD_MODULE).parent_path().string(), {}};
    std::optional<simcard::TestCards> cards_;
    zvtest::LogFile log_;
    AnswerInAFile authority_;
    GivenPin pin_;
};

TEST_F(ForeseenTest, IsWhatIsPlannedForANewPair) {
    for (const bool little_room : {false, true}) {
        make_card("signature", Kind::signature);
        EXPECT_EQ(waits(), "");
        foresees({KEYS_MADE, NOTHING_REMOVED});
        EXPECT_EQ(waits(), "DS3 request, in the place of DS0");
        foresees({NOTHING});
        wishes.request.new_pair = true;
        std::filesystem::remove(wishes.request.out);
        foresees({KEYS_MADE, "The keys DS3, which wait for a certificate, are removed: none can be installed "
                             "for them any more."});
        wishes.request.new_pair = false;
        if (little_room) leave_room(100);
        answer();
        wishes.remove_old = true;
        foresees({STORED, "The certificate " + gone("DS0") + ", and its keys are removed."});
        foresees({NOTHING});
    }
}

TEST_F(ForeseenTest, WarnsOfARequestThatMayBeForNothing) {
    make_card("signature", Kind::signature, -3);
    foresees({"The certificate DS0 has expired: the authority may not take a request signed with it.",
              KEYS_MADE, NOTHING_REMOVED});
}

TEST_F(ForeseenTest, IsWhatIsPlannedWhereTheOldOneStaysFirst) {
    make_card("cns-signature", Kind::signature);
    foresees({KEYS_MADE, NOTHING_REMOVED});
    answer();
    foresees({STORED, NOTHING_REMOVED});
    foresees({NOTHING});
    wishes.remove_old = true;
    const Plan with_removal = foreseen();
    wishes.remove_old = false;
    EXPECT_TRUE(goes_beyond(with_removal, foreseen()));
    wishes.remove_old = true;
    foresees({"The certificate " + gone("DS0") + ", and its keys are removed."});
}

TEST_F(ForeseenTest, IsWhatIsPlannedForAServicesCard) {
    for (const bool remove_old : {false, true}) {
        make_card("cns", Kind::services);
        foresees({"The card is marked: a request is under way.", NOTHING_REMOVED});
        foresees({NOTHING});
        EXPECT_EQ(waits(), "CNS0 request, in the place of CNS0");
        answer();
        const Plan kept = foreseen();
        wishes.remove_old = remove_old;
        EXPECT_EQ(goes_beyond(foreseen(), kept), remove_old);
        foresees({STORED, "The card is no longer marked: the request is answered.",
                  remove_old ? "The certificate " + gone("CNS0") + ", is removed; its keys stay."
                             : NOTHING_REMOVED});
    }
}

TEST_F(ForeseenTest, SeesARenewalGoOnWhereTheOldCertificateIsGone) {
    make_card("cns", Kind::services);
    zvhost::Progress silent;
    (void)planned().apply(silent);
    answer();
    wishes.remove_old = true;
    {
        zvtest::Module module;
        zvhost::PlannedRenewal renewal = planned();
        module.add_rules("C_CreateObject:1+:answer:0x30"); // nor does the old one come back
        EXPECT_THROW((void)renewal.apply(silent), zvhost::Error);
    }
    EXPECT_EQ(waits(), "CNS0 request, in the place of CNS0");
    foresees({STORED, "The card is no longer marked: the request is answered.", NOTHING_REMOVED});
}

TEST_F(ForeseenTest, SeesARenewalGoOnWhereItsCertificateIsStoredAndTheMarkIsLeft) {
    make_card("cns", Kind::services);
    zvhost::Progress silent;
    (void)planned().apply(silent);
    answer();
    store_without_more();
    for (int look = 0; look < 2; ++look)
        EXPECT_EQ(waits(), "CNS0 request, in the place of CNS0, stored");
    (void)planned(); // with the PIN, by which the mark shows
    EXPECT_EQ(waits(), "CNS0 request, in the place of CNS0, stored");
    foresees({"The card is no longer marked: the request is answered.", NOTHING_REMOVED});
    EXPECT_EQ(waits(), "");
}

TEST_F(ForeseenTest, TellsWhatIsRefusedWithoutAPin) {
    make_card("signature", Kind::signature);
    wishes.request.force = false;
    wishes.request.days = 1;
    try {
        (void)foreseen();
        FAIL() << "nothing is due";
    } catch (const zvhost::Error& error) {
        EXPECT_EQ(error.exit, zvhost::Exit::nothing_due);
        EXPECT_EQ(error.about->reader, READER);
    }
    wishes.request.kind = Kind::services;
    EXPECT_THROW((void)foreseen(), zvhost::Error) << "it is none";
}

TEST_F(ForeseenTest, IsGoneBeyondByWhatTheCardDidNotShow) {
    make_card("signature", Kind::signature);
    const Plan keys = foreseen();
    zvhost::Progress silent;
    (void)planned().apply(silent);
    answer();
    const Plan storing = planned().plan();
    EXPECT_TRUE(goes_beyond(storing, keys)) << "a certificate comes";
    EXPECT_TRUE(goes_beyond(keys, storing));
    wishes.remove_old = true;
    const Plan removing = planned().plan();
    EXPECT_TRUE(goes_beyond(removing, storing)) << "what goes later counts";
    wishes.replace = "DS1";
    EXPECT_TRUE(goes_beyond(removing, foreseen())) << "another one goes";
}

} // namespace
