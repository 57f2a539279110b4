// Hosts whose worker comes late: one frees an instance while work for it waits in a queue.
#include "tests/host/lv2/Lv2Fixture.h"

#include <atomic>
#include <thread>

namespace {

/// What is left of an instance in a host's queue when the instance has gone.
struct Remains
{
    const LV2_Worker_Interface* worker;
    LV2_Handle handle;

    LV2_Worker_Status work() const { return callWorker(*worker, handle); }
};

Remains of(const Lv2Instance& plugin)
{
    return {&plugin.extension<LV2_Worker_Interface>(LV2_WORKER__interface),
            lilv_instance_get_handle(plugin.instance)};
}

class ALateWorker : public InLv2Host
{
};

} // namespace

TEST_F(ALateWorker, FindsAnInstanceGoneAndDoesNothing)
{
    const Lv2Instance stays(*world); // the binary, too
    auto goes = std::make_unique<Lv2Instance>(*world);
    goes->midi(0, {0xC0, 1});
    goes->runOnly(100);
    ASSERT_EQ(goes->asked, 1);
    const Remains late = of(*goes);
    goes.reset();
    EXPECT_NE(late.work(), LV2_WORKER_SUCCESS);
    EXPECT_EQ(of(stays).work(), LV2_WORKER_SUCCESS);
}

TEST_F(ALateWorker, MayMeetANewInstanceAtTheSameAddress)
{
    const Lv2Instance stays(*world);
    const Remains late = of(Lv2Instance(*world));
    Lv2Instance next(*world);
    choose(next, 0);
    late.work(); // alive again, if it is given the same place
    next.playAt(0, 0, 0);
    next.run(100);
    EXPECT_EQ(next.take(), (SentList{on(0, 40)}));
}

TEST_F(ALateWorker, IsWaitedForByAnInstanceThatGoes)
{
    const Lv2Instance stays(*world);
    for (int round = 0; round < 20; ++round) {
        auto goes = std::make_unique<Lv2Instance>(*world);
        goes->midi(0, {0xC0, 1});
        goes->runOnly(100);
        const Remains remains = of(*goes);
        std::atomic<int> calls{0};
        std::thread worker([&] {
            while (remains.work() == LV2_WORKER_SUCCESS)
                ++calls;
        });
        while (calls == 0)
            std::this_thread::yield();
        goes.reset();
        worker.join();
    }
}
