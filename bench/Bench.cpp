#include <algorithm>
#include <bench/Bench.h>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <map>
#include <utility>
#include <vector>

namespace bench {
namespace {

// A list for each contestant, one value a round.
using Speeds = std::map<std::string, std::vector<double>>;

struct Job {
    const char* unit = "";
    Speeds speeds;
};

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

using JobPairs = std::vector<std::pair<std::string, std::string>>;

JobPairs& Comparisons() {
    static JobPairs pairs;
    return pairs;
}

// Keeps the rounds and prints nothing but the table; --benchmark_out gives the rounds themselves.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override {
        PrintBasicContext(&std::cerr, context);
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) Keep(run);
    }

    void Finalize() override {
        std::printf("%-26s %-12s %14s %12s\n", "job", "contestant", "median", "ours is");
        for (const auto& [name, job] : m_jobs)
            Print(name, job);
        for (const auto& [larger, smaller] : Comparisons())
            if (m_jobs.count(larger) != 0 && m_jobs.count(smaller) != 0) PrintComparison(larger, smaller);
    }

private:
    void Keep(const Run& run) {
        const std::string& name = run.run_name.function_name;
        const std::size_t slash = name.rfind('/');
        for (const char* counter : {kBytes, kItems})
            if (const auto found = run.counters.find(counter); found != run.counters.end()) {
                Job& job = m_jobs[name.substr(0, slash)];
                job.unit = counter == kBytes ? "MB/s" : "/s";
                job.speeds[name.substr(slash + 1)].push_back(found->second.value / (counter == kBytes ? 1e6 : 1));
            }
    }

    static void Print(const std::string& name, const Job& job) {
        const Speeds& speeds = job.speeds;
        const auto ours = speeds.find(kOurs);
        const double own = ours == speeds.end() ? 0 : Median(ours->second);
        double best = 0;
        for (const auto& [contestant, values] : speeds) {
            const double median = Median(values);
            if (contestant != kOurs && contestant != kLimit && contestant != kCopy) best = std::max(best, median);
            std::printf("%-26s %-12s %9.0f %-4s %10.2f x\n", name.c_str(), contestant.c_str(), median, job.unit,
                        own / median);
        }
        if (best > 0) std::printf("%-26s %-12s %14s %10.2f x\n", name.c_str(), "best peer", "", own / best);
    }

    void PrintComparison(const std::string& larger, const std::string& smaller) {
        const Speeds& speeds = m_jobs[smaller].speeds;
        for (const auto& [contestant, values] : m_jobs[larger].speeds)
            if (const auto found = speeds.find(contestant); found != speeds.end())
                std::printf("%-26s %-12s %.2f x the time that each takes in %s\n", larger.c_str(), contestant.c_str(),
                            Median(found->second) / Median(values), smaller.c_str());
    }

    static constexpr char kBytes[] = "bytes_per_second";
    static constexpr char kItems[] = "items_per_second";

    std::map<std::string, Job> m_jobs;
};

void SetAmount(benchmark::State& state, std::size_t amount, Unit unit) {
    const auto all = state.iterations() * static_cast<std::int64_t>(amount);
    unit == Unit::Bytes ? state.SetBytesProcessed(all) : state.SetItemsProcessed(all);
}

}  // namespace

benchmark::internal::Benchmark* Add(const std::string& job, const std::string& contestant, std::size_t amount,
                                    std::function<void()> run, Unit unit) {
    const auto loop = [amount, run, unit](benchmark::State& state) {
        for (auto _ : state)
            run();
        SetAmount(state, amount, unit);
    };
    return benchmark::RegisterBenchmark((job + "/" + contestant).c_str(), loop)->UseRealTime();
}

double ProcessorTime(const std::function<void()>& run) {
    timespec begin{}, end{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &begin);
    run();
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &end);
    return static_cast<double>(end.tv_sec - begin.tv_sec) + 1e-9 * static_cast<double>(end.tv_nsec - begin.tv_nsec);
}

benchmark::internal::Benchmark* AddTimed(const std::string& job, const std::string& contestant, std::size_t amount,
                                         std::function<double()> run, Unit unit) {
    const auto loop = [amount, run, unit](benchmark::State& state) {
        for (auto _ : state)
            state.SetIterationTime(run());
        SetAmount(state, amount, unit);
    };
    return benchmark::RegisterBenchmark((job + "/" + contestant).c_str(), loop)->UseManualTime();
}

void Compare(const std::string& larger, const std::string& smaller) {
    Comparisons().emplace_back(larger, smaller);
}

int Run(int argc, char** argv) {
    std::vector<std::string> defaults{"--benchmark_repetitions=9", "--benchmark_min_time=0.05",
                                      "--benchmark_enable_random_interleaving=true"};
    std::vector<char*> arguments(argv, argv + argc);
    for (std::size_t i = 0; i < defaults.size(); ++i)
        arguments.insert(arguments.begin() + 1 + static_cast<std::ptrdiff_t>(i), defaults[i].data());
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return EXIT_FAILURE;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}

void Require(bool good, const std::string& what) {
    if (good) return;
    std::cerr << what << '\n';
    std::exit(EXIT_FAILURE);
}

}  // namespace bench
