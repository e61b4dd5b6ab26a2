#pragma once

#include "simcard/virtual/applet_command.h"

#include <array>
#include <list>

namespace simcard {

// What a file's access conditions speak of: the place of each in the eight bytes of tag 86. A folder's and a
// data file's share their first places.
enum class Access : std::size_t {
    delete_itself = 1,
    create_folder = 5,
    create_file = 6,
    update = 6,
    read = 7,
};

// A file of the card: a folder (DF) with files in it, or data (EF).
struct CardFile {
    std::uint16_t id = 0;
    bool is_folder = false;
    Octets name;        // a folder's application identifier
    Octets description; // the objects it was created with, given back when it is selected
    std::array<std::uint8_t, 8> access{};
    Octets content;
    CardFile* parent = nullptr;
    std::list<CardFile> files{};

    [[nodiscard]] CardFile* child(std::uint16_t wanted);
    // A folder below that has the name, or begins with it.
    [[nodiscard]] CardFile* named(std::span<const std::uint8_t> wanted);
};

// The files of a card, and which of them is selected (ISO/IEC 7816-4, 7.1 to 7.3 and 7816-9).
class CardFiles {
  public:
    CardFiles();

    // Selects the master file.
    void reset() { selected_ = &master_; }
    // SELECT by file identifier, path or name. Gives what the file says of itself.
    [[nodiscard]] Octets select(const Command& command);
    // CREATE FILE in the selected folder; selects it.
    void create(const Command& command, bool pin_given);
    // DELETE FILE: a file of the selected folder, or the selected file; its folder is selected then.
    void remove(const Command& command, bool pin_given);
    [[nodiscard]] Octets read(const Command& command, bool pin_given) const;
    void update(const Command& command, bool pin_given);

  private:
    [[nodiscard]] CardFile& folder() const;
    [[nodiscard]] CardFile* found(const Command& command);

    CardFile master_;
    CardFile* selected_ = &master_;
};

} // namespace simcard
