// Reading and writing, by everyone.
#include "bench/FileSubject.h"

#include <benchmark/benchmark.h>

namespace bench {

namespace {

struct Row
{
    const InputFile* file;
    FileSubject* subject;
};

void measureRead(benchmark::State& state, Row row)
{
    row.subject->read(row.file->bytes); // the song before it may be a larger one
    for (auto _ : state)
        row.subject->read(row.file->bytes);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(row.file->bytes.size()));
}

void measureWrite(benchmark::State& state, Row row)
{
    row.subject->read(row.file->bytes);
    for (auto _ : state)
        row.subject->write();
}

std::string checkNotes(const Row& row)
{
    const auto complain = [&](const char* what, std::size_t found) {
        return row.file->name + ": " + row.subject->name() + " " + what + " " +
               std::to_string(found) + " notes of " + std::to_string(row.file->notes);
    };
    row.subject->read(row.file->bytes);
    if (row.subject->notes() != row.file->notes)
        return complain("reads", row.subject->notes());
    if (!row.subject->writes(*row.file))
        return {};
    row.subject->write();
    if (const std::size_t found = countNotes(row.subject->written()); found != row.file->notes)
        return complain("writes", found);
    return {};
}

} // namespace

std::string addFileBenchmarks()
{
    static const std::vector<InputFile> files = makeFiles();
    static std::vector<std::unique_ptr<FileSubject>> subjects;
    for (const auto make : {makeOurs, makeFloor, makeJuce, makeLibsmf, makePortsmf, makeDrumstick})
        subjects.push_back(make());

    for (const InputFile& file : files) {
        benchmark::AddCustomContext(file.name, std::to_string(file.bytes.size()) + " bytes, " +
                                                   std::to_string(file.notes) + " notes");
        if (std::string wrong = compareOursWithFloor(file); !wrong.empty())
            return wrong;
        for (const auto& subject : subjects) {
            const Row row{&file, subject.get()};
            if (std::string wrong = checkNotes(row); !wrong.empty())
                return wrong;
            const std::string tail = "/" + file.name + "/" + subject->name();
            benchmark::RegisterBenchmark(("read" + tail).c_str(), measureRead, row);
            if (subject->writes(file))
                benchmark::RegisterBenchmark(("write" + tail).c_str(), measureWrite, row);
        }
    }
    return {};
}

} // namespace bench
