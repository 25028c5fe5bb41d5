#include "agenda/agenda3.h"

#include "agenda/cale.h"
#include "agenda/core/clock.h"
#include "kit/kit.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "store/formats.h"

#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace ag = rtx::agenda;

AGENDA3::AGENDA3(QWidget* parent) : QDialog(parent) {
    setObjectName(u"AGENDA3"_s);
    setWindowTitle(u"Pesquisa"_s);
    auto* outer = new QVBoxLayout(this);
    auto* fields = new QGridLayout;
    const auto label = [this](const QString& name, const QString& text) {
        auto* l = new QLabel(text, this);
        l->setObjectName(name);
        return l;
    };
    const auto calendarButton = [this](const QString& name) {
        auto* b = new QPushButton(u"..."_s, this);
        b->setObjectName(name);
        b->setToolTip(u"Calendário"_s);
        b->setAutoDefault(false);
        b->setFocusPolicy(Qt::NoFocus);
        b->setFixedWidth(34);
        return b;
    };
    from_ = new MaskEdBox(MaskEdBox::dateMask(), this);
    from_->setObjectName(u"A1"_s);
    from_->setFixedWidth(100);
    to_ = new MaskEdBox(MaskEdBox::dateMask(), this);
    to_->setObjectName(u"A2"_s);
    to_->setFixedWidth(100);
    // Left empty, a date of the range is today; one that is no date is said so.
    for (MaskEdBox* date : {from_, to_})
        date->setEmptyDate([] { return ag::clock().today(); });
    group_ = new QComboBox(this);
    group_->setObjectName(u"A3"_s);
    group_->setEditable(true);
    group_->setInsertPolicy(QComboBox::NoInsert);
    auto* fromButton = calendarButton(u"Command9"_s);
    auto* toButton = calendarButton(u"Command1"_s);
    fields->addWidget(label(u"Label1"_s, u"DT.INICIAL:"_s), 0, 0);
    fields->addWidget(from_, 0, 1);
    fields->addWidget(fromButton, 0, 2);
    fields->addWidget(label(u"Label2"_s, u"DT.FINAL:"_s), 0, 3);
    fields->addWidget(to_, 0, 4);
    fields->addWidget(toButton, 0, 5);
    fields->addWidget(label(u"Label3"_s, u"GRUPO:"_s), 1, 0);
    fields->addWidget(group_, 1, 1, 1, 5);
    fields->setColumnStretch(6, 1);
    outer->addLayout(fields);
    list_ = new MSFlexGrid(this);
    list_->setObjectName(u"Grid1"_s);
    list_->setHeaders({u"Agendamentos"_s + QString(80, u' ')});
    list_->horizontalHeader()->setStretchLastSection(true);
    outer->addWidget(list_, 1);
    auto* foot = new QHBoxLayout;
    foot->addWidget(label(u"Label4"_s, u"TOTAL:"_s));
    count_ = label(u"nr"_s, u"0"_s);
    foot->addWidget(count_);
    foot->addStretch(1);
    auto* print = new QPushButton(u"&Imprime"_s, this);
    print->setObjectName(u"SSCommand7"_s);
    auto* back = new QPushButton(u"&Volta"_s, this);
    back->setObjectName(u"SSCommand8"_s);
    for (QPushButton* b : {print, back}) {
        b->setAutoDefault(false);
        foot->addWidget(b);
    }
    outer->addLayout(foot);
    setTabOrder(from_, to_);
    setTabOrder(to_, group_);
    setTabOrder(group_, list_);
    setTabOrder(list_, print);
    setTabOrder(print, back);

    onAction(print, this, [this] { onPrint(); });
    connect(back, &QPushButton::clicked, this, &QDialog::reject);
    connect(fromButton, &QPushButton::clicked, this, [this] { pick(from_); });
    connect(toButton, &QPushButton::clicked, this, [this] { pick(to_); });
    for (QWidget* w :
         {static_cast<QWidget*>(from_), static_cast<QWidget*>(to_), static_cast<QWidget*>(group_)})
        w->installEventFilter(this);
    report_ = new ReportControl(this);
    setupFields(this);
    keepOnEscape(this);
    resize(640, 480);
    centreScreen(this);

    // The load.
    const QString today = formatDate(ag::clock().today());
    from_->setText(today);
    to_->setText(today);
    guarded(this, [this] { group_->addItems(ag::words(Store::current(), ag::WordList::Groups)); });
    group_->setCurrentIndex(-1);
    group_->setEditText({});
    followRows();
}

// Entries kept on this station while the search stands open show in what it found, for
// the same range and group; the groups' combo follows its words.
void AGENDA3::followRows() {
    refreshOn(this, {ag::entriesTable}, [this] {
        if (!searchedFrom_.isValid()) return;
        found_ = ag::searchRange(Store::current(), searchedFrom_, searchedTo_);
        keepingRow(list_, [this] { showRows(ag::narrowToGroup(found_, narrowedTo_)); });
    });
    refreshOn(this, {ag::wordTable(ag::WordList::Groups)},
              [this] { refillCombo(group_, ag::words(Store::current(), ag::WordList::Groups)); });
}

bool AGENDA3::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && watched == from_) {
        list_->setRows(1);
    } else if (event->type() == QEvent::FocusOut) {
        const auto* focus = static_cast<QFocusEvent*>(event);
        // Print, clicked from a date it cannot read, says so itself, once.
        const auto* date = qobject_cast<MaskEdBox*>(watched);
        const bool leftToPrint = date && !date->date() && leftForSettlingAction(focus);
        if (leftField(focus) && !leftToPrint) {
            if (watched == from_)
                onStartLeft();
            else if (watched == to_)
                onEndLeft();
            else if (watched == group_)
                onGroupLeft();
        }
    }
    return QDialog::eventFilter(watched, event);
}

QStringList AGENDA3::rows() const {
    QStringList out;
    for (int r = 1; r < list_->rows(); ++r)
        out << list_->textMatrix(r, 0);
    return out;
}

void AGENDA3::showRows(const QStringList& rows) {
    list_->setRows(1);
    for (const QString& r : rows)
        list_->addItem(r);
    stripeGrid(list_);
    count_->setText(QString::number(rows.size()));
}

void AGENDA3::onStartLeft() {
    from_->settleDate();
}

// The range is read as typed: a date that is no date runs no search.
void AGENDA3::onEndLeft() {
    count_->setText(u"0"_s);
    list_->setRows(1);
    found_.clear();
    const auto to = to_->settledDate();
    const auto from = to ? from_->settledDate() : std::nullopt;
    if (!from || !to) return;
    if (!guarded(this, [&] { found_ = ag::searchRange(Store::current(), *from, *to); })) return;
    searchedFrom_ = *from;
    searchedTo_ = *to;
    narrowedTo_.clear();
    showRows(ag::narrowToGroup(found_, {}));
}

// The group narrows what the final date read; a blank group leaves the list as it stands.
void AGENDA3::onGroupLeft() {
    const QString group = group_->currentText().trimmed();
    if (group.isEmpty()) return;
    narrowedTo_ = group;
    showRows(ag::narrowToGroup(found_, group));
}

// The calendar opens on the date typed, or on today when there is none to open on.
void AGENDA3::pick(MaskEdBox* field) {
    const auto typed = field->date();
    QDate day = typed && typed->isValid() ? *typed : ag::clock().today();
    if (Cale::GetDate(day, u"Data p/ Agendamento"_s, field)) field->setText(formatDate(day));
}

// An empty list prints nothing, and says nothing.
void AGENDA3::onPrint() {
    const QStringList shown = rows();
    if (shown.isEmpty()) return;
    const auto from = from_->settledDate();
    const auto to = from ? to_->settledDate() : std::nullopt;
    if (!from || !to) return;
    if (!guarded(this, [&] {
            ag::fillPrintRows(Store::current(), *from, *to, group_->currentText().trimmed(), shown);
        }))
        return;
    // The printer dialog first; the report runs whatever its answer.
    showPrinterDialog(this);
    report_->definition().setDataSource(ag::printTable);
    report_->definition().setLayoutFile(u"AGENDAk.rpt"_s);
    report_->run();
}

} // namespace rtx::ui
