#pragma once

#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unistd.h>

namespace orbinex {

/// Prints the table and keeps the medians, for the ratios that are printed after it.
class MedianReporter final : public benchmark::ConsoleReporter {
  public:
    MedianReporter() : ConsoleReporter(::isatty(STDOUT_FILENO) != 0 ? OO_Color : OO_None) {}

    /// Processor time by the benchmark's name, in its unit.
    std::map<std::string, double> medians;

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median")
                medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace orbinex
