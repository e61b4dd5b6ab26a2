#pragma once

#include <string>
#include <string_view>

namespace zvhost {

// A file that appears under its name whole or not at all, and never in another one's place. Nothing of it is kept
// open: there are modules that close descriptors that are not theirs.
class NewFile {
  public:
    // Makes sure that the file can be made: nothing has its name, and its folder has room. @throws Error
    explicit NewFile(std::string path);

    enum class For { everyone, owner };

    // Makes the file, for others to read or not; it is on the disk, not on its way there, when this returns. @throws Error
    void save(std::string_view text, For whom = For::everyone) const;

  private:
    std::string path_;
};

} // namespace zvhost
