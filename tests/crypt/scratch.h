#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace test {

// A folder of the test's own, which is also its home, so that the user's configuration has no part in it.
class Scratch : public testing::Test {
  protected:
    Scratch() {
        std::string name = (std::filesystem::temp_directory_path() / "zvcrypt-test-XXXXXX").string();
        folder = ::mkdtemp(name.data());
        ::setenv("HOME", folder.c_str(), 1);
        ::unsetenv("XDG_CONFIG_HOME");
        ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
        ::setenv("PCSCLITE_CSOCK_NAME", path("no-service").c_str(), 1); // nobody answers there
    }
    ~Scratch() override { std::filesystem::remove_all(folder); }

    [[nodiscard]] std::string path(const std::string& name) const { return (folder / name).string(); }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }
    [[nodiscard]] static std::string content(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::filesystem::path folder;
};

} // namespace test
