// A list of records in columns, some of which may be hidden.
#pragma once

#include "controls/Control.h"

#include <QTreeWidget>

#include <vector>

namespace pictorel {

// Colour numbers of an item's text, as 0x00BBGGRR. The list shows them through the skin: black is its text
// colour, silver its quiet one, so that both can be read on any background.
inline constexpr unsigned kBlack = 0;
inline constexpr unsigned kSilver = 0xC0C0C0;

struct ReportItem {
    QString value;
    unsigned textColour = kBlack;
    QString spokenState = {}; // what screen readers say behind the value, such as "active"
};

struct ReportRecord {
    std::vector<ReportItem> items; // one a column
};

class ReportList : public QTreeWidget, public Control {
    Q_OBJECT

  public:
    explicit ReportList(QWidget* parent);

    void AddColumn(int position, const QString& caption, int width, bool resizable);
    void ShowColumn(int column, bool visible) { setColumnHidden(column, !visible); }

    int Count() const { return static_cast<int>(records_.size()); }
    // Both throw ControlError for a row or column that the list does not have.
    ReportRecord& Record(int row);
    ReportItem& Item(int row, int column);

    ReportRecord& AddRecord(); // at the end
    void RemoveRecord(int row);
    void RemoveAllRecords() { records_.clear(); }

    // Shows the records as they are now.
    void Populate();

    void SelectRow(int row);      // raises no RowPicked
    int FirstSelectedRow() const; // -1 where none is selected
    void FocusList() { setFocus(); }

  signals:
    // The person selected a row.
    void RowPicked();

  private:
    void Style(int row);

    std::vector<ReportRecord> records_;
    int clickedRow_ = -1; // the row that the last click was on
    bool populating_ = false;
};

} // namespace pictorel
