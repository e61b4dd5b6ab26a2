#include "cli/private_folder.h"

#include "cli/engine.h"
#include "host/error.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace cli {

PrivateFolder::PrivateFolder(const std::string& name) {
    const fs::path among = fs::temp_directory_path();
    std::string pattern = (among / (name + "-XXXXXX")).string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw Error(Exit::failed, {"no-folder-made", {{"folder", among.string()}}});
    path_ = pattern;
}

PrivateFolder::~PrivateFolder() {
    std::error_code none;
    fs::remove_all(path_, none);
}

void PrivateFolder::write(const std::string& name, const std::string& text) const {
    std::ofstream file(path_ / name, std::ios::binary);
    file << text;
    if (!file.flush()) throw Error(Exit::failed, {"file-unwritable", {{"file", (path_ / name).string()}}});
}

std::string PrivateFolder::read(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace cli
