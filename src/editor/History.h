// The edit history: up to 15 states of the picture and the one that is on the screen.
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace pictorel {

struct HistoryState {
    QString caption;        // what was done: "Open", "Brightness", "Rotate Left"
    QString imageFile;      // the working file that holds the picture as it was right after that
    std::uint64_t id = 0;   // of this state alone, rising from state to state
    bool restorable = true; // false where its working file could not be written, or has gone
};

// A value without side effects: files and lists are other people's business. Invariants after every member:
// at most kMost states; none is active only while there are none; states after the active one are those that
// can be redone. A row outside the states raises std::out_of_range.
class History {
  public:
    static constexpr int kMost = 15;

    int Count() const noexcept { return static_cast<int>(states_.size()); }
    bool IsFull() const noexcept { return Count() == kMost; }
    const HistoryState& State(int row) const;
    const std::vector<HistoryState>& States() const noexcept { return states_; }

    int Active() const noexcept { return active_; } // -1 where there is no state

    // Another number after every change.
    std::uint64_t Revision() const noexcept { return revision_; }

    // The row that Undo and Redo lead to: the nearest one on that side that can be restored; -1 where there
    // is none.
    int UndoRow() const noexcept;
    int RedoRow() const noexcept;

    // Whether the picture on the screen has the edit that made the state of this id.
    bool IsApplied(std::uint64_t id) const noexcept;

    // Takes off the states after the active one and hands them over, the first of them first.
    std::vector<HistoryState> DropRedo();

    // Adds a state after the active one, which must be the last, and makes it active; a state beyond kMost
    // pushes the oldest out, which is handed over in a list of one.
    std::vector<HistoryState> Append(const QString& caption, const QString& imageFile);

    void Activate(int row);
    void SetImageFile(int row, const QString& imageFile);
    void MarkLost(int row); // its working file is none
    void Clear();

    // The states of an editor that ended without its person's wish; ids are given anew.
    void Restore(std::vector<HistoryState> states, int active);

  private:
    HistoryState& Mutable(int row);

    std::vector<HistoryState> states_;
    int active_ = -1;
    std::uint64_t newestId_ = 0;
    std::uint64_t revision_ = 1;
};

} // namespace pictorel
