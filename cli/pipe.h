#pragma once

#include "cli/engine.h"
#include "host/scoped_fd.h"

#include <array>
#include <optional>

namespace cli {

// Both ends of a pipe, which no program that is started gets; reset() closes one.
class Pipe {
  public:
    Pipe() : Pipe(opened()) {} // @throws std::system_error

    std::optional<ScopedFd> from;
    std::optional<ScopedFd> to;

  private:
    explicit Pipe(const std::array<int, 2>& ends) : from(ends[0]), to(ends[1]) {}
    [[nodiscard]] static std::array<int, 2> opened();
};

} // namespace cli
