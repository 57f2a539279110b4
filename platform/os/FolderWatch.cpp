#include "platform/os/FolderWatch.h"

#include "platform/os/Descriptor.h"
#include "platform/os/InotifyFolder.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kFirstPause{50};
constexpr milliseconds kLongestPause{800};

/// When the next call of a burst is due.
class Pace
{
public:
    /// A change came at `now`.
    void note(Clock::time_point now)
    {
        if (mPending)
            return;
        if (now > mEarliest + mPause)
            mPause = kFirstPause; // it had been quiet: a new burst
        mPending = true;
    }

    bool isDue(Clock::time_point now) const { return mPending && now >= mEarliest; }

    void delivered(Clock::time_point now)
    {
        mPending = false;
        mEarliest = now + mPause;
        mPause = std::min(2 * mPause, kLongestPause);
    }

    /// Milliseconds until the next call is due, as poll counts them: -1 for none.
    int timeout(Clock::time_point now) const
    {
        if (!mPending)
            return -1;
        const auto left = std::chrono::ceil<milliseconds>(mEarliest - now).count();
        return static_cast<int>(std::max<std::int64_t>(left, 0));
    }

private:
    bool mPending = false;
    Clock::time_point mEarliest{};
    milliseconds mPause = kFirstPause;
};

int sooner(int a, int b)
{
    if (a < 0 || b < 0)
        return std::max(a, b);
    return std::min(a, b);
}

} // namespace

struct FolderWatch::Subscription
{
    FolderWatch* owner;
    InotifyFolder folder; ///< the watching thread's from the moment it is subscribed
    Pace pace;
};

/// The watching thread: it lives from the first FolderWatch that starts until the last one goes.
class FolderWatch::Service
{
public:
    /// The one of the process; made anew after the last owner of the former let it go. @return null
    /// when the system has no descriptor or no thread left for it
    static std::shared_ptr<Service> shared();

    /// Throws std::system_error when there is no thread left.
    explicit Service(Descriptor wake);
    ~Service();

    void add(std::shared_ptr<Subscription> subscription);
    void remove(const std::shared_ptr<Subscription>& subscription);
    void waitForCallsTo(const FolderWatch* watch);

private:
    using List = std::vector<std::shared_ptr<Subscription>>;

    void run();
    void wake() const;
    void wait(const List& list, std::vector<pollfd>& descriptors) const;
    void deliver(Subscription& subscription);
    bool begin(const Subscription& subscription);

    const Descriptor mWake;
    std::mutex mLock;
    std::condition_variable mCallEnded;
    List mSubscriptions;
    const FolderWatch* mCalling = nullptr;
    bool mStop = false;
    std::thread mThread; // last: it uses the rest
};

std::shared_ptr<FolderWatch::Service> FolderWatch::Service::shared()
{
    static std::mutex lock;
    static std::weak_ptr<Service> current;
    const std::lock_guard hold(lock);
    std::shared_ptr<Service> service = current.lock();
    if (service)
        return service;
    Descriptor wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!wake) // a thread that nothing wakes could never be ended
        return nullptr;
    try {
        service = std::make_shared<Service>(std::move(wake));
    } catch (const std::system_error&) {
        return nullptr;
    }
    current = service;
    return service;
}

FolderWatch::Service::Service(Descriptor wake)
    : mWake(std::move(wake))
    , mThread([this] { run(); })
{
}

FolderWatch::Service::~Service()
{
    {
        const std::lock_guard hold(mLock);
        mStop = true;
    }
    wake();
    mThread.join();
}

void FolderWatch::Service::wake() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(mWake.get(), &one, sizeof one);
}

void FolderWatch::Service::add(std::shared_ptr<Subscription> subscription)
{
    {
        const std::lock_guard hold(mLock);
        mSubscriptions.push_back(std::move(subscription));
    }
    wake();
}

void FolderWatch::Service::remove(const std::shared_ptr<Subscription>& subscription)
{
    {
        const std::lock_guard hold(mLock);
        std::erase(mSubscriptions, subscription);
    }
    wake();
}

void FolderWatch::Service::waitForCallsTo(const FolderWatch* watch)
{
    std::unique_lock hold(mLock);
    mCallEnded.wait(hold, [&] { return mCalling != watch; });
}

void FolderWatch::Service::run()
{
    std::vector<pollfd> descriptors;
    for (;;) {
        List list;
        {
            const std::lock_guard hold(mLock);
            if (mStop)
                return;
            list = mSubscriptions;
        }
        wait(list, descriptors);
        for (const std::shared_ptr<Subscription>& subscription : list) {
            if (subscription->folder.drain())
                subscription->pace.note(Clock::now());
            if (subscription->pace.isDue(Clock::now()))
                deliver(*subscription);
        }
    }
}

void FolderWatch::Service::wait(const List& list, std::vector<pollfd>& descriptors) const
{
    descriptors.assign(1, {mWake.get(), POLLIN, 0});
    int timeout = -1;
    for (const std::shared_ptr<Subscription>& subscription : list) {
        descriptors.push_back({subscription->folder.descriptor(), POLLIN, 0});
        timeout = sooner(timeout, subscription->pace.timeout(Clock::now()));
    }
    ::poll(descriptors.data(), descriptors.size(), timeout);
    std::uint64_t wakes = 0;
    [[maybe_unused]] const ssize_t count = ::read(mWake.get(), &wakes, sizeof wakes);
}

void FolderWatch::Service::deliver(Subscription& subscription)
{
    // Before the call: what appears in a folder from now on is told again.
    subscription.folder.follow();
    if (!begin(subscription))
        return;
    subscription.owner->mChanged();
    subscription.pace.delivered(Clock::now());
    {
        const std::lock_guard hold(mLock);
        mCalling = nullptr;
    }
    mCallEnded.notify_all();
}

bool FolderWatch::Service::begin(const Subscription& subscription)
{
    const std::lock_guard hold(mLock);
    const bool stands =
        std::any_of(mSubscriptions.begin(), mSubscriptions.end(),
                    [&](const auto& other) { return other.get() == &subscription; });
    if (stands)
        mCalling = subscription.owner;
    return stands;
}

FolderWatch::FolderWatch(std::function<void()> changed)
    : mChanged(std::move(changed))
{
}

FolderWatch::~FolderWatch()
{
    end();
}

void FolderWatch::end()
{
    stop();
    if (mService != nullptr)
        mService->waitForCallsTo(this);
}

bool FolderWatch::start(const std::string& folder)
{
    stop();
    auto subscription = std::make_shared<Subscription>();
    subscription->owner = this;
    if (!subscription->folder.open(folder))
        return false;
    if (mService == nullptr)
        mService = Service::shared();
    if (mService == nullptr)
        return false;
    mSubscription = subscription;
    mService->add(std::move(subscription));
    return true;
}

void FolderWatch::stop()
{
    if (mSubscription != nullptr)
        mService->remove(mSubscription);
    mSubscription.reset();
}

} // namespace platform
