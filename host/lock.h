#pragma once

#include "host/scoped_fd.h"
#include "host/sentence.h"

#include <string>

namespace zvhost {

// The descriptor under a high number: modules that close what is not theirs go by low ones.
[[nodiscard]] int out_of_reach(int fd);

// The right to do something alone, among all programs and users of this machine, as long as this object lives.
//
// Its file is in /tmp, where every user finds the same one; that the file is there says nothing. A program that is
// killed gives the right back.
class Lock {
  public:
    // @param[in] name  part of the file's name
    // @param[in] busy  the sentence that says what another program is at then, with its {who}
    // @throws Error when another program has it, or when there can be no such file
    Lock(const std::string& name, const std::string& busy);
    Lock(Lock&& other) = default;
    Lock& operator=(Lock&&) = delete;
    ~Lock();

    // Whether it still holds: there are modules that close descriptors that are not theirs, and a file in /tmp can be
    // removed.
    [[nodiscard]] bool holds() const;

  private:
    std::string path_;
    ScopedFd file_;
};

// The process that has the right that a file stands for; 0 when none has, or when the system does not say.
[[nodiscard]] int process_that_locks(const std::string& path);

// Who owns a file, by name where the system knows one.
[[nodiscard]] Value owner_of(unsigned int user);

} // namespace zvhost
