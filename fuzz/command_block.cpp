// The text block that carries a command: what is written comes back, or is refused.
#include "api/command_block.h"
#include "api/guards.h"
#include "api/state.h"
#include "card/detection.h"
#include "input.h"
#include "util/text.h"

namespace {

constexpr std::size_t LABEL = sizeof REQRENIN::certificateLabel;

struct Given {
    std::string certLabel, pin, certificate, pendingLabel, kind, keepFlag;
    zv::BlockValues values() const {
        return {certLabel.c_str(),    pin.c_str(),  certificate.c_str(),
                pendingLabel.c_str(), kind.c_str(), keepFlag.c_str()};
    }
};

void holdsTerminated(const REQRENIN& record) {
    for (const zv::BlockKey& key : zv::BLOCK)
        HOLDS(key.width == 1 || zv::fieldText(record, key).size() < key.width);
}

// A value that nobody could misread: no key, no line, no blank at its end, and it fits.
bool isPlain(std::string_view value, std::size_t width) {
    return value.size() < width && value.find_first_of(":\n") == std::string_view::npos &&
           value.find("END_STRING") == std::string_view::npos && !value.ends_with(' ');
}

bool isPlain(const Given& given) {
    return isPlain(given.certLabel, LABEL) && isPlain(given.pin, sizeof REQRENIN::szPin) &&
           isPlain(given.certificate, sizeof REQRENIN::szCertChain) && isPlain(given.pendingLabel, LABEL) &&
           isPlain(given.kind, sizeof REQRENIN::szTipoCert) && isPlain(given.keepFlag, 2) &&
           isPlain(zv::Libreria, sizeof zv::Libreria) && zv::slot >= 0 && zv::slot <= 9;
}

bool isPlain(const datiDN& name) {
    REQRENIN record{};
    record.dn = name;
    for (std::size_t i = zv::FIRST_NAME_KEY; i < zv::BLOCK_KEYS; ++i)
        if (!isPlain(zv::fieldText(record, zv::BLOCK[i]), zv::BLOCK[i].width)) return false;
    return true;
}

void holdsValues(const Given& given, const REQRENIN& parsed) {
    HOLDS(parsed.slot == '0' + zv::slot && fuzz::fieldOf(parsed.szPin) == given.pin);
    HOLDS(fuzz::fieldOf(parsed.szDll) == zv::Libreria);
    HOLDS(fuzz::fieldOf(parsed.certificateLabel) == given.certLabel);
    HOLDS(fuzz::fieldOf(parsed.pendingLabel) == given.pendingLabel);
    HOLDS(fuzz::fieldOf(parsed.szCertChain) == given.certificate);
    HOLDS(fuzz::fieldOf(parsed.szTipoCert) == given.kind);
    REQRENIN name{};
    name.dn = zv::dNameRen;
    for (std::size_t i = zv::FIRST_NAME_KEY; i < zv::BLOCK_KEYS; ++i)
        HOLDS(zv::fieldText(name, zv::BLOCK[i]) == zv::fieldText(parsed, zv::BLOCK[i]));
}

void writeAndParse(Given& given) {
    const unsigned long length =
        RichiestaMinInfo(given.certLabel.data(), given.pin.c_str(), given.certificate.c_str(),
                         given.pendingLabel.data(), given.kind.c_str(), given.keepFlag.c_str());
    const std::string_view block = fuzz::fieldOf(zv::szBufferRichiesta);
    if (length == 0) {
        HOLDS(block.empty() && zv::guardBlock(given.values()) == ZV_NOT_SENT);
        return zv::wipePin();
    }
    HOLDS(block.starts_with("BEGIN_STRING\nslot:") && block.substr(length) == "\nEND_STRING\n");
    auto parsed = std::make_unique<REQRENIN>();
    zv::parseBlock(block, *parsed);
    holdsTerminated(*parsed);
    const int guard = zv::guardBlock(given.values());
    HOLDS(guard == 0 || guard == ZV_NOT_SENT);
    if (guard == 0) HOLDS(fuzz::fieldOf(parsed->szPin) == given.pin);
    if (isPlain(given) && isPlain(zv::dNameRen)) {
        HOLDS(guard == 0);
        holdsValues(given, *parsed);
    }
    const std::string before(block);
    zv::wipePin();
    const std::string_view after = fuzz::fieldOf(zv::szBufferRichiesta);
    HOLDS(after.size() == before.size());
    if (guard != 0) return;
    const std::size_t pin = before.find("\nszpin:") + 7;
    HOLDS(after.substr(pin, given.pin.size()) == std::string(given.pin.size(), '*'));
}

// A block that nobody wrote.
void parseForeign(std::string block) {
    auto parsed = std::make_unique<REQRENIN>();
    zv::publish(*parsed, zv::parseBlock(block, *parsed));
    holdsTerminated(*parsed);
}

void breakRows(const std::string& text) {
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
    zv::copyText(zv::Libreria, input.line());
    Given given;
    for (std::string* value :
         {&given.certLabel, &given.pin, &given.kind, &given.keepFlag, &given.pendingLabel})
        *value = input.line();
    fuzz::Room name(4096, input.line());
    _RiempiDN(name.get(), static_cast<unsigned>(name.size()));
    given.certificate = input.text();
    writeAndParse(given);
    parseForeign("BEGIN_STRING\n" + given.certificate);
    breakRows(given.certificate);
    return 0;
}
