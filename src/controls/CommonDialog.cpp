// The Open and Save file dialogs, see CommonDialog.h.
#include "controls/CommonDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QRegularExpression>
#include <QTreeView>

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
    Run(dialog, false);
}

void CommonDialog::ShowSave() {
    QFileDialog dialog(owner_, QObject::tr("Save"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, (Flags & kAskBeforeOverwriting) == 0);
    Run(dialog, true);
}

void CommonDialog::Run(QFileDialog& dialog, bool saving) {
    GiveColumnsTheirWidth(dialog);
    const auto entries = ParseFilter(Filter);
    const QStringList filters = NameFilters(entries);
    dialog.setNameFilters(filters);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setDirectory(StartFolder(InitDir));
    // A name typed without an extension gets that of the chosen filter.
    const auto useExtensionOf = [&](const QString& filter) {
        for (qsizetype i = 0; saving && i < filters.size(); ++i) {
            if (filters[i] == filter || filters[i].startsWith(filter + QStringLiteral(" ("))) {
                dialog.setDefaultSuffix(ExtensionOf(entries[i]));
            }
        }
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, useExtensionOf);
    if (FilterIndex >= 1 && FilterIndex <= filters.size()) {
        dialog.selectNameFilter(filters[FilterIndex - 1]);
        useExtensionOf(filters[FilterIndex - 1]);
    }
    if (!FileName.isEmpty()) {
        dialog.selectFile(FileName);
    }
    const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    FileName = chosen ? dialog.selectedFiles().first() : QString();
}

} // namespace pictorel
