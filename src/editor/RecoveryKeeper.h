// Keeps the recovery record beside the working files true while the picture has changes that are not saved.
#pragma once

#include "editor/EditHistory.h"
#include "editor/Image_Mods.h"
#include "editor/RecoveryRecord.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace pictorel {

class RecoveryKeeper {
  public:
    RecoveryKeeper(const Image_Mods& document, const EditHistory& history)
        : document_(document), history_(history) {}

    // After a command: writes the record if the history is another than the one kept, takes it away where
    // nothing is left to save. A record that cannot be written is done without.
    void Update();

    // The person has decided about the changes, or the editor ends as it should.
    void Forget();

  private:
    RecoveryRecord Record() const;

    const Image_Mods& document_;
    const EditHistory& history_;
    std::uint64_t settled_ = 0; // the history's revision that the record tells of, or that was saved
    QString written_;           // the record's file, empty while there is none
};

// The record in a dead editor's folder, with the states whose working files are there and whole at both ends.
// The working files' names are full paths. Nothing where there is no such state.
std::optional<RecoveryRecord> ReadRecoveryRecord(const AbandonedFolder& folder);

} // namespace pictorel
