#include "agenda/agenda.h"

#include "agenda/agenda3.h"
#include "agenda/cale.h"
#include "agenda/core/clock.h"
#include "kit/kit.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("Agenda", [](QWidget* parent) -> QDialog* { return new AGENDA(parent); });

namespace ag = rtx::agenda;

namespace {

ag::Entry entryOf(const Row& row, const QVariant& own) {
    ag::Entry e = fromRow(row, ag::entryFields());
    e.code = own.toString();
    return e;
}

// The row a walk shows: everything but the comment, which stays as it was on the screen.
Row walkRow(const ag::Entry& e) {
    Row row = toRow(e, ag::entryFields());
    row.remove(ag::col::comment);
    return row;
}

QStringList hours() {
    QStringList h;
    for (int i = 7 * 2; i <= 20 * 2; ++i)
        h << u"%1:%2"_s.arg(i / 2, 2, 10, QLatin1Char('0')).arg(i % 2 ? u"30"_s : u"00"_s);
    return h;
}

const char* wordFieldOf(ag::WordList list) {
    switch (list) {
    case ag::WordList::Positions:
        return "a4";
    case ag::WordList::Groups:
        return "a3";
    case ag::WordList::Events:
        return "A5";
    }
    return "";
}

} // namespace

FormDefinition AGENDA::form() {
    using F = FormField;
    using R = FormAction::Role;
    FormDefinition f;
    f.screen = u"AGENDA"_s;
    f.title = u"Agenda"_s;
    f.heading = u"Agenda"_s;
    f.table = ag::entriesTable;
    f.tabs = {u"Agendamento"_s};
    F code = F::text(u"CODIGO"_s, ag::col::code, u"CONTROLE:"_s, {0, 0, 0});
    code.fixed(90);
    F date = F::masked(u"A1"_s, ag::col::date, u"DATA:"_s, MaskEdBox::dateMask(), {0, 1, 0});
    date.fixed(100);
    f.fields = {
        code,
        date,
        F::combo(u"A2"_s, ag::col::hour, u"HORA:"_s, hours(), true, {0, 2, 0}).fixed(100),
        F::combo(u"a3"_s, ag::col::group, u"GRUPO:"_s, {}, true, {0, 3, 0}),
        F::combo(u"a4"_s, ag::col::position, u"POSIÇÃO:"_s, {}, true, {0, 4, 0}),
        F::combo(u"A5"_s, ag::col::event, u"EVENTO:"_s, {}, true, {0, 5, 0}),
        F::memo(u"ob"_s, ag::col::comment, u"COMENTÁRIOS:"_s, {0, 6, 0}),
    };
    f.buttons = {
        {u"Command9"_s, {}, u"Calendário"_s, u"..."_s, u"A1"_s, {}},
        {u"Command4"_s, {}, u"Cadastra Grupos"_s, u"+"_s, u"a3"_s, {}},
        {u"Command5"_s, {}, u"Cadastra Posições"_s, u"+"_s, u"a4"_s, {}},
        {u"Command6"_s, {}, u"Cadastra Eventos"_s, u"+"_s, u"A5"_s, {}},
    };
    f.actions = {
        {u"Command19"_s, u"dsf"_s, u"Grava"_s, u"\u2713"_s, QColor(0x2E7D32), R::Other, {}},
        // Novo is startNewEntry, which reads the date shown before the screen is cleared.
        {u"Command18"_s, u"sdf"_s, u"Novo"_s, u"+"_s, QColor(0x1565C0), R::Other, {}},
        {u"Command17"_s, u"sdfdsfsd"_s, u"Apaga"_s, u"\u2717"_s, QColor(0xC62828), R::Other, {}},
        {u"Command23"_s, u"sdfdsf"_s, u"Pesquisa"_s, u"\u2315"_s, QColor(0x6A1B9A), R::Other, {}},
        {u"Command20"_s, {}, u"Primeiro"_s, u"|\u25C0"_s, QColor(0x455A64), R::First, {}, true},
        {u"Command16"_s, {}, u"Anterior"_s, u"\u25C0"_s, QColor(0x455A64), R::Previous, {}},
        {u"Command8"_s, {}, u"Próximo"_s, u"\u25B6"_s, QColor(0x455A64), R::Next, {}},
        {u"Command21"_s, {}, u"Último"_s, u"\u25B6|"_s, QColor(0x455A64), R::Last, {}},
        {u"Command11"_s, u"fdfdf"_s, u"Volta"_s, u"\u2190"_s, QColor(0x616161), R::Close, {}, true},
    };
    f.labelPrefix = u"Label"_s;
    f.firstField = u"a4"_s;
    f.tabOrder = {u"A1"_s, u"A2"_s, u"a3"_s, u"a4"_s, u"A5"_s, u"ob"_s};
    f.deleteQuestion = u"Deseja realmente apagar este agendamento?"_s;
    f.size = QSize(1000, 700);
    return f;
}

AGENDA::AGENDA(QWidget* parent) : RecordForm(form(), parent) {
    RecordSource source;
    source.keyColumn = ag::col::code;
    source.load = [](Store& store, const QVariant& key) -> std::optional<Row> {
        if (const auto e = ag::loadEntry(store, key.toString())) return walkRow(*e);
        return std::nullopt;
    };
    source.check = [](const Row& row) { return ag::checkEntry(entryOf(row, {})); };
    // An entry is deleted as it is saved: with its event and its position.
    source.checkRemove = source.check;
    source.save = [](Store& store, const Row& row, const QVariant& own) -> QVariant {
        return ag::saveEntry(store, entryOf(row, own));
    };
    // An entry typed and never saved has nothing to delete: the screen is only cleared.
    source.remove = [](Store& store, const QVariant& found, const Row&) {
        if (!emptyKey(found)) ag::removeEntry(store, found.toString());
    };
    source.walk = [](Store& store, Walk walk, const QVariant& found) -> QVariant {
        return ag::walkCode(store, walk, found.toString());
    };
    setSource(source);
    if (auto* code = qobject_cast<QLineEdit*>(field(u"CODIGO"_s))) {
        code->setReadOnly(true);
        code->setFocusPolicy(Qt::NoFocus);
    }
    buildSide();
    // The bar holds nine buttons: none is squeezed under its caption.
    for (const FormAction& a : form().actions)
        if (QAbstractButton* b = button(a.name))
            b->setMinimumWidth(qMax(b->minimumWidth(), b->sizeHint().width()));

    // An entry is kept or deleted on the day as typed: an empty day is today, one that is no
    // date is said so, and nothing is written.
    if (auto* day = qobject_cast<MaskEdBox*>(field(u"A1"_s)))
        day->setEmptyDate([] { return ag::clock().today(); });
    onAction(button(u"Command19"_s), this, [this] { onSave(); });
    connect(button(u"Command18"_s), &QAbstractButton::clicked, this, &AGENDA::startNewEntry);
    onAction(button(u"Command17"_s), this, [this] { onDelete(); });
    connect(button(u"Command23"_s), &QAbstractButton::clicked, this, &AGENDA::openSearch);
    connect(button(u"Command9"_s), &QAbstractButton::clicked, this, &AGENDA::pickDate);
    connect(button(u"Command4"_s), &QAbstractButton::clicked, this,
            [this] { editWords(ag::WordList::Groups); });
    connect(button(u"Command5"_s), &QAbstractButton::clicked, this,
            [this] { editWords(ag::WordList::Positions); });
    connect(button(u"Command6"_s), &QAbstractButton::clicked, this,
            [this] { editWords(ag::WordList::Events); });
    // A cleared screen is a new entry on today, open, with the count anew (the outlook is
    // startNewEntry's, from the date shown before).
    connect(this, &RecordForm::cleared, this, [this] {
        setValue(u"A1"_s, ag::clock().today());
        setValue(u"a4"_s, ag::openPosition);
        showCount();
        stepForward_ = stepBack_ = 1;
    });
    connect(this, &RecordForm::fieldLeft, this, [this](const QString& name) {
        if (name == u"A1"_s) leaveDate();
    });
    connect(this, &RecordForm::fieldEntered, this, [this](const QString& name) {
        if (name == u"a3"_s) {
            if (auto* box = qobject_cast<QComboBox*>(field(name)); box && box->count() > 0)
                box->showPopup();
        } else if (name == u"a4"_s) {
            clearHourglass();
        }
    });

    // The load, in its order.
    start();
    showCount();
    stepForward_ = stepBack_ = 1;
    fillWords(ag::WordList::Positions);
    fillWords(ag::WordList::Groups);
    fillWords(ag::WordList::Events);
    setValue(u"a4"_s, ag::openPosition);
    const QDate today = ag::clock().today();
    setValue(u"A1"_s, today);
    showToday();
    if (shownDate() == today) fillDay(today);
    showOutlook();
    followRows();
    clockTimer_->start(500);
}

// Entries kept or deleted anywhere on this station (the search screen, the calendar) show
// in the list, the outlook and the count; the combos follow their words. The entry being
// typed stays.
void AGENDA::followRows() {
    refreshOn(this, {ag::entriesTable}, [this] {
        if (listed_)
            keepingRow(dayList_, [this] { listed_->isValid() ? fillDay(*listed_) : showAll(); });
        if (outlookFrom_.isValid()) showOutlook(outlookFrom_);
        showCount();
    });
    for (const ag::WordList list :
         {ag::WordList::Positions, ag::WordList::Groups, ag::WordList::Events})
        refreshOn(this, {ag::wordTable(list)},
                  [this, list] { refillCombo(wordBox(list), ag::words(Store::current(), list)); });
}

void AGENDA::buildSide() {
    auto* side = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    side->addLayout(left, 1);
    side->addLayout(right, 1);
    const auto label = [this](const QString& name, const QString& text = {}) {
        auto* l = new QLabel(text, this);
        l->setObjectName(name);
        return l;
    };
    auto* info = new QHBoxLayout;
    info->addWidget(label(u"Label10"_s, u"HOJE É DIA:"_s));
    todayLabel_ = label(u"data"_s);
    weekdayLabel_ = label(u"XDD"_s);
    clockLabel_ = label(u"HORA"_s);
    dayCaption_ = label(u"CT"_s);
    countLabel_ = label(u"nr"_s);
    QFont bold = todayLabel_->font();
    bold.setBold(true);
    for (QLabel* l : {todayLabel_, weekdayLabel_, clockLabel_, dayCaption_, countLabel_})
        l->setFont(bold);
    clockLabel_->setStyleSheet(u"color: #1565C0"_s);
    info->addWidget(todayLabel_);
    info->addWidget(weekdayLabel_);
    info->addSpacing(12);
    info->addWidget(clockLabel_);
    info->addStretch(1);
    info->addWidget(dayCaption_);
    info->addSpacing(12);
    info->addWidget(label(u"Label11"_s, u"Registros:"_s));
    info->addWidget(countLabel_);
    foot()->addLayout(info);
    foot()->addLayout(side, 1);

    dayList_ = new MSFlexGrid(this);
    dayList_->setObjectName(u"Grid1"_s);
    dayList_->setHeaders({u"HORA"_s, u"POSIÇÃO"_s, u"EVENTO"_s, u"CONTROLE"_s});
    dayList_->setColWidth(0, 70);
    dayList_->setColWidth(1, 110);
    dayList_->setColWidth(2, 180);
    left->addWidget(dayList_, 1);
    connect(dayList_, &MSFlexGrid::rowDoubleClicked, this,
            [this](int row) { openEntry(dayList_->key(row)); });
    auto* days = new QHBoxLayout;
    const auto dayButton = [&](const QString& name, const QString& caption) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(name);
        b->setAutoDefault(false);
        days->addWidget(b);
        return b;
    };
    connect(dayButton(u"Command1"_s, u"Volta um dia"_s), &QPushButton::clicked, this,
            [this] { stepDay(-1); });
    connect(dayButton(u"Command3"_s, u"HOJE"_s), &QPushButton::clicked, this, &AGENDA::backToToday);
    connect(dayButton(u"Command2"_s, u"Avança um dia"_s), &QPushButton::clicked, this,
            [this] { stepDay(1); });
    connect(dayButton(u"Command7"_s, u"> VER HOJE"_s), &QPushButton::clicked, this,
            &AGENDA::seeToday);
    connect(dayButton(u"Command10"_s, u"> VER TODOS"_s), &QPushButton::clicked, this,
            &AGENDA::showAll);
    left->addLayout(days);
    for (int i = 0; i < 3; ++i) {
        outlook_[i] = new MSFlexGrid(this);
        outlook_[i]->setObjectName(u"Grid%1"_s.arg(i + 2));
        outlook_[i]->setHeaders({QString()});
        outlook_[i]->horizontalHeader()->setStretchLastSection(true);
        right->addWidget(outlook_[i], i == 2 ? 2 : 1);
    }
    clockTimer_ = new QTimer(this);
    clockTimer_->setObjectName(u"Timer1"_s);
    connect(clockTimer_, &QTimer::timeout, this,
            [this] { clockLabel_->setText(ag::clock().now().toString(u"hh:mm:ss"_s)); });
}

QDate AGENDA::shownDate() const {
    return value(u"A1"_s).toDate();
}

QComboBox* AGENDA::wordBox(ag::WordList list) const {
    return qobject_cast<QComboBox*>(field(QString::fromLatin1(wordFieldOf(list))));
}

void AGENDA::fillWords(ag::WordList list) {
    QComboBox* box = wordBox(list);
    QStringList words;
    if (!guarded(this, [&] { words = ag::words(Store::current(), list); })) return;
    const QSignalBlocker quiet(box);
    box->clear();
    box->addItems(words);
    box->setCurrentIndex(-1);
    box->setEditText({});
}

void AGENDA::showCount() {
    guarded(this,
            [this] { countLabel_->setText(QString::number(ag::entryCount(Store::current()))); });
}

void AGENDA::showToday() {
    const QDateTime now = ag::clock().now();
    clockLabel_->setText(now.toString(u"hh:mm:ss"_s));
    todayLabel_->setText(formatDate(now.date()));
    weekdayLabel_->setText(ag::weekdayName(now.date()));
    dayCaption_->setText(ag::dayCaption(now.date()));
}

void AGENDA::fillDay(const QDate& day) {
    listed_ = day;
    dayList_->setRows(1);
    guarded(this, [&] {
        for (const ag::Entry& e : ag::dayEntries(Store::current(), day))
            dayList_->addItem(QStringList{e.hour, e.position, e.event, e.code}.join(u'\t'));
    });
    stripeGrid(dayList_);
}

void AGENDA::showAll() {
    listed_ = QDate();
    dayList_->setRows(1);
    guarded(this, [&] {
        for (const ag::Entry& e : ag::allEntries(Store::current()))
            dayList_->addItem(QStringList{e.hour, e.position, e.event, e.code}.join(u'\t'));
    });
    stripeGrid(dayList_);
}

void AGENDA::fillOutlookRows(const ag::Outlook& o) {
    const ag::OutlookList* lists[3] = {&o.nextDay, &o.dayAfter, &o.weeks};
    for (int i = 0; i < 3; ++i) {
        outlook_[i]->setRows(1);
        for (const QString& r : lists[i]->rows)
            outlook_[i]->addItem(r);
        stripeGrid(outlook_[i]);
    }
}

// The outlook: the rows follow the date shown, the headings follow today. A date that
// cannot be read leaves the lists as they are.
void AGENDA::showOutlook() {
    showOutlook(shownDate());
}

void AGENDA::showOutlook(const QDate& shown) {
    if (!shown.isValid()) return;
    ag::Outlook o;
    if (!guarded(this, [&] { o = ag::outlook(Store::current(), shown, ag::clock().today()); }))
        return;
    outlookFrom_ = shown;
    fillOutlookRows(o);
    outlook_[0]->setHeaders({o.nextDay.heading});
    outlook_[1]->setHeaders({o.dayAfter.heading});
    outlook_[2]->setHeaders({o.weeks.heading});
}

// Novo, and the end of a save and of a delete: the outlook is drawn from the date the
// screen showed (the entry just saved), then the screen starts a new entry on today. So
// after saving an entry for next week the lists beside show that week's days.
void AGENDA::startNewEntry() {
    const QDate shown = shownDate();
    newRecord();
    showOutlook(shown);
}

void AGENDA::onSave() {
    if (!save()) return;
    if (shownDate() == ag::clock().today()) fillDay(shownDate());
    startNewEntry();
}

// Apaga goes back to today: its list, and the outlook from it.
void AGENDA::onDelete() {
    if (!remove()) return;
    const QDate today = ag::clock().today();
    fillDay(today);
    showOutlook(today);
}

// The day was settled as it was left: empty became today.
void AGENDA::leaveDate() {
    const QDate day = shownDate();
    if (!day.isValid()) return;
    std::optional<QString> text;
    guarded(this, [&] { text = ag::noticeFor(Store::current(), formatDate(day)); });
    if (text) notice(this, *text);
    fillDay(day);
}

void AGENDA::seeToday() {
    setValue(u"A1"_s, ag::clock().today());
    leaveDate();
}

// Each direction walks away from today with its own counter.
void AGENDA::stepDay(int direction) {
    int& counter = direction > 0 ? stepForward_ : stepBack_;
    const QDate day = ag::clock().today().addDays(direction * counter);
    dayCaption_->setText(ag::dayCaption(day));
    setValue(u"A1"_s, day);
    fillDay(day);
    ++counter;
}

void AGENDA::backToToday() {
    stepForward_ = stepBack_ = 1;
    showToday();
    const QDate today = ag::clock().today();
    if (shownDate() == today) fillDay(today);
    const QDate shown = shownDate();
    if (!shown.isValid()) return;
    ag::Outlook o;
    if (guarded(this, [&] { o = ag::outlook(Store::current(), shown, today); })) fillOutlookRows(o);
}

void AGENDA::pickDate() {
    QDate day = shownDate().isValid() ? shownDate() : ag::clock().today();
    if (Cale::GetDate(day, u"Data p/ Agendamento"_s, field(u"A1"_s))) setValue(u"A1"_s, day);
}

void AGENDA::editWords(ag::WordList list) {
    static const QHash<ag::WordList, QPair<QString, QString>> texts{
        {ag::WordList::Groups,
         {u"Cadastro de Grupos"_s, u"Digite o novo grupo e clique no botão OK "_s}},
        {ag::WordList::Positions,
         {u"Cadastro de Posições"_s, u"Digite a nova posição e clique no botão OK "_s}},
        {ag::WordList::Events,
         {u"Cadastro de Eventos"_s, u"Digite o novo evento e clique no botão OK "_s}},
    };
    const auto [title, prompt] = texts.value(list);
    const std::optional<QString> typed = askText(this, title, prompt);
    if (!typed || typed->isEmpty()) return;
    const QString word = *typed;
    bool known = false;
    if (!guarded(this, [&] { known = ag::hasWord(Store::current(), list, word); })) return;
    // A word already on the list is a request to remove it.
    if (known) {
        if (ask(this, u"Confirma exclusão: %1?"_s.arg(word), title) &&
            guarded(this, [&] { ag::removeWord(Store::current(), list, word); }))
            notice(this, u"Operação realizada com sucesso."_s);
    } else {
        guarded(this, [&] { ag::addWord(Store::current(), list, word); });
    }
    fillWords(list);
    wordBox(list)->setFocus(Qt::OtherFocusReason);
}

void AGENDA::openSearch() {
    AGENDA3 search(this);
    search.exec();
}

void AGENDA::openEntry(const QString& code) {
    if (code.isEmpty() || !loadFound(code)) return;
    guarded(this, [&] {
        if (const auto e = ag::loadEntry(Store::current(), code)) setValue(u"ob"_s, e->comment);
    });
    field(u"a4"_s)->setFocus(Qt::OtherFocusReason);
}

} // namespace rtx::ui
