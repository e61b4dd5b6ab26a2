// Memory that runs out: at one of the allocations that a host's call makes outside the card's module.
#include "pkcs11/forwarding.h"
#include "tests/sweeps/bench.h"

#include <cerrno>
#include <new>
#include <utility>

namespace {

bool armed = false;
unsigned long made = 0, refused_at = 0;

// Once in a process.
bool refused() {
    if (!armed || ++made != refused_at) return false;
    refused_at = 0, errno = ENOMEM;
    return true;
}

// What a card's module does without memory is its own affair: SoftHSM ends the process.
CK_FUNCTION_LIST module;
CK_RV around(const pkcs11::Call& call) noexcept {
    const bool before = std::exchange(armed, false);
    const CK_RV result = call.invoke(module, call.arguments);
    armed = before;
    return result;
}

} // namespace

#pragma GCC visibility push(default)
#define REFUSING(name, parameters, arguments)                                                                \
    extern "C" void* __libc_##name parameters;                                                               \
    extern "C" void* name parameters {                                                                       \
        return refused() ? nullptr : __libc_##name arguments;                                                \
    }
REFUSING(malloc, (std::size_t size), (size))
REFUSING(calloc, (std::size_t count, std::size_t size), (count, size))
REFUSING(realloc, (void* old, std::size_t size), (old, size))
#pragma GCC visibility pop

// The linker leads the entry points' names here: see --wrap.
#define ENTRY(name, parameters, arguments)                                                                   \
    extern "C" int __real_rinnovo_Card_##name parameters;                                                    \
    extern "C" int __wrap_rinnovo_Card_##name parameters {                                                   \
        made = 0, armed = true;                                                                              \
        const int result = __real_rinnovo_Card_##name arguments;                                             \
        armed = false;                                                                                       \
        return result;                                                                                       \
    }
ENTRY(readCerts,
      (char* a, char* b, int c, char** d, char** e, char** f, int* g, int* h, int* i, char* j, char* k,
       char* l, const char* m),
      (a, b, c, d, e, f, g, h, i, j, k, l, m))
ENTRY(findFreeCKAID, (char* a, char* b, char* c, char* d), (a, b, c, d))
ENTRY(createCertRequestPRA, (char* a, const char* b, char* c, char* d, const char* e, bool f),
      (a, b, c, d, e, f))
ENTRY(saveCertPRA, (char* a, char* b, char* c, char* d, bool e), (a, b, c, d, e))

namespace {

using namespace zvtest;

// Refuses so many allocations of a flow, evenly spread, each in a run of its own.
void refuse_in(const FlowPlan& plan, unsigned long cases) {
    refused_at = 0;
    Bench bench(plan);
    const unsigned long all = made;
    ASSERT_GT(all, 0u) << plan.name;
    const Trial& good = bench.undisturbed;
    const auto is_good = [&](const Attempt& attempt, const Objects& objects) {
        return attempt.result == 0 && attempt.data == good.first.data && objects == good.after;
    };
    for (unsigned long at = 1; at <= all; at += std::max(all / cases, 1UL)) {
        refused_at = at;
        const Trial trial = bench.run("", 0);
        const auto& [first, second] = std::tie(trial.first, trial.second);
        // A field of a certificate that cannot be read is an empty one.
        const bool lacks = has(plan.name, "read") && first.result == 0 && trial.between == good.after;
        EXPECT_TRUE(lacks || is_good(first, trial.between) || is_good(second, trial.after) ||
                    is_good(trial.remedy, trial.remedied))
            << plan.name << ", allocation " << at << ": " << first.result << ", then " << second.result;
        EXPECT_FALSE(trial.crashed || trial.leaked || trial.stuck || first.spent_try || second.spent_try)
            << plan.name << ", allocation " << at;
    }
}

// ZV_MEMORY_CASES=10000 refuses every allocation.
TEST(Memory, RunsOut) {
    const Module loaded;
    module = *loaded.list();
    *loaded.list() = pkcs11::forwarding_list<around>();
    ::setenv("ZVSIMCARD_KEYS", ZV_TEST_KEYS, 1);
    const char* cases = std::getenv("ZV_MEMORY_CASES");
    for (const FlowPlan& plan : flow_plans())
        if (has("read free request install-delete", plan.name))
            refuse_in(plan, std::strtoul(cases != nullptr ? cases : "6", nullptr, 10));
    *loaded.list() = module;
}

} // namespace
