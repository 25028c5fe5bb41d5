#pragma once
// Atendimento: the dispatch screen. The first tab records one courier job (the call, the
// client, pickup and delivery, the service, the courier and the money) beside the courier
// board; the second finds saved dispatches. The fields of the dispatch are bound to its
// columns as the record forms bind theirs, and walk as they walk; what Grava checks,
// numbers, stores and posts is decided by the dispatch core, which also reads and writes
// every row. The record part is atendimento.cpp; the board, the caller id and the search
// tab are atendimentoboard.cpp; the widgets atendimentoform.cpp; the prints
// atendimentoprint.cpp.

#include "callerid/core/callerid.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/lookup.h"
#include "dispatch/core/rules.h"
#include "dispatch/core/searches.h"
#include "kit/recordform_binding.h"

#include <QDialog>
#include <QString>
#include <memory>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QVBoxLayout;

namespace rtx::callerid {
class CallerIdService;
} // namespace rtx::callerid

namespace rtx::dispatch {
struct Service;
enum class ReportBy;
} // namespace rtx::dispatch

namespace rtx::ui {

class DBGrid;
class MSFlexGrid;
class MaskEdBox;
class ReportControl;
class SSTab;

class Atendimento : public QDialog {
    Q_OBJECT
public:
    explicit Atendimento(QWidget* parent = nullptr);
    ~Atendimento() override;

    // Shows the dispatch of that number, its number in CODIGO. When there is no such
    // dispatch nothing on the first tab changes, the number included: a number beside
    // another dispatch's fields would make Grava write those fields as another dispatch.
    bool showDispatch(const QString& number);

    // Buttons, also reached by their menu twins.
    void onSave();           // Grava
    void onNew();            // Novo
    void onDelete();         // Exclui
    void onFirst();          // |<
    void onPrevious();       // <
    void onNext();           // >
    void onLast();           // >|
    void onStatusRegistry(); // the status list's +/-
    void onStatusChange();   // Altera beside the status
    void onServiceTable();   // Tabela  Serviço, the picker
    void onCallerId();       // Ativar Bina
    // A call the bina reported: into a4 when nothing is typed, else it waits in the call
    // line until F9 takes it into a new dispatch.
    void takeCall(const callerid::Call& call);
    void answerWaitingCall(); // F9
    void onPeriodSearch();    // the period's button
    void onShowAll();         // Ver todos
    // The search tab as the operator leaves it after typing the period and pressing its
    // button; with a courier, his name stands in his box and the list holds his dispatches
    // of that period.
    void showSearch(const QDate& from, const QDate& to, const QString& courier = QString());
    // Printing (atendimentoprint.cpp).
    void printSlip();   // Impressão A4, its picture button and the Yes after Grava
    void printCoupon(); // Impressão Cupom USB
    void printSearchReport(dispatch::ReportBy by); // the search tab's three reports
    void openReportScreen();                       // the report screen, atendeimpre
    // The client lookup for the client line, the pickup or the delivery.
    void openClientLookup(dispatch::LookupFor line);

    // The courier board and the courier list; the status list.
    void fillBoard();
    void fillStatusList();
    // Those and the search, refilled when their rows change.
    void followRows();

    // The report control of the slip and of the search tab's reports: what one run sets
    // (a formula) stays for the next, as the offices know it.
    ReportControl* report() const { return report_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The fields of one place, the pickup or the delivery.
    struct PlaceFields {
        QLineEdit* address = nullptr;
        QLineEdit* contact = nullptr;
        MaskEdBox* phone = nullptr;
        QLineEdit* task = nullptr;
    };

    SSTab* tabs = nullptr;
    // First tab.
    QLabel* numberLabel = nullptr; // CODIGO
    QLabel* countLabel = nullptr;  // nr
    QComboBox* attendantBox = nullptr;
    MaskEdBox* dateField = nullptr;
    QLineEdit* timeField = nullptr;
    MaskEdBox* phoneField = nullptr;
    QLineEdit* contactField = nullptr;
    QLineEdit* clientField = nullptr;
    QLineEdit* addressField = nullptr;
    QLineEdit* kindField = nullptr;
    PlaceFields pickup;
    PlaceFields delivery;
    QPlainTextEdit* remarksField = nullptr;
    QComboBox* courierBox = nullptr;
    MaskEdBox* clientValueField = nullptr;
    QComboBox* paymentBox = nullptr;
    QLineEdit* serviceField = nullptr;
    QComboBox* returnBox = nullptr;
    QComboBox* statusBox = nullptr;
    MaskEdBox* courierValueField = nullptr;
    QLabel* feeLabel = nullptr; // VM: the courier's fee as Grava posts it
    // The courier whose fee VE holds: the one last looked up, or the loaded dispatch's. The
    // register's fee replaces VE only when the courier changes, not each time the cursor
    // passes through ENTREGADOR, so a fee typed for this dispatch stays.
    QString feeCourier;
    QComboBox* positionBox = nullptr;
    MSFlexGrid* board = nullptr;
    QLineEdit* callerIdSetting = nullptr;
    // The bina: the service once armed, the call waiting for the operator, and the two
    // lines under the form (the bina's state and notices; the waiting call).
    std::unique_ptr<callerid::CallerIdService> callerIdService;
    std::optional<callerid::Call> waitingCall;
    QLabel* statusLine = nullptr;  // StatusBina
    QLabel* waitingLine = nullptr; // ChamadaEspera
    QCheckBox* twoCopiesCheck = nullptr;
    // Second tab.
    QLineEdit* numberSearch = nullptr;
    QComboBox* statusSearch = nullptr;
    QLineEdit* courierSearch = nullptr;
    QLineEdit* clientSearch = nullptr;
    MaskEdBox* fromField = nullptr;
    MaskEdBox* toField = nullptr;
    QLabel* foundLabel = nullptr; // itt: the running count of the period searches
    DBGrid* searchGrid = nullptr;
    ReportControl* report_ = nullptr;

    // Building (atendimentoform.cpp).
    void buildMenu(QVBoxLayout* box);
    void buildFirstTab(QWidget* page);
    void buildSecondTab(QWidget* page);
    void buildCourierLinks(); // WhatsApp and Rota (atendimentolinks.cpp)
    void fitToScreen();

    void load();
    void showToday();
    void countDispatches();

    // The screen and the record.
    RecordBinding record;
    void bindRecord();
    dispatch::Dispatch onScreen() const;
    void showRecord(const dispatch::Dispatch& d);
    void showParties(const dispatch::Dispatch& d); // client, pickup and delivery
    QWidget* fieldOf(dispatch::Field field) const;
    bool readMoney(MaskEdBox* field, qint64& cents);
    void takeService(const dispatch::Service& service);

    // Field events.
    void walk(Walk direction);
    void onPhoneLeft();
    bool nothingTyped() const;
    void showWaitingCall();
    void onCourierLeft();
    void onBoardDoubleClick(int row);
    void onSearchDoubleClick(int row);
    void search(dispatch::SearchBy box, const QString& typed);

    bool askPassword(const QString& title, const QString& label);
};

} // namespace rtx::ui
