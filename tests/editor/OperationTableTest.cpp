// The calls that operation codes make: those whose numbers are changed, swapped or chosen between on the way.
#include "editor/OperationTable.h"
#include "editor/RecordingTransform.h"
#include "platform/Numbers.h"

#include <gtest/gtest.h>

namespace pictorel::test {
namespace {

constexpr ColourValue kBackground = 4711;

void Perform(RecordingTransform& transform, Operation operation, const OperationParameters& parameters) {
    OperationTable()[static_cast<std::size_t>(operation)].perform(transform, parameters, kBackground);
}

struct Case {
    Operation operation;
    OperationParameters parameters;
    const char* calls;
};

TEST(OperationTable, MakesTheCalls) {
    const auto cases = {
        Case{Operation::SharpenOrBlur, {5}, "Blur(5)"},
        Case{Operation::SharpenOrBlur, {-5}, "Sharpen(5)"},
        Case{Operation::SharpenOrBlur, {0}, "Blur(0) Sharpen(0) Sharpen(0)"},
        Case{Operation::MaximalOrMinimal, {3}, "MinimalFilter(3)"},
        Case{Operation::MaximalOrMinimal, {2}, "MinimalFilter(2)"},
        Case{Operation::MaximalOrMinimal, {1}, "MinimalFilter(0) MaximalFilter(0) MaximalFilter(-1)"},
        Case{Operation::MaximalOrMinimal, {0}, "MaximalFilter(0)"},
        Case{Operation::MaximalOrMinimal, {-3}, "MaximalFilter(3)"},
        Case{Operation::Emboss,
             {10, 200, 4},
             "Emboss(10,4,2)"}, // angle, amount, height come; height stands second
        Case{Operation::Halftone, {1, 25}, "Halftone(1,1.25)"},
        Case{Operation::Halftone, {1, 0}, "Halftone(1,1)"},
        Case{Operation::Contrast, {150}, "Contrast(1.5)"},
        Case{Operation::Saturation, {-7}, "Saturation(-0.07)"},
        Case{Operation::Brightness, {-255}, "Brightness(-255)"},
        Case{Operation::MotionBlur, {7}, "MotionBlur(90,7)"},
        Case{Operation::Diffuse, {30}, "Diffuse(2,30)"},
        Case{Operation::Noise, {30}, "Noise(30,false)"},
        Case{Operation::Colorize, {255, 128, 0}, "Colorize(255,128,0)"},
        Case{Operation::Skew, {30, -1}, "Skew(true,30)"},
        Case{Operation::Skew, {30, 0}, "Skew(false,30)"},
        Case{Operation::Perspective, {-30, -1}, "Perspective(true,-30)"},
        Case{Operation::Perspective, {-30, 0}, "Perspective(false,-30)"},
        Case{Operation::FlipVertical, {}, "Mirror(true)"},
        Case{Operation::FlipHorizontal, {}, "Mirror(false)"},
        Case{Operation::Rotate, {45}, "Rotate(45,4711)"},
        Case{Operation::Resize, {800, 600, 9}, "Resize(800,600,0,4711)"},
        Case{Operation::TurnLeft, {90}, "QuarterTurn(-1)"},
        Case{Operation::TurnRight, {90}, "QuarterTurn(1)"},
    };
    for (const Case& c : cases) {
        RecordingTransform transform;
        Perform(transform, c.operation, c.parameters);
        EXPECT_EQ(transform.calls, c.calls);
    }
}

TEST(OperationTable, WhatIsNoByteMakesNoCall) {
    const auto cases = {
        Case{Operation::Threshold, {300}, ""},         Case{Operation::Threshold, {-1}, ""},
        Case{Operation::Colorize, {-1, 255, 255}, ""}, Case{Operation::Colorize, {255, 256, 255}, ""},
        Case{Operation::Colorize, {255, 255, -1}, ""},
    };
    for (const Case& c : cases) {
        RecordingTransform transform;
        EXPECT_THROW(Perform(transform, c.operation, c.parameters), NumberError);
        EXPECT_EQ(transform.calls, "");
    }
}

TEST(OperationTable, OfSeveralCallsTheLastOneCounts) {
    const auto cases = {
        Case{Operation::SharpenOrBlur, {0}, "Blur(0) Sharpen(0) Sharpen(0)"},
        Case{Operation::MaximalOrMinimal, {1}, "MinimalFilter(0) MaximalFilter(0) MaximalFilter(-1)"},
    };
    for (const Case& c : cases) {
        RecordingTransform transform;
        transform.fails = true;
        EXPECT_THROW(Perform(transform, c.operation, c.parameters), ImagingError);
        EXPECT_EQ(transform.calls, c.calls) << "a failing call does not keep the next from being made";
    }
}

} // namespace
} // namespace pictorel::test
