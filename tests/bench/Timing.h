// Timing.h: how the benches time a piece of work, and the table line that they print for it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

constexpr int kRounds = 7;

inline double Seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// Runs it in a process of its own, as a request is: what an earlier run left in the heap plays no
// part.
inline double InProcess(const std::function<double()>& run) {
    int ends[2];
    if (pipe(ends) != 0) exit(2);
    if (fork() == 0) {
        const double seconds = run();
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 2);
    }
    double seconds = 0;
    if (read(ends[0], &seconds, sizeof seconds) != sizeof seconds) exit(2);
    wait(nullptr);
    close(ends[0]);
    close(ends[1]);
    return seconds;
}

// The shortest of several runs: what the work costs when nothing else is in its way.
inline double Best(const std::function<double()>& run) {
    double best = InProcess(run);
    for (int round = 1; round < kRounds; ++round)
        best = std::min(best, InProcess(run));
    return best;
}

// A line of the table.
inline void Row(const char* what, double ratio, const char* aim, const std::string& detail) {
    printf("%-58s %8.3f   aim %-8s %s\n", what, ratio, aim, detail.c_str());
}

inline std::string Milliseconds(const std::vector<double>& seconds) {
    std::string text;
    char number[32];
    for (const double s : seconds) {
        snprintf(number, sizeof number, "%s%.1f", text.empty() ? "" : ", ", s * 1e3);
        text += number;
    }
    return text + " ms at 1x, 2x, 4x";
}

// `run` answers the seconds for a size; the ratio is what four times the input costs, for its size,
// against once.
inline void Linear(const char* what, size_t size, const std::function<double(size_t)>& run) {
    std::vector<double> seconds;
    for (const size_t factor : {1, 2, 4})
        seconds.push_back(Best([&] { return run(size * factor); }));
    Row(what, seconds[2] / seconds[0] / 4, "~ 1", Milliseconds(seconds));
}
