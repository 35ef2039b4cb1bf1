// What an editor leaves beside its working files, so that the next one can bring its history back.
#pragma once

#include "editor/History.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace pictorel {

// A state, and how the file that holds its picture is told from all others: a kill in the midst of an edit
// may leave the files under other names than the record says.
struct RecoveryState {
    HistoryState state;
    std::int64_t fileTime = 0; // of its last change, nanoseconds
    std::int64_t fileSize = 0; // bytes

    bool IsSameFile(const RecoveryState& other) const {
        return fileTime == other.fileTime && fileSize == other.fileSize;
    }
};

struct RecoveryRecord {
    QString pictureName;   // its file without its folder, or "Scan"
    QString pictureFolder; // empty for what is no file
    std::vector<RecoveryState> states;
    int active = -1;

    // A line of JSON for the picture and one for each state, so that what is whole of a damaged record is
    // read.
    QByteArray Written() const;

    // What can be read of such bytes: at most as many states as a history has, each with a plain file name,
    // one of them active. Nothing where there is no state.
    static std::optional<RecoveryRecord> Read(const QByteArray& bytes);
};

} // namespace pictorel
