// The Open and Save file dialogs, see CommonDialog.h.
#include "controls/CommonDialog.h"

#include "controls/MessageBoxes.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTreeView>

#include <algorithm>

namespace pictorel {
namespace {

constexpr unsigned kAskBeforeOverwriting = 0x2;

struct FilterEntry {
    QString description;
    QStringList patterns;
};

QList<FilterEntry> ParseFilter(const QString& filter) {
    const QStringList parts = filter.split(u'|', Qt::SkipEmptyParts);
    QList<FilterEntry> entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        entries.append({parts[i].trimmed(), parts[i + 1].split(u';', Qt::SkipEmptyParts)});
    }
    return entries;
}

QStringList NameFilters(const QList<FilterEntry>& entries) {
    static const QRegularExpression patternsInDescription(QStringLiteral("\\s*\\([^()]*\\)$"));
    QStringList filters;
    for (const FilterEntry& entry : entries) {
        QString description = entry.description;
        description.remove(patternsInDescription);
        filters.append(QStringLiteral("%1 (%2)").arg(description, entry.patterns.join(u' ')));
    }
    return filters;
}

// The folder to begin in: the setting itself, or the folder of the file that it names.
QString StartFolder(const QString& setting) {
    if (setting.isEmpty()) {
        return QDir::homePath();
    }
    const QFileInfo info(setting);
    return info.isDir() ? info.absoluteFilePath() : info.absolutePath();
}

QString ExtensionOf(const FilterEntry& entry) {
    return entry.patterns.isEmpty() ? QString() : QFileInfo(entry.patterns.first()).suffix();
}

// From 0. A desktop's dialog may tell the filter without its patterns.
qsizetype ChosenEntry(const QFileDialog& dialog) {
    const QString chosen = dialog.selectedNameFilter();
    const QStringList filters = dialog.nameFilters();
    for (qsizetype i = 0; i < filters.size(); ++i) {
        if (filters[i] == chosen || filters[i].startsWith(chosen + QStringLiteral(" ("))) {
            return i;
        }
    }
    return 0;
}

// The name with the extension of the entry, unless it ends in one that is known: "St. Mark" has none.
QString WithExtension(const QString& fileName, const QList<FilterEntry>& entries, qsizetype chosen,
                      const QStringList& others) {
    const QString extension = QFileInfo(fileName).suffix();
    const bool isKnown =
        others.contains(extension, Qt::CaseInsensitive) ||
        std::any_of(entries.begin(), entries.end(), [&](const FilterEntry& entry) {
            return entry.patterns.contains(QStringLiteral("*.") + extension, Qt::CaseInsensitive);
        });
    return isKnown || entries.isEmpty() ? fileName : fileName + u'.' + ExtensionOf(entries[chosen]);
}

// Sizes and dates in full, the rest of the width for the names.
void GiveColumnsTheirWidth(QFileDialog& dialog) {
    if (const auto* const list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        list->header()->setStretchLastSection(false);
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
}

} // namespace

void CommonDialog::ShowOpen() {
    QFileDialog dialog(owner_, QObject::tr("Open"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    // One picture is open at a time, so one file is taken even where the flags would allow more.
    dialog.setFileMode(QFileDialog::ExistingFile);
    Prepare(dialog);
    const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    FileName = chosen ? dialog.selectedFiles().first() : QString();
}

void CommonDialog::ShowSave() {
    const auto entries = ParseFilter(Filter);
    do {
        QFileDialog dialog(owner_, QObject::tr("Save"));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        // The dialog would ask about the name as it was typed: without the extension that it gets.
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
        Prepare(dialog);
        if (!FileName.isEmpty()) {
            dialog.selectFile(QDir(StartFolder(InitDir)).filePath(FileName));
            if (auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))) {
                name->selectAll(); // typing begins another name
            }
        }
        const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
        const qsizetype entry = ChosenEntry(dialog);
        FilterIndex = static_cast<int>(entry) + 1;
        FileName = chosen ? WithExtension(dialog.selectedFiles().first(), entries, entry, OtherExtensions)
                          : QString();
    } while (!FileName.isEmpty() && !MayReplace(FileName));
}

bool CommonDialog::MayReplace(const QString& fileName) const {
    if ((Flags & kAskBeforeOverwriting) == 0 || !QFileInfo::exists(fileName)) {
        return true;
    }
    const QString question = QObject::tr("\"%1\" is there already. Replace it?");
    return MessageBoxes(owner_).AskYesNo(question.arg(QFileInfo(fileName).fileName()), QObject::tr("Save"));
}

void CommonDialog::Prepare(QFileDialog& dialog) {
    GiveColumnsTheirWidth(dialog);
    const QStringList filters = NameFilters(ParseFilter(Filter));
    dialog.setNameFilters(filters);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setDirectory(StartFolder(InitDir));
    if (FilterIndex >= 1 && FilterIndex <= filters.size()) {
        dialog.selectNameFilter(filters[FilterIndex - 1]);
    }
}

} // namespace pictorel
