#include "library/ChangeObserver.h"

#include "shared/System/kvString.h"

#include <atomic>
#include <utility>

namespace {

std::atomic<ChangeObserver::Delivery> sDelivery{nullptr};

} // namespace

void ChangeObserver::setDelivery(Delivery delivery)
{
    sDelivery = delivery;
}

ChangeObserver::ChangeObserver()
    : mSelf(std::make_shared<ChangeObserver*>(this))
    , mWatch([this] { deliver(); })
{
}

void ChangeObserver::deliver()
{
    const Delivery delivery = sDelivery;
    const std::weak_ptr<ChangeObserver*> observer = mSelf;
    const bool delivered = delivery != nullptr && delivery([observer] {
                               if (const std::shared_ptr<ChangeObserver*> alive = observer.lock())
                                   FNSubscriptionProc(kDirectoryModified, 0, *alive);
                           });
    if (!delivered)
        FNSubscriptionProc(kDirectoryModified, 0, this);
}

void ChangeObserver::endWatch()
{
    mWatch.end();
    mSelf.reset();
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
