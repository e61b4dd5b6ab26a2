#pragma once

#include "simcard/common/card_folder.h"
#include "simcard/common/make_card.h"
#include "simcard/common/problem.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace zvtest {

inline constexpr const char* SO_PIN = "87654321";
inline constexpr const char* USER_PIN = "12345";

// A new folder, removed with what it holds at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "zv-test-XXXXXX";
        if (!::mkdtemp(name.data())) throw simcard::CardProblem("Cannot make " + name);
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// A folder of cards of a test's own that ZVSIMCARD_HOME names while it lives. Its cards hold no objects.
class EmptyCards {
  public:
    EmptyCards() { ::setenv("ZVSIMCARD_HOME", path().c_str(), 1); }
    ~EmptyCards() { ::unsetenv("ZVSIMCARD_HOME"); }
    EmptyCards(const EmptyCards&) = delete;
    EmptyCards& operator=(const EmptyCards&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

    // Makes a card with the two PINs above.
    simcard::Card add(const std::string& reader = "Desk Reader 00 00", const std::string& serial = "") {
        simcard::Card settings;
        settings.reader = reader;
        settings.serial = serial;
        settings.label = "card";
        settings.profile = "signature";
        return simcard::make_card(path(), settings, SO_PIN, USER_PIN);
    }

  private:
    TemporaryFolder folder_;
};

} // namespace zvtest
