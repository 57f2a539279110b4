// Measures ours beside the floor and the peers. Every result is checked before anything is timed.
#include "bench/FileSubject.h"
#include "bench/ScanSubject.h"

#include <benchmark/benchmark.h>
#include <cstdio>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    for (const auto add : {bench::addFileBenchmarks, bench::addSliceBenchmarks,
                           bench::addRenderBenchmarks, bench::addLibraryBenchmarks}) {
        if (const std::string wrong = add(); !wrong.empty()) {
            std::fprintf(stderr, "looper_bench: %s\n", wrong.c_str());
            return 1;
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
