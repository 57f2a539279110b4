#include "host/cli/StateCommand.h"

#include "host/cli/CommandError.h"
#include "host/cli/StateDump.h"
#include "platform/os/WholeFile.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

/// More than any pattern takes.
constexpr std::size_t kMostBytes = 256UL * 1024 * 1024;

struct DumpArguments
{
    std::string file;
    bool json = false;
};

std::string readChunk(const std::string& path)
{
    std::string chunk;
    switch (platform::readWholeFile(path, kMostBytes, chunk)) {
    case platform::FileRead::Done:
        return chunk;
    case platform::FileRead::Missing:
        throw CommandError(ExitCode::BadPattern, path + ": does not exist");
    case platform::FileRead::TooLarge:
        throw CommandError(ExitCode::BadPattern, path + ": is too large to be a state chunk");
    default:
        throw CommandError(ExitCode::BadPattern, path + ": cannot be read");
    }
}

void printWords(const StateDump& dump)
{
    std::printf("%8s %8s  %-16s %s\n", "offset", "bytes", "field", "value");
    for (const StateField& field : dump.fields) {
        std::printf("%8zu %8zu  %-16s ", field.offset, field.bytes, field.name);
        if (const auto* number = std::get_if<long long>(&field.value))
            std::printf("%lld\n", *number);
        else
            std::printf("%s\n", std::get<std::string>(field.value).c_str());
    }
}

void printJson(const StateDump& dump)
{
    Json fields = Json::array();
    for (const StateField& field : dump.fields) {
        Json entry{{"field", field.name}, {"offset", field.offset}, {"bytes", field.bytes}};
        std::visit([&](const auto& value) { entry["value"] = value; }, field.value);
        fields.push_back(std::move(entry));
    }
    Json problems = Json::array();
    for (const StateProblem& problem : dump.problems)
        problems.push_back({{"offset", problem.offset}, {"problem", problem.what}});
    const Json all{{"fields", std::move(fields)}, {"problems", std::move(problems)}};
    std::puts(all.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

void dump(const DumpArguments& arguments)
{
    const StateDump state = dumpState(readChunk(arguments.file));
    if (arguments.json)
        printJson(state);
    else
        printWords(state);
    std::fflush(stdout);
    for (std::size_t i = 0; i + 1 < state.problems.size(); ++i)
        std::fprintf(stderr, "looper: %s: at byte %zu: %s\n", arguments.file.c_str(),
                     state.problems[i].offset, state.problems[i].what.c_str());
    if (!state.problems.empty())
        throw CommandError(ExitCode::BadPattern, arguments.file + ": at byte " +
                                                     std::to_string(state.problems.back().offset) +
                                                     ": " + state.problems.back().what);
}

} // namespace

void addStateCommand(CLI::App& app)
{
    auto arguments = std::make_shared<DumpArguments>();
    CLI::App* command = app.add_subcommand("state", "Look into a project's state chunk");
    command->require_subcommand(1);
    CLI::App* dumping =
        command->add_subcommand("dump", "Print the fields of a chunk, and name what is damaged");
    dumping->add_option("file", arguments->file, "File that holds the chunk alone")->required();
    dumping->add_flag("--json", arguments->json, "Write JSON for programs");
    dumping->callback([arguments] { dump(*arguments); });
}
