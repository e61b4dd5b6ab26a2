#include "host/journal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using zvhost::Journal, zvhost::RememberedCard;

class JournalTest : public testing::Test {
  protected:
    JournalTest() { fs::remove_all(top_); }
    ~JournalTest() override { fs::remove_all(top_); }
    JournalTest(const JournalTest&) = delete;
    JournalTest& operator=(const JournalTest&) = delete;

    [[nodiscard]] static mode_t mode_of(const fs::path& path) {
        struct stat status {};
        return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
    }
    void put(const std::string& text) const { std::ofstream(folder_ / "1205.json") << text; }
    static void note_pair(RememberedCard& card) { card.pending = {{zv::Kind::authentication, "AUTH3"}}; }

    const fs::path top_ = testing::TempDir() + "zvrenew-journal-" + std::to_string(::getpid());
    const fs::path folder_ = top_ / "state" / "zvrenew";
    const Journal journal_{folder_};
};

TEST_F(JournalTest, RemembersCardsForTheirUserAlone) {
    EXPECT_TRUE(journal_.cards().empty());
    const auto before = ::umask(0);
    ASSERT_EQ(journal_.change("../a .json", note_pair), 0);
    ::umask(before);
    ASSERT_EQ(journal_.change(
                  "1205",
                  [](RememberedCard& card) {
                      card.certificates = {{zv::Kind::services, "CNS0\xFF", "0A", 1800000000, true, 5}};
                      card.set_renewal({zv::Kind::signature, "DS3", "requested", "/a b", "DS0", "0B", 7});
                      card.set_renewal({zv::Kind::signature, "DS4", "requested", "/c", "DS0", "0B", 8});
                      card.key_pair_took = std::chrono::milliseconds(1500);
                  }),
              0);
    const auto cards = journal_.cards();
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(cards[0].serial, "../a .json");
    EXPECT_EQ(cards[0].pending.at(0).id, "AUTH3");
    const RememberedCard& second = cards[1];
    EXPECT_EQ(second.certificates.at(0).kind, zv::Kind::services);
    EXPECT_EQ(second.certificates.at(0).ends, 1800000000);
    EXPECT_TRUE(second.certificates.at(0).replaced);
    ASSERT_EQ(second.renewals.size(), 1U) << "one of a kind";
    EXPECT_EQ(second.renewal(zv::Kind::signature)->pair, "DS4");
    EXPECT_EQ(second.key_pair_took, std::chrono::milliseconds(1500));
    for (const fs::path& folder : {top_, top_ / "state", folder_})
        EXPECT_EQ(mode_of(folder), 0700U) << folder;
    for (const auto& file : fs::directory_iterator(folder_))
        EXPECT_EQ(mode_of(file), 0600U) << file;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 2) << "and no draft";
}

TEST_F(JournalTest, TakesWhatIsDamagedForNothing) {
    ASSERT_EQ(journal_.change("1205", note_pair), 0);
    const std::string own = R"({"zvrenew_journal": 1, )";
    for (const std::string& text :
         {std::string(), std::string("{"), std::string("[1]"), std::string(R"({"pending": [{"id": "DS3"}]})"),
          own + R"("pending": [3, "x"], "seen_at": -1, "certificates": {}, "key_pair_took_ms": 1e300})"}) {
        put(text);
        EXPECT_TRUE(journal_.card("1205").pending.empty()) << text;
        EXPECT_EQ(journal_.cards().size(), 1U);
        EXPECT_EQ(journal_.change("1205", note_pair), 0) << text;
        EXPECT_EQ(journal_.card("1205").pending.size(), 1U) << text;
    }
    fs::remove(folder_ / "1205.json");
    fs::create_symlink("/dev/zero", folder_ / "1205.json");
    EXPECT_EQ(journal_.change("1205", note_pair), 0) << "in the link's place";
    EXPECT_EQ(journal_.card("1205").pending.size(), 1U);
}

TEST_F(JournalTest, LeavesWhatALaterVersionWrote) {
    ASSERT_EQ(journal_.change("1205", note_pair), 0);
    put(R"({"zvrenew_journal": 2, "pending": 7})");
    EXPECT_EQ(journal_.change("1205", note_pair), EPROTONOSUPPORT);
    EXPECT_TRUE(journal_.card("1205").pending.empty());
    EXPECT_EQ(fs::file_size(folder_ / "1205.json"), 36U);
}

TEST_F(JournalTest, WritesAloneOrNotAtAll) {
    ASSERT_EQ(journal_.change("1205", note_pair), 0);
    const int folder = ::open(folder_.c_str(), O_RDONLY);
    const auto try_turn = [&](RememberedCard&) { EXPECT_NE(::flock(folder, LOCK_EX | LOCK_NB), 0); };
    EXPECT_EQ(journal_.change("1205", try_turn), 0);
    EXPECT_EQ(::flock(folder, LOCK_EX | LOCK_NB), 0) << "given back";
    ::close(folder);

    EXPECT_EQ(journal_.change("", note_pair), 0) << "no card without a serial number";
    EXPECT_EQ(Journal(folder_ / "1205.json" / "x").change("1", note_pair), ENOTDIR);
    EXPECT_EQ(Journal("").change("1", note_pair), ENOENT);
    EXPECT_EQ(journal_.cards().size(), 1U);
}

} // namespace
