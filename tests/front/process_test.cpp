#include "tests/front/front.h"
#include "tests/support/process.h"

#include <fstream>
#include <iterator>

using namespace zvtest;

namespace {

// What a process does that comes out of another one's middle: 0, or the step at which it failed.
int as_child(const Front& front, CK_SESSION_HANDLE of_parent) {
    CK_SESSION_INFO info{};
    if (front->C_GetSessionInfo(of_parent, &info) != CKR_CRYPTOKI_NOT_INITIALIZED) return 1;
    if (front->C_Initialize(nullptr) != CKR_OK) return 2;
    const auto session = front.open();
    if (front.store(session, "by the child") != CKR_USER_NOT_LOGGED_IN) return 3;
    if (front.login(session, USER_PIN) != CKR_OK) return 4;
    if (front.store(session, "by the child") != CKR_OK) return 5;
    return front->C_Finalize(nullptr) == CKR_OK ? 0 : 6;
}

std::size_t count_of(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++count;
    return count;
}

} // namespace

TEST_F(BeforeCard, BeginsAnewInAChildAndSeesItsWorkInTheParent) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    const auto session = front.open();
    ASSERT_EQ(front.login(session, USER_PIN), CKR_OK);
    EXPECT_EQ(front.objects(session), 0U);
    EXPECT_EQ(in_child([&] { return as_child(front, session); }).code, 0);
    EXPECT_EQ(front.objects(session), 1U);
    EXPECT_EQ(front.store(session, "by the parent"), CKR_OK);
    ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);
    EXPECT_EQ(in_child([&] { return as_child(front, session); }).code, 0);
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    const auto later = front.open();
    ASSERT_EQ(front.login(later, USER_PIN), CKR_OK);
    EXPECT_EQ(front.objects(later), 3U);
    EXPECT_EQ(card.calls("C_Initialize"), 1U);
}

TEST(Front, EndsTheModuleWhenTheProcessExitsInTheMiddle) {
    EmptyCards cards;
    cards.add();
    const auto copy = cards.path() / "libtraced.so", trace = cards.path() / "trace";
    std::filesystem::copy_file(ZVSIMCARD_MODULE, copy);
    EXPECT_EXIT(
        {
            ::setenv("ZVSIMCARD_TRACE", trace.c_str(), 1);
            const Front front(copy);
            front->C_Initialize(nullptr);
            front.login(front.open(), USER_PIN);
            std::exit(7);
        },
        testing::ExitedWithCode(7), "");
    std::ifstream file(trace);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(count_of(text, "C_Login"), 1U) << text;
    EXPECT_EQ(count_of(text, "C_Finalize pReserved=null -> 0x0\n"), 1U) << text;
}

TEST(Front, RefusesAModuleThatItHasNoRoomFor) {
    const TemporaryFolder folder;
    const auto stands_before = [&](int number) {
        const auto copy = folder.path() / std::to_string(number);
        std::filesystem::copy_file(ZVFRONT_LOCKLESS, copy);
        return Front(copy).stands();
    };
    EXPECT_EQ(in_child([&] {
                  bool first = stands_before(1), last = first;
                  for (int number = 2; number <= 9; ++number)
                      last = stands_before(number);
                  return first && !last && Front(folder.path() / "1").stands();
              }).code,
              1);
}
