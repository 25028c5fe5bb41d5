// The building of a RecordForm from its FormDefinition: the action bar and its menu, the tabs of
// labelled fields in column groups, the search and list tabs, the tab order.

#include "kit/actions.h"
#include "kit/dialogs.h"
#include "kit/fields.h"
#include "kit/maskedbox.h"
#include "kit/recordform.h"
#include "kit/sstab.h"
#include "kit/tile.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace rtx::ui {

namespace {

// The width of a caption without its dots, for the column of labels: the dots only fill
// the label up to the field, as on paper forms.
int captionWidth(const QFontMetrics& metrics, QString caption) {
    while (caption.endsWith(u'.') || caption.endsWith(u' '))
        caption.chop(1);
    return metrics.horizontalAdvance(caption + QStringLiteral(".."));
}

bool onPage(const FormField& f) {
    return f.place.tab >= 0 && f.kind != FormField::Kind::Hidden &&
           f.kind != FormField::Kind::Option;
}

} // namespace

void RecordForm::build() {
    auto* outer = new QVBoxLayout(this);
    auto* menu = new QMenuBar(this);
    menu->setObjectName(QStringLiteral("menu"));
    outer->setMenuBar(menu);
    if (definition_.bar == FormDefinition::Bar::Tools) {
        outer->setContentsMargins(8, 4, 8, 8);
        outer->setSpacing(6);
        auto* bar = new QHBoxLayout;
        bar->setSpacing(2);
        buildBar(bar, menu);
        outer->addLayout(bar);
    }
    tabs_ = new SSTab(this);
    tabs_->setObjectName(QStringLiteral("SSTab1"));
    if (definition_.bar == FormDefinition::Bar::Tools) tabs_->setFocusPolicy(Qt::NoFocus);
    outer->addWidget(tabs_, 1);
    buildPages();
    foot_ = new QVBoxLayout;
    outer->addLayout(foot_);
    if (definition_.bar == FormDefinition::Bar::Buttons) {
        auto* bar = new QHBoxLayout;
        buildBar(bar, menu);
        outer->addLayout(bar);
    }
    cd_ = new QLineEdit(this);
    cd_->setObjectName(QStringLiteral("cd"));
    cd_->hide();
    buildTabOrder();
    connect(tabs_, &QTabWidget::currentChanged, this, [this](int index) { focusTab(index); });
}

void RecordForm::buildBar(QBoxLayout* into, QMenuBar* menu) {
    const bool tools = definition_.bar == FormDefinition::Bar::Tools;
    for (const FormAction& a : definition_.actions) {
        if (a.apart) {
            if (tools)
                into->addSpacing(16);
            else
                into->addStretch();
        }
        QAbstractButton* button = nullptr;
        if (tools) {
            auto* tool = new QToolButton(this);
            tool->setText(a.caption);
            tool->setToolTip(a.caption);
            tool->setIcon(artwork::tile(a.glyph, a.colour, 32));
            tool->setIconSize(QSize(32, 32));
            tool->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
            tool->setAutoRaise(true);
            tool->setFocusPolicy(Qt::ClickFocus);
            tool->setMinimumWidth(64);
            button = tool;
        } else {
            auto* push = new QPushButton(artwork::tile(a.glyph, a.colour, 24), a.caption, this);
            push->setIconSize(QSize(24, 24));
            push->setMinimumWidth(96);
            push->setAutoDefault(false);
            button = push;
        }
        button->setObjectName(a.name);
        into->addWidget(button);
        buttons_.insert(a.name, button);
        const FormAction::Role role = a.role;
        // Grava and Apaga settle the fields themselves: a click on them lets them say so.
        if (role == FormAction::Role::Save || role == FormAction::Role::Delete)
            button->setProperty(settlesFirstProperty, true);
        connect(button, &QAbstractButton::clicked, this, [this, role] { runAction(role); });
        if (!a.menuName.isEmpty()) {
            QAction* entry = menu->addAction(a.caption);
            entry->setObjectName(a.menuName);
            if (!a.shortcut.isEmpty()) entry->setShortcut(a.shortcut);
            callsButton(entry, button);
        }
    }
    if (tools) {
        into->addStretch();
        auto* heading = new QLabel(definition_.heading, this);
        heading->setObjectName(QStringLiteral("Label1"));
        QFont big = heading->font();
        big.setPointSizeF(big.pointSizeF() * 1.8);
        big.setBold(true);
        heading->setFont(big);
        heading->setStyleSheet(QStringLiteral("color: #1F618D;"));
        into->addWidget(heading);
    }
}

void RecordForm::buildPages() {
    QList<QWidget*> pages;
    QList<QGridLayout*> grids;
    for (int t = 0; t < definition_.tabs.size(); ++t) {
        auto* page = new QWidget;
        pages << page;
        tabs_->addTab(page, definition_.tabs.at(t));
        if (t == definition_.search.tab) {
            buildSearch(page);
            grids << nullptr;
        } else if (t == definition_.list.tab) {
            buildList(page);
            grids << nullptr;
        } else {
            auto* grid = new QGridLayout(page);
            grid->setHorizontalSpacing(6);
            grid->setVerticalSpacing(5);
            grids << grid;
        }
    }

    // Labels of one column group share a width, wide enough for the longest caption; the
    // groups a tab uses stretch.
    QMap<QPair<int, int>, int> labelWidths;
    QMap<int, int> groupsUsed;
    const QFontMetrics metrics(font());
    for (const FormField& f : definition_.fields) {
        if (!onPage(f)) continue;
        int& w = labelWidths[{f.place.tab, f.place.col}];
        w = qMax(w, captionWidth(metrics, f.caption));
        groupsUsed[f.place.tab] = qMax(groupsUsed.value(f.place.tab), f.place.col + f.place.span);
    }

    QHash<QString, QList<const FormButton*>> beside;
    for (const FormButton& b : definition_.buttons)
        if (!b.beside.isEmpty()) beside[b.beside.toUpper()] << &b;

    for (const FormField& f : definition_.fields) {
        if (f.kind == FormField::Kind::Option) continue;
        QWidget* page = onPage(f) ? pages.at(f.place.tab) : this;
        QWidget* w = makeField(f, page);
        if (!onPage(f)) {
            w->hide();
            continue;
        }
        QGridLayout* grid = grids.at(f.place.tab);
        auto* label = new QLabel(f.caption, page);
        label->setObjectName(definition_.labelPrefix + f.name);
        label->setFixedWidth(labelWidths.value({f.place.tab, f.place.col}));
        label->setBuddy(w);
        grid->addWidget(label, f.place.row, f.place.col * 2,
                        f.kind == FormField::Kind::Memo ? Qt::AlignTop : Qt::Alignment());
        auto* box = new QHBoxLayout;
        box->setSpacing(3);
        box->addWidget(w, f.width > 0 ? 0 : 1);
        for (const FormButton* b : beside.value(f.name.toUpper()))
            box->addWidget(makeButton(*b, page));
        if (f.width > 0) box->addStretch(1);
        grid->addLayout(box, f.place.row, f.place.col * 2 + 1, 1, f.place.span * 2 - 1);
        if (f.kind == FormField::Kind::Memo) grid->setRowStretch(f.place.row, 1);
    }
    for (const FormButton& b : definition_.buttons) {
        if (!b.beside.isEmpty()) continue;
        QWidget* button = makeButton(b, pages.at(b.place.tab));
        grids.at(b.place.tab)->addWidget(button, b.place.row, b.place.col * 2 + 1, Qt::AlignRight);
    }

    for (const FormGroup& g : definition_.groups) {
        QWidget* page = pages.at(g.place.tab);
        auto* group = new QGroupBox(g.caption, page);
        group->setObjectName(g.name);
        auto* line = new QHBoxLayout(group);
        line->setContentsMargins(6, 0, 6, 2);
        for (const FormField& f : definition_.fields)
            if (f.kind == FormField::Kind::Option && f.group == g.name)
                line->addWidget(makeField(f, group));
        grids.at(g.place.tab)->addWidget(group, g.place.row, g.place.col * 2, 1, g.place.span * 2);
    }

    // Fields stretch, labels and buttons keep their size, and the rows stay at the top.
    for (int t = 0; t < grids.size(); ++t) {
        QGridLayout* grid = grids.at(t);
        if (!grid) continue;
        if (grid->isEmpty()) {
            delete grid;
            grids[t] = nullptr;
            continue;
        }
        for (int g = 0; g < qMax(1, groupsUsed.value(t)); ++g)
            grid->setColumnStretch(g * 2 + 1, 1);
        bool memo = false;
        for (int r = 0; r < grid->rowCount(); ++r)
            memo = memo || grid->rowStretch(r) > 0;
        if (!memo) grid->setRowStretch(grid->rowCount(), 1);
    }
    fieldGrids_ = grids;
}

void RecordForm::buildSearch(QWidget* page) {
    auto* grid = new QGridLayout(page);
    int r = 0;
    for (int i = 0; i < definition_.search.boxes.size(); ++i, ++r) {
        const FormSearch::Box& b = definition_.search.boxes.at(i);
        auto* label = new QLabel(b.caption, page);
        label->setObjectName(QStringLiteral("lbl") + b.name);
        auto* box = new QLineEdit(page);
        box->setObjectName(b.name);
        label->setBuddy(box);
        grid->addWidget(label, r, 0);
        grid->addWidget(box, r, 1);
        searchBoxes_ << box;
        connect(box, &QLineEdit::textChanged, this,
                [this, i](const QString& typed) { search(i, typed); });
    }
    grid->setColumnStretch(1, 1);
    searchGrid_ = new DBGrid(page);
    searchGrid_->setObjectName(QStringLiteral("DBGrid1"));
    searchGrid_->setColumns(definition_.search.columns);
    grid->addWidget(searchGrid_, r, 0, 1, 2);
    grid->setRowStretch(r, 1);
    connect(searchGrid_, &DBGrid::recordActivated, this, [this](int row) {
        // A double click where there is no row finds nothing, and shows the tab all the same.
        openFound(row < 0 ? QString() : searchGrid_->text(row, definition_.search.keyColumn),
                  definition_.search.openTab);
    });
}

void RecordForm::buildList(QWidget* page) {
    auto* box = new QVBoxLayout(page);
    listGrid_ = new MSFlexGrid(page);
    listGrid_->setObjectName(QStringLiteral("Grid1"));
    listGrid_->setHeaders(definition_.list.headers);
    for (int i = 0; i < definition_.list.widths.size(); ++i)
        listGrid_->setColWidth(i, definition_.list.widths.at(i));
    fitList(listGrid_, 12);
    auto* hint = new QLabel(definition_.list.hint, page);
    hint->setObjectName(QStringLiteral("Label1"));
    box->addWidget(listGrid_);
    box->addWidget(hint);
    connect(listGrid_, &MSFlexGrid::rowDoubleClicked, this,
            [this](int row) { openFound(listGrid_->key(row), definition_.list.openTab); });
}

void RecordForm::fitList(MSFlexGrid* grid, int rows) {
    grid->horizontalHeader()->setStretchLastSection(true);
    const int frame = 2 * grid->frameWidth();
    int width = frame + grid->verticalScrollBar()->sizeHint().width();
    for (int c = 0; c < grid->columnCount(); ++c)
        if (!grid->isColumnHidden(c)) width += grid->columnWidth(c);
    grid->setMinimumWidth(width);
    grid->setMinimumHeight(frame + grid->horizontalHeader()->sizeHint().height() +
                           rows * grid->verticalHeader()->defaultSectionSize() + 2);
}

QWidget* RecordForm::makeField(const FormField& f, QWidget* parent) {
    QWidget* w = nullptr;
    switch (f.kind) {
    case FormField::Kind::Text:
    case FormField::Kind::Hidden: {
        auto* edit = new QLineEdit(parent);
        if (f.maxLength > 0) edit->setMaxLength(f.maxLength);
        if (f.digitsOnly) digitsOnly(edit);
        w = edit;
        break;
    }
    case FormField::Kind::Masked: {
        auto* masked = new MaskEdBox(f.mask, parent);
        if (f.todayWhenEmpty) masked->setTodayWhenEmpty();
        // Wide enough for the whole mask (the tax number for a CNPJ with its separators).
        QString sample = f.mask.size() >= 14 ? QStringLiteral("00000000/0000-00") : f.mask;
        sample.replace(u'#', u'0');
        if (!f.mask.isEmpty() && !masked->isMoney() && f.width == 0)
            masked->setMinimumWidth(masked->fontMetrics().horizontalAdvance(sample) + 16);
        w = masked;
        break;
    }
    case FormField::Kind::Combo: {
        auto* combo = new QComboBox(parent);
        combo->setEditable(true);
        combo->setInsertPolicy(QComboBox::NoInsert);
        combo->setCompleter(nullptr);
        combo->addItems(f.items);
        combo->setMaxVisibleItems(15);
        // A list kept as it is by Novo starts on its first item; the others start empty.
        if (f.onNew != FormField::OnNew::Keep) combo->setCurrentIndex(-1);
        if (!f.completion) {
            // Enter and the focus colour, but no completion from the list.
            combo->setProperty("rtxSemKit", true);
            enterAsTab(combo);
            focusColours(combo);
        }
        w = combo;
        break;
    }
    case FormField::Kind::Memo: {
        auto* memo = new QPlainTextEdit(parent);
        memo->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        memo->setTabChangesFocus(true);
        memo->setMinimumHeight(70);
        w = memo;
        break;
    }
    case FormField::Kind::Option: {
        auto* option = new QRadioButton(f.caption, parent);
        if (f.onNew == FormField::OnNew::Set) option->setChecked(true);
        w = option;
        break;
    }
    }
    w->setObjectName(f.name);
    if (f.width > 0) w->setFixedWidth(f.width);
    if (f.red || f.bold) {
        QPalette palette = w->palette();
        if (f.red) palette.setColor(QPalette::Text, QColor(0xC0, 0, 0));
        w->setPalette(palette);
        QFont font = w->font();
        font.setBold(f.bold);
        w->setFont(font);
    }
    w->installEventFilter(this);
    binding_.bind(f.name, w);
    return w;
}

QAbstractButton* RecordForm::makeButton(const FormButton& b, QWidget* parent) {
    QAbstractButton* button = nullptr;
    if (b.caption.isEmpty()) {
        auto* picture = new QToolButton(parent);
        picture->setIcon(artwork::tile(b.glyph, QColor(0x1F618D), 20));
        picture->setIconSize(QSize(20, 20));
        picture->setAutoRaise(true);
        button = picture;
    } else {
        // A push button: Enter on it clicks it, for those who reach it by the keyboard.
        button = new QPushButton(b.caption, parent);
    }
    button->setObjectName(b.name);
    button->setToolTip(b.tooltip);
    button->setFocusPolicy(b.takesFocus ? Qt::StrongFocus : Qt::ClickFocus);
    buttons_.insert(b.name, button);
    return button;
}

// Tab order as the operators know it; what the order does not name follows after, then the
// options, then a bar of push buttons.
void RecordForm::buildTabOrder() {
    QList<QWidget*> order;
    for (const QString& name : definition_.tabOrder)
        if (QWidget* w = findChild<QWidget*>(name)) order << w;
    for (const FormField& f : definition_.fields)
        if (onPage(f) && !order.contains(field(f.name))) order << field(f.name);
    for (const FormField& f : definition_.fields)
        if (f.kind == FormField::Kind::Option) order << field(f.name);
    if (definition_.bar == FormDefinition::Bar::Buttons)
        for (const FormAction& a : definition_.actions)
            order << buttons_.value(a.name);
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

} // namespace rtx::ui
