// How long the library's flows take beside what they do outside it: the same calls of the module made bare and the same
// entries of the log written bare, in their order, in turns with the flow. Prints a line for each: title, milliseconds of
// the flow and of the bare one, their ratio, the number of calls and of entries, separated by tabs.
#include "bench/bare_log.h"
#include "bench/recorder.h"
#include "bench/timing.h"
#include "diag/log.h"
#include "tests/sweeps/bench.h"

#include <cstdio>

namespace {

namespace fs = std::filesystem;
using zvtest::SweepCard;
using Use = void (*)(SweepCard&);

void read(SweepCard& host) {
    host.read();
}
void request(SweepCard& host) {
    host.request();
}
void issue(SweepCard& host) {
    host.certificate = host.issue();
}
template <bool keep> void save(SweepCard& host) {
    host.save(host.certificate, keep);
}

// What a host calls, and what went before it.
struct TimedFlow {
    const char* title;
    std::vector<Use> before;
    Use run;
};

const TimedFlow FLOWS[] = {
    {"reading", {read}, read},
    {"request, new pair", {read}, request},
    {"request, pending pair", {read, request}, request},
    {"installing, old pair kept", {read, request, issue}, save<true>},
    {"installing, old pair removed", {read, request, issue}, save<false>},
};

void print_line(const char* title, const bench::Turns& turns, std::size_t calls, std::size_t entries) {
    std::printf("%s\t%.3f\t%.3f\t%.3f\t%zu\t%zu\n", title, turns.work, turns.bare, turns.ratio, calls,
                entries);
}

// A flow on a card that is as it was before each time.
class Measured {
  public:
    explicit Measured(const TimedFlow& flow) : flow_(flow), copy_(host_.log.folder() / "card") {
        for (const Use use : flow_.before)
            use(host_);
        fs::copy(host_.card.folder, copy_, fs::copy_options::recursive);
        host_.log.clear();
        bench::Recorder recorder(*host_.module.list(), host_.log.path());
        flow_.run(host_);
        calls_ = std::move(recorder.calls);
        entries_ = bench::entries_of(host_.log.raw());
    }

    void print() {
        print_line(flow_.title,
                   bench::in_turns([&] { prepare(); }, [&] { flow_.run(host_); }, [&] { run_bare(); }),
                   calls_.size(), entries_.size());
    }

  private:
    void prepare() {
        for (const auto& entry : fs::directory_iterator(host_.card.folder))
            fs::remove_all(entry.path());
        fs::copy(copy_, host_.card.folder, fs::copy_options::recursive);
        host_.log.clear();
        for (bench::KeptCall& kept : calls_)
            kept.rewind();
    }
    void run_bare() {
        std::size_t written = 0;
        auto entry = entries_.begin();
        const auto write_next = [&] {
            written += entry->size();
            bench::write_bare(host_.log.path(), *entry++);
        };
        for (const bench::KeptCall& kept : calls_) {
            while (written < kept.log_size)
                write_next();
            if (kept.call.invoke(*host_.module.list(), kept.call.arguments) != kept.result) std::abort();
        }
        while (entry != entries_.end())
            write_next();
    }

    const TimedFlow& flow_;
    SweepCard host_{"signature"};
    fs::path copy_;
    std::vector<bench::KeptCall> calls_;
    std::vector<std::string> entries_;
};

void print_log() {
    constexpr std::size_t ENTRIES = 128;
    zvtest::LogFile log;
    const auto write = [] {
        for (std::size_t i = 0; i < ENTRIES; ++i)
            zv::write_entry("C_GetAttributeValue", "CKA_ID", "DS3");
    };
    write();
    const auto entries = bench::entries_of(log.raw());
    const auto write_bare = [&] {
        for (const std::string& entry : entries)
            bench::write_bare(log.path(), entry);
    };
    print_line("entries of the log", bench::in_turns([&] { log.clear(); }, write, write_bare), 0,
               entries.size());
}

} // namespace

int main() {
    for (const TimedFlow& flow : FLOWS)
        Measured(flow).print();
    print_log();
}
