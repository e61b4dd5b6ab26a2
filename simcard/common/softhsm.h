#pragma once

#include "pkcs11/module.h"
#include "simcard/common/problem.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

namespace simcard {

class MemoryFile;

// SoftHSM could not be loaded or started; code() is what a module's C_Initialize answers for it.
class SoftHsmProblem : public CardProblem {
  public:
    SoftHsmProblem(const std::string& what, CK_RV code) : CardProblem(what), code_(code) {}
    [[nodiscard]] CK_RV code() const { return code_; }

  private:
    CK_RV code_;
};

// SoftHSM, running on a folder of cards as its token folder while this lives.
//
// The library is the file named by $ZVSIMCARD_SOFTHSM, else the one found when this was built. A process may
// hold several at once, also beside a SoftHSM that somebody else started: each but the first gets a copy
// of the library of its own. Starting one sets SOFTHSM2_CONF for a moment and puts it back: no other thread
// may use the environment meanwhile.
class SoftHsm {
  public:
    // Starts it; `init_args` is what C_Initialize takes. @throws SoftHsmProblem
    explicit SoftHsm(const std::filesystem::path& home, CK_VOID_PTR init_args = nullptr);
    ~SoftHsm();
    SoftHsm(const SoftHsm&) = delete;
    SoftHsm& operator=(const SoftHsm&) = delete;

    [[nodiscard]] CK_FUNCTION_LIST* operator->() const { return get(); }
    [[nodiscard]] CK_FUNCTION_LIST* get() const { return module_->list(); }

    // The slot of the token with that serial number of SoftHSM's own; of a blank one when it is empty.
    [[nodiscard]] std::optional<CK_SLOT_ID> slot_of(std::string_view token) const;

  private:
    void load(const std::string& path);
    [[nodiscard]] CK_RV initialize(const std::filesystem::path& home, CK_VOID_PTR init_args);

    std::unique_ptr<MemoryFile> copy_;
    std::optional<pkcs11::Module> module_;
};

} // namespace simcard
