#include "host/request_files.h"

#include "host/error.h"
#include "host/new_file.h"
#include "zvConstants.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zvhost {
namespace {

// Leftovers of a call that failed are replaced by the library, if they are plain files or links and the user's own.
void refuse_obstacle(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return;
    const bool ours = status.st_uid == ::geteuid() || ::geteuid() == 0;
    const bool replaced = S_ISREG(status.st_mode) || S_ISLNK(status.st_mode);
    if (ours && replaced) return;
    const Value owner = owner_of(status.st_uid);
    throw Error(Exit::refused,
                Sentence{S_ISDIR(status.st_mode) ? "folder-in-the-way" : "file-in-the-way",
                         {{"file", path}, {"owner", owner}}},
                Advice{"remove-file",
                       Sentence{"have-removed", {{"owner", owner}, {"file", path}}},
                       {{"file", path}, {"owner", owner}}});
}

void require_room() {
    try {
        NewFile trial(fmt::format(ZV_TEMP_FOLDER "/zvrenew-{}.trial", ::getpid()));
    } catch (const Error& stop) {
        throw Error(Exit::refused, {"no-temporary-files", {{"reason", std::vector{stop.sentence}}}},
                    Advice{"free-tmp",
                           Sentence{"make-room-in", {{"folder", ZV_TEMP_FOLDER}}},
                           {{"file", ZV_TEMP_FOLDER}}});
    }
}

} // namespace

Lock hold_request_files() {
    Lock lock("request", "busy-requesting");
    for (const char* path : {ZV_REQUEST_FILE, ZV_SIGNED_FILE, ZV_BASE64_FILE})
        refuse_obstacle(path);
    require_room();
    return lock;
}

} // namespace zvhost
