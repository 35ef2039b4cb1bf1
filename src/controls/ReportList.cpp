// A list of records in columns, see ReportList.h.
#include "controls/ReportList.h"

#include "controls/SkinColours.h"

#include <QHeaderView>
#include <QSignalBlocker>

#include <string>

namespace pictorel {

ReportList::ReportList(QWidget* parent) : QTreeWidget(parent), Control(static_cast<QWidget&>(*this)) {
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setColumnCount(0);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(this, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!populating_ && FirstSelectedRow() >= 0) {
            emit RowPicked();
        }
    });
    // A click on the row that is selected already picks it once more.
    connect(this, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
        const int row = indexOfTopLevelItem(item);
        if (row == clickedRow_ && item->isSelected()) {
            emit RowPicked();
        }
        clickedRow_ = row;
    });
}

void ReportList::AddColumn(int position, const QString& caption, int width, bool resizable) {
    setColumnCount(std::max(columnCount(), position + 1));
    headerItem()->setText(position, caption);
    header()->resizeSection(position, width);
    header()->setSectionResizeMode(position, resizable ? QHeaderView::Interactive : QHeaderView::Fixed);
    header()->setStretchLastSection(true);
}

ReportRecord& ReportList::Record(int row) {
    if (row < 0 || row >= Count()) {
        throw ControlError(Name().toStdString() + ": there is no row " + std::to_string(row));
    }
    return records_[static_cast<std::size_t>(row)];
}

ReportItem& ReportList::Item(int row, int column) {
    auto& items = Record(row).items;
    if (column < 0 || column >= static_cast<int>(items.size())) {
        throw ControlError(Name().toStdString() + ": there is no column " + std::to_string(column));
    }
    return items[static_cast<std::size_t>(column)];
}

ReportRecord& ReportList::AddRecord() {
    return records_.emplace_back();
}

void ReportList::RemoveRecord(int row) {
    Record(row);
    records_.erase(records_.begin() + row);
}

void ReportList::Populate() {
    populating_ = true;
    while (topLevelItemCount() > Count()) {
        delete takeTopLevelItem(topLevelItemCount() - 1);
    }
    while (topLevelItemCount() < Count()) {
        addTopLevelItem(new QTreeWidgetItem);
    }
    for (int row = 0; row < Count(); ++row) {
        Style(row);
    }
    populating_ = false;
}

void ReportList::Style(int row) {
    QTreeWidgetItem* const shown = topLevelItem(row);
    const auto& items = records_[static_cast<std::size_t>(row)].items;
    for (int column = 0; column < static_cast<int>(items.size()); ++column) {
        const ReportItem& item = items[static_cast<std::size_t>(column)];
        if (isColumnHidden(column)) {
            continue; // what nobody sees is no text for assistive tools either
        }
        shown->setText(column, item.value);
        shown->setData(
            column, Qt::AccessibleTextRole,
            item.spokenState.isEmpty() ? item.value : item.value + QStringLiteral(", ") + item.spokenState);
        shown->setForeground(column, item.textColour == kSilver
                                         ? QuietTextColour(palette())
                                         : palette().color(QPalette::Active, QPalette::Text));
        shown->setSizeHint(column, QSize(0, fontMetrics().height() + 6));
    }
}

void ReportList::SelectRow(int row) {
    Record(row);
    populating_ = true;
    setCurrentItem(topLevelItem(row));
    populating_ = false;
}

int ReportList::FirstSelectedRow() const {
    const auto selected = selectedItems();
    return selected.isEmpty() ? -1 : indexOfTopLevelItem(selected.first());
}

} // namespace pictorel
