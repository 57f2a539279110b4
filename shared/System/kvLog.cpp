#include "shared/System/kvLog.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Korvanel {

namespace {

constexpr std::size_t kLineBytes = 259;

LogFile __ml_glog; // NOLINT(bugprone-reserved-identifier): its name in debuggers and crash reports

bool given(const char* text)
{
    return text != nullptr && *text != 0;
}

/// The local time as the C library writes it, without the line end.
std::string now()
{
    const std::time_t time = std::time(nullptr);
    std::array<char, 32> text{};
    if (::ctime_r(&time, text.data()) == nullptr)
        return {};
    std::string line = text.data();
    line.pop_back();
    return line;
}

int openFile(const char* fileName, unsigned flags)
{
    std::string path = (flags & LogFile::InTmp) != 0 ? "/tmp/" : "";
    if (given(fileName))
        path += fileName;
    const int how = (flags & LogFile::Truncate) != 0 ? O_TRUNC : O_APPEND;
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | how, 0666);
    if (descriptor < 0)
        return LogFile::kStandardOutput;
    ::flock(descriptor,
            LOCK_SH |
                LOCK_NB); // tells others that the log is in use; a log is written all the same
    ::fchmod(descriptor, 0666);
    return descriptor;
}

void writeLine(int descriptor, const char* title, const char* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));

void writeLine(int descriptor, const char* title, const char* format, std::va_list arguments)
{
    std::array<char, kLineBytes> line{};
    std::snprintf(line.data(), line.size(), "%s", title);
    const std::size_t titled = std::strlen(line.data());
    std::vsnprintf(line.data() + titled, line.size() - titled, format, arguments);
    // A trace line that cannot be written is lost; there is nobody to tell.
    [[maybe_unused]] const auto written =
        ::write(descriptor, line.data(), std::strlen(line.data()));
}

} // namespace

char LogFile::szDefTitle[1] = "";

LogFile::~LogFile()
{
    closeLog();
}

void LogFile::setTitle(const char* title)
{
    if (mTitle != szDefTitle)
        std::free(mTitle);
    char* copy = given(title) ? ::strdup(title) : nullptr;
    mTitle = copy != nullptr ? copy : szDefTitle;
}

int LogFile::openLog(const char* title, const char* moduleName, unsigned flags,
                     const char* fileName)
{
    if ((flags & Disabled) != 0)
        return 1;
    setTitle(title);
    if ((flags & (Truncate | Append)) == 0)
        return 1;
    if (mDescriptor > kStandardOutput)
        ::close(mDescriptor);
    mDescriptor = openFile(fileName, flags);
    if (mDescriptor <= kStandardOutput)
        return 1;
    if (given(moduleName))
        print("%s; loaded at %s.\n", moduleName, now().c_str());
    else
        print("Loaded at %s.\n", now().c_str());
    return 1;
}

void LogFile::closeLog()
{
    if (mDescriptor > kStandardOutput) {
        print("Unloaded at %s.\n", now().c_str());
        ::close(mDescriptor);
    }
    mDescriptor = kNoLog;
    setTitle(nullptr);
}

void LogFile::print(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    messageV(format, arguments);
    va_end(arguments);
}

void LogFile::messageV(const char* format, std::va_list arguments)
{
    if (mDescriptor != kNoLog)
        writeLine(mDescriptor, mTitle, format, arguments);
}

void LogFile::printV(const char* format, std::va_list arguments)
{
    if (mDescriptor != kNoLog)
        writeLine(mDescriptor, szDefTitle, format, arguments);
}

// The module's log --------------------------------------------------------------------------------

void IOLogOpen(const char* title, const char* moduleName, unsigned flags, const char* fileName)
{
    __ml_glog.openLog(title, moduleName, flags, fileName);
}

void IOLogClose()
{
    __ml_glog.closeLog();
}

void IOLog(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    __ml_glog.messageV(format, arguments);
    va_end(arguments);
}

void IOLog1(bool wanted, const char* format, ...)
{
    if (!wanted)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    __ml_glog.messageV(format, arguments);
    va_end(arguments);
}

void IOPrint(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    __ml_glog.printV(format, arguments);
    va_end(arguments);
}

void IOPrint1(bool wanted, const char* format, ...)
{
    if (!wanted)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    __ml_glog.printV(format, arguments);
    va_end(arguments);
}

void log_text(const char*, ...) {}

} // namespace Korvanel

namespace korvanel::macosx::carbon {

void PRINTLOG(const char*, ...) {}

} // namespace korvanel::macosx::carbon
