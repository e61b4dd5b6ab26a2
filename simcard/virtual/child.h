#pragma once

#include <sys/types.h>

#include <csignal>
#include <string>
#include <vector>

namespace simcard {

// A program that was started. It does not outlive the one that started it, however that ends.
class Child {
  public:
    // Starts it with what it says going to a file, or where this program's goes without one.
    // @throws std::system_error
    explicit Child(std::vector<std::string> command, const std::string& log = {});
    // Sends SIGKILL where end() or wait() was not called.
    ~Child();
    Child(Child&& other) noexcept;
    Child& operator=(Child&&) = delete;

    // Sends a signal and waits for the end.
    // @return as wait()
    int end(int signal = SIGTERM);
    // @return the exit code, or 128 and the signal that ended it
    int wait();
    // Whether it has not ended by itself.
    [[nodiscard]] bool runs() const;

  private:
    pid_t process_;
};

} // namespace simcard
