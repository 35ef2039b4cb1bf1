// Offering back what was not saved, see RecoverCommand.h.
#include "commands/RecoverCommand.h"

#include "editor/ImageCodec.h"
#include "picture/engine/Resample.h"
#include "platform/CarryOn.h"

#include <QLocale>

#include <algorithm>
#include <utility>

namespace pictorel {
namespace {

QString Question(const RecoveryRecord& record, const QDateTime& time) {
    const QString name =
        record.pictureName.isEmpty() ? QObject::tr("a picture") : u'"' + record.pictureName + u'"';
    return QObject::
        tr("Recover %1 ?\n\nAn editor ended on %2 before its changes were saved. Of its history %3 can be "
           "brought back. \"No\" discards it.")
            .arg(name, QLocale().toString(time, QLocale::ShortFormat),
                 record.states.size() == 1 ? QObject::tr("one state")
                                           : QObject::tr("%1 states").arg(record.states.size()));
}

} // namespace

RecoverCommand::RecoverCommand(Editor& editor, FileCommands& fileCommands, Ask ask)
    : editor_(editor), fileCommands_(fileCommands), ask_(std::move(ask)) {}

QImage RecoverCommand::SmallPicture(const RecoveryRecord& record) const {
    constexpr double kSide = 160; // pixels
    QImage small;
    CarryOn([&] {
        PixelArray picture;
        const QString& file = record.states[static_cast<std::size_t>(record.active)].state.imageFile;
        if (!editor_.Document.ImageCodec->Read(file.toStdString(), picture)) {
            return;
        }
        const double scale = std::min(kSide / std::max(picture.Width(), picture.Height()), 1.0);
        const auto side = [scale](int length) { return std::max(static_cast<int>(length * scale), 1); };
        const PixelArray reduced = engine::Resize(picture, side(picture.Width()), side(picture.Height()));
        small = QImage(reduced.Row(0), reduced.Width(), reduced.Height(), reduced.Stride(),
                       reduced.HasAlpha() ? QImage::Format_ARGB32 : QImage::Format_RGB32)
                    .copy();
    });
    return small;
}

void RecoverCommand::OfferAll() {
    for (AbandonedFolder& folder : TakeAbandonedFolders()) {
        const auto record = ReadRecoveryRecord(folder);
        if (!record) {
            folder.Remove(); // there is nothing whole
            continue;
        }
        switch (
            ask_(Question(*record, folder.LastWritten()), QObject::tr("Recover"), SmallPicture(*record))) {
            case MessageAnswer::Yes:
                if (fileCommands_.Recover(*record)) {
                    folder.Remove();
                }
                break;
            case MessageAnswer::No:
                folder.Remove();
                break;
            case MessageAnswer::Cancel:
                return;
        }
    }
}

} // namespace pictorel
