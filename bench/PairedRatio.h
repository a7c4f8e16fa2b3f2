#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

/// Times two operations in turn, floor first, so that a change of the machine's speed meets both.
/// Prints both medians in microseconds, then median and spread of ratio and difference pair by
/// pair, on standard error.
template <typename Floor, typename Subject>
void printPairedRatio(const char *name, int rounds, int callsPerRound, Floor floor, Subject subject)
{
    using Clock = std::chrono::steady_clock;
    const auto timed = [callsPerRound](auto &operation) {
        const auto start = Clock::now();
        for (int call = 0; call < callsPerRound; ++call)
            operation();
        return std::chrono::duration<double, std::micro>(Clock::now() - start).count()
            / callsPerRound;
    };
    std::vector<double> floors;
    std::vector<double> subjects;
    std::vector<double> ratios;
    std::vector<double> differences;
    for (int round = 0; round <= rounds; ++round) {
        const double floorTime = timed(floor);
        const double subjectTime = timed(subject);
        if (round == 0)
            continue; // Warms up.
        floors.push_back(floorTime);
        subjects.push_back(subjectTime);
        ratios.push_back(subjectTime / floorTime);
        differences.push_back(subjectTime - floorTime);
    }
    for (auto *values : {&floors, &subjects, &ratios, &differences})
        std::sort(values->begin(), values->end());
    const auto middle = static_cast<std::size_t>(rounds / 2);
    std::fprintf(stderr,
                 "%-40s floor %9.2f us  subject %9.2f us  ratio %6.3f (%.3f to %.3f)"
                 "  added %9.2f us (%.2f to %.2f)\n",
                 name, floors[middle], subjects[middle], ratios[middle], ratios.front(),
                 ratios.back(), differences[middle], differences.front(), differences.back());
}
