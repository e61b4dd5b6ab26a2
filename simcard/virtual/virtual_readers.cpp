#include "simcard/virtual/virtual_readers.h"

#include "simcard/virtual/own_machine.h"

#include <winscard.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace fs = std::filesystem;

namespace simcard {
namespace {

constexpr const char* SERVICE_FOLDER = "/run/pcscd";

// A card for the first reader goes there, one for the second to the next port.
constexpr int FIRST_PORT = 0x9001;

constexpr std::chrono::seconds PATIENCE{5};
constexpr std::chrono::milliseconds BETWEEN_LOOKS{10};

bool comes_true(const std::function<bool()>& holds) {
    for (const auto end = std::chrono::steady_clock::now() + PATIENCE; !holds();) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    }
    return true;
}

bool service_answers() {
    SCARDCONTEXT context = 0;
    if (::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context) != SCARD_S_SUCCESS)
        return false;
    (void)::SCardReleaseContext(context);
    return true;
}

std::string configuration(const std::string& name) {
    if (name.empty()) return {};
    const std::string port = std::to_string(FIRST_PORT);
    return "FRIENDLYNAME \"" + name + "\"\nDEVICENAME /dev/null:" + port +
           "\nLIBPATH " VPCD_DRIVER "\nCHANNELID " + port + "\n";
}

} // namespace

std::string VirtualReaders::missing() {
    for (const char* file : {PCSCD, VPCD_DRIVER})
        if (!fs::exists(file)) return std::string(file) + " is not installed";
    try {
        enter_own_machine();
    } catch (const std::system_error& reason) {
        return reason.what();
    }
    return {};
}

VirtualReaders::VirtualReaders() {
    std::string name = fs::temp_directory_path() / "zv-readers-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("Cannot make " + name);
    folder_ = name;
    fs::create_directory(folder_ / "conf");
}

VirtualReaders::~VirtualReaders() {
    cards_.clear();
    service_.reset();
    std::error_code error;
    fs::remove_all(folder_, error);
}

void VirtualReaders::start(const std::string& name) {
    name_ = name;
    std::ofstream(folder_ / "conf/readers") << configuration(name);
    // It also ends by itself when nobody has asked it anything for a minute.
    service_.emplace(std::vector<std::string>{PCSCD, "-f", "-x", "-c", folder_ / "conf"}, folder_ / "log");
    if (comes_true([&] { return service_answers() || !service_->runs(); }) && service_->runs()) return;
    std::ifstream log(folder_ / "log");
    throw std::runtime_error("The PC/SC service did not start. " +
                             std::string(std::istreambuf_iterator<char>(log), {}));
}

void VirtualReaders::stop() {
    service_.reset();
    fs::remove_all(SERVICE_FOLDER);
}

void VirtualReaders::insert(int reader, const std::vector<std::string>& options) {
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "zvvirtualcard";
    std::vector<std::string> command = {program, "--port", std::to_string(FIRST_PORT + reader)};
    command.insert(command.end(), options.begin(), options.end());
    cards_.emplace(reader, command);
    await_card(reader, true);
}

void VirtualReaders::pull(int reader) {
    const auto card = cards_.find(reader);
    if (card == cards_.end()) throw std::runtime_error("There is no card in the reader");
    if (card->second.end() != 0) throw std::runtime_error("The virtual card failed");
    cards_.erase(card);
    await_card(reader, false);
}

void VirtualReaders::await_card(int reader, bool present) const {
    const std::string name = name_ + " 00 0" + std::to_string(reader);
    SCARDCONTEXT context = 0;
    (void)::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context);
    const bool seen = comes_true([&] {
        SCARD_READERSTATE state{};
        state.szReader = name.c_str();
        const auto wanted = static_cast<DWORD>(present ? SCARD_STATE_PRESENT : SCARD_STATE_EMPTY);
        return ::SCardGetStatusChange(context, 0, &state, 1) == SCARD_S_SUCCESS &&
               (state.dwEventState & wanted) != 0;
    });
    (void)::SCardReleaseContext(context);
    if (!seen)
        throw std::runtime_error("The PC/SC service does not show " + std::string(present ? "the" : "no") +
                                 " card in " + name);
}

} // namespace simcard
