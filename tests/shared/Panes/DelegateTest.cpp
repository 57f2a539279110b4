#include "shared/Panes/kvDelegate.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace Korvanel;

namespace {

struct Counter
{
    void tick() { ++ticks; }

    void tock() { ticks += 100; }

    void set(bool value) { values.push_back(value); }

    int ticks = 0;
    std::vector<bool> values;
};

using CounterDelegate = MemberDelegateT<Counter>;

/// Calls anything.
class CallingDelegate : public Delegate1<bool>
{
public:
    explicit CallingDelegate(std::function<void(bool)> call)
        : mCall(std::move(call))
    {
    }

    void invoke(bool value) override { mCall(value); }

private:
    std::function<void(bool)> mCall;
};

Ref<Delegate1<bool>> calling(std::function<void(bool)> call)
{
    return Ref<Delegate1<bool>>::adopt(new CallingDelegate(std::move(call)));
}

} // namespace

TEST(Delegate, CallsTheMemberOfItsObject)
{
    Counter counter;
    const auto delegate = Ref<Delegate>::adopt(new CounterDelegate(&counter, &Counter::tick));
    delegate->invoke();
    delegate->invoke();
    EXPECT_EQ(counter.ticks, 2);
}

TEST(Delegate, EqualsWhatCallsTheSame)
{
    Counter one;
    Counter two;
    const auto made = [](Counter& counter, void (Counter::*member)()) {
        return Ref<Delegate>::adopt(new CounterDelegate(&counter, member));
    };
    const Ref<Delegate> tick = made(one, &Counter::tick);
    EXPECT_TRUE(*tick == *made(one, &Counter::tick));
    EXPECT_FALSE(*tick == *made(one, &Counter::tock));
    EXPECT_FALSE(*tick == *made(two, &Counter::tick));
}

TEST(MulticastDelegate, CallsEachInTheOrderOfComing)
{
    std::string heard;
    MulticastDelegate1<bool> list;
    list.add(calling([&heard](bool value) { heard += value ? "A+" : "A-"; }).get());
    list.add(calling([&heard](bool value) { heard += value ? "B+" : "B-"; }).get());
    list.add(nullptr);
    list.invoke(true);
    list.invoke(false);
    EXPECT_EQ(heard, "A+B+A-B-");
}

TEST(MulticastDelegate, HoldsAReferenceOfItsOwn)
{
    const std::int32_t before = Base::numAllocations;
    {
        MulticastDelegate1<bool> list;
        list.add(calling([](bool) {}).get());
        EXPECT_EQ(Base::numAllocations, before + 1);
    }
    EXPECT_EQ(Base::numAllocations, before);
}

TEST(MulticastDelegate, RemovesTheFirstThatIsEqual)
{
    Counter counter;
    const auto made = [&counter] {
        return Ref<Delegate1<bool>>::adopt(
            new MemberDelegateT<Counter, bool>(&counter, &Counter::set));
    };
    MulticastDelegate1<bool> list;
    list.add(made().get());
    list.add(made().get());
    list.remove(made().get());
    list.remove(nullptr);
    list.invoke(true);
    EXPECT_EQ(counter.values, (std::vector<bool>{true}));
    list.remove(made().get());
    list.remove(made().get());
    EXPECT_TRUE(list.empty());
}

TEST(MulticastDelegate, WhoIsRemovedDuringABroadcastIsNotCalled)
{
    std::string heard;
    MulticastDelegate1<bool> list;
    const auto second = calling([&heard](bool) { heard += "B"; });
    const auto first = calling([&](bool) {
        heard += "A";
        list.remove(second.get());
    });
    list.add(first.get());
    list.add(second.get());
    list.add(calling([&heard](bool) { heard += "C"; }).get());
    list.invoke(true);
    EXPECT_EQ(heard, "AC");
}

TEST(MulticastDelegate, WhoRemovesItselfKeepsTheOthersCalled)
{
    std::string heard;
    MulticastDelegate1<bool> list;
    Ref<Delegate1<bool>> self;
    self = calling([&](bool) {
        heard += "A";
        list.remove(self.get());
    });
    list.add(self.get());
    list.add(calling([&heard](bool) { heard += "B"; }).get());
    list.invoke(true);
    list.invoke(true);
    EXPECT_EQ(heard, "ABB");
}

TEST(MulticastDelegate, WhoIsAddedDuringABroadcastIsCalledFromTheNextOn)
{
    std::string heard;
    MulticastDelegate1<bool> list;
    const auto later = calling([&heard](bool) { heard += "B"; });
    bool added = false;
    list.add(calling([&](bool) {
                 heard += "A";
                 if (!std::exchange(added, true))
                     list.add(later.get());
             }).get());
    list.invoke(true);
    list.invoke(true);
    EXPECT_EQ(heard, "AAB");
}

TEST(MulticastDelegate, MayEndDuringItsOwnBroadcast)
{
    std::string heard;
    auto list = std::make_unique<MulticastDelegate1<bool>>();
    list->add(calling([&](bool) {
                  heard += "A";
                  list.reset();
              }).get());
    list->add(calling([&heard](bool) { heard += "B"; }).get());
    list->invoke(true);
    EXPECT_EQ(heard, "A");
}

TEST(Event, RaisesItsValueToThoseWhoJoined)
{
    Counter counter;
    const auto delegate =
        Ref<Delegate1<bool>>::adopt(new MemberDelegateT<Counter, bool>(&counter, &Counter::set));
    Event1<bool> event;
    event.raise(true);
    event += delegate.get();
    event.raise(false);
    event -= delegate.get();
    event.raise(true);
    EXPECT_EQ(counter.values, (std::vector<bool>{false}));
}
