#pragma once

#include "cli/engine.h"
#include "host/renew.h"

#include <string>

namespace cli {

// An authority that is reached by a person: the certificate is a file that comes some day.
class AuthorityByFile : public Authority {
  public:
    explicit AuthorityByFile(std::string certificate) : certificate_(std::move(certificate)) {}

    [[nodiscard]] std::string at_hand() override;
    [[nodiscard]] std::string ask(const std::string& request) override;

  private:
    std::string certificate_;
};

// An authority that a command asks: it gets the request on standard input and prints the certificate. Ends it with 75,
// the certificate has not come yet.
class AuthorityByCommand : public Authority {
  public:
    // @param certificate  file in which the answer is kept
    AuthorityByCommand(std::string command, std::string certificate)
        : command_(std::move(command)), certificate_(std::move(certificate)) {}

    [[nodiscard]] std::string at_hand() override;
    [[nodiscard]] std::string ask(const std::string& request) override;

  private:
    std::string command_;
    std::string certificate_;
};

} // namespace cli
