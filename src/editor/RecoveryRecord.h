// What an editor leaves beside its working files, so that the next one can bring its history back.
#pragma once

#include "editor/History.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace pictorel {

struct RecoveryRecord {
    QString pictureName;      // as the status strip shows it
    QString openDialogFolder; // where the dialogs were
    QString saveDialogFolder;
    std::vector<HistoryState> states; // the working files without their folder
    int active = -1;

    // A line of JSON for the picture and one for each state, so that what is whole of a damaged record is
    // read.
    QByteArray Written() const;

    // What can be read of such bytes: at most as many states as a history has, each with a plain file name,
    // one of them active. Nothing where there is no state.
    static std::optional<RecoveryRecord> Read(const QByteArray& bytes);
};

} // namespace pictorel
