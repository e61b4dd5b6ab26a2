#include "host/certificate_record.h"
#include "host/inventory.h"

#include <gtest/gtest.h>

namespace {

using namespace zvhost;

constexpr const char* DATES = "#01/02/2025 10:00:00#29/02/2028 23:59:59#";

std::string signature_record(const std::string& notice) {
    return "2.5.4.6=IT2.5.4.3=Ada 22.5.4.5=TINIT-X#2.5.4.6=IT2.5.4.10=Ente#77#1.2.3,1.2.4#0A0B" +
           std::string(DATES) + "DS0#" + notice + "#ABCD#CLLDAA80A41Z999U";
}

TEST(RecordTest, FindsTheFieldsAlsoWhenTextsHoldTheSeparator) {
    const auto record = parse_record(signature_record("vale #1 e #2"), Kind::signature, false);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->subject.readable(), "C=IT, CN=Ada 2, serialNumber=TINIT-X");
    EXPECT_EQ(record->issuer.value("O"), "Ente");
    EXPECT_EQ(record->serial, "0A0B");
    EXPECT_EQ(record->id, "DS0");
    EXPECT_EQ(record->notice, "vale #1 e #2");
    EXPECT_EQ(record->key_identifier, "ABCD");
    EXPECT_EQ(record->tax_code, "CLLDAA80A41Z999U");
    EXPECT_EQ(day_of(record->ends), "2028-02-29");
    const auto named =
        parse_record("2.5.4.3=Bar #1#2.5.4.10=Ente####" + std::string(DATES + 1) + "AUTHCertificate0#ABCD#",
                     Kind::authentication, false);
    ASSERT_TRUE(named);
    EXPECT_EQ(named->subject.value("CN"), "Bar #1");
    EXPECT_EQ(named->issuer.value("O"), "Ente");
    EXPECT_EQ(named->id, "AUTHCertificate0");
    const auto marked = parse_record(signature_record("") + "#DS3", Kind::signature, true);
    ASSERT_TRUE(marked);
    EXPECT_EQ(marked->tax_code, "CLLDAA80A41Z999U") << "the pending mark is left out";
    EXPECT_EQ(marked->notice, "");
}

TEST(RecordTest, RefusesWhatIsNoRecord) {
    const std::string whole = signature_record("n");
    for (const std::string& text : {std::string(), std::string("####################"), whole.substr(0, 90),
                                    "a#b#c#d#e" + std::string(DATES) + "DS0"})
        EXPECT_FALSE(parse_record(text, Kind::signature, false)) << text;
    for (const char* date : {"", "1/02/2025 10:00:00", "01-02-2025 10:00:00", "01/13/2025 10:00:00",
                             "-1/02/2025 10:00:00", "0x/02/2025 10:00:00", "01/02/2025 10:00:00 "})
        EXPECT_FALSE(parse_date(date)) << date;
}

TEST(RecordTest, CountsDaysDownAcrossTheEnd) {
    constexpr std::time_t day = 24 * 60 * 60;
    constexpr std::time_t now = 1'000 * day;
    EXPECT_EQ(days_until(now + 2 * day, now), 2);
    EXPECT_EQ(days_until(now + 2 * day - 1, now), 1);
    EXPECT_EQ(days_until(now, now), 0);
    EXPECT_EQ(days_until(now - 1, now), -1);
    EXPECT_EQ(days_until(now - day - 1, now), -2);
    EXPECT_TRUE(ends_within(now + 90 * day, 90, now));
    EXPECT_FALSE(ends_within(now + 90 * day + 1, 90, now));
    EXPECT_TRUE(ends_within(now - day, 0, now));
}

} // namespace
