// The two manners of going on after an error.
#include "platform/CarryOn.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace pictorel {
namespace {

int Fails() {
    throw std::runtime_error("no");
}

TEST(CarryOn, RunsTheStepsAfterAFailingOne) {
    std::string done;
    int value = 7;
    CarryOn([&] { done += "a"; },
            [&] {
                done += "b";
                value = Fails();
                done += "never";
            },
            [&] { done += "c"; }, [&] { Fails(); }, [&] { done += "d"; });
    EXPECT_EQ(done, "abcd");
    EXPECT_EQ(value, 7) << "a value that could not be computed stays as it was";
}

TEST(StopAtFirstError, GivesTheRoutinesResultOrFalse) {
    int steps = 0;
    EXPECT_TRUE(StopAtFirstError([] { return true; }));
    EXPECT_FALSE(StopAtFirstError([] { return false; }));
    EXPECT_FALSE(StopAtFirstError([&] {
        ++steps;
        Fails();
        ++steps;
        return true;
    }));
    EXPECT_EQ(steps, 1);
}

} // namespace
} // namespace pictorel
