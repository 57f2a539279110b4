// The built bundle, as a host meets it: through the loader and its one exported function.
#include "effect/ILooper.h"
#include "effect/MidiEffect.h"
#include "tests/support/ListQueue.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

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

std::size_t openDescriptors()
{
    std::size_t count = 0;
    DIR* folder = ::opendir("/proc/self/fd");
    while (::readdir(folder) != nullptr)
        ++count;
    ::closedir(folder);
    return count;
}

/// Loads the bundle, plays the factory pattern's first bar and unloads it.
void loadPlayUnload()
{
    void* library = ::dlopen(KV_BUNDLE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << ::dlerror();
    const auto create = reinterpret_cast<Create>(::dlsym(library, "CreatePlugin"));
    ASSERT_NE(create, nullptr);
    {
        const std::unique_ptr<Korvanel::MidiEffect> effect(create());
        effect->Initialize(nullptr);
        auto* looper = static_cast<Korvanel::ILooper*>(effect->get_interface("Korvanel::ILooper"));
        ASSERT_NE(looper, nullptr);
        IKVSSExStrumwerks::Pattern pattern{};
        std::strcpy(pattern.name, "file://" KV_PATTERN);
        ASSERT_TRUE(looper->SetCurrentPattern(&pattern));
        effect->Enable();
        ListQueue queue;
        effect->process(0, 1919, queue);
        EXPECT_EQ(queue.events.size(), 13u); // a crash, six hats, three snares, three kicks
        effect->Terminate();
    }
    ASSERT_EQ(::dlclose(library), 0);
    EXPECT_EQ(::dlopen(KV_BUNDLE, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the bundle stays in memory";
}

} // namespace

TEST(Bundle, ExportsItsEntryAndNothingElse)
{
    EXPECT_EQ(exportedNames(KV_BUNDLE), std::vector<std::string>{"CreatePlugin"});
}

TEST(Bundle, MayBeLoadedAndUnloaded200Times)
{
    loadPlayUnload();
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 200 && !HasFailure(); ++i)
        loadPlayUnload();
    EXPECT_EQ(openDescriptors(), before);
}
