#include "host/backup.h"

#include "host/error.h"
#include "host/new_file.h"
#include "host/printable.h"
#include "host/public_key.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace zvhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* HEADING_BEGIN = "Saved by zvrenew ";
constexpr const char* CERTIFICATE_BLOCK = "CERTIFICATE";
constexpr std::uintmax_t LARGEST_BACKUP = std::uintmax_t{64} * 1024;
constexpr int MOST_FILES = 4096;

Bytes bytes_of(const std::string& text) {
    return {text.begin(), text.end()};
}

bool may_be_backup(const fs::directory_entry& entry) {
    std::error_code error;
    return entry.is_regular_file(error) && entry.file_size(error) <= LARGEST_BACKUP && !error;
}

} // namespace

std::string Backup::text() const {
    std::string all = heading + "\n";
    for (const ossl::PemBlock& block : blocks)
        all += ossl::pem_text(block);
    return all;
}

void Backup::add(const char* name, const Bytes& der) {
    blocks.push_back({name, {der.begin(), der.end()}});
}

Bytes Backup::certificate() const {
    const bool there = !blocks.empty() && blocks.front().name == CERTIFICATE_BLOCK;
    return there ? bytes_of(blocks.front().der) : Bytes();
}

bool Backup::has_key(const Bytes& modulus) const {
    return std::any_of(blocks.begin(), blocks.end(), [&](const ossl::PemBlock& block) {
        return block.name == "PUBLIC KEY" && modulus_of_public_key(bytes_of(block.der)) == modulus;
    });
}

bool Backup::covers(const Backup& other) const {
    return std::all_of(other.blocks.begin(), other.blocks.end(), [&](const ossl::PemBlock& block) {
        return std::find(blocks.begin(), blocks.end(), block) != blocks.end();
    });
}

std::string backup_heading(const std::string& card, const std::string& id) {
    std::string line = printable(fmt::format("{}from card {}: {}", HEADING_BEGIN, card, id));
    std::replace(line.begin(), line.end(), '\n', '?');
    return line;
}

std::optional<Backup> read_backup(const std::string& file) {
    std::error_code error;
    if (!may_be_backup(fs::directory_entry(file, error))) return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    Backup backup{file, {}, {}};
    if (!std::getline(stream, backup.heading) || !backup.heading.starts_with(HEADING_BEGIN))
        return std::nullopt;
    std::string text(LARGEST_BACKUP, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    backup.blocks = ossl::pem_blocks(text);
    return backup;
}

std::string save(const Backup& backup) {
    const std::string& file = backup.file;
    if (const auto there = read_backup(file); there && there->covers(backup)) return file;
    try {
        NewFile(file).save(backup.text());
    } catch (Error& stop) {
        if (stop.exit == Exit::refused)
            stop.advice = {{"other-file", {"other-backup-file", {}}, {{"file", file}}}};
        throw;
    }
    return file;
}

std::vector<Backup> backups_of(const std::string& card, const std::string& given) {
    std::vector<Backup> found;
    const auto add = [&](const std::string& file) {
        auto backup = read_backup(file);
        if (backup && backup->heading.starts_with(backup_heading(card, {})))
            found.push_back(std::move(*backup));
    };
    std::error_code error;
    if (!given.empty()) add(given);
    fs::directory_iterator entry(".", error);
    for (int i = 0; !error && i < MOST_FILES && entry != fs::directory_iterator();
         ++i, entry.increment(error))
        add(entry->path().filename());
    return found;
}

const Backup* backup_of_leftover(const std::vector<Backup>& backups, const CardView& view,
                                 const std::string& card, const std::string& id) {
    const Bytes key = view.modulus(id);
    if (key.empty() || !view.certificates(id).empty()) return nullptr;
    const auto found = std::find_if(backups.begin(), backups.end(), [&](const Backup& backup) {
        return backup.heading == backup_heading(card, id) && backup.has_key(key);
    });
    return found == backups.end() ? nullptr : &*found;
}

} // namespace zvhost
