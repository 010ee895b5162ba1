// soak: lives of random clients, one after the other, until the time is over. Ends with status 1 at what must not be.
#include <malloc.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "LimitedAllocation.h"
#include "SoakRound.h"

namespace {

std::vector<std::string> queryNames() {
    std::ifstream names(EXPORTED_NAMES);
    std::vector<std::string> queries;
    for (std::string name; std::getline(names, name);) {
        if (name.ends_with("Impl")) {
            queries.push_back(name);
        }
    }
    return queries;
}

/// Bytes in use of what malloc has given out; hardly any under a sanitizer, which has its own.
std::size_t allocatedMemory() {
    const auto counted = mallinfo2();
    return counted.uordblks + counted.hblkhd;
}

/// The least that was kept behind a client in a quarter of all clients, bytes.
std::size_t leastKept(std::span<const std::size_t> keptMemory, std::size_t quarter) {
    const auto part = keptMemory.subspan(quarter * keptMemory.size() / 4, keptMemory.size() / 4);
    return *std::min_element(part.begin(), part.end());
}

/// Tells a steady growth of what is kept behind clients. What is learnt for good (what FFTW knows of lengths, words of
/// refusals, tables made once) grew by 214 KiB at the most, among the first hundred clients, and by 90 KiB behind them.
void checkGrowth(std::span<const std::size_t> keptMemory, soak::Tally& tally) {
    constexpr std::size_t most = 512 * 1024;
    if (keptMemory.size() < 4) {
        return;
    }
    const std::size_t early = leastKept(keptMemory, 1);
    const std::size_t late = leastKept(keptMemory, 3);
    std::printf("kept behind clients: %.1f KiB in the second quarter, %.1f KiB in the last\n",
                static_cast<double>(early) / 0x1p10, static_cast<double>(late) / 0x1p10);
    if (late > early + most) {
        tally.faults.emplace_back("what is kept behind clients grows");
    }
}

/// Memory that the process holds, MiB.
double residentMemory() {
    std::ifstream statm("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 0x1p20;
}

void print(const soak::Tally& tally, bool showRefusals) {
    std::printf("%llu clients, %llu steps, %llu frames, %llu messages, %llu queries, messages' hash %016llx\n",
                static_cast<unsigned long long>(tally.rounds), static_cast<unsigned long long>(tally.steps),
                static_cast<unsigned long long>(tally.frames), static_cast<unsigned long long>(tally.messages),
                static_cast<unsigned long long>(tally.queries), static_cast<unsigned long long>(tally.messageHash));
    for (const auto& [text, count] : tally.refusals) {
        if (showRefusals) {
            std::printf("%8llu  %s\n", static_cast<unsigned long long>(count), text.c_str());
        }
    }
    for (const std::string& fault : tally.faults) {
        std::printf("FAULT %s\n", fault.c_str());
    }
}

int soakFor(double seconds, std::uint64_t seed, int steps, bool isVerbose) {
    using Clock = std::chrono::steady_clock;
    const wavedeck::driver::StageLibrary library(STAGE_LIBRARY);
    const auto forms = soak::findChainForms(library);
    const auto queries = queryNames();
    const auto begin = Clock::now();
    const auto elapsed = [begin] { return std::chrono::duration<double>(Clock::now() - begin).count(); };
    soak::Tally tally;
    std::vector<std::size_t> keptMemory;
    do {
        const double before = elapsed();
        {
            soak::SoakRound round(library, forms, queries, seed, tally);
            // Printed ahead of the round: the last line tells what a crash needs to be seen again.
            std::fprintf(stderr, isVerbose ? "seed %llu %s\n" : "\rseed %llu %-20s",
                         static_cast<unsigned long long>(seed), round.chainKind());
            round.run(steps);
        }
        keptMemory.push_back(allocatedMemory());
        if (elapsed() - before > 5.0) {
            std::printf("seed %llu took %.1f s\n", static_cast<unsigned long long>(seed), elapsed() - before);
        }
        if (!tally.faults.empty()) {
            std::printf("\nseed %llu\n", static_cast<unsigned long long>(seed));
            break;
        }
        ++seed;
    } while (elapsed() < seconds);
    std::printf("\nnext seed %llu; resident memory %.1f MiB\n", static_cast<unsigned long long>(seed),
                residentMemory());
    checkGrowth(keptMemory, tally);
    print(tally, isVerbose);
    return tally.faults.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        double seconds = 10.0;
        std::uint64_t seed = 1;
        int steps = 150;
        bool isVerbose = false;
        CLI::App app("Random sequences of everything that a host does, through all stages in all chains");
        app.add_option("--seconds", seconds, "how long; 0: one client")->capture_default_str();
        app.add_option("--seed", seed, "of the first client; each further client has the next one")
            ->capture_default_str();
        app.add_option("--steps", steps, "steps in the life of a client")->capture_default_str();
        app.add_flag("--verbose", isVerbose, "list every seed, and what stages refused");
        CLI11_PARSE(app, argc, argv);
        std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
        // Options that ask for absurd resolutions meet the exception that they would meet on a full machine, and the
        // soak neither fills the machine nor computes for minutes.
        const testsupport::AllocationLimit limit(std::size_t{1} << 26U);
        return soakFor(seconds, seed, steps, isVerbose);
    } catch (const std::exception& thrown) {
        std::printf("\n%s\n", thrown.what());
        return 2;
    }
}
