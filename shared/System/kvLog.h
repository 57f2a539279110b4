/// Trace log: formatted lines to a file descriptor. Nobody opens it by default ("logfile.log" is
/// the usual name for one who does), and with no log open every call returns at once, before it
/// formats anything: the processing thread logs. An open log writes from the caller's thread; it is
/// a developer's tool and costs what a write costs.
#pragma once
#include <cstdarg>

namespace Korvanel {

/// A line is cut at 258 bytes. Not locked: whole lines of several threads interleave. Nothing here
/// reports failure.
class LogFile
{
public:
    enum OpenFlags : unsigned {
        Truncate = 2,
        Append = 4,        ///< looked at when Truncate is not set
        InTmp = 0x4000,    ///< the file name is meant in /tmp
        Disabled = 0x8000, ///< openLog does nothing
    };

    /// Lines of a log whose file could not be opened go to standard output.
    static constexpr int kNoLog = -1;
    static constexpr int kStandardOutput = 1;

    LogFile() = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile();

    /// @param title       prefix of every messageV line; null or empty for none
    /// @param moduleName  who was loaded, for the opening line; may be null
    /// @param fileName    may be null
    /// @return 1, always
    int openLog(const char* title, const char* moduleName, unsigned flags, const char* fileName);
    void closeLog();
    void messageV(const char* format, std::va_list arguments) __attribute__((format(printf, 2, 0)));
    void printV(const char* format, std::va_list arguments) __attribute__((format(printf, 2, 0)));

    int descriptor() const { return mDescriptor; }

private:
    void print(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void setTitle(const char* title);

    int mDescriptor = kNoLog;
    char* mTitle = szDefTitle;

    static char szDefTitle[1];
};

// The one log of the module. Thread: any.
void IOLogOpen(const char* title, const char* moduleName, unsigned flags, const char* fileName);
void IOLogClose();
void IOLog(const char* format, ...) __attribute__((format(printf, 1, 2))); ///< with the title
void IOLog1(bool wanted, const char* format, ...) __attribute__((format(printf, 2, 3)));
void IOPrint(const char* format, ...) __attribute__((format(printf, 1, 2))); ///< without the title
void IOPrint1(bool wanted, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Accepts a line and drops it: call sites that are switched off.
void log_text(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace Korvanel

namespace korvanel::macosx::carbon {

/// Accepts a line and drops it.
void PRINTLOG(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace korvanel::macosx::carbon
