#include "bench/timing.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {
namespace {

constexpr int ROUNDS = 301;

double milliseconds(const Work& work) {
    const auto begun = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + ROUNDS / 2, values.end());
    return values[ROUNDS / 2];
}

} // namespace

Turns in_turns(const Work& prepare, const Work& work, const Work& bare) {
    std::vector<double> works, bares, ratios;
    for (int round = 0; round < ROUNDS; ++round) {
        prepare();
        works.push_back(milliseconds(work));
        prepare();
        bares.push_back(milliseconds(bare));
        ratios.push_back(works.back() / bares.back());
    }
    return {median(works), median(bares), median(ratios)};
}

} // namespace bench
