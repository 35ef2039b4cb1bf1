// The states of the history and which of them is active: what undo, redo and edits lead to.
#include "editor/History.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <stdexcept>

namespace pictorel::test {
namespace {

History WithStates(int count) {
    History history;
    for (int i = 0; i < count; ++i) {
        history.Append(QString::number(i), QStringLiteral("%1.jpg").arg(i));
    }
    return history;
}

QStringList Captions(const History& history) {
    QStringList captions;
    for (const HistoryState& state : history.States()) {
        captions.append(state.caption);
    }
    return captions;
}

TEST(History, AnEmptyOneLeadsNowhere) {
    const History history;
    EXPECT_EQ(history.Active(), -1);
    EXPECT_EQ(history.UndoRow(), -1);
    EXPECT_EQ(history.RedoRow(), -1);
    EXPECT_FALSE(history.IsApplied(0));
    EXPECT_THROW(history.State(0), std::out_of_range);
}

TEST(History, AnEditAfterUndoDropsWhatCouldBeRedone) {
    History history = WithStates(4);
    history.Activate(1);
    EXPECT_EQ(history.UndoRow(), 0);
    EXPECT_EQ(history.RedoRow(), 2);
    EXPECT_THROW(history.Append("x", "x"), std::logic_error);
    const auto dropped = history.DropRedo();
    ASSERT_EQ(dropped.size(), 2U);
    EXPECT_EQ(dropped.front().imageFile, "2.jpg");
    history.Append("new", "new.jpg");
    EXPECT_EQ(Captions(history), (QStringList{"0", "1", "new"}));
    EXPECT_EQ(history.Active(), 2);
    EXPECT_EQ(history.RedoRow(), -1);
}

TEST(History, TheSixteenthPushesOutTheFirst) {
    History history = WithStates(15);
    EXPECT_TRUE(history.IsFull());
    const auto pushedOut = history.Append("15", "15.jpg");
    ASSERT_EQ(pushedOut.size(), 1U);
    EXPECT_EQ(pushedOut.front().imageFile, "0.jpg");
    EXPECT_EQ(history.Count(), 15);
    EXPECT_EQ(history.State(0).caption, "1");
    EXPECT_EQ(history.Active(), 14);
}

TEST(History, WhatIsLostIsPassedOver) {
    History history = WithStates(5);
    history.MarkLost(2);
    history.MarkLost(3);
    EXPECT_EQ(history.UndoRow(), 1);
    history.Activate(1);
    EXPECT_EQ(history.RedoRow(), 4);
    history.MarkLost(0);
    EXPECT_EQ(history.UndoRow(), -1);
}

TEST(History, KnowsWhichEditsThePictureHas) {
    History history = WithStates(3);
    const auto first = history.State(1).id;
    const auto second = history.State(2).id;
    history.Activate(1);
    EXPECT_TRUE(history.IsApplied(first));
    EXPECT_FALSE(history.IsApplied(second));
    history.DropRedo();
    for (int i = 0; i < 15; ++i) {
        history.Append("more", "more.jpg");
    }
    EXPECT_TRUE(history.IsApplied(first)) << "pushed out, it lives on in all that follow";
}

} // namespace
} // namespace pictorel::test
