// Runs the benchmarks. The engine's trace goes to std::cout, which is muted; the report goes past it.
#include <benchmark/benchmark.h>

#include <iostream>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    std::ostream report(std::cout.rdbuf());
    std::cout.setstate(std::ios::failbit);
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    reporter.SetOutputStream(&report);
    reporter.SetErrorStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
