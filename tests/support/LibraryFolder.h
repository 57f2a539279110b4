/// A library of patterns on the disk, for a test.
#pragma once
#include "tests/support/Folders.h"

#include <chrono>
#include <filesystem>
#include <string>

/// A MIDI file of one bar in 4/4 with a single quarter note of the given key.
inline std::string midiFileWithNote(char key)
{
    std::string file("MThd\0\0\0\6\0\0\0\1\0\x60", 14);
    std::string track("\0\x90", 2);
    track += key;
    track += '\x64';
    track += std::string("\x60\x80", 2) + key + std::string("\0", 1);
    track += std::string("\x82\x20\xff\x2f\0", 5);
    file += std::string("MTrk\0\0\0", 7) + static_cast<char>(track.size()) + track;
    return file;
}

class LibraryFolder : public TemporaryFolder
{
public:
    /// Makes a file, and the folders that it needs.
    void put(const std::string& name, const std::string& content = midiFileWithNote(60)) const
    {
        const std::filesystem::path path = *this / name;
        std::filesystem::create_directories(path.parent_path());
        putContent(path, content);
    }

    void makeFolder(const std::string& name) const
    {
        std::filesystem::create_directories(*this / name);
    }

    void remove(const std::string& name) const { std::filesystem::remove_all(*this / name); }

    void rename(const std::string& from, const std::string& to) const
    {
        std::filesystem::rename(*this / from, *this / to);
    }

    /// Lets every folder look as if nothing had happened in it for a minute.
    void age() const
    {
        namespace fs = std::filesystem;
        const auto aMinuteAgo = fs::file_time_type::clock::now() - std::chrono::minutes(1);
        fs::last_write_time(path(), aMinuteAgo);
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path()))
            if (entry.is_directory())
                fs::last_write_time(entry.path(), aMinuteAgo);
    }
};
