#include "library/ChangeObserver.h"

#include "shared/System/kvString.h"

ChangeObserver::ChangeObserver()
    : mWatch([this] { FNSubscriptionProc(kDirectoryModified, 0, this); })
{
}

void ChangeObserver::StartWatch()
{
    StopWatch();
    const Korvanel::String folder = GetObservedFolder();
    if (!folder.IsEmpty())
        mWatch.start((folder + "/User").c_str());
}

void ChangeObserver::FNSubscriptionProc(std::uint32_t message, std::uint32_t, void* observer)
{
    if (message == kDirectoryModified && observer != nullptr)
        static_cast<ChangeObserver*>(observer)->OnChangeFolderContents();
}
