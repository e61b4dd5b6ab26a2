#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace simcard {

enum class Access { owner_only, everyone_reads };

// Reads a whole file.
//
// @throws Refusal when there is no such file, it cannot be read, or it holds more than a megabyte: nothing
//         that is read here comes near that size.
[[nodiscard]] std::string read_file(const std::filesystem::path& path);

// Writes a file so that a reader finds either what was there before or all of the new content, never a part.
//
// The content goes to a new file beside it (mode 0600 or 0644), which then takes its place.
// @throws Failure when it could not be written, Refusal when the path names something else than a plain file
//         (a link, a device); what was there is then as it was.
void write_file(const std::filesystem::path& path, std::string_view content, Access access);

// A new, empty folder (mode 0700) beside `path`, removed at the end unless it was moved away.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& prefix);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

} // namespace simcard
