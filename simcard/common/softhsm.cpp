#include "simcard/common/softhsm.h"

#include "simcard/common/environment.h"
#include "simcard/common/memory_file.h"
#include "simcard/common/text.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace simcard {
namespace {

constexpr const char* VARIABLE = "SOFTHSM2_CONF";

// Sets SoftHSM's variable while it lives.
class Setting {
  public:
    explicit Setting(const std::string& value) {
        if (const char* before = std::getenv(VARIABLE)) before_ = before;
        ::setenv(VARIABLE, value.c_str(), 1);
    }
    ~Setting() {
        if (before_)
            ::setenv(VARIABLE, before_->c_str(), 1);
        else
            ::unsetenv(VARIABLE);
    }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

  private:
    std::optional<std::string> before_;
};

std::string library_path() {
    const std::string given = environment("ZVSIMCARD_SOFTHSM");
    return given.empty() ? ZVSIMCARD_SOFTHSM_LIBRARY : given;
}

std::string whole_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw SoftHsmProblem("Cannot read " + path + ".", CKR_GENERAL_ERROR);
    return content;
}

// SoftHSM's configuration. Its parser ends a value at some characters and cuts a long line.
std::string configuration(const fs::path& home) {
    const std::string folder = fs::absolute(home).string();
    if (folder.find_first_of("#=\r\n") != std::string::npos || folder.size() > 900 ||
        folder.find_last_not_of(" \t") + 1 != folder.size())
        throw SoftHsmProblem("SoftHSM cannot use a folder of this name: " + folder, CKR_GENERAL_ERROR);
    return "directories.tokendir = " + folder +
           "\nobjectstore.backend = file\nlog.level = ERROR\nslots.removable = true\n";
}

} // namespace

SoftHsm::SoftHsm(const fs::path& home, CK_VOID_PTR init_args) {
    load(library_path());
    CK_RV result = initialize(home, init_args);
    if (result == CKR_CRYPTOKI_ALREADY_INITIALIZED) {
        module_.reset();
        copy_ = std::make_unique<MemoryFile>("softhsm", whole_file(library_path()));
        load(copy_->path());
        result = initialize(home, init_args);
    }
    if (result != CKR_OK) throw SoftHsmProblem("SoftHSM cannot be started on " + home.string() + ".", result);
}

SoftHsm::~SoftHsm() {
    get()->C_Finalize(nullptr);
}

void SoftHsm::load(const std::string& path) {
    try {
        module_.emplace(path);
    } catch (const std::runtime_error&) {
        throw SoftHsmProblem("Cannot load SoftHSM from " + library_path() + ".", CKR_GENERAL_ERROR);
    }
}

CK_RV SoftHsm::initialize(const fs::path& home, CK_VOID_PTR init_args) {
    const MemoryFile file("softhsm2.conf", configuration(home));
    const Setting setting(file.path());
    return get()->C_Initialize(init_args);
}

std::optional<CK_SLOT_ID> SoftHsm::slot_of(std::string_view token) const {
    CK_ULONG count = 0;
    if (get()->C_GetSlotList(CK_TRUE, nullptr, &count) != CKR_OK) return std::nullopt;
    std::vector<CK_SLOT_ID> slots(count);
    if (get()->C_GetSlotList(CK_TRUE, slots.data(), &count) != CKR_OK) return std::nullopt;
    for (const CK_SLOT_ID slot : slots) {
        CK_TOKEN_INFO info{};
        if (get()->C_GetTokenInfo(slot, &info) == CKR_OK && unpadded(info.serialNumber) == token) return slot;
    }
    return std::nullopt;
}

} // namespace simcard
