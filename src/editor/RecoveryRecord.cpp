// The lines of a recovery record, see RecoveryRecord.h.
#include "editor/RecoveryRecord.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace pictorel {
namespace {

constexpr QLatin1String kName("name");
constexpr QLatin1String kFolder("folder");
constexpr QLatin1String kCaption("caption");
constexpr QLatin1String kTime("time");
constexpr QLatin1String kSize("size");
constexpr QLatin1String kActive("active");
constexpr qsizetype kLongestText = 4096; // of a caption or a path
constexpr qsizetype kLongestRecord = 1 << 20;

QByteArray Line(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QString TextOf(const QJsonObject& object, QLatin1String key) {
    return object.value(key).toString().left(kLongestText);
}

} // namespace

QByteArray RecoveryRecord::Written() const {
    QByteArray bytes = Line({{kName, pictureName}, {kFolder, pictureFolder}});
    for (std::size_t row = 0; row < states.size(); ++row) {
        bytes += Line({{kCaption, states[row].state.caption},
                       {kTime, QString::number(states[row].fileTime)},
                       {kSize, QString::number(states[row].fileSize)},
                       {kActive, static_cast<int>(row) == active}});
    }
    return bytes;
}

std::optional<RecoveryRecord> RecoveryRecord::Read(const QByteArray& bytes) {
    RecoveryRecord record;
    for (const QByteArray& line : bytes.left(kLongestRecord).split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.contains(kName)) {
            record.pictureName = TextOf(object, kName);
            record.pictureFolder = TextOf(object, kFolder);
        } else if (object.contains(kTime) && record.states.size() < History::kMost) {
            if (object.value(kActive).toBool()) {
                record.active = static_cast<int>(record.states.size());
            }
            record.states.push_back({{TextOf(object, kCaption), QString()},
                                     TextOf(object, kTime).toLongLong(),
                                     TextOf(object, kSize).toLongLong()});
        }
    }
    if (record.states.empty()) {
        return std::nullopt;
    }
    if (record.active < 0) { // its line was damaged
        record.active = static_cast<int>(record.states.size()) - 1;
    }
    return record;
}

} // namespace pictorel
