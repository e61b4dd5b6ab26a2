#include "certificates.h"
#include "scratch.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

class Files : public test::Scratch {
  protected:
    int convert(const std::string& in, const std::string& out, const char* mode = "e") {
        std::string from = path(in), to = path(out);
        return kvFileToBase64(from.data(), to.data(), mode);
    }
    [[nodiscard]] bool exists(const std::string& name) const {
        return std::filesystem::symlink_status(folder / name).type() != std::filesystem::file_type::not_found;
    }
};

} // namespace

TEST_F(Files, Base64InLinesOf64AndBack) {
    for (const std::size_t size : {0U, 1U, 2U, 47U, 48U, 49U, 96U, 49152U, 49153U, 200000U}) {
        std::string bytes(size, '\0');
        std::generate(bytes.begin(), bytes.end(), [n = 0]() mutable { return static_cast<char>(n++ * 7); });
        write("in", bytes);
        ASSERT_EQ(convert("in", "out"), ZVC_OK) << test::lastError();
        const std::string text = content(path("out"));
        for (std::size_t start = 0; start < text.size(); start += 65)
            ASSERT_EQ(std::min(text.find('\n', start), text.size()), std::min(start + 64, text.size() - 1));
        std::string joined = text;
        joined.erase(std::remove(joined.begin(), joined.end(), '\n'), joined.end());
        EXPECT_EQ(joined, test::base64({bytes.begin(), bytes.end()}));
        ASSERT_EQ(convert("out", "back", "d"), ZVC_OK) << test::lastError();
        EXPECT_EQ(content(path("back")), bytes);
    }
}

TEST_F(Files, WhatIsNotBase64LeavesNoFile) {
    for (const char* text : {"QUI", "QUI=A", "QQ=Q", "Q===", "QQ==QQ==", "QR==", "QU*D", "QUJD=", "QUJDR"}) {
        write("in", text);
        EXPECT_EQ(convert("in", "out", "d"), ZVC_ERR_BASE64) << text;
        EXPECT_FALSE(exists("out"));
    }
}

TEST_F(Files, AnOutputReplacesWhatHasItsNameNeverWhatThatPointsTo) {
    write("in", "abc");
    write("precious", "keep me");
    std::filesystem::create_symlink(path("precious"), folder / "out");
    ::umask(0);
    ASSERT_EQ(convert("in", "out"), ZVC_OK) << test::lastError();
    EXPECT_EQ(content(path("precious")), "keep me");
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(folder / "out")));
    EXPECT_EQ(std::filesystem::status(folder / "out").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

    std::filesystem::remove(folder / "out");
    ASSERT_EQ(::mkfifo(path("out").c_str(), 0600), 0);
    EXPECT_EQ(convert("in", "out"), ZVC_OK) << "a FIFO is replaced, not waited for";
    EXPECT_EQ(content(path("out")), "YWJj\n");

    std::filesystem::create_directory(folder / "folder");
    write("folder/inside", "x");
    EXPECT_EQ(convert("in", "folder"), ZVC_ERR_OUTPUT);
    EXPECT_TRUE(exists("folder/inside"));
    EXPECT_EQ(convert("in", "missing/out"), ZVC_ERR_OUTPUT);
}

TEST_F(Files, OnlyAPlainFileIsRead) {
    write("in", "abc");
    std::filesystem::create_symlink(path("in"), folder / "link");
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    for (const char* in : {"link", "fifo", ".", "missing"}) {
        write("out", "old");
        EXPECT_EQ(convert(in, "out"), ZVC_ERR_INPUT) << in;
        EXPECT_NE(test::lastError().find(path(in)), std::string::npos);
    }
    EXPECT_EQ(convert("in", "in"), ZVC_ERR_OUTPUT);
    EXPECT_EQ(content(path("in")), "abc") << "a file is not converted onto itself";
    EXPECT_EQ(convert("in", "out", "E"), ZVC_ERR_MODE);
    EXPECT_EQ(convert("in", "out", nullptr), ZVC_ERR_ARGUMENT);
}
