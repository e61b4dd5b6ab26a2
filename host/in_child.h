#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zvhost {

// What a process of its own told before it ended.
struct ChildAnswer {
    std::string told;
    int signal = 0;    // that ended it; 0: it came to its end
    bool late = false; // it was ended because it took too long
};

using Tell = std::function<void(std::string_view)>;

// Runs `work` in a child process, without standard output or error. What it tells arrives even when it crashes later.
[[nodiscard]] ChildAnswer in_child(const std::function<void(const Tell&)>& work, int most_seconds);

} // namespace zvhost
