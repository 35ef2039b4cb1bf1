// The edit history, see History.h.
#include "editor/History.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

namespace pictorel {

const HistoryState& History::State(int row) const {
    if (row < 0 || row >= Count()) {
        throw std::out_of_range("There is no state " + std::to_string(row) + " in the history");
    }
    return states_[static_cast<std::size_t>(row)];
}

HistoryState& History::Mutable(int row) {
    ++revision_;
    return const_cast<HistoryState&>(std::as_const(*this).State(row)); // the states are this object's own
}

int History::UndoRow() const noexcept {
    int row = active_ - 1;
    while (row >= 0 && !states_[static_cast<std::size_t>(row)].restorable) {
        --row;
    }
    return std::max(row, -1);
}

int History::RedoRow() const noexcept {
    const auto next = std::find_if(states_.begin() + (active_ + 1), states_.end(),
                                   [](const HistoryState& state) { return state.restorable; });
    return next == states_.end() ? -1 : static_cast<int>(std::distance(states_.begin(), next));
}

bool History::IsApplied(std::uint64_t id) const noexcept {
    if (states_.empty() || id < states_.front().id) {
        return id != 0 && !states_.empty(); // a state that was pushed out lives on in all that follow
    }
    const auto end = states_.begin() + (active_ + 1);
    return std::any_of(states_.begin(), end, [id](const HistoryState& state) { return state.id == id; });
}

std::vector<HistoryState> History::DropRedo() {
    ++revision_;
    const auto first = states_.begin() + (active_ + 1);
    std::vector<HistoryState> dropped(std::make_move_iterator(first), std::make_move_iterator(states_.end()));
    states_.erase(first, states_.end());
    return dropped;
}

std::vector<HistoryState> History::Append(const QString& caption, const QString& imageFile) {
    if (active_ != Count() - 1) {
        throw std::logic_error("A state is added before those that can be redone were dropped");
    }
    ++revision_;
    states_.push_back({caption, imageFile, ++newestId_});
    std::vector<HistoryState> pushedOut;
    if (Count() > kMost) {
        pushedOut.push_back(std::move(states_.front()));
        states_.erase(states_.begin());
    }
    active_ = Count() - 1;
    return pushedOut;
}

void History::Activate(int row) {
    State(row);
    ++revision_;
    active_ = row;
}

void History::SetImageFile(int row, const QString& imageFile) {
    Mutable(row).imageFile = imageFile;
}

void History::MarkLost(int row) {
    Mutable(row).restorable = false;
}

void History::Clear() {
    ++revision_;
    states_.clear();
    active_ = -1;
}

void History::Restore(std::vector<HistoryState> states, int active) {
    if (states.empty() || states.size() > kMost || active < 0 || active >= static_cast<int>(states.size())) {
        throw std::out_of_range("These states are no history");
    }
    ++revision_;
    states_ = std::move(states);
    active_ = active;
    for (HistoryState& state : states_) {
        state.id = ++newestId_;
    }
}

} // namespace pictorel
