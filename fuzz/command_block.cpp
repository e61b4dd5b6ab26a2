// The text block that carries a command: what is written comes back, or is refused.
#include "api/command_block.h"

#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "fuzz/input.h"
#include "routines/api.h"
#include "util/text.h"
#include "zvRenew.h"

namespace {

constexpr std::size_t LABEL = sizeof REQRENIN::certificateLabel;

struct Given {
    std::string cert_label, pin, certificate, pendingLabel, kind, keep_flag;
    zv::BlockValues values() const {
        return {cert_label.c_str(),   pin.c_str(),  certificate.c_str(),
                pendingLabel.c_str(), kind.c_str(), keep_flag.c_str()};
    }
};

void holds_terminated(const REQRENIN& record) {
    for (const zv::BlockKey& key : zv::BLOCK)
        HOLDS(key.width == 1 || zv::field_text(record, key).size() < key.width);
}

// A value that nobody could misread: no key, no line, no blank at its end, and it fits.
bool is_plain(std::string_view value, std::size_t width) {
    return value.size() < width && value.find_first_of(":\n") == std::string_view::npos &&
           value.find("END_STRING") == std::string_view::npos && !value.ends_with(' ');
}

bool is_plain(const Given& given) {
    return is_plain(given.cert_label, LABEL) && is_plain(given.pin, sizeof REQRENIN::szPin) &&
           is_plain(given.certificate, sizeof REQRENIN::szCertChain) && is_plain(given.pendingLabel, LABEL) &&
           is_plain(given.kind, sizeof REQRENIN::szTipoCert) && is_plain(given.keep_flag, 2) &&
           is_plain(zv::Libreria, sizeof zv::Libreria) && zv::slot >= 0 && zv::slot <= 9;
}

bool is_plain(const datiDN& name) {
    REQRENIN record{};
    record.dn = name;
    for (std::size_t i = zv::first_name_key; i < zv::BLOCK_KEYS; ++i)
        if (!is_plain(zv::field_text(record, zv::BLOCK[i]), zv::BLOCK[i].width)) return false;
    return true;
}

void holds_values(const Given& given, const REQRENIN& parsed) {
    HOLDS(parsed.slot == '0' + zv::slot && fuzz::field_of(parsed.szPin) == given.pin);
    HOLDS(fuzz::field_of(parsed.szDll) == zv::Libreria);
    HOLDS(fuzz::field_of(parsed.certificateLabel) == given.cert_label);
    HOLDS(fuzz::field_of(parsed.pendingLabel) == given.pendingLabel);
    HOLDS(fuzz::field_of(parsed.szCertChain) == given.certificate);
    HOLDS(fuzz::field_of(parsed.szTipoCert) == given.kind);
    REQRENIN name{};
    name.dn = zv::dNameRen;
    for (std::size_t i = zv::first_name_key; i < zv::BLOCK_KEYS; ++i)
        HOLDS(zv::field_text(name, zv::BLOCK[i]) == zv::field_text(parsed, zv::BLOCK[i]));
}

void write_and_parse(const Given& given) {
    const zv::WrittenBlock written = zv::write_block(given.values());
    const std::string_view block = fuzz::field_of(zv::szBufferRichiesta);
    if (written.length == 0) {
        HOLDS(block.empty() && zv::guard_block(given.values()) == ZV_NOT_SENT);
        return zv::wipe_pin(written);
    }
    HOLDS(block.starts_with("BEGIN_STRING\nslot:") && block.substr(written.length) == "\nEND_STRING\n");
    auto parsed = std::make_unique<REQRENIN>();
    zv::parse_block(block, *parsed);
    holds_terminated(*parsed);
    const int guard = zv::guard_block(given.values());
    HOLDS(guard == 0 || guard == ZV_NOT_SENT);
    if (guard == 0) HOLDS(fuzz::field_of(parsed->szPin) == given.pin);
    if (is_plain(given) && is_plain(zv::dNameRen)) {
        HOLDS(guard == 0);
        holds_values(given, *parsed);
    }
    const std::string before(block);
    zv::wipe_pin(written);
    const std::string_view after = fuzz::field_of(zv::szBufferRichiesta);
    HOLDS(after.size() == before.size());
    if (guard != 0) return;
    const std::size_t pin = before.find("\nszpin:") + 7;
    HOLDS(after.substr(pin, given.pin.size()) == std::string(given.pin.size(), '*'));
}

// A block that nobody wrote.
void parse_foreign(std::string block) {
    auto parsed = std::make_unique<REQRENIN>();
    zv::publish(*parsed, zv::parse_block(block, *parsed));
    holds_terminated(*parsed);
}

void break_rows(const std::string& text) {
    fuzz::Room rows(sizeof zv::buffer, text);
    std::fill(rows.get() + rows.text().size(), rows.get() + rows.size(), '\0');
    const std::string before(rows.text());
    const unsigned long length = SepRows(rows.get());
    const std::string_view after = rows.text();
    HOLDS(after.size() == length && length < rows.size());
    std::size_t taken = 0, column = 0;
    for (const char c : after) {
        column = c == '\n' ? 0 : column + 1;
        HOLDS(column <= 64);
        if (taken < before.size() && c == before[taken]) ++taken;
    }
    HOLDS(taken == before.size() || length >= rows.size() - 2);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    zv::slot = static_cast<int>(std::strtol(input.line().c_str(), nullptr, 10) & 0x1F);
    zv::copy_text(zv::Libreria, input.line());
    Given given;
    for (std::string* value :
         {&given.cert_label, &given.pin, &given.kind, &given.keep_flag, &given.pendingLabel})
        *value = input.line();
    fuzz::Room name(4096, input.line());
    _RiempiDN(name.get(), static_cast<unsigned>(name.size()));
    given.certificate = input.text();
    write_and_parse(given);
    parse_foreign("BEGIN_STRING\n" + given.certificate);
    break_rows(given.certificate);
    return 0;
}
