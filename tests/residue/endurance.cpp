// endurance_run READINGS RENEWALS KIB: reads and renews one card over and over in one process. Prints what the process held
// meanwhile; exits with 1 when a call went wrong, something was kept, the log grew too long, or memory grew by more KiB.
#include "tests/flows/flow.h"

#include <dlfcn.h>

#include <iostream>

namespace {

namespace fs = std::filesystem;

void require(bool right, const std::string& what) {
    if (!right) throw std::runtime_error("Not as it is to be: " + what + ' ' + szBuffErr);
}

long memory_in_kib() {
    long memory = 0;
    FILE* ps = ::popen(("ps -o rss= -p " + std::to_string(::getpid())).c_str(), "r");
    require(std::fscanf(ps, "%ld", &memory) == 1 && ::pclose(ps) == 0, "the memory");
    return memory;
}

// Handles are given from the lowest on: one that is kept moves it up.
int free_handle() {
    const int handle = ::dup(1);
    return ::close(handle), handle;
}

class Endurance : public zvtest::Flow {
  public:
    Endurance() { fs::create_directory(modules_), fs::copy_file(path(), copy_); }
    void TestBody() override {}

    void read(std::string pin = PIN, int result = 0) {
        reading_ = zvtest::read_card(READER, pin.data(), modules_);
        check("reading", reading_.result == result);
    }
    void renew() {
        read();
        const std::string pending = reading_.key_pra, old = std::exchange(in_use_, pending);
        subject = reading_.subject();
        check("request", request(pending, old) == 0),
            check("installing", save(issue(), false, old, pending) == 0);
        read();
        require(zvtest::has(reading_.pra.at(0), "#" + pending), "the new certificate");
    }
    void row(long readings, long renewals) {
        const int handle = free_handle();
        std::ifstream maps("/proc/self/maps");
        std::cout << "| " << readings << " | " << renewals << " | " << memory_in_kib() << " | " << handle
                  << " | " << std::count(std::istreambuf_iterator<char>(maps), {}, '\n') << " | " << most_log_
                  << " | " << rotations_ << " |" << std::endl;
    }

  private:
    void check(const char* what, bool right) {
        require(right, what);
        require(::dlopen(copy_.c_str(), RTLD_NOW | RTLD_NOLOAD) == nullptr, "the module is still loaded");
        require(free_handle() == handle_, "a file is still open");
        const std::uintmax_t size = fs::file_size(log.path());
        // The last lines of a call come after its last look at the log's size.
        require(size <= 0x100000 + 1024, "the log is too long");
        if (size < last_log_ && ++rotations_ > 0)
            require(fs::file_size(log.path().string() + ".1") == 0, "the rotated log");
        most_log_ = std::max(most_log_, last_log_ = size);
    }

    // A copy of the module, which only the library loads.
    const fs::path modules_ = log.folder() / "modules", copy_ = modules_ / module_path.filename();
    zvtest::Reading reading_;
    std::string in_use_ = "DS0";
    int handle_ = free_handle(), rotations_ = 0;
    std::uintmax_t last_log_ = 0, most_log_ = 0;
};

} // namespace

int main(int, char** argv) try {
    const long readings = std::atol(argv[1]), renewals = std::atol(argv[2]);
    Endurance card;
    long middle = 0, renewed = 0;
    for (long read = 0; read <= readings; ++read) {
        if (renewed * readings < read * renewals) card.renew(), ++renewed;
        // One in ten with a wrong PIN; the next one gives the card its tries back.
        read % 10 == 5 ? card.read("12345670", CKR_PIN_INCORRECT) : card.read();
        if (read * 4 % readings == 0) card.row(read, renewed);
        if (read == readings / 2) middle = memory_in_kib();
    }
    require(memory_in_kib() - middle <= std::atol(argv[3]), "memory grew from the middle to the end");
} catch (const std::exception& error) {
    return std::cout << error.what() << '\n', 1;
}
