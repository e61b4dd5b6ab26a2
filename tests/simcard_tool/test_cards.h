#pragma once

#include "simcard/authority/files.h"
#include "simcard/tool/personalise.h"
#include "simcard/tool/reader_configuration.h"

#include <cstdlib>

// Simulated cards for tests. Link zv_test_cards, which also brings the key pairs.
namespace simcard {

// A folder of cards of a test's own, which ZVSIMCARD_HOME names while it lives.
//
// A card takes some 50 ms. Where many calls need a fresh one, make it once and use put_back_as_made().
class TestCards {
  public:
    TestCards() { ::setenv("ZVSIMCARD_HOME", path().c_str(), 1); }
    ~TestCards() {
        ::unsetenv("ZVSIMCARD_HOME");
        ::unsetenv("ZVCRYPT_CONF");
    }
    TestCards(const TestCards&) = delete;
    TestCards& operator=(const TestCards&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

    // Makes a card; what the plan leaves open is "card", of the signature profile.
    Card make(CardPlan plan = {}) {
        if (plan.name.empty()) plan.name = "card";
        if (plan.profile == nullptr) plan.profile = &profile_named("signature");
        return personalise_card(path(), plan, keys_);
    }

    // Writes the crypto library's configuration for the cards made so far; ZVCRYPT_CONF names it then.
    std::filesystem::path configure() {
        const std::filesystem::path file = path() / "zvcrypt.conf";
        write_file(file, reader_configuration(path()), Access::owner_only);
        ::setenv("ZVCRYPT_CONF", file.c_str(), 1);
        return file;
    }

  private:
    // In memory where the system has a place for that: SoftHSM's many small writes are slow on a busy disk.
    static std::filesystem::path place() {
        const std::filesystem::path memory = "/dev/shm";
        return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    }

    TemporaryFolder folder_{place() / "zvsimcard-test"};
    KeySource keys_ = KeySource::from_file(ZV_TEST_KEYS);
};

} // namespace simcard
