#pragma once

#include <optional>
#include <string>

namespace zvhost {

// The folder of the journal, and who may write in it.

// Makes the folder, and those above it, for the user alone. @return 0, or the system's error number
[[nodiscard]] int make_private_folder(const std::string& folder);

// The right to write in the folder alone. Whoever has it has it for a moment only: after some time it is taken to be lost,
// and as not every file system keeps such rights, the work goes on without.
class FolderTurn {
  public:
    explicit FolderTurn(const std::string& folder);
    FolderTurn(const FolderTurn&) = delete;
    FolderTurn& operator=(const FolderTurn&) = delete;
    ~FolderTurn();

  private:
    int fd_;
};

// The file of a card's entry. Whatever a serial number has in it, it becomes a name, and back.
[[nodiscard]] std::string journal_file_of(const std::string& card_serial);
[[nodiscard]] std::optional<std::string> card_of_journal_file(const std::string& name);

// What a file of the journal has; none when it is not there, or nothing that this program would have written.
[[nodiscard]] std::optional<std::string> read_journal_file(const std::string& path);

} // namespace zvhost
