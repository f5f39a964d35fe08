// Memory: how far the resident memory of a process grows while it does a job.
#pragma once

#include <functional>
#include <string>

namespace bench {

using Task = std::function<void()>;

// prepare makes the job's input and gives the job. Both run in a process of their own; what counts is the peak of its
// memory during the job beyond what it held before it, and the job has run once in small, to load what it needs, where
// prepare sees to that. Prints one line, in MiB.
void MeasureMemory(const std::string& job, const std::string& contestant, const std::function<Task()>& prepare);

}  // namespace bench
