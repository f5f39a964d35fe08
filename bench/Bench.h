// Bench: what every benchmark program shares. A job is run by several contestants and each pair is one benchmark,
// named "job/contestant". At the end a table gives, for each job, the median of every contestant and the
// ratio of ours to it. The rounds of all contestants are interleaved, so that a slow moment of the machine hits all.
#pragma once

#include <benchmark/benchmark.h>
#include <cstddef>
#include <functional>
#include <string>

namespace bench {

inline constexpr char kOurs[] = "mailengine";  // the contestant that the others are compared to
inline constexpr char kLimit[] = "memcpy";     // what the machine can do; no peer
inline constexpr char kCopy[] = "copy";        // the same, where the job makes a file

// Adds a contestant. run does the job once over; amount is what it does then, in bytes, or in items if unit is
// Unit::Items. Time is wall clock, since some contestants are other processes.
enum class Unit { Bytes, Items };
benchmark::internal::Benchmark* Add(const std::string& job, const std::string& contestant, std::size_t amount,
                                    std::function<void()> run, Unit unit = Unit::Bytes);

// The seconds of processor time that run takes of this process: what stays comparable while the machine does other
// things, where run never waits.
double ProcessorTime(const std::function<void()>& run);

// Adds a contestant that takes its own time: run does the job once over and gives the seconds.
benchmark::internal::Benchmark* AddTimed(const std::string& job, const std::string& contestant, std::size_t amount,
                                         std::function<double()> run, Unit unit = Unit::Bytes);

// Adds a line to the table for each contestant that does both jobs: the time of larger for a byte, or an item, over
// that of smaller.
void Compare(const std::string& larger, const std::string& smaller);

// Runs all that was added, with 9 rounds unless the arguments (those of Google Benchmark) say otherwise, and prints
// the table. The result is the exit status.
int Run(int argc, char** argv);

// Ends the program with a word on stderr if a contestant's result is wrong: a fast wrong answer is no yardstick.
void Require(bool good, const std::string& what);

}  // namespace bench
