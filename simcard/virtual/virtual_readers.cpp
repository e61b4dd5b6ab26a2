#include "simcard/virtual/virtual_readers.h"

#include "simcard/virtual/own_machine.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <winscard.h>

namespace fs = std::filesystem;

namespace simcard {
namespace {

const fs::path service_folder = "/run/pcscd";

constexpr std::chrono::seconds patience{5};
constexpr std::chrono::milliseconds between_looks{10};

bool comes_true(const std::function<bool()>& holds) {
    for (const auto end = std::chrono::steady_clock::now() + patience; !holds();) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(between_looks);
    }
    return true;
}

std::string configuration(const std::string& name) {
    if (name.empty()) return {};
    return "FRIENDLYNAME \"" + name +
           "\"\nDEVICENAME /dev/null:" + std::to_string(VirtualReaders::first_port) +
           "\nLIBPATH " VPCD_DRIVER "\nCHANNELID " + std::to_string(VirtualReaders::first_port) + "\n";
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
    service_.reset();
    std::error_code error;
    fs::remove_all(folder_, error);
}

void VirtualReaders::start(const std::string& name) {
    std::ofstream(folder_ / "conf/readers") << configuration(name);
    // It also ends by itself when nobody has asked it anything for a minute.
    service_.emplace(std::vector<std::string>{PCSCD, "-f", "-x", "-c", folder_ / "conf"}, folder_ / "log");
    const bool up =
        comes_true([&] { return fs::exists(service_folder / "pcscd.comm") || !service_->runs(); });
    if (up && service_->runs()) return;
    std::ifstream log(folder_ / "log");
    throw std::runtime_error("The PC/SC service did not start. " +
                             std::string(std::istreambuf_iterator<char>(log), {}));
}

void VirtualReaders::stop() {
    service_.reset();
    fs::remove_all(service_folder);
}

void VirtualReaders::await_card(const std::string& reader, bool present) {
    SCARDCONTEXT context = 0;
    (void)::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context);
    const auto shown = [&] {
        SCARD_READERSTATE state{};
        state.szReader = reader.c_str();
        const auto wanted = static_cast<DWORD>(present ? SCARD_STATE_PRESENT : SCARD_STATE_EMPTY);
        return ::SCardGetStatusChange(context, 0, &state, 1) == SCARD_S_SUCCESS &&
               (state.dwEventState & wanted) != 0;
    };
    const bool seen = comes_true(shown);
    (void)::SCardReleaseContext(context);
    if (!seen) throw std::runtime_error("The PC/SC service does not show it: " + reader);
}

} // namespace simcard
