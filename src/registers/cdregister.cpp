#include "registers/cdregister.h"

#include "session/artwork.h"
#include "session/kit/kit.h"
#include "store/store.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace rtx::ui {

namespace {

QString columnOf(const QLineEdit* field) {
    return field->objectName().toLower();
}

QPushButton* barButton(QWidget* parent, const QString& name, const QString& caption,
                       const QString& glyph, const QColor& colour) {
    auto* button = new QPushButton(artwork::tile(glyph, colour, 24), caption, parent);
    button->setObjectName(name);
    button->setIconSize(QSize(24, 24));
    button->setMinimumWidth(96);
    button->setAutoDefault(false);
    return button;
}

} // namespace

CdRegister::CdRegister(const QString& name, const QString& title, QWidget* parent)
    : QDialog(parent) {
    setObjectName(name);
    setWindowTitle(title);

    menu_ = new QMenuBar(this);
    SSTab1 = new SSTab(this);
    SSTab1->setObjectName(QStringLiteral("SSTab1"));

    cd = new QLineEdit(this);
    cd->setObjectName(QStringLiteral("cd"));
    cd->hide();

    Command16 = barButton(this, QStringLiteral("Command16"), QStringLiteral("Grava"),
                          QStringLiteral("\u2713"), QColor(0x2E, 0x7D, 0x32));
    Command4 = barButton(this, QStringLiteral("Command4"), QStringLiteral("Novo"),
                         QStringLiteral("+"), QColor(0x15, 0x65, 0xC0));
    Command3 = barButton(this, QStringLiteral("Command3"), QStringLiteral("Apaga"),
                         QStringLiteral("\u2717"), QColor(0xC6, 0x28, 0x28));
    Command5 = barButton(this, QStringLiteral("Command5"), QStringLiteral("Volta"),
                         QStringLiteral("\u2190"), QColor(0x61, 0x61, 0x61));

    auto* bar = new QHBoxLayout;
    bar->addWidget(Command16);
    bar->addWidget(Command4);
    bar->addWidget(Command3);
    bar->addStretch();
    bar->addWidget(Command5);

    auto* all = new QVBoxLayout(this);
    all->setMenuBar(menu_);
    all->addWidget(SSTab1);
    all->addLayout(bar);
}

QList<QLineEdit*> CdRegister::addFormTab(const QString& caption, const QList<FieldSpec>& fields) {
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    grid->setVerticalSpacing(6);
    QList<QLineEdit*> made;
    for (const FieldSpec& f : fields) {
        QLineEdit* field = f.mask ? new MaskEdBox(*f.mask, page) : new QLineEdit(page);
        field->setObjectName(f.name);
        field->setFixedWidth(f.width);
        if (f.maxLength > 0) field->setMaxLength(f.maxLength);
        if (f.digits) digitsOnly(field);
        if (f.stripQuotes) {
            quoteless_ << field;
            field->installEventFilter(this);
        }
        auto* label = new QLabel(f.label, page);
        label->setObjectName(QStringLiteral("Label") + f.name);
        label->setBuddy(field);
        const int row = int(made.size());
        grid->addWidget(label, row, 0);
        grid->addWidget(field, row, 1, Qt::AlignLeft);
        made << field;
        fields_ << field;
    }
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(int(made.size()), 1);
    SSTab1->addTab(page, caption);
    return made;
}

void CdRegister::addListTab(const QString& caption, const QString& table,
                            const QList<ListColumn>& columns) {
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    Grid1 = new MSFlexGrid(page);
    Grid1->setObjectName(QStringLiteral("Grid1"));
    QStringList headers;
    for (const ListColumn& c : columns) {
        headers << c.header;
        listColumns_ << c.column;
    }
    listTable_ = table;
    Grid1->setHeaders(headers);
    for (int i = 0; i < columns.size(); ++i)
        Grid1->setColWidth(i, columns[i].width);
    fitList(Grid1, 12);
    auto* hint =
        new QLabel(QStringLiteral("Para consultar de um duplo clique sobre o registro."), page);
    hint->setObjectName(QStringLiteral("Label1"));
    box->addWidget(Grid1);
    box->addWidget(hint);
    SSTab1->addTab(page, caption);
    connect(Grid1, &MSFlexGrid::rowDoubleClicked, this, [this](int row) {
        cd->setText(Grid1->key(row));
        loadByCd();
    });
}

void CdRegister::fitList(MSFlexGrid* grid, int rows) {
    grid->horizontalHeader()->setStretchLastSection(true);
    const int frame = 2 * grid->frameWidth();
    int width = frame + grid->verticalScrollBar()->sizeHint().width();
    for (int c = 0; c < grid->columnCount(); ++c)
        if (!grid->isColumnHidden(c)) width += grid->columnWidth(c);
    grid->setMinimumWidth(width);
    grid->setMinimumHeight(frame + grid->horizontalHeader()->sizeHint().height() +
                           rows * grid->verticalHeader()->defaultSectionSize() + 2);
}

// The keyboard follows the tab shown: its first field, or its list with a row marked, so
// that Enter there loads or toggles at once.
void CdRegister::focusTab(int index) {
    QWidget* page = SSTab1->widget(index);
    if (!page || !isVisible()) return;
    for (QWidget* w : page->findChildren<QWidget*>()) {
        if (auto* list = qobject_cast<MSFlexGrid*>(w)) {
            if (list->row() < 1) list->setRow(1);
            list->setFocus(Qt::TabFocusReason);
            return;
        }
        if (qobject_cast<QLineEdit*>(w) && w->isEnabled()) {
            w->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void CdRegister::fillGrid1() {
    guarded(this, [this] {
        fillList(Grid1, QStringLiteral("SELECT * FROM %1 ORDER BY x1").arg(listTable_),
                 listColumns_);
    });
}

void CdRegister::addTab(QWidget* page, const QString& caption) {
    SSTab1->addTab(page, caption);
}

void CdRegister::finish() {
    const struct {
        QPushButton* button;
        const char16_t* twin;
        void (CdRegister::*click)();
    } actions[] = {{Command16, u"sdfds", &CdRegister::Command16_Click},
                   {Command4, u"sdfsdfsd", &CdRegister::Command4_Click},
                   {Command3, u"ghfghfghg", &CdRegister::Command3_Click},
                   {Command5, u"dfgdfgdf", &CdRegister::Command5_Click}};
    for (const auto& a : actions) {
        connect(a.button, &QPushButton::clicked, this,
                [this, click = a.click] { (this->*click)(); });
        QAction* entry = menu_->addAction(a.button->text());
        entry->setObjectName(QString::fromUtf16(a.twin));
        callsButton(entry, a.button);
        a.button->installEventFilter(this);
    }
    QList<QWidget*> order(fields_.begin(), fields_.end());
    order << Command16 << Command4 << Command3 << Command5;
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    connect(SSTab1, &QTabWidget::currentChanged, this, [this](int index) { focusTab(index); });
    setupFields(this);
    keepOnEscape(this);
    centreScreen(this);
    if (Grid1) fillGrid1();
    if (!fields_.isEmpty()) fields_.first()->setFocus();
}

QString CdRegister::shownCd() const {
    return cd->text();
}

QString CdRegister::text(const QLineEdit* field) {
    if (auto* masked = qobject_cast<const MaskEdBox*>(field)) return masked->text();
    return field->text();
}

void CdRegister::setText(QLineEdit* field, const QString& text) {
    if (auto* masked = qobject_cast<MaskEdBox*>(field))
        masked->setText(text);
    else
        field->setText(text);
}

void CdRegister::clearFields(const QList<QLineEdit*>& fields) {
    for (QLineEdit* field : fields) {
        if (auto* masked = qobject_cast<MaskEdBox*>(field))
            masked->clear();
        else
            field->clear();
    }
}

void CdRegister::fillFields(const QList<QLineEdit*>& fields, const Recordset& rs) {
    for (QLineEdit* field : fields)
        setText(field, rs.text(columnOf(field)));
}

void CdRegister::storeFields(const QList<QLineEdit*>& fields, Recordset& rs) {
    for (QLineEdit* field : fields)
        rs.setValue(columnOf(field), text(field));
}

void CdRegister::saveByField(const QString& table, const QLineEdit* keyField,
                             const QList<QLineEdit*>& fields) {
    Recordset rs = Store::current().open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ? ORDER BY cd").arg(table, columnOf(keyField)),
        {text(keyField)});
    if (rs.eof())
        rs.addNew();
    else
        rs.edit();
    storeFields(fields, rs);
    rs.update();
}

void CdRegister::fillList(MSFlexGrid* grid, const QString& sql, const QStringList& columns) {
    grid->setRows(1);
    Recordset rs = Store::current().open(sql);
    for (; !rs.eof(); rs.moveNext()) {
        QStringList cells;
        for (const QString& column : columns)
            cells << rs.text(column);
        grid->addItem(cells.join(u'\t'));
    }
    stripeGrid(grid);
}

std::optional<qint64> CdRegister::cdNumber() const {
    bool ok = false;
    const qint64 n = cd->text().trimmed().toLongLong(&ok);
    if (!ok) return std::nullopt;
    return n;
}

void CdRegister::stripQuotes(QLineEdit* field) {
    QString t = text(field);
    if (!t.contains(u'\'')) return;
    t.remove(u'\'');
    setText(field, t);
}

void CdRegister::Command5_Click() {
    reject();
}

bool CdRegister::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        for (QLineEdit* field : std::as_const(quoteless_))
            if (field == watched) stripQuotes(field);
    }
    // Enter on a button of the bar presses it, as Space does.
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        auto* button = qobject_cast<QPushButton*>(watched);
        if (button && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
            button->click();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace rtx::ui
