#include "tests/platform/toolkit/ToolkitFixture.h"

#include <vector>

using namespace toolkit;

namespace {

constexpr EventType redraw{"kvsw"_4cc, 1111112};

class EventsTest : public ToolkitFixture
{
protected:
    void SetUp() override
    {
        ToolkitFixture::SetUp();
        window = make(R"({"kind": "user pane", "id": 108, "bounds": [0, 0, 10, 10]})");
    }

    EventHandler noting(int number, Status answer)
    {
        return [this, number, answer](const Event&) {
            order.push_back(number);
            return answer;
        };
    }

    std::vector<int> order;
};

} // namespace

TEST_F(EventsTest, AParameterIsFoundByNameAndType)
{
    Event event(redraw);
    event.set("rect"_4cc, Rect{1, 2, 3, 4}).set("part"_4cc, std::int32_t{-7});

    EXPECT_EQ(event.get<Rect>("rect"_4cc), (Rect{1, 2, 3, 4}));
    EXPECT_EQ(event.get<std::int32_t>("part"_4cc), -7);
    EXPECT_EQ(event.get<std::uint32_t>("part"_4cc), std::nullopt);
    EXPECT_EQ(event.get<Rect>("crct"_4cc), std::nullopt);
    EXPECT_EQ(event.typeOf("rect"_4cc), "qdrt"_4cc);
    EXPECT_EQ(event.typeOf("crct"_4cc), 0u);
}

TEST_F(EventsTest, AParameterSetTwiceHasItsLastValue)
{
    Event event(redraw);
    event.set("part"_4cc, std::int32_t{1}).set("part"_4cc, Point{2, 3});

    EXPECT_EQ(event.get<Point>("part"_4cc), (Point{2, 3}));
    EXPECT_EQ(event.get<std::int32_t>("part"_4cc), std::nullopt);
}

TEST_F(EventsTest, TheNewestHandlerIsAskedFirstAndTheWindowAfterTheControl)
{
    window->installHandler({redraw}, noting(1, eventNotHandledErr));
    control(108).installHandler({redraw}, noting(2, eventNotHandledErr));
    control(108).installHandler({redraw}, noting(3, eventNotHandledErr));

    EXPECT_EQ(control(108).send(Event(redraw)), eventNotHandledErr);

    EXPECT_EQ(order, (std::vector<int>{3, 2, 1}));
}

TEST_F(EventsTest, AnyAnswerButNotHandledEndsIt)
{
    window->installHandler({redraw}, noting(1, noErr));
    control(108).installHandler({redraw}, noting(2, paramErr));

    EXPECT_EQ(control(108).send(Event(redraw)), paramErr);

    EXPECT_EQ(order, std::vector<int>{2});
}

TEST_F(EventsTest, AHandlerHearsOnlyOfItsTypes)
{
    control(108).installHandler({{"cntl"_4cc, 4}}, noting(1, noErr));

    EXPECT_EQ(control(108).send(Event(redraw)), eventNotHandledErr);

    EXPECT_TRUE(order.empty());
}

TEST_F(EventsTest, AHandlerRemovedByAnotherIsNotAsked)
{
    const auto first = control(108).installHandler({redraw}, noting(1, eventNotHandledErr));
    control(108).installHandler({redraw}, [this, first](const Event&) {
        control(108).removeHandler(first);
        return eventNotHandledErr;
    });

    control(108).send(Event(redraw));

    EXPECT_TRUE(order.empty());
}

TEST_F(EventsTest, AHandlerMayRemoveItself)
{
    HandlerId own = 0;
    own = control(108).installHandler({redraw}, [&](const Event&) {
        control(108).removeHandler(own);
        order.push_back(1);
        return noErr;
    });

    control(108).send(Event(redraw));
    control(108).send(Event(redraw));

    EXPECT_EQ(order, std::vector<int>{1});
}

TEST_F(EventsTest, APostedEventComesLaterFromTheLoop)
{
    window->installHandler({redraw}, noting(1, noErr));

    window->post(Event(redraw));
    EXPECT_TRUE(order.empty());

    EXPECT_TRUE(until([this] { return order.size() == 1; }));
}

TEST_F(EventsTest, APostedEventWhoseTargetIsGoneIsDropped)
{
    window->installHandler({redraw}, noting(1, noErr));
    window->post(Event(redraw));
    window.reset();
    settle();

    EXPECT_TRUE(order.empty());
}
