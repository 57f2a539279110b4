#include "platform/toolkit/native/DetachedProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <linux/close_range.h>
#include <pthread.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace toolkit::native {

namespace {

/// All that the new processes need, prepared before the fork: between that and the new program
/// only async-signal-safe functions may be called, as another thread may have held any lock.
struct Start
{
    std::vector<std::string> programs; ///< where it may be, the first one that runs
    std::vector<std::string> arguments;
    std::vector<char*> argv;
    int nowhere = -1; ///< /dev/null
    int report = -1;  ///< takes the error number; closes when the program begins
};

/// No signal handler of the host may run in the new process, which has a copy of its memory.
class BlockedSignals
{
public:
    BlockedSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &mBefore);
    }

    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t mBefore;
};

class OwnDescriptor
{
public:
    OwnDescriptor() = default;

    explicit OwnDescriptor(int number)
        : mNumber(number)
    {
    }

    ~OwnDescriptor() { close(); }

    OwnDescriptor(const OwnDescriptor&) = delete;
    OwnDescriptor& operator=(const OwnDescriptor&) = delete;

    int number() const { return mNumber; }

    void close()
    {
        if (mNumber >= 0)
            ::close(mNumber);
        mNumber = -1;
    }

private:
    int mNumber = -1;
};

std::vector<std::string> placesOf(const std::string& program)
{
    if (program.find('/') != std::string::npos)
        return {program};
    const char* path = std::getenv("PATH");
    std::string_view rest = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
    std::vector<std::string> places;
    while (true) {
        const std::size_t end = rest.find(':');
        const std::string folder(rest.substr(0, end));
        places.push_back((folder.empty() ? "." : folder) + "/" + program);
        if (end == std::string_view::npos)
            return places;
        rest.remove_prefix(end + 1);
    }
}

// In the new processes -------------------------------------------------------------------------

void resetSignals()
{
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        ::sigaction(signal, &standard, nullptr); // those that cannot be set are standard
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void fail(const Start& start, int error)
{
    // Nobody is told of a report that does not get through: then the parent is gone.
    [[maybe_unused]] const ssize_t written = ::write(start.report, &error, sizeof error);
    ::_exit(1);
}

[[noreturn]] void becomeProgram(const Start& start)
{
    for (int standard = 0; standard < 3; ++standard)
        if (::dup2(start.nowhere, standard) < 0)
            fail(start, errno);
    if (::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC) != 0)
        fail(start, errno);
    resetSignals();
    int error = ENOENT;
    for (const std::string& program : start.programs) {
        ::execve(program.c_str(), start.argv.data(), environ);
        if (errno != ENOENT && errno != ENOTDIR)
            error = errno; // there is one, which cannot be run
    }
    fail(start, error);
}

/// The first process ends at once and so leaves the second one to the system, which reaps it.
[[noreturn]] void detach(const Start& start)
{
    ::setsid();
    const pid_t program = ::_Fork();
    if (program < 0)
        fail(start, errno);
    if (program == 0)
        becomeProgram(start);
    ::_exit(0);
}

// In ours ----------------------------------------------------------------------------------------

void waitFor(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
}

int readReport(int pipe)
{
    int error = 0;
    ssize_t got = 0;
    do
        got = ::read(pipe, &error, sizeof error);
    while (got < 0 && errno == EINTR);
    return got == sizeof error ? error : 0;
}

/// Above those that the new process puts in the standard places.
int raised(int descriptor)
{
    return ::fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
}

} // namespace

int startDetached(std::vector<std::string> arguments)
{
    Start start{placesOf(arguments.front()), std::move(arguments), {}};
    for (std::string& argument : start.arguments)
        start.argv.push_back(argument.data());
    start.argv.push_back(nullptr);

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return errno;
    const OwnDescriptor reports(ends[0]);
    OwnDescriptor lower(ends[1]);
    OwnDescriptor report(raised(ends[1]));
    lower.close();
    const OwnDescriptor opened(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const OwnDescriptor nowhere(raised(opened.number()));
    if (report.number() < 0 || nowhere.number() < 0)
        return errno;
    start.report = report.number();
    start.nowhere = nowhere.number();

    const BlockedSignals blocked;
    const pid_t first = ::_Fork(); // the handlers that others have for a fork are not ours to run
    if (first == 0)
        detach(start);
    if (first < 0)
        return errno;
    report.close();
    waitFor(first);
    return readReport(reports.number());
}

} // namespace toolkit::native
