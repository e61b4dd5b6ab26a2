#include "host/error.h"
#include "host/free_ids.h"
#include "host/front.h"
#include "host/inventory.h"
#include "host/library_card.h"
#include "tests/host/given_pin.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/log_file.h"
#include "tests/support/module.h"
#include "zvRenew.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

using zvhost::Kind;
using zvtest::GivenPin;

constexpr const char* READER = "Simulated Reader 0";

// The objects beside those that a card is made with.
struct Beside {
    const char* what;
    std::vector<const char*> pairs, public_keys;
    bool mark = false;
};

// What the library answers to a reading of the card.
struct Answer {
    struct OfKind {
        std::vector<std::string> records;
        int pending = 0;
        std::string key;
    };
    zv::ByKind<OfKind> of;
};

class InventoryTest : public testing::Test {
  protected:
    void make_card(const simcard::Profile& profile, const Beside& beside = {},
                   const std::string& serial = {}) {
        zvhost::end_modules();
        cards_.reset();
        cards_.emplace();
        ::setenv("XDG_STATE_HOME", cards_->path().c_str(), 1);
        cards_->make({.profile = &profile, .reader = READER, .serial = serial});
        cards_->configure();
        module_->C_Initialize(nullptr);
        const CK_SESSION_HANDLE session = module_.open();
        module_.login(session, simcard::DEFAULT_PIN);
        for (const char* id : beside.pairs)
            for (const CK_OBJECT_CLASS type : {CKO_PUBLIC_KEY, CKO_PRIVATE_KEY})
                create_key(session, type, id);
        for (const char* id : beside.public_keys)
            create_key(session, CKO_PUBLIC_KEY, id);
        if (beside.mark) create(session, CKO_DATA, {attribute(CKA_LABEL, mark_)});
        module_->C_Finalize(nullptr);
    }
    ~InventoryTest() override {
        zvhost::end_modules();
        ::unsetenv("XDG_STATE_HOME");
    }
    static Answer read_with_library() {
        Answer answer;
        zv::ByKind<std::vector<std::string>> texts;
        zv::ByKind<std::vector<char*>> lists;
        zv::ByKind<std::array<char, ZV_KEY_ID_SIZE>> keys;
        for (const zv::KindRow& kind : zv::KINDS) {
            texts[kind.id].assign(ZV_LIST_ENTRIES, std::string(ZV_LIST_ENTRY_SIZE, '\0'));
            for (std::string& entry : texts[kind.id])
                lists[kind.id].push_back(entry.data());
        }
        auto& [signature, authentication, services] = answer.of.things;
        std::string reader = READER, pin = simcard::DEFAULT_PIN, folder = module_folder();
        EXPECT_EQ(rinnovo_Card_readCerts(reader.data(), pin.data(), 0, lists[Kind::services].data(),
                                         lists[Kind::signature].data(), lists[Kind::authentication].data(),
                                         &services.pending, &signature.pending, &authentication.pending,
                                         keys[Kind::signature].data(), keys[Kind::authentication].data(),
                                         nullptr, folder.c_str()),
                  ZV_OK);
        for (const zv::KindRow& kind : zv::KINDS) {
            const std::vector<char*>& list = lists[kind.id];
            for (int i = 1; i <= std::atoi(list[0]); ++i)
                answer.of[kind.id].records.emplace_back(list[static_cast<std::size_t>(i)]);
            answer.of[kind.id].key = keys[kind.id].data();
        }
        return answer;
    }
    static zvhost::OpenedCard open() {
        GivenPin pin;
        return zvhost::open_card({READER, module_folder(), {}}, pin);
    }
    static std::string module_folder() {
        return std::filesystem::path(ZVSIMCARD_MODULE).parent_path().string();
    }

    zvtest::Module module_;

  private:
    template <class Value> static CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, Value& value) {
        if constexpr (std::is_same_v<Value, std::string>)
            return {type, value.data(), value.size()};
        else
            return {type, &value, sizeof value};
    }
    void create(CK_SESSION_HANDLE session, CK_OBJECT_CLASS type, std::vector<CK_ATTRIBUTE> more) {
        CK_BBOOL yes = CK_TRUE;
        more.push_back(attribute(CKA_CLASS, type));
        more.push_back(attribute(CKA_TOKEN, yes));
        CK_OBJECT_HANDLE made = 0;
        EXPECT_EQ(module_->C_CreateObject(session, more.data(), more.size(), &made), CKR_OK);
    }
    void create_key(CK_SESSION_HANDLE session, CK_OBJECT_CLASS type, std::string id) {
        CK_KEY_TYPE rsa = CKK_RSA;
        std::string number(256, '\x71');
        create(session, type,
               {attribute(CKA_KEY_TYPE, rsa), attribute(CKA_ID, id), attribute(CKA_MODULUS, number),
                attribute(type == CKO_PUBLIC_KEY ? CKA_PUBLIC_EXPONENT : CKA_PRIVATE_EXPONENT, number)});
    }

    std::optional<simcard::TestCards> cards_;
    zvtest::LogFile log_;
    std::string mark_ = ZV_PENDING_MARKER;
};

// A record as the library writes it, from the third field on.
std::string rest_of_record(const zvhost::CertificateRecord& record) {
    const auto date = [](std::time_t time) {
        std::array<char, 32> text{};
        std::strftime(text.data(), text.size(), "%d/%m/%Y %H:%M:%S", std::gmtime(&time));
        return std::string(text.data());
    };
    return "#" + record.iut + "#" + record.policies + "#" + record.serial + "#" + date(record.begins) + "#" +
           date(record.ends) + "#" + record.id + (kind_row(record.kind).notice ? "#" + record.notice : "") +
           "#" + record.key_identifier + "#" + record.tax_code;
}

void expect_same_records(const zvhost::Inventory& inventory, const Answer& answer) {
    zv::ByKind<std::size_t> seen;
    for (const zvhost::CertificateRecord& record : inventory.certificates) {
        const auto& records = answer.of[record.kind].records;
        ASSERT_LT(seen[record.kind], records.size()) << record.id;
        const std::string& text = records[seen[record.kind]++];
        EXPECT_NE(text.find(rest_of_record(record)), std::string::npos) << text;
        if (record.kind != Kind::services) {
            EXPECT_TRUE(text.starts_with(record.subject.oid_form() + "#" + record.issuer.oid_form() + "#"))
                << text;
        }
    }
    for (const zv::KindRow& kind : zv::KINDS)
        EXPECT_EQ(seen[kind.id], answer.of[kind.id].records.size()) << kind.name;
}

// Of the pairs that wait the library reports the first.
void expect_same_state(const zvhost::Inventory& inventory, const Answer& answer) {
    EXPECT_EQ(inventory.services_pending, answer.of[Kind::services].pending == 1);
    std::string reported;
    for (const zv::KindRow& kind : zv::KINDS) {
        if (!kind.new_pair) continue;
        const auto& [records, pending, key] = answer.of[kind.id];
        const zvhost::Proposal& next = inventory.next[kind.id];
        if (pending == 1) reported = key;
        EXPECT_EQ(next.id, pending == 1 || next.none_free ? "" : key) << kind.name;
        EXPECT_EQ(next.none_free, pending != 1 && key == kind.series) << kind.name;
    }
    EXPECT_EQ(reported, inventory.pending.empty() ? "" : inventory.pending.front().id);
}

TEST_F(InventoryTest, SortsWhatACardHoldsAsTheLibraryDoes) {
    const Beside cases[] = {
        {"nothing", {}, {}},
        {"a pair of each kind", {"AUTHCertificate4", "DS4"}, {}},
        {"pairs that are none of a request", {"DS1", "AUTHCertificate2"}, {}},
        {"a full series", {}, {"DS3", "DS4", "DS5", "AUTHCertificate3"}},
        {"the other series full", {"DS3"}, {"AUTHCertificate3", "AUTHCertificate4", "AUTHCertificate5"}},
        {"a mark", {}, {"DS3"}, true},
    };
    for (const simcard::Profile& profile : simcard::profiles())
        for (const Beside& beside : cases) {
            SCOPED_TRACE(std::string(profile.name) + ", " + beside.what);
            make_card(profile, beside);
            const Answer answer = read_with_library();
            const zvhost::Inventory inventory = inventory_of(open());
            EXPECT_EQ(inventory.unreadable, 0U);
            expect_same_records(inventory, answer);
            expect_same_state(inventory, answer);
        }
}

TEST_F(InventoryTest, ProposesWhatTheLibraryDoes) {
    const Beside cases[] = {{"nothing", {}, {}},
                            {"pairs", {"AUTHCertificate4", "DS4"}, {"DS3"}},
                            {"a full series", {}, {"DS3", "DS4", "DS5"}}};
    for (const Beside& beside : cases) {
        SCOPED_TRACE(beside.what);
        make_card(simcard::profile_named("signature"), beside);
        (void)read_with_library(); // it tells where the modules are
        zv::ByKind<std::array<char, ZV_KEY_ID_SIZE>> keys;
        std::string reader = READER, pin = simcard::DEFAULT_PIN;
        (void)rinnovo_Card_findFreeCKAID(reader.data(), pin.data(), keys[Kind::signature].data(),
                                         keys[Kind::authentication].data());
        GivenPin source;
        for (const zvhost::FreeId& free : find_free_ids({READER, module_folder(), {}}, source).kinds) {
            const std::string key = keys[free.kind].data();
            const bool full = key == kind_row(free.kind).series;
            EXPECT_EQ(free.proposal.none_free, full);
            EXPECT_EQ(free.proposal.id, full ? "" : key);
        }
    }
}

TEST_F(InventoryTest, ShowsTheLibraryTheSameCardWithoutALogin) {
    make_card(simcard::profile_named("cns"));
    zvhost::OpenedCard card = open();
    module_.reset();
    show_card_to_library(card);
    EXPECT_EQ(module_.calls("C_Login"), 0U);
    card.state.serial = "another";
    EXPECT_THROW(show_card_to_library(card), zvhost::Error) << "what comes next would get its PIN";
}

TEST_F(InventoryTest, RefusesTheSeriesThatTheLibraryRefusesBeforeThePinIsAskedFor) {
    make_card(simcard::profile_named("signature"), {}, "1201000000000001");
    EXPECT_THROW((void)open(), zvhost::Error);
    EXPECT_EQ(module_.calls("C_Login"), 1U) << "the test's own";
}

} // namespace
