#pragma once

#include "zvConstants.h"

#include <cstddef>
#include <string_view>

// The files through which a request goes to the crypto library and comes back signed.
namespace zv {

inline constexpr char REQUEST_FILE[] = ZV_REQUEST_FILE;
inline constexpr char SIGNED_FILE[] = ZV_SIGNED_FILE;
inline constexpr char BASE64_FILE[] = ZV_BASE64_FILE;

// The request file, created anew. Its descriptor is kept, so that another process that takes the name over is
// noticed: two requests made at the same time must not be swapped.
class RequestFile {
  public:
    RequestFile() = default;
    RequestFile(const RequestFile&) = delete;
    RequestFile& operator=(const RequestFile&) = delete;
    ~RequestFile();

    // Removes a leftover of the name (a link itself, never its target), creates the file and writes the
    // text.
    [[nodiscard]] bool create(std::string_view text);
    // True while the name still leads to the file that was created.
    [[nodiscard]] bool is_ours() const;

  private:
    void keep_out_of_reach();

    int descriptor_ = -1;
};

// Opens the base64 file without following a link. Returns a descriptor, or -1.
[[nodiscard]] int open_base64();

// Reads at most size bytes. Returns how many there were.
[[nodiscard]] std::size_t read_all(int descriptor, char* out, std::size_t size);

// Removes the three files.
void remove_request_files();

} // namespace zv
