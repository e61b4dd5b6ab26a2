#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/commands.h"

namespace fs = std::filesystem;

namespace simcard {

fs::path Home::path() const {
    return fs::absolute(given.empty() ? cards_home() : fs::path(given));
}

fs::path Home::card(const std::string& name) const {
    fs::path folder = path() / name;
    const bool inside = !name.empty() && fs::path(name).filename() == name && name != "." && name != "..";
    if (!inside || fs::is_symlink(folder) || !fs::is_regular_file(folder / CARD_FILE))
        throw Refusal("There is no card named \"" + name + "\" in " + path().string() + ".");
    return folder;
}

} // namespace simcard
