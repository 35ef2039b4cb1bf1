// The recovery record on disk, see RecoveryKeeper.h.
#include "editor/RecoveryKeeper.h"

#include "editor/AtomicFile.h"
#include "platform/CarryOn.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace pictorel {
namespace {

// A JPEG that was cut, or of which a power cut left nothing but its length, does not end as one.
bool IsWholeJpeg(const QString& fileName) {
    constexpr int kMarkerBytes = 2;
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) && file.read(kMarkerBytes) == "\xFF\xD8" &&
           file.seek(file.size() - kMarkerBytes) && file.read(kMarkerBytes) == "\xFF\xD9";
}

} // namespace

RecoveryRecord RecoveryKeeper::Record() const {
    RecoveryRecord record{document_.PictureName, document_.OpenDialogFolder, document_.SaveDialogFolder,
                          history_.States().States(), history_.States().Active()};
    for (HistoryState& state : record.states) {
        state.imageFile = QFileInfo(state.imageFile).fileName();
    }
    return record;
}

void RecoveryKeeper::Update() {
    const std::uint64_t revision = history_.States().Revision();
    if (!document_.ImageModified(kSlot) || history_.States().Count() == 0) {
        Forget();
        settled_ = revision;
    } else if (settled_ != revision) {
        settled_ = revision;
        CarryOn([&] {
            const QByteArray bytes = Record().Written();
            const QString file = document_.WorkingFile(kRecoveryRecord);
            ReplaceFile(file.toStdString(),
                        codecs::ByteView(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                         static_cast<std::size_t>(bytes.size())),
                        Durability::Working);
            written_ = file;
        });
    }
}

void RecoveryKeeper::Forget() {
    if (!written_.isEmpty()) {
        QFile::remove(written_);
        written_.clear();
    }
}

std::optional<RecoveryRecord> ReadRecoveryRecord(const AbandonedFolder& folder) {
    QFile file(folder.Path(kRecoveryRecord));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    std::optional<RecoveryRecord> record = RecoveryRecord::Read(file.readAll());
    if (!record) {
        return std::nullopt;
    }
    std::vector<HistoryState> whole;
    int active = -1;
    for (int row = 0; row < static_cast<int>(record->states.size()); ++row) {
        HistoryState state = record->states[static_cast<std::size_t>(row)];
        state.imageFile = folder.Path(state.imageFile);
        if (IsWholeJpeg(state.imageFile)) {
            whole.push_back(std::move(state));
        }
        if (row <= record->active || active < 0) {
            active = static_cast<int>(whole.size()) - 1; // or the nearest before it, or the first behind
        }
    }
    record->states = std::move(whole);
    record->active = active;
    return record->states.empty() ? std::nullopt : record;
}

} // namespace pictorel
