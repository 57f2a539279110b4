/// A place on the disk and an environment of a test's own.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// A new folder that goes, with all in it, when the object goes.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        if (::mkdtemp(mPath.data()) == nullptr)
            throw std::filesystem::filesystem_error("mkdtemp", mPath, {});
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(mPath, error);
    }

    const std::string& path() const { return mPath; }

    std::string operator/(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath = std::filesystem::temp_directory_path() / "kv-test-XXXXXX";
};

/// Sets variables, and puts back what they were when it goes.
class Environment
{
public:
    Environment() = default;
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    ~Environment()
    {
        for (auto old = mOld.rbegin(); old != mOld.rend(); ++old)
            put(old->first, old->second);
    }

    /// @param value  nothing takes the variable away
    void set(const std::string& name, const std::optional<std::string>& value)
    {
        const char* old = std::getenv(name.c_str());
        mOld.emplace_back(name, old != nullptr ? std::optional<std::string>(old) : std::nullopt);
        put(name, value);
    }

private:
    static void put(const std::string& name, const std::optional<std::string>& value)
    {
        if (value)
            ::setenv(name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(name.c_str());
    }

    std::vector<std::pair<std::string, std::optional<std::string>>> mOld;
};

inline std::string contentOf(const std::string& path)
{
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
}

inline void putContent(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}
