// Tabs, each showing one panel.
#pragma once

#include "controls/ContainerPanel.h"
#include "controls/Control.h"

#include <QTabBar>
#include <QWidget>

#include <vector>

namespace pictorel {

// Panels are children of the tab control, placed in its coordinates below the row of tabs; choosing a tab
// shows its panel and hides the others.
class TabControl : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit TabControl(QWidget* parent);

    void AddTab(const QString& caption, ContainerPanel& panel);
    int SelectedTab() const { return tabs_->currentIndex(); }
    void SelectTab(int index) { tabs_->setCurrentIndex(index); }
    void StepTab(int by); // round and round

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void ShowSelected();

    QTabBar* tabs_;
    std::vector<ContainerPanel*> panels_;
};

} // namespace pictorel
