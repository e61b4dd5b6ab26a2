#pragma once

#include <filesystem>
#include <string>

namespace cli {

// A new folder among the temporary ones that nobody else can look into; it goes, with all that is in it, at the end.
class PrivateFolder {
  public:
    // @throws Error
    explicit PrivateFolder(const std::string& name);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    // Writes a file in it. @throws Error
    void write(const std::string& name, const std::string& text) const;
    // The text of a file in it; empty when there is none.
    [[nodiscard]] std::string read(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

} // namespace cli
