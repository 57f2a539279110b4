#include "shared/System/kvCriticalSection.h"

#include <system_error>

namespace Korvanel {

namespace {

void check(int error)
{
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "critical section");
}

/// Owns the attributes only while the mutex is made.
class RecursiveInheriting
{
public:
    RecursiveInheriting()
    {
        check(pthread_mutexattr_init(&mAttributes));
        pthread_mutexattr_settype(&mAttributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutexattr_setprotocol(&mAttributes, PTHREAD_PRIO_INHERIT);
    }

    ~RecursiveInheriting() { pthread_mutexattr_destroy(&mAttributes); }

    RecursiveInheriting(const RecursiveInheriting&) = delete;
    RecursiveInheriting& operator=(const RecursiveInheriting&) = delete;

    const pthread_mutexattr_t* get() const { return &mAttributes; }

private:
    pthread_mutexattr_t mAttributes{};
};

} // namespace

CriticalSection::CriticalSection()
    : mMutex()
{
    const RecursiveInheriting attributes;
    check(pthread_mutex_init(&mMutex, attributes.get()));
}

CriticalSection::~CriticalSection()
{
    pthread_mutex_destroy(&mMutex);
}

} // namespace Korvanel
