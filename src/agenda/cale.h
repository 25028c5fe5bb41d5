#pragma once
// Cale: the month calendar that a date field's button opens to pick a date. The month is
// drawn by the program on picMonth, 7 columns (Sunday first) by 6 rows; the keys move the
// pick by a day, a week or a month, Enter and a double click confirm, Escape and the
// window's close cancel.
//
//     QDate day = ...;
//     if (Cale::GetDate(day, u"Data p/ Agendamento"_s, dateField)) dateField->setText(...);

#include <QDate>
#include <QDialog>
#include <QLabel>

namespace rtx::ui {

class Cale;

// The drawing surface: the month's days in their cells, the pick boxed.
class MonthView : public QWidget {
    Q_OBJECT
public:
    explicit MonthView(Cale* calendar);
    // The cell (0 to 41) of a point; -1 outside.
    int cellAt(const QPoint& point) const;
    QRect cellRect(int cell) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Cale* calendar_;
};

// "<<" and ">>": a press moves a month, and so does the second press of a double click.
class MonthStep : public QLabel {
    Q_OBJECT
public:
    MonthStep(const QString& text, QWidget* parent);
signals:
    void pressed();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};

class Cale : public QDialog {
    Q_OBJECT
public:
    explicit Cale(QWidget* parent = nullptr);

    // Shows the calendar modally from the date given, with the title, just under the
    // control given (centred without one). True when a date was picked; it is then in date.
    static bool GetDate(QDate& date, const QString& title = {}, QWidget* under = nullptr);

    QDate pick() const { return pick_; }
    void setPick(const QDate& date);
    bool confirmed() const { return confirmed_; }
    // The cell of the month's first day (its weekday, Sunday 0).
    int firstCell() const;
    // The day of a cell of the month shown; 0 for an empty cell.
    int dayOfCell(int cell) const;
    // Places the calendar just under a control.
    void placeUnder(QWidget* control);

    void stepDays(int days);
    void stepMonths(int months);
    void confirm();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QDate pick_;
    bool confirmed_ = false;
    QLabel* monthCaption_ = nullptr;
    MonthView* month_ = nullptr;
    void showMonth();
};

} // namespace rtx::ui
