#pragma once

#include "pkcs11/call.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

namespace bench {

// What a pointer of a call pointed at, and a copy of it that the call may be made with again.
struct Room {
    std::vector<std::byte> as_given, live;
};

// A call that can be made again with the arguments that it had.
struct KeptCall {
    explicit KeptCall(const pkcs11::Call& made);
    void rewind(); // undoes what the last call wrote

    pkcs11::Call call;
    CK_RV result = CKR_OK;
    std::size_t log_size = 0; // before it
    std::vector<std::unique_ptr<Room>> rooms;

  private:
    CK_ULONG keep(const void* bytes, std::size_t size, std::size_t room);
    CK_ULONG keep_template(CK_ATTRIBUTE* attributes, std::size_t count);
    CK_ULONG keep_mechanism(CK_MECHANISM mechanism);
    CK_ULONG keep_argument(const pkcs11::Call& made, std::size_t index);
};

// Keeps every call to a module while it lives, and how much the log held then: its own functions stand in the module's list
// meanwhile.
class Recorder {
  public:
    Recorder(CK_FUNCTION_LIST& list, std::filesystem::path log);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    std::vector<KeptCall> calls;

  private:
    static CK_RV record(const pkcs11::Call& call) noexcept;

    std::filesystem::path log_;
    CK_FUNCTION_LIST& list_;
    CK_FUNCTION_LIST own_;
};

} // namespace bench
