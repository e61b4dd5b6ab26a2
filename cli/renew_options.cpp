#include "cli/changing_options.h"
#include "host/error.h"

#include <filesystem>

namespace cli {

std::string RenewOptions::request_file() const {
    return wishes.request.out.empty() ? std::string("request-") + kind_name(wishes.request.kind) + ".b64"
                                      : wishes.request.out;
}

std::string RenewOptions::answer() const {
    return from.empty() ? std::string("certificate-") + kind_name(wishes.request.kind) + ".pem" : from;
}

void RenewOptions::check() const {
    if (from.empty() && ca_command.empty())
        throw Error(Exit::refused, {"renewal-without-authority", {}},
                    Advice{"from", {"renewal-without-authority-advice", {}}});
}

RenewalWishes RenewOptions::renewal() const {
    RenewalWishes all = wishes;
    all.request.out = request_file();
    return all;
}

void RenewOptions::tidy() const {
    std::error_code none;
    if (wishes.request.out.empty()) std::filesystem::remove(request_file(), none);
    if (from.empty()) std::filesystem::remove(answer(), none);
}

} // namespace cli
