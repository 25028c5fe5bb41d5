#pragma once
// SSTab: the tab folder of the register screens. A QTabWidget that also answers to the
// old grid's names for the current tab.

#include <QTabWidget>

namespace rtx::ui {

class SSTab : public QTabWidget {
    Q_OBJECT
public:
    explicit SSTab(QWidget* parent = nullptr) : QTabWidget(parent) {}
    int tab() const { return currentIndex(); }
    void setTab(int index) { setCurrentIndex(index); }
};

} // namespace rtx::ui
