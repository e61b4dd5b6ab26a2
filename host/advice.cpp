#include "host/advice.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace zvhost {

std::vector<std::string> identifiers_of(Kind kind) {
    std::vector<std::string> ids;
    for (const char digit : zv::RENEWED_DIGITS)
        ids.push_back(kind_row(kind).series + std::string{digit});
    return ids;
}

Advice free_an_identifier(Kind kind) {
    const std::vector<std::string> ids = identifiers_of(kind);
    return {
        "free-identifier",
        fmt::format("New {} keys go under {} or {}, and none is free. Remove the certificate among them that "
                    "is no longer needed, with its keys, using the card's own software.",
                    kind_name(kind), fmt::join(ids.begin(), ids.end() - 1, ", "), ids.back()),
        {{"kind", kind_name(kind)}, {"identifiers", ids}}};
}

Advice make_room() {
    return {"make-room",
            "The card is full. Remove a certificate that is no longer needed, with its keys, using the "
            "card's own software; then run the same command again."};
}

Advice leave_to_card_software(const std::string& pair) {
    return {
        "pin-each-signature",
        fmt::format("The key {0} wants the PIN before each signature, and the library does not give it for a "
                    "pair's own signature of its request. Ask the card's issuer: the card's own software can "
                    "request a certificate for {0}, or remove it where no certificate is wanted for it.",
                    pair),
        {{"pair", pair}}};
}

Advice give_key_the_pin(const std::string& key) {
    return {"signature-pin",
            fmt::format(
                "Do not run the same command again as it is: the key {} wants a PIN before each signature, "
                "has the card's alone been offered, and may count a try each time. If that key has a PIN of "
                "its own, make it the card's with the card's own software, then run the command again; if "
                "the card does not allow that, ask its issuer.",
                key),
            {{"key", key}}};
}

Advice enter_card() {
    return {"add-card",
            "Its ATR, which opensc-tool -a tells, has to stand in ~/.config/zvcrypt.conf or " ZV_SYSCONFDIR
            "/zvcrypt.conf with the file name of its maker's PKCS#11 module:\n"
            "  [card NAME]\n"
            "  atr = ATR\n"
            "  module = MODULE.so",
            {{"files", std::vector<std::string>{"~/.config/zvcrypt.conf", ZV_SYSCONFDIR "/zvcrypt.conf"}}}};
}

Advice start_service() {
    return {"start-service",
            "Install and start the PC/SC service (Debian: apt install pcscd; systemctl start pcscd.socket), "
            "and see "
            "what it shows with: zvrenew readers",
            {{"service", "pcscd"}}};
}

} // namespace zvhost
