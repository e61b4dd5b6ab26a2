// A card made from what another one shows without its PIN.
#include "ossl/owners.h"
#include "simcard/authority/name.h"
#include "simcard/common/card_folder.h"
#include "simcard/common/hexadecimal.h"
#include "simcard/tool/object_view.h"
#include "tests/simcard/objects.h"
#include "tests/simcard_tool/test_cards.h"

#include <sys/wait.h>

#include <fstream>

namespace {

using namespace simcard;
using zvtest::read;

// What the card in slot 0 shows, as a description; `more` is added to it.
std::string description(const std::string& more) {
    zvtest::Module module;
    EXPECT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const CK_SESSION_HANDLE session = module.open();
    std::string objects;
    for (const CK_OBJECT_HANDLE object : zvtest::find_all(module, session)) {
        const bool key = read(module, session, object, CKA_MODULUS) != "?";
        std::string value(4096, '\0');
        CK_ATTRIBUTE entry = zvtest::attribute(key ? CKA_MODULUS : CKA_VALUE, value);
        EXPECT_EQ(module->C_GetAttributeValue(session, object, &entry, 1), CKR_OK);
        value.resize(entry.ulValueLen);
        objects += R"({"class": ")" + std::string(key ? "public key" : "certificate") + R"(", "id": ")" +
                   hexadecimal(read(module, session, object, CKA_ID)) + R"(", "label": ")" +
                   hexadecimal(read(module, session, object, CKA_LABEL) + " label") + R"(", "value": ")" +
                   hexadecimal(value) + "\"},";
    }
    objects.pop_back();
    return R"({"serial": "12-34", "objects": [)" + objects + "]" + more + "}";
}

int make_twin_of(const std::filesystem::path& home, const std::string& text) {
    std::ofstream(home / "description.json") << text;
    const std::string command = ZVSIMCARD_TOOL " twin " + (home / "description.json").string() +
                                " --keys " ZV_TEST_KEYS " --home " + (home / "twins").string() +
                                " --module other.so --config " + (home / "twin.conf").string() +
                                " >/dev/null 2>&1";
    return WEXITSTATUS(std::system(command.c_str()));
}

// Class, identifier, bits, end and subject of each object, with the private ones.
std::vector<std::string> summary(const Card& card) {
    std::vector<std::string> lines;
    for (const ObjectView& view : view_objects(card, Secret(DEFAULT_PIN)))
        lines.push_back(view.object_class + " " + view.id + " " + std::to_string(view.key_bits) + " " +
                        view.ends + " " + view.subject);
    return lines;
}

TEST(TwinTest, HasWhatTheOtherCardShowsAndTheKeysThatBelongToIt) {
    TestCards cards;
    const Card original = cards.make({.signature_days = 12});
    ASSERT_EQ(make_twin_of(cards.path(), description(R"(, "memory_left": 700, "label": "La mia carta")")), 0);
    const Card twin = load_card(cards.path() / "twins" / "twin");
    EXPECT_EQ(summary(twin), summary(original));
    EXPECT_EQ(view_objects(twin, {}).front().label, view_objects(twin, {}).front().id + " label");
    EXPECT_EQ(twin.serial, "12-34");
    EXPECT_EQ(twin.label, "La mia carta");
    EXPECT_EQ(twin.memory_left, 700U);
    std::ifstream configuration(cards.path() / "twin.conf");
    EXPECT_NE(std::string(std::istreambuf_iterator<char>(configuration), {}).find("module = other.so"),
              std::string::npos);
}

TEST(TwinTest, IsNotMadeFromWhatNoCardShows) {
    TestCards cards;
    for (const char* text : {"", "[]", "{}", R"({"objects": [{"class": "private key"}]})",
                             R"({"objects": [{"class": "data", "value": "no"}]})",
                             R"({"objects": [{"class": "public key", "value": "0011"}]})"})
        EXPECT_EQ(make_twin_of(cards.path(), text), 2) << text;
    EXPECT_FALSE(std::filesystem::exists(cards.path() / "twins" / "twin"));
}

} // namespace
