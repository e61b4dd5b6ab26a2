#include "host/card_view.h"
#include "host/error.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/module.h"
#include "zvConstants.h"

#include <gtest/gtest.h>

namespace {

using zvhost::CardObject, zvhost::CardView;

class LookTest : public testing::Test {
  protected:
    void make_card(const char* profile = "signature") {
        cards_.make({.profile = &simcard::profile_named(profile)});
    }
    // What a card in slot 0 shows without a login, read with these rules.
    CardView look(const std::string& rules = {}) {
        const zvhost::Module module(ZVSIMCARD_MODULE);
        const zvhost::Session session(module, 0);
        module_.reset();
        EXPECT_EQ(module_.add_rules(rules), 0) << rules;
        return zvhost::view_in(session);
    }
    unsigned long reads() { return module_.calls("C_GetAttributeValue"); }

  private:
    simcard::TestCards cards_;

  protected:
    zvtest::Module module_;
};

std::string text_of(const CardView& view) {
    std::string text;
    for (const CardObject& one : view.objects()) {
        text += std::to_string(one.type) + " " + one.id + " " + one.label + " ";
        for (const auto* bytes : {&one.value, &one.exponent})
            text += std::string(bytes->begin(), bytes->end()) + " ";
    }
    return text;
}

TEST_F(LookTest, ReadsAnObjectInOneCallWhateverTheModuleMakesOfIt) {
    make_card();
    const CardView whole = look();
    const std::size_t objects = whole.objects().size();
    EXPECT_EQ(reads(), objects);
    // The second is stopped at its first attribute, of which nothing is written.
    for (const char* result : {"0x12", "0x11", "0x150", "0x6"}) {
        const CardView stopped = look("C_GetAttributeValue:2:answer:" + std::string(result));
        EXPECT_EQ(text_of(stopped), text_of(whole)) << result;
        EXPECT_EQ(reads(), objects + 2 * 4) << "what it needs, each by itself: " << result;
    }
    EXPECT_THROW((void)look("C_GetAttributeValue:2+:answer:0x30"), zvhost::Error) << "not read is not absent";
}

TEST_F(LookTest, ReadsOnceMoreWhatIsLongerAndManyObjects) {
    make_card();
    const zvhost::Module module(ZVSIMCARD_MODULE);
    zvhost::Session session(module, 0, zvhost::Access::writing);
    zvhost::Pin pin;
    for (const char c : std::string(simcard::DEFAULT_PIN))
        pin.add(c);
    session.log_in(pin);
    CK_OBJECT_CLASS data = CKO_DATA;
    std::string label(3000, 'l');
    session.create({{CKA_CLASS, &data, sizeof data}, {CKA_LABEL, label.data(), label.size()}});
    for (int i = 0; i < 1100; ++i)
        session.create({{CKA_CLASS, &data, sizeof data}});
    const CardView view = zvhost::view_in(session);
    EXPECT_GT(view.objects().size(), 1100U);
    const auto longest = [&](const CardObject& one) { return one.label == label; };
    EXPECT_EQ(std::count_if(view.objects().begin(), view.objects().end(), longest), 1);
    for (int i = 1100; i < ZV_OBJECTS_MAX; ++i)
        session.create({{CKA_CLASS, &data, sizeof data}});
    EXPECT_THROW((void)zvhost::view_in(session), zvhost::Error) << "more than the library goes through";
}

} // namespace
