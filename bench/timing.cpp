#include "bench/timing.h"

#include <algorithm>
#include <chrono>

namespace bench {
namespace {

constexpr int ROUNDS = 301;

double milliseconds(const Work& work) {
    const auto begun = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
}

} // namespace

std::vector<double> in_turns(const Work& prepare, const std::vector<Work>& works) {
    std::vector<std::vector<double>> times(works.size());
    for (int round = 0; round < ROUNDS; ++round)
        for (std::size_t i = 0; i < works.size(); ++i) {
            prepare();
            times[i].push_back(milliseconds(works[i]));
        }
    std::vector<double> medians;
    for (auto& of : times) {
        std::nth_element(of.begin(), of.begin() + ROUNDS / 2, of.end());
        medians.push_back(of[ROUNDS / 2]);
    }
    return medians;
}

} // namespace bench
