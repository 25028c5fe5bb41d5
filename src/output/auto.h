#pragma once
// AUTO ("Backup Automático"): takes the day's backup of the installation on a press of its
// button, counting the files as they are copied.

#include <QDate>
#include <QDialog>

class QLabel;
class QLineEdit;

namespace rtx::ui {

class AUTO : public QDialog {
    Q_OBJECT
public:
    // day: the backup's date (today).
    explicit AUTO(QWidget* parent = nullptr, const QDate& day = QDate::currentDate());

    // Runs the backup; true when it was taken (the message was shown and the screen closes).
    bool start();

    static QString doneMessage();

private:
    QDate day_;
    QLineEdit* dateField_ = nullptr;
    QLabel* count_ = nullptr;
};

} // namespace rtx::ui
