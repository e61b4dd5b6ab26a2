#pragma once

#include "cli/engine.h"
#include "cli/pipe.h"

#include <sys/types.h>

#include <string>

namespace cli {

// A program that is talked to over its standard input and output, and ended with its owner.
class ChildProcess {
  public:
    // @param program  its name, searched for in PATH, or its path
    // @throws Error when it cannot be started
    explicit ChildProcess(const std::string& program);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // What it writes.
    [[nodiscard]] int output() const { return from_program_.from->get(); }
    // Gives it a text; false when it does not take it.
    [[nodiscard]] bool tell(const std::string& text) const;

  private:
    Pipe to_program_;
    Pipe from_program_;
    pid_t process_ = -1;
};

} // namespace cli
