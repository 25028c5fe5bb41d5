#pragma once
// AGENDA3 ("Pesquisa"): the agenda entries of a range of dates, optionally of one group,
// and their print. The list is built as the fields are left: the final date runs the
// query, the group narrows what it read.

#include "agenda/core/agenda.h"

#include <QDate>
#include <QDialog>

class QComboBox;
class QLabel;

namespace rtx::ui {

class MaskEdBox;
class MSFlexGrid;
class ReportControl;

class AGENDA3 : public QDialog {
    Q_OBJECT
public:
    explicit AGENDA3(QWidget* parent = nullptr);

    MSFlexGrid* list() const { return list_; }
    ReportControl* report() const { return report_; }
    // The rows of the list as shown.
    QStringList rows() const;

    void onStartLeft();
    void onEndLeft();
    void onGroupLeft();
    void onPrint();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    MaskEdBox* from_ = nullptr;
    MaskEdBox* to_ = nullptr;
    QComboBox* group_ = nullptr;
    MSFlexGrid* list_ = nullptr;
    QLabel* count_ = nullptr;
    ReportControl* report_ = nullptr;
    QList<agenda::FoundEntry> found_;
    QDate searchedFrom_, searchedTo_; // the range found_ holds
    QString narrowedTo_;              // the group the list shows of it; empty: all
    void followRows();

    void showRows(const QStringList& rows);
    void pick(MaskEdBox* field);
};

} // namespace rtx::ui
