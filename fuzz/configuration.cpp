// A user's configuration, read where the readers are listed and where a card is looked up.
#include "fuzz/input.h"
#include "zvCrypt.h"

#include <set>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = fuzz::scratch() + "/zvcrypt.conf";
    ::setenv("ZVCRYPT_CONF", path.c_str(), 1);
    const std::string_view text = fuzz::Input(data, size).bytes();
    fuzz::write_file(path, text);
    fuzz::Room list(ZVC_READER_LIST_SIZE), reason(1024);
    const int code = kvGetReader(list.get());
    HOLDS(kvLastError(reason.get(), 1024) == code && fuzz::is_utf8(reason.text()));
    // Without a software reader the missing service is the failure.
    HOLDS(code == 0 || code == ZVC_ERR_CONFIG || code == ZVC_ERR_NO_SERVICE);
    HOLDS((code == 0) == !list.text().empty());
    if (code == ZVC_ERR_CONFIG) {
        HOLDS(reason.text().starts_with(path + ", riga "));
        const long line = std::strtol(reason.get() + path.size() + 7, nullptr, 10);
        HOLDS(line >= 1 && line <= 1 + std::count(text.begin(), text.end(), '\n'));
    }
    std::set<std::string> names;
    for (std::string_view rest = list.text(); !rest.empty();) {
        const std::size_t end = rest.find('|');
        HOLDS(end != std::string_view::npos && end >= 1 && end <= 127);
        std::string name(rest.substr(0, end));
        rest.remove_prefix(end + 1);
        HOLDS(names.insert(name).second);
        // Whatever is listed can be asked for.
        fuzz::Room module(ZVC_MODULE_NAME_SIZE);
        const int found = kvGetPKCS11FromATR(name.data(), module.get());
        HOLDS(found == 0 || (found == ZVC_ERR_CUT && module.text().size() > 500));
        HOLDS(module.text().find('/') == std::string_view::npos);
        HOLDS(!module.text().empty() || (kvIsCNSINCARD() == 0 && kvIsTOUCHSIGN() == 0));
    }
    return 0;
}
