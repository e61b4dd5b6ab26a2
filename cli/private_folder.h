#pragma once

#include "cli/engine.h"
#include "host/scoped_fd.h"

#include <filesystem>
#include <optional>
#include <string>

namespace cli {

// A new folder among the temporary ones that nobody else can look into; it goes, with all that is in it, at the end.
// One that a killed process left goes when the next of its name is made.
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
    std::optional<ScopedFd> held_; // others see by it that the folder is in use
};

} // namespace cli
