// How long it takes to find the module for a card in a configuration of many entries, through the exported
// operation. "Unchanged" is what a host meets that looks cards up again and again; "Rewritten" pays for reading
// and parsing the file each time.
#include "zvCrypt.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

// Long patterns that differ only near their ends, each with wildcards: what takes longest to compare.
std::string pattern(long number) {
    char digits[9];
    (void)std::snprintf(digits, sizeof digits, "%08lX", number);
    return std::string("3B FF 18 00 FF 81 31 FE 55 00 6B 02 09 .. .. 01 ") + digits + " 43 4E 53 10 31 80 ..";
}

class Configuration {
  public:
    explicit Configuration(long entries) {
        std::string name = (std::filesystem::temp_directory_path() / "zvcrypt-bench-XXXXXX").string();
        folder_ = ::mkdtemp(name.data());
        ::setenv("ZVCRYPT_CONF", path().c_str(), 1);
        std::ofstream file(path());
        for (long i = 1; i <= entries; ++i)
            file << "[card " << i << "]\natr = " << pattern(i) << "\nmodule = libmodule.so\nflags = cns\n";
        // The last entry's card, and one that no entry has: every entry is compared.
        file << "[reader last]\natr = " << atr(entries) << "\n[reader unknown]\natr = " << atr(0) << "\n";
        file.close();
        date(1);
    }
    ~Configuration() { std::filesystem::remove_all(folder_); }
    Configuration(const Configuration&) = delete;
    Configuration& operator=(const Configuration&) = delete;

    // Gives the file another date, seconds after 1970.
    void date(time_t seconds) const {
        const timespec times[] = {{seconds, 0}, {seconds, 0}};
        (void)::utimensat(AT_FDCWD, path().c_str(), times, 0);
    }

  private:
    [[nodiscard]] std::string path() const { return (folder_ / "zvcrypt.conf").string(); }
    static std::string atr(long number) {
        std::string text = pattern(number);
        for (std::size_t at = 0; (at = text.find("..", at)) != std::string::npos;)
            text.replace(at, 2, "00");
        return text;
    }

    std::filesystem::path folder_;
};

void look_up(benchmark::State& state, const char* name, bool known) {
    std::string reader = name;
    char module[ZVC_MODULE_NAME_SIZE];
    if (kvGetPKCS11FromATR(reader.data(), module) != ZVC_OK || (module[0] != '\0') != known)
        state.SkipWithError("the lookup went wrong");
}

void Unchanged(benchmark::State& state) {
    const Configuration configuration(state.range(0));
    look_up(state, "last", true);
    for (auto _ : state)
        look_up(state, "last", true);
}

void UnchangedUnknownCard(benchmark::State& state) {
    const Configuration configuration(state.range(0));
    look_up(state, "unknown", false);
    for (auto _ : state)
        look_up(state, "unknown", false);
}

void Rewritten(benchmark::State& state) {
    const Configuration configuration(state.range(0));
    time_t day = 1;
    for (auto _ : state) {
        state.PauseTiming();
        configuration.date(++day);
        state.ResumeTiming();
        look_up(state, "last", true);
    }
}

BENCHMARK(Unchanged)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(UnchangedUnknownCard)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Rewritten)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
