#include "host/cli/LibraryCommand.h"

#include "host/cli/CommandError.h"
#include "host/cli/LibraryFolder.h"
#include "host/cli/LibraryListing.h"
#include "host/cli/VolumeFile.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

struct LibraryArguments
{
    std::string folder;
    std::string file;
    bool json = false;
};

std::string counted(int count, const char* thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

void printTree(const ListedStyle& style, int level)
{
    const int indent = 2 * level;
    std::printf("%*s%s  (%s, %s)%s%s\n", indent, "", style.name.c_str(),
                counted(style.patternCount(), "pattern").c_str(),
                counted(style.barCount(), "bar").c_str(), style.description.empty() ? "" : "  ",
                style.description.c_str());
    for (const ListedPattern& pattern : style.patterns)
        std::printf("%*s%s  %s\n", indent + 2, "", pattern.name.c_str(),
                    pattern.problem.empty() ? counted(pattern.bars, "bar").c_str() : "unreadable");
    for (const ListedStyle& below : style.styles)
        printTree(below, level + 1);
}

Json describe(const ListedStyle& style)
{
    Json patterns = Json::array();
    for (const ListedPattern& pattern : style.patterns) {
        Json entry{{"name", pattern.name}, {"file", pattern.path}, {"bars", pattern.bars}};
        if (!pattern.problem.empty())
            entry["problem"] = pattern.problem;
        patterns.push_back(std::move(entry));
    }
    Json styles = Json::array();
    for (const ListedStyle& below : style.styles)
        styles.push_back(describe(below));
    return {{"name", style.name},
            {"folder", style.path},
            {"description", style.description},
            {"patternCount", style.patternCount()},
            {"barCount", style.barCount()},
            {"patterns", std::move(patterns)},
            {"styles", std::move(styles)}};
}

void list(const LibraryArguments& arguments)
{
    const ListedStyle library = listLibrary(libraryFolder(arguments.folder));
    if (!arguments.json) {
        printTree(library, 0);
        return;
    }
    const auto replace = Json::error_handler_t::replace; // file names may be any bytes
    std::puts(describe(library).dump(2, ' ', false, replace).c_str());
}

void check(const LibraryArguments& arguments)
{
    const ListedStyle library = listLibrary(libraryFolder(arguments.folder));
    const std::vector<ListedPattern> bad = library.unreadable();
    for (const ListedPattern& pattern : bad)
        std::puts(pattern.problem.c_str());
    if (!bad.empty())
        throw CommandError(ExitCode::BadPattern, std::to_string(bad.size()) + " of " +
                                                     counted(library.patternCount(), "pattern") +
                                                     " cannot be played");
    std::printf("%s: all %s can be played\n", library.path.c_str(),
                counted(library.patternCount(), "pattern").c_str());
}

void print(const char* done, const std::string& what, const VolumeCount& count)
{
    std::printf("%s %s: %s in %s\n", done, what.c_str(), counted(count.patterns, "pattern").c_str(),
                counted(count.styles, "style").c_str());
}

CLI::App* addPair(CLI::App& command, const char* name, const char* help,
                  const std::shared_ptr<LibraryArguments>& arguments, bool folderFirst)
{
    CLI::App* pair = command.add_subcommand(name, help);
    const auto addFolder = [&] { pair->add_option("folder", arguments->folder)->required(); };
    if (folderFirst)
        addFolder();
    pair->add_option("file", arguments->file, "Volume file")->required();
    if (!folderFirst)
        addFolder();
    return pair;
}

} // namespace

void addLibraryCommand(CLI::App& app)
{
    auto arguments = std::make_shared<LibraryArguments>();
    CLI::App* command = app.add_subcommand("library", "List, check and pack a library of patterns");
    command->require_subcommand(0, 1);
    command->add_option("folder", arguments->folder, "Folder of styles; else the usual library");
    command->add_flag("--json", arguments->json, "Write JSON for programs");
    command->callback([command, arguments] {
        if (command->get_subcommands().empty())
            list(*arguments);
    });

    CLI::App* checking =
        command->add_subcommand("check", "Name every pattern that cannot be played");
    checking->add_option("folder", arguments->folder, "Folder of styles; else the usual library");
    checking->callback([arguments] { check(*arguments); });

    addPair(*command, "pack", "Write a folder's patterns into one volume file", arguments, true)
        ->callback([arguments] {
            print("packed", arguments->file, packVolume(arguments->folder, arguments->file));
        });
    addPair(*command, "unpack", "Make a folder from a volume file", arguments, false)
        ->callback([arguments] {
            print("unpacked", arguments->folder, unpackVolume(arguments->file, arguments->folder));
        });
}
