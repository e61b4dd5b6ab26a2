#include "cli/pin_input.h"
#include "host/error.h"
#include "words/words.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using namespace zvhost;

class PinFileTest : public testing::Test {
  protected:
    ~PinFileTest() override { std::filesystem::remove(path); }

    Pin take(const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
        ::chmod(path.c_str(), 0600);
        cli::CardOptions options;
        options.pin_file = path;
        Pin pin = cli::PinInput(options).at_once().value();
        check_pin_form(pin);
        return pin;
    }

    std::string path = testing::TempDir() + "zvrenew-pin-" + std::to_string(::getpid());
};

TEST_F(PinFileTest, TakesAPinAndOneLineEnd) {
    const std::string longest(ZV_PIN_MAX, '7');
    EXPECT_EQ(take("12345").view(), "12345");
    EXPECT_EQ(take("12345\n").view(), "12345");
    EXPECT_EQ(take(longest + "\r\n").view(), longest);
    EXPECT_EQ(take(" 1 2").view(), " 1 2");
}

TEST_F(PinFileTest, RefusesAFormThatWouldCostATry) {
    const std::string longest(ZV_PIN_MAX, 'q');
    for (const std::string& content :
         {std::string(), std::string("\n"), std::string("12345 \n"), longest + "q", longest + "\nq",
          std::string(5000, 'q'), std::string("12345\n\n"), std::string("123\t45"), std::string("123\0", 4)})
        try {
            const Pin pin = take(content);
            ADD_FAILURE() << "taken: " << content.size();
        } catch (const Error& stop) {
            EXPECT_EQ(stop.exit, Exit::refused);
            EXPECT_EQ(words::of(stop.sentence).find("qqq"), std::string::npos) << "the PIN is not shown";
        }
}

TEST(PinTest, IsKeptOutOfTheSwapAndOfDumps) {
    const auto locked = [] {
        std::ifstream status("/proc/self/status");
        std::string line;
        while (std::getline(status, line) && !line.starts_with("VmLck"))
            continue;
        return line;
    };
    const std::string before = locked();
    Pin pin;
    for (const char c : std::string("12345"))
        pin.add(c);
    pin.remove_last();
    const Pin other = std::move(pin);
    EXPECT_EQ(other.view(), "1234");
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
    EXPECT_NE(locked(), before);
#endif
}

} // namespace
