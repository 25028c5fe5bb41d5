#pragma once
// The screen the registers of clients (cliente), couriers (MOTO) and suppliers (forne)
// share: a RecordForm on the party's table with what the three have beyond the form. The
// tax number field takes a CPF or a CNPJ and brings the party that has it; the buttons
// beside the telephones find by them; "< Verifica" opens the revenue service's public page;
// the foot shows the code the next save writes (A1) and the number of rows (nr). The client
// screen's lists of regions and employees follow their tables as they change.

#include "kit/recordform.h"
#include "registers/core/parties.h"

#include <QList>
#include <QStringList>

class QComboBox;
class QLabel;

namespace rtx::ui {

class MaskEdBox;
class ReportControl;

struct PartySetup {
    registers::Party party = registers::Party::Client;
    FormDefinition form;
    QList<registers::SearchBy> searches; // what each box of the search tab searches by
    bool cpfPageOnly = false;            // the public look-up always opens the CPF page
    bool reportDisabled = false;         // "Relatórios" says it is disabled
    QString reportLayout;                // else the list it prints of the party's table
};

class PartyScreen : public RecordForm {
    Q_OBJECT
public:
    explicit PartyScreen(const PartySetup& setup, QWidget* parent = nullptr);

    QString foundCode() const; // cd: the party reached by a find, a walk or the grid

    // "< Verifica": the public page of the revenue service, after "Sim" to the question.
    void lookUp();
    // "Relatórios": the list of every party of the table in the report's preview.
    void report();
    ReportControl* reportControl() const { return report_; }
    // The first party whose telephone 1, 2 or 3 is the text in its field; nothing when the
    // field is empty or no party has it.
    void findByPhone(int which);

    static QString cnpjPage();
    static QString cpfPage();
    // The Brazilian states (and "EX", abroad), for the state combos.
    static QStringList states();

    // The parts of the three setups: the form of a party's table with the action bar,
    // the message of a delete with nothing found, the focus on the tax number.
    static FormDefinition baseForm(const QString& screen, registers::Party party,
                                   const QString& title, const QString& heading,
                                   const QStringList& tabs);
    static QList<FormAction> actions();
    // The look-up beside the tax number and the finds beside the three telephones.
    static QList<FormButton> commonButtons();
    static FormField status(FormPlace place); // C1, which Novo leaves as it is
    static FormField since(const QString& caption, FormPlace place);     // C2, today
    static FormField taxNumber(const QString& caption, FormPlace place); // c3
    static QList<DBGrid::Column> gridColumns(bool tradeName);

private:
    PartySetup setup_;
    MaskEdBox* taxField_ = nullptr;
    QLabel* codeLabel_ = nullptr;  // A1
    QLabel* countLabel_ = nullptr; // nr
    QStringList offeredLists_;     // lists shown behind the regions (client screen)
    ReportControl* report_ = nullptr;

    void buildFoot();
    void connectButtons();
    void showNextCode();
    void resetTaxNumber();
    void showTaxNumber(const QString& digits);
    void enterTaxNumber();
    void leaveTaxNumber();
    // The client screen's lists: the regions (with the lists offered behind them) and the
    // employees who look after clients.
    void fillRegions();
    void fillEmployees();
    static void refill(QComboBox* combo, const QStringList& items);
};

} // namespace rtx::ui
