#include "agenda/cale.h"

#include "agenda/core/clock.h"
#include "kit/fields.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace {

const QStringList monthNames{u"janeiro"_s,  u"fevereiro"_s, u"março"_s,    u"abril"_s,
                             u"maio"_s,     u"junho"_s,     u"julho"_s,    u"agosto"_s,
                             u"setembro"_s, u"outubro"_s,   u"novembro"_s, u"dezembro"_s};

} // namespace

// --- picMonth ---------------------------------------------------------------------------

MonthView::MonthView(Cale* calendar) : QWidget(calendar), calendar_(calendar) {
    setObjectName(u"picMonth"_s);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(7 * 34, 6 * 26);
    setAutoFillBackground(true);
    QPalette p = palette();
    p.setColor(QPalette::Window, Qt::white);
    setPalette(p);
}

QRect MonthView::cellRect(int cell) const {
    const int w = width() / 7;
    const int h = height() / 6;
    return {(cell % 7) * w, (cell / 7) * h, w, h};
}

int MonthView::cellAt(const QPoint& point) const {
    const int w = width() / 7;
    const int h = height() / 6;
    if (w <= 0 || h <= 0 || point.x() < 0 || point.y() < 0) return -1;
    const int col = point.x() / w;
    const int row = point.y() / h;
    if (col > 6 || row > 5) return -1;
    return row * 7 + col;
}

void MonthView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QDate pick = calendar_->pick();
    const QDate today = agenda::clock().today();
    const bool currentMonth = pick.year() == today.year() && pick.month() == today.month();
    const int first = calendar_->firstCell();
    for (int day = 1; day <= pick.daysInMonth(); ++day) {
        const int cell = first + day - 1;
        QFont f = font();
        f.setBold(currentMonth && day == today.day());
        painter.setFont(f);
        painter.setPen(cell % 7 == 0 ? QColor(255, 0, 0) : QColor(0, 0, 0));
        painter.drawText(cellRect(cell), Qt::AlignCenter, QString::number(day));
    }
    painter.setPen(Qt::black);
    painter.drawRect(cellRect(first + pick.day() - 1).adjusted(1, 1, -2, -2));
}

void MonthView::mousePressEvent(QMouseEvent* event) {
    // A press on an empty cell does nothing.
    const int day = calendar_->dayOfCell(cellAt(event->position().toPoint()));
    if (day > 0) {
        const QDate p = calendar_->pick();
        calendar_->setPick(QDate(p.year(), p.month(), day));
    }
}

// The double click confirms the day under it (its first press has moved the pick there).
void MonthView::mouseDoubleClickEvent(QMouseEvent* event) {
    const int day = calendar_->dayOfCell(cellAt(event->position().toPoint()));
    if (day <= 0) return;
    const QDate p = calendar_->pick();
    calendar_->setPick(QDate(p.year(), p.month(), day));
    calendar_->confirm();
}

void MonthView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Right:
        calendar_->stepDays(1);
        break;
    case Qt::Key_Left:
        calendar_->stepDays(-1);
        break;
    case Qt::Key_Down:
        calendar_->stepDays(7);
        break;
    case Qt::Key_Up:
        calendar_->stepDays(-7);
        break;
    case Qt::Key_PageDown:
        calendar_->stepMonths(1);
        break;
    case Qt::Key_PageUp:
        calendar_->stepMonths(-1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        calendar_->confirm();
        break;
    case Qt::Key_Escape:
        calendar_->reject();
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

// --- lblPrev, lblNext ---------------------------------------------------------------------

MonthStep::MonthStep(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setCursor(Qt::PointingHandCursor);
    QFont f = font();
    f.setBold(true);
    setFont(f);
}

void MonthStep::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) emit pressed();
}

// Fast clicks are not lost: the second press of a double click moves again.
void MonthStep::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) emit pressed();
}

// --- Cale -------------------------------------------------------------------------------

Cale::Cale(QWidget* parent) : QDialog(parent) {
    setObjectName(u"Cale"_s);
    setWindowTitle(u"Calendário"_s);
    pick_ = agenda::clock().today();
    auto* outer = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    auto* prev = new MonthStep(u"<<"_s, this);
    prev->setObjectName(u"lblPrev"_s);
    auto* next = new MonthStep(u">>"_s, this);
    next->setObjectName(u"lblNext"_s);
    monthCaption_ = new QLabel(this);
    monthCaption_->setObjectName(u"lblMonth"_s);
    monthCaption_->setAlignment(Qt::AlignCenter);
    QFont big = monthCaption_->font();
    big.setBold(true);
    monthCaption_->setFont(big);
    top->addWidget(prev);
    top->addWidget(monthCaption_, 1);
    top->addWidget(next);
    outer->addLayout(top);
    auto* heads = new QHBoxLayout;
    heads->setSpacing(0);
    int i = 0;
    for (const QString& d : {u"D"_s, u"S"_s, u"T"_s, u"Q"_s, u"Q"_s, u"S"_s, u"S"_s}) {
        auto* l = new QLabel(d, this);
        l->setObjectName(u"lblDia%1"_s.arg(i));
        l->setAlignment(Qt::AlignCenter);
        if (i++ == 0) l->setStyleSheet(u"color: red"_s);
        heads->addWidget(l, 1);
    }
    outer->addLayout(heads);
    month_ = new MonthView(this);
    outer->addWidget(month_, 1);
    connect(prev, &MonthStep::pressed, this, [this] { stepMonths(-1); });
    connect(next, &MonthStep::pressed, this, [this] { stepMonths(1); });
    resize(260, 230);
    showMonth();
    month_->setFocus();
}

int Cale::firstCell() const {
    return QDate(pick_.year(), pick_.month(), 1).dayOfWeek() % 7;
}

int Cale::dayOfCell(int cell) const {
    if (cell < 0) return 0;
    const int day = cell - firstCell() + 1;
    return day >= 1 && day <= pick_.daysInMonth() ? day : 0;
}

void Cale::setPick(const QDate& date) {
    if (!date.isValid()) return;
    pick_ = date;
    showMonth();
}

void Cale::stepDays(int days) {
    setPick(pick_.addDays(days));
}

// As the old calendar did: from the 31st to a shorter month lands on its last day.
void Cale::stepMonths(int months) {
    setPick(pick_.addMonths(months));
}

void Cale::confirm() {
    confirmed_ = true;
    accept();
}

void Cale::showMonth() {
    monthCaption_->setText(u"%1 %2"_s.arg(monthNames.at(pick_.month() - 1)).arg(pick_.year()));
    month_->update();
}

void Cale::placeUnder(QWidget* control) {
    if (!control) return;
    move(control->mapToGlobal(QPoint(0, control->height())));
}

// The window's close button is a cancel.
void Cale::closeEvent(QCloseEvent* event) {
    confirmed_ = false;
    QDialog::closeEvent(event);
}

bool Cale::GetDate(QDate& date, const QString& title, QWidget* under) {
    Cale calendar(under ? under->window() : nullptr);
    if (!title.isEmpty()) calendar.setWindowTitle(title);
    if (date.isValid()) calendar.setPick(date);
    if (under)
        calendar.placeUnder(under);
    else
        centreScreen(&calendar);
    calendar.exec();
    if (!calendar.confirmed()) return false;
    date = calendar.pick();
    return true;
}

} // namespace rtx::ui
