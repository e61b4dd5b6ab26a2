#pragma once

#include "simcard/virtual/child.h"

#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace simcard {

// A PC/SC service with two virtual readers that only this process and those it starts can see, and cards that
// are put into them. Everything ends with it.
class VirtualReaders {
  public:
    static constexpr int COUNT = 2;

    // Why there can be none on this machine; empty when there can, and then this process has entered a
    // machine of its own.
    [[nodiscard]] static std::string missing();

    VirtualReaders();
    ~VirtualReaders();
    VirtualReaders(const VirtualReaders&) = delete;
    VirtualReaders& operator=(const VirtualReaders&) = delete;

    // Starts the service. The readers are called `name` with " 00 00" and " 00 01" behind it; the service
    // cuts a name of more than 121 bytes. Without a name there are none.
    // @throws std::runtime_error
    void start(const std::string& name = "Desk Reader");
    // Ends the service at once, as if it had crashed.
    void stop();

    // Puts a card into reader 0 or 1 and waits until the service shows it.
    // @param options  of zvvirtualcard, which stands beside this program
    // @throws std::runtime_error when the service does not show it
    void insert(int reader, const std::vector<std::string>& options);
    // Takes it out and waits until the service shows that.
    // @throws std::runtime_error
    void pull(int reader);

  private:
    void await_card(int reader, bool present) const;

    std::filesystem::path folder_;
    std::string name_;
    std::optional<Child> service_;
    std::map<int, Child> cards_;
};

} // namespace simcard
