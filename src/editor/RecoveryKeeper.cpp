// The recovery record on disk, see RecoveryKeeper.h.
#include "editor/RecoveryKeeper.h"

#include "editor/AtomicFile.h"
#include "platform/CarryOn.h"

#include <QDir>
#include <QFile>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace pictorel {
namespace {

// A JPEG that was cut, or of which a power cut left nothing but its length, does not end as one.
bool IsWholeJpeg(const QString& fileName) {
    constexpr int kMarkerBytes = 2;
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) && file.read(kMarkerBytes) == "\xFF\xD8" &&
           file.seek(file.size() - kMarkerBytes) && file.read(kMarkerBytes) == "\xFF\xD9";
}

RecoveryState WithFile(const HistoryState& state) {
    struct stat status {};
    if (::stat(QFile::encodeName(state.imageFile).constData(), &status) != 0) {
        return {state};
    }
    constexpr std::int64_t kSecond = 1'000'000'000;
    return {state, std::int64_t{status.st_mtim.tv_sec} * kSecond + status.st_mtim.tv_nsec, status.st_size};
}

// The whole working files of the folder.
std::vector<RecoveryState> FilesIn(const AbandonedFolder& folder) {
    std::vector<RecoveryState> files;
    for (const QString& name :
         QDir(folder.Path(QString())).entryList({QStringLiteral("tmpimg_*.jpg")}, QDir::Files)) {
        if (IsWholeJpeg(folder.Path(name))) {
            files.push_back(WithFile({QString(), folder.Path(name)}));
        }
    }
    return files;
}

} // namespace

RecoveryRecord RecoveryKeeper::Record() const {
    RecoveryRecord record{document_.PictureName, document_.PictureFolder, {}, history_.States().Active()};
    for (const HistoryState& state : history_.States().States()) {
        record.states.push_back(WithFile(state));
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
    const std::vector<RecoveryState> files = FilesIn(folder);
    std::vector<RecoveryState> whole;
    int active = -1;
    for (int row = 0; row < static_cast<int>(record->states.size()); ++row) {
        RecoveryState state = record->states[static_cast<std::size_t>(row)];
        const auto own = std::find_if(files.begin(), files.end(),
                                      [&](const RecoveryState& one) { return one.IsSameFile(state); });
        if (own != files.end()) {
            state.state.imageFile = own->state.imageFile;
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
