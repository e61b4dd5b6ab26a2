#include "simcard/tool/card_plan.h"

#include "simcard/authority/authority.h"
#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "zvConstants.h"

#include <openssl/rand.h>

#include <algorithm>

namespace simcard {
namespace {

// What any text may consist of here, beside letters and digits.
constexpr std::string_view IN_NAMES = ".-_";
// Names of readers stand in lists and configuration files: no separator of theirs may be in one.
constexpr std::string_view IN_READERS = " .-_()/+,:'";

// Real cards' serial numbers have these.
constexpr std::string_view IN_SERIALS = ".-_/:";

constexpr int DAYS_PAST = -6 * 365; // three years of life before that are still within the authority's time

bool consists_of_letters_and(std::string_view others, std::string_view text) {
    return std::all_of(text.begin(), text.end(), [&](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               others.find(c) != std::string_view::npos;
    });
}

void check_text(const char* what, std::string_view text, std::size_t most, std::string_view others) {
    if (text.empty() || text.size() > most || !consists_of_letters_and(others, text))
        throw Refusal("\"" + std::string(text) + "\" cannot be the card's " + what + ": it has 1 to " +
                      std::to_string(most) + " letters, digits" +
                      (others.empty() ? "." : " or of \"" + std::string(others) + "\"."));
}

void check_days(int days) {
    if (days < DAYS_PAST || days > LONGEST_DAYS)
        throw Refusal("A card's certificate ends within 10 years from now, or ended within the last 6.");
}

std::string random_serial() {
    unsigned char bytes[12];
    if (RAND_bytes(bytes, sizeof bytes) != 1) fail_with_openssl_reason("Choosing a serial number");
    std::string serial = "9000"; // a series that no card's rules speak of
    for (const unsigned char byte : bytes)
        serial += static_cast<char>('0' + byte % 10);
    return serial;
}

std::string free_reader(const std::filesystem::path& home) {
    for (char number = '0'; number <= '9'; ++number)
        if (std::string reader = std::string("Simulated Reader ") + number; !holds_a_card(home, reader))
            return reader;
    throw Refusal("The readers from \"Simulated Reader 0\" to 9 all hold a card: name another reader.");
}

} // namespace

bool holds_a_card(const std::filesystem::path& home, const std::string& reader) {
    const std::vector<Card> cards = list_cards(home);
    return std::any_of(cards.begin(), cards.end(),
                       [&](const Card& card) { return card.inserted && card.reader == reader; });
}

CardPlan completed(CardPlan plan, const std::filesystem::path& home) {
    if (plan.reader.empty()) plan.reader = free_reader(home);
    if (plan.serial.empty()) plan.serial = random_serial();
    check_text("name", plan.name, 32, IN_NAMES);
    if (plan.name.front() == '.') throw Refusal("A card's name cannot start with a dot.");
    check_text("reader", plan.reader, ZV_DESCRIPTION_MAX, IN_READERS);
    if (plan.reader.front() == ' ' || plan.reader.back() == ' ')
        throw Refusal("A reader's name cannot start or end with a blank.");
    check_text("serial number", plan.serial, 16, IN_SERIALS);
    if (const std::string& pin = plan.pin.text();
        pin.size() < 4 || pin.size() > ZV_PIN_MAX || pin.back() == ' ')
        throw Refusal("A PIN has 4 to " + std::to_string(ZV_PIN_MAX) +
                      " characters, the last of them not a blank.");
    check_days(plan.signature_days);
    check_days(plan.authentication_days);
    check_days(plan.cns_days);
    if (holds_a_card(home, plan.reader))
        throw Refusal("The reader \"" + plan.reader + "\" holds a card already.");
    if (std::filesystem::exists(home / plan.name))
        throw Refusal("There is a card (or something else) named \"" + plan.name + "\" already.");
    return plan;
}

} // namespace simcard
