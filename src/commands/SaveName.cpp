// Under which name Save proposes the open picture, see SaveName.h.
#include "commands/SaveName.h"

#include "editor/SaveFormats.h"
#include "platform/Texts.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

namespace pictorel {
namespace {

// What is opened under one extension and written under another.
struct WrittenAs {
    std::string_view opened;
    std::string_view written;
};
constexpr std::array<WrittenAs, 5> kWrittenAs{
    {{"DIB", "BMP"}, {"RLE", "BMP"}, {"CPT", "TIF"}, {"JP2", "J2K"}, {"JPC", "J2K"}}};

constexpr std::string_view kEverythingElse = "JPG";

// From 1; JPEG comes first.
int FilterIndexOf(std::string_view format) {
    const QStringList parts = FromView(kSaveFilter).split(u'|', Qt::SkipEmptyParts);
    const qsizetype patterns = parts.indexOf(QStringLiteral("*.") + FromView(format).toLower());
    return patterns < 0 ? 1 : static_cast<int>(patterns / 2) + 1;
}

std::string_view WrittenFor(const QString& extension) {
    const auto* const row = std::find_if(kWrittenAs.begin(), kWrittenAs.end(), [&](const WrittenAs& other) {
        return extension.compare(FromView(other.opened), Qt::CaseInsensitive) == 0;
    });
    return row == kWrittenAs.end() ? kEverythingElse : row->written;
}

} // namespace

SaveProposal ProposeSave(const QString& pictureName) {
    const QString extension = QFileInfo(pictureName).suffix();
    if (const std::string_view own = SaveFormatFor(extension.toStdString()); !own.empty()) {
        return {pictureName, FilterIndexOf(own)};
    }
    const std::string_view written = WrittenFor(extension);
    const QString base = EndsAsPicture(pictureName) ? QFileInfo(pictureName).completeBaseName() : pictureName;
    return {base + u'.' + FromView(written).toLower(), FilterIndexOf(written)};
}

bool EndsAsPicture(const QString& fileName) {
    const QString pattern = QStringLiteral("*.") + QFileInfo(fileName).suffix().toLower();
    const auto has = [&](std::string_view patterns) {
        return FromView(patterns).split(u';').contains(pattern);
    };
    const std::size_t begin = kOpenFilter.find('|') + 1; // the first entry's patterns are all there are
    return has(kOpenFilter.substr(begin, kOpenFilter.find('|', begin) - begin)) || has(kModernPatterns);
}

} // namespace pictorel
