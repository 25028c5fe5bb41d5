#pragma once
// Controls made with their objectName, for screens laid out by hand.

#include <QBoxLayout>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <utility>

#include "kit/grids.h"

namespace rtx::ui {

inline QLineEdit* lineField(const QString& name, QWidget* parent) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    return e;
}

// An editable list keeps what is typed out of its items.
inline QComboBox* comboField(const QString& name, QWidget* parent, bool editable = true) {
    auto* c = new QComboBox(parent);
    c->setObjectName(name);
    c->setEditable(editable);
    c->setInsertPolicy(QComboBox::NoInsert);
    return c;
}

// A push button that Enter in a field never presses: only Enter on the button itself.
inline QPushButton* pushButton(const QString& name, const QString& text, QWidget* parent) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

// A tab page of a billing screen: a grid with its headings and widths, and under it the hint
// that says what a double click does (also the grid's tooltip).
inline std::pair<QWidget*, MSFlexGrid*> gridPage(const QString& name, const QStringList& headers,
                                                 const QList<int>& widths, const QString& hint) {
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    auto* grid = new MSFlexGrid(page);
    grid->setObjectName(name);
    grid->setHeaders(headers);
    for (int i = 0; i < widths.size(); ++i)
        grid->setColWidth(i, widths[i]);
    grid->setToolTip(hint);
    box->addWidget(grid, 1);
    box->addWidget(new QLabel(hint, page));
    return {page, grid};
}

// The sunken, bold total of a billing screen, at the right of its own row ("TOTAL:").
inline QLabel* totalRow(const QString& name, const QString& shown, QBoxLayout* outer,
                        QWidget* parent) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(new QLabel(QStringLiteral("TOTAL:"), parent));
    auto* total = new QLabel(shown, parent);
    total->setObjectName(name);
    total->setMinimumWidth(110);
    total->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    total->setFrameShape(QFrame::Panel);
    total->setFrameShadow(QFrame::Sunken);
    QFont bold = total->font();
    bold.setBold(true);
    total->setFont(bold);
    row->addWidget(total);
    outer->addLayout(row);
    return total;
}

} // namespace rtx::ui
