#include "simcard/virtual/applet_files.h"

#include <algorithm>

namespace simcard {
namespace {

constexpr std::uint16_t MASTER_ID = 0x3F00;
constexpr std::size_t LARGEST_FILE = 0x7FFF;
constexpr std::size_t MOST_FILES = 256;

enum Condition : std::uint8_t { always = 0x00, with_pin = 0x90 };

std::uint16_t number(std::span<const std::uint8_t> bytes) {
    if (bytes.size() != 2) throw Refused(Status::wrong_data);
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

void require(const CardFile& file, Access access, bool pin_given) {
    const std::uint8_t condition = file.access[static_cast<std::size_t>(access)];
    if (condition != always && !(condition == with_pin && pin_given)) throw Refused(Status::not_allowed);
}

// What a CREATE FILE describes.
CardFile described(std::span<const std::uint8_t> data) {
    auto objects = find_object(data, 0x6F);
    if (!objects) objects = find_object(data, 0x62);
    if (!objects) throw Refused(Status::wrong_data);
    const auto id = find_object(*objects, 0x83), kind = find_object(*objects, 0x82);
    if (!id || !kind || kind->empty()) throw Refused(Status::wrong_data);
    CardFile file;
    file.id = number(*id);
    file.is_folder = ((*kind)[0] & 0x38) == 0x38;
    file.description.assign(objects->begin(), objects->end());
    if (const auto name = find_object(*objects, 0x84)) file.name.assign(name->begin(), name->end());
    if (const auto access = find_object(*objects, 0x86); access && access->size() == file.access.size())
        std::copy(access->begin(), access->end(), file.access.begin());
    auto size = find_object(*objects, 0x80);
    if (!size) size = find_object(*objects, 0x81);
    if (!file.is_folder) file.content.resize(size ? number(*size) : 0);
    if (file.content.size() > LARGEST_FILE) throw Refused(Status::no_space);
    return file;
}

// The bytes of the selected data file from the command's offset on.
std::span<const std::uint8_t> from_offset(const CardFile& file, const Command& command) {
    if (file.is_folder) throw Refused(Status::no_conditions);
    if (command.p1 >= 0x80) throw Refused(Status::wrong_parameters);
    if (command.parameters() > file.content.size()) throw Refused(Status::wrong_offset);
    return std::span(file.content).subspan(command.parameters());
}

} // namespace

CardFile* CardFile::child(std::uint16_t wanted) {
    const auto at =
        std::find_if(files.begin(), files.end(), [&](const CardFile& file) { return file.id == wanted; });
    return at == files.end() ? nullptr : &*at;
}

CardFile* CardFile::named(std::span<const std::uint8_t> wanted) {
    for (CardFile& file : files) {
        if (!wanted.empty() && file.name.size() >= wanted.size() &&
            std::equal(wanted.begin(), wanted.end(), file.name.begin()))
            return &file;
        if (CardFile* below = file.named(wanted)) return below;
    }
    return nullptr;
}

CardFiles::CardFiles() {
    master_.id = MASTER_ID;
    master_.is_folder = true;
    master_.description = {0x82, 0x01, 0x38, 0x83, 0x02, 0x3F, 0x00};
}

CardFile& CardFiles::folder() const {
    return selected_->is_folder ? *selected_ : *selected_->parent;
}

CardFile* CardFiles::found(const Command& command) {
    enum By : std::uint8_t { id = 0, parent = 3, name = 4, path_from_master = 8, path_from_folder = 9 };
    if (command.p1 == parent) return folder().parent;
    if (command.p1 == name) return master_.named(command.data);
    if (command.p1 == id) {
        const std::uint16_t wanted = command.data.empty() ? MASTER_ID : number(command.data);
        if (wanted == MASTER_ID) return &master_;
        if (CardFile* below = folder().child(wanted)) return below;
        return folder().id == wanted ? &folder() : nullptr;
    }
    if (command.p1 != path_from_master && command.p1 != path_from_folder)
        throw Refused(Status::wrong_parameters);
    CardFile* file = command.p1 == path_from_master ? &master_ : &folder();
    const std::span<const std::uint8_t> path = command.data;
    for (std::size_t at = 0; file != nullptr && at < path.size(); at += 2)
        file = file->child(number(path.subspan(at, std::min<std::size_t>(2, path.size() - at))));
    return file;
}

Octets CardFiles::select(const Command& command) {
    CardFile* file = found(command);
    if (file == nullptr) throw Refused(Status::no_file);
    selected_ = file;
    constexpr std::uint8_t no_answer = 0x0C;
    return (command.p2 & no_answer) == no_answer ? Octets() : object(0x6F, file->description);
}

void CardFiles::create(const Command& command, bool pin_given) {
    CardFile file = described(command.data);
    CardFile& in = folder();
    require(in, file.is_folder ? Access::create_folder : Access::create_file, pin_given);
    if (file.id == MASTER_ID || in.child(file.id) != nullptr) throw Refused(Status::file_exists);
    if (in.files.size() >= MOST_FILES) throw Refused(Status::no_space);
    file.parent = &in;
    selected_ = &in.files.emplace_back(std::move(file));
}

void CardFiles::remove(const Command& command, bool pin_given) {
    CardFile* file = command.data.empty() ? selected_ : folder().child(number(command.data));
    if (file == nullptr && selected_->id == number(command.data)) file = selected_;
    if (file == nullptr) throw Refused(Status::no_file);
    if (file == &master_) throw Refused(Status::no_conditions);
    require(*file, Access::delete_itself, pin_given);
    selected_ = file->parent;
    selected_->files.remove_if([&](const CardFile& one) { return &one == file; });
}

Octets CardFiles::read(const Command& command, bool pin_given) const {
    const auto bytes = from_offset(*selected_, command);
    require(*selected_, Access::read, pin_given);
    const auto wanted = bytes.first(std::min(bytes.size(), command.expected));
    return {wanted.begin(), wanted.end()};
}

void CardFiles::update(const Command& command, bool pin_given) {
    if (command.data.size() > from_offset(*selected_, command).size()) throw Refused(Status::no_space);
    require(*selected_, Access::update, pin_given);
    std::copy(command.data.begin(), command.data.end(), selected_->content.begin() + command.parameters());
}

} // namespace simcard
