#pragma once
// AGENDA: the company's appointment book. One entry per date and hour, edited on the
// record form; beside it the chosen day's list (Grid1) and what lies ahead (Grid2 the next
// day, Grid3 the day after, Grid4 the four weeks after), a clock, the day steps and the
// three word lists kept through prompts.

#include "agenda/core/agenda.h"
#include "kit/recordform.h"

#include <QDate>
#include <optional>

class QComboBox;
class QLabel;
class QTimer;

namespace rtx::ui {

class AGENDA : public RecordForm {
    Q_OBJECT
public:
    explicit AGENDA(QWidget* parent = nullptr);

    static FormDefinition form();

    MSFlexGrid* dayList() const { return dayList_; }
    MSFlexGrid* outlookList(int n) const { return outlook_[n]; } // 0 Grid2, 1 Grid3, 2 Grid4
    // The day-step counters (Text1 forwards, Text2 backwards).
    int stepForward() const { return stepForward_; }
    int stepBack() const { return stepBack_; }
    QDate shownDate() const;

    // The actions of the buttons.
    void onSave();
    void onDelete();
    void startNewEntry();
    void showOutlook();                   // from the date in A1
    void showOutlook(const QDate& shown); // from a date
    void fillDay(const QDate& day);
    void showAll();
    void stepDay(int direction);
    void backToToday();
    void seeToday();
    void pickDate();
    void editWords(agenda::WordList list);
    void openSearch();
    void openEntry(const QString& code);

private:
    MSFlexGrid* dayList_ = nullptr;
    MSFlexGrid* outlook_[3] = {};
    QLabel* clockLabel_ = nullptr;
    QLabel* todayLabel_ = nullptr;
    QLabel* weekdayLabel_ = nullptr;
    QLabel* dayCaption_ = nullptr;
    QLabel* countLabel_ = nullptr;
    QTimer* clockTimer_ = nullptr;
    int stepForward_ = 1;
    int stepBack_ = 1;
    std::optional<QDate> listed_; // the day the list shows; an invalid date: every entry
    QDate outlookFrom_;           // the date the outlook was drawn from

    void buildSide();
    void fillWords(agenda::WordList list);
    QComboBox* wordBox(agenda::WordList list) const;
    void showToday();
    void showCount();
    void leaveDate();
    void fillOutlookRows(const agenda::Outlook& o);
    void followRows();
};

} // namespace rtx::ui
