// The built bundle, as a host meets it: through the loader and its one exported function.
#include "effect/ILooper.h"
#include "effect/MidiEffect.h"
#include "tests/support/LibraryFolder.h"
#include "tests/support/ListQueue.h"
#include "tests/support/ProcessTally.h"

#include <gtest/gtest.h>

#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Create = Korvanel::MidiEffect* (*)();

/// Names that a loaded file offers to others, read from its dynamic symbol table.
std::vector<std::string> exportedNames(const char* path)
{
    std::ifstream in(path, std::ios::binary);
    const std::string file{std::istreambuf_iterator<char>(in), {}};
    const auto at = [&file](std::size_t offset, auto& record) {
        std::memcpy(&record, file.data() + offset, sizeof record);
    };
    Elf64_Ehdr header{};
    at(0, header);
    std::vector<std::string> names;
    for (int i = 0; i < header.e_shnum; ++i) {
        Elf64_Shdr section{};
        at(header.e_shoff + static_cast<std::size_t>(i) * header.e_shentsize, section);
        if (section.sh_type != SHT_DYNSYM)
            continue;
        Elf64_Shdr strings{};
        at(header.e_shoff + section.sh_link * header.e_shentsize, strings);
        for (std::size_t s = 0; s < section.sh_size; s += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol{};
            at(section.sh_offset + s, symbol);
            if (symbol.st_shndx != SHN_UNDEF)
                names.emplace_back(file.data() + strings.sh_offset + symbol.st_name);
        }
    }
    return names;
}

/// A copy of the bundle inside a host program's own, with a library that is watched beside that.
class Installation
{
public:
    Installation()
    {
        fs::create_directories(fs::path(bundle()).parent_path());
        fs::copy_file(KV_BUNDLE, bundle());
        mFolder.put("Loops/Rock/a.mid", midiFileWithNote(41));
        mFolder.makeFolder("Loops/User");
    }

    std::string bundle() const
    {
        return mFolder / "Host/Contents/PlugIns/Looper.bundle/Contents/Linux/Looper.so";
    }

    /// Loads the bundle, plays a pattern of its library while the library changes, and unloads it.
    void use() const
    {
        void* library = ::dlopen(bundle().c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << ::dlerror();
        const auto create = reinterpret_cast<Create>(::dlsym(library, "CreatePlugin"));
        ASSERT_NE(create, nullptr);
        play(create);
        ASSERT_EQ(::dlclose(library), 0);
        EXPECT_EQ(::dlopen(bundle().c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr)
            << "the bundle stays in memory";
    }

private:
    void play(Create create) const
    {
        const std::unique_ptr<Korvanel::MidiEffect> first(create());
        const std::unique_ptr<Korvanel::MidiEffect> effect(create());
        first->Initialize(nullptr);
        effect->Initialize(nullptr);
        mFolder.put("Loops/User/new.mid"); // the watching thread hears of it, or is on its way out
        auto* looper = static_cast<Korvanel::ILooper*>(effect->get_interface("Korvanel::ILooper"));
        ASSERT_NE(looper, nullptr);
        IKVSSExStrumwerks::Pattern pattern{};
        std::strcpy(pattern.name, "Rock\\a");
        ASSERT_TRUE(looper->SetCurrentPattern(&pattern));
        effect->Enable();
        ListQueue queue;
        effect->process(0, 1919, queue);
        EXPECT_EQ(queue.events.size(), 1u);
        mFolder.remove("Loops/User/new.mid");
        effect->Terminate();
        first->Terminate();
    }

    LibraryFolder mFolder;
};

} // namespace

TEST(Bundle, ExportsItsEntryAndNothingElse)
{
    EXPECT_EQ(exportedNames(KV_BUNDLE), std::vector<std::string>{"CreatePlugin"});
}

TEST(Bundle, MayBeLoadedAndUnloaded200TimesWithAWatchedLibrary)
{
    const Installation installation;
    for (int i = 0; i < 5 && !HasFailure(); ++i)
        installation.use();
    const ProcessTally before = ProcessTally::now();
    const std::size_t bytes = ::mallinfo2().uordblks;

    for (int i = 0; i < 200 && !HasFailure(); ++i)
        installation.use();

    EXPECT_EQ(ProcessTally::settled(before), before);
    EXPECT_LE(::mallinfo2().uordblks, bytes + 16 * 1024);
}
