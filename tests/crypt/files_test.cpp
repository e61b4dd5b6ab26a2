#include "tests/crypt/certificates.h"
#include "tests/crypt/scratch.h"

#include <sys/stat.h>

#include <algorithm>

namespace {

namespace fs = std::filesystem;

class Files : public test::Scratch {
  protected:
    int convert(const std::string& in, const std::string& out, const char* mode = "e") {
        std::string from = path(in), to = path(out);
        return kvFileToBase64(from.data(), to.data(), mode);
    }
};

} // namespace

TEST_F(Files, Base64InLinesOf64AndBack) {
    for (const std::size_t size : {0U, 1U, 2U, 47U, 48U, 49U, 96U, 49152U, 49153U}) {
        std::string bytes(size, '\0');
        std::generate(bytes.begin(), bytes.end(), [n = 0]() mutable { return static_cast<char>(n++ * 7); });
        write("in", bytes);
        ASSERT_EQ(convert("in", "out"), ZVC_OK) << test::last_error();
        std::string text = test::base64({bytes.begin(), bytes.end()}), lines;
        for (std::size_t start = 0; start < text.size(); start += 64)
            lines += text.substr(start, 64) + "\n";
        EXPECT_EQ(content(path("out")), lines);
        ASSERT_EQ(convert("out", "back", "d"), ZVC_OK) << test::last_error();
        EXPECT_EQ(content(path("back")), bytes);
    }
}

TEST_F(Files, WhatIsNotBase64LeavesNoFile) {
    for (const char* text : {"QUI", "QUI=A", "QQ=Q", "Q===", "QQ==QQ==", "QR==", "QU*D", "QUJD="}) {
        write("in", text);
        EXPECT_EQ(convert("in", "out", "d"), ZVC_ERR_BASE64) << text;
        EXPECT_FALSE(fs::exists(folder / "out"));
    }
}

TEST_F(Files, AnOutputReplacesWhatHasItsNameNeverWhatThatPointsTo) {
    write("in", "abc");
    write("precious", "keep me");
    fs::create_symlink(path("precious"), folder / "out");
    ::umask(0);
    ASSERT_EQ(convert("in", "out"), ZVC_OK) << test::last_error();
    EXPECT_EQ(content(path("precious")), "keep me");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "out")));
    EXPECT_EQ(fs::status(folder / "out").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    EXPECT_EQ(convert("in", "fifo"), ZVC_OK) << "replaced, not waited for";
    EXPECT_EQ(content(path("fifo")), "YWJj\n");
    fs::create_directory(folder / "empty");
    EXPECT_EQ(convert("in", "empty"), ZVC_ERR_OUTPUT);
    EXPECT_TRUE(fs::is_directory(folder / "empty"));
    EXPECT_EQ(convert("in", "missing/out"), ZVC_ERR_OUTPUT);
}

TEST_F(Files, OnlyAPlainFileIsRead) {
    write("in", "abc");
    fs::create_symlink(path("in"), folder / "link");
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    for (const char* in : {"link", "fifo", ".", "missing"}) {
        EXPECT_EQ(convert(in, "out"), ZVC_ERR_INPUT) << in;
        EXPECT_NE(test::last_error().find(path(in)), std::string::npos);
    }
    EXPECT_EQ(convert("in", "in"), ZVC_ERR_OUTPUT);
    EXPECT_EQ(content(path("in")), "abc") << "a file is not converted onto itself";
    EXPECT_EQ(convert("in", "out", "E"), ZVC_ERR_MODE);
    EXPECT_EQ(convert("in", "out", nullptr), ZVC_ERR_ARGUMENT);
}
