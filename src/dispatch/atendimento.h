#pragma once
// Atendimento: the dispatch screen. The first tab records one courier job (the call, the
// client, pickup and delivery, the service, the courier and the money) beside the courier
// board; the second finds saved dispatches. Grava stores the dispatch and, when the
// operator confirms it, its money (payable, cash or receivable) and the courier's move, all
// in one transaction.

#include <QDialog>
#include <QPointer>
#include <QString>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;
class QAction;
class QVBoxLayout;

namespace rtx {
class Recordset;
}

namespace rtx::ui {

class DBGrid;
class MSFlexGrid;
class MaskEdBox;
class SSTab;

class Atendimento : public QDialog {
    Q_OBJECT
public:
    explicit Atendimento(QWidget* parent = nullptr);
    ~Atendimento() override;

    // The most recently opened dispatch screen that is still open, if any.
    static Atendimento* openScreen();
    // A service picked in the service table opened from the hub: it goes into the dispatch
    // screen that stands open or, when none does, into the next one opened.
    static void takeService(const QString& description, const QString& value);

    // Writes a text into one of the fields by its name (a4, A5, A19, ...), as the client
    // lookup and the service table do.
    void setField(const QString& name, const QString& text);
    QString field(const QString& name) const;

    // Loads the dispatch whose number stands in CODIGO; nothing changes when there is none.
    void busca();

    // Buttons, also reached by their menu twins.
    void Command16_Click(); // Grava
    void Command4_Click();  // Novo
    void Command11_Click(); // Exclui
    void Command1_Click();  // first
    void Command13_Click(); // previous
    void Command14_Click(); // next
    void Command12_Click(); // last
    void Command23_Click(); // status registry
    void Command6_Click();  // status change
    void Command19_Click(); // service table, picker
    void Command3_Click();  // caller id
    void Command9_Click();  // period search
    void Command15_Click(); // all dispatches
    // Client lookup for the client line (1), the pickup (2) or the delivery (3).
    void openClientLookup(int caller);

    // The courier board and the courier list of A18.
    void fillBoard();
    // The status list of ST.
    void fillStatusList();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    SSTab* SSTab1 = nullptr;
    // First tab.
    QLabel* CODIGO = nullptr;
    QLabel* nr = nullptr;
    QComboBox* A1 = nullptr;
    MaskEdBox* A2 = nullptr;
    QLineEdit* a3 = nullptr;
    MaskEdBox* a4 = nullptr;
    QLineEdit* A5 = nullptr;
    QLineEdit* A6 = nullptr;
    QLineEdit* A7 = nullptr;
    QLineEdit* A8 = nullptr;
    QLineEdit* A9 = nullptr;
    QLineEdit* A10 = nullptr;
    MaskEdBox* A11 = nullptr;
    QLineEdit* A12 = nullptr;
    QLineEdit* A13 = nullptr;
    QLineEdit* A14 = nullptr;
    MaskEdBox* A15 = nullptr;
    QLineEdit* A16 = nullptr;
    QPlainTextEdit* A17 = nullptr;
    QComboBox* A18 = nullptr;
    MaskEdBox* A19 = nullptr;
    QComboBox* A20 = nullptr;
    QLineEdit* A21 = nullptr;
    QComboBox* A22 = nullptr;
    QComboBox* ST = nullptr;
    MaskEdBox* VE = nullptr;
    QLabel* VM = nullptr;
    QComboBox* PZ = nullptr;
    MSFlexGrid* Grid1 = nullptr;
    QLineEdit* Text9 = nullptr;
    QCheckBox* Check1 = nullptr;
    // Second tab.
    QLineEdit* Text3 = nullptr;
    QComboBox* Combo1 = nullptr;
    QLineEdit* Text2 = nullptr;
    QLineEdit* Text1 = nullptr;
    MaskEdBox* k1 = nullptr;
    MaskEdBox* k2 = nullptr;
    QLabel* itt = nullptr;
    DBGrid* DBGrid1 = nullptr;

    void buildFirstTab(QWidget* page);
    void buildSecondTab(QWidget* page);
    void buildMenu(QVBoxLayout* box);
    void load();

    void showToday();
    void countDispatches();
    QString text(const QString& name) const { return field(name); }
    QStringList columnsOfBusca() const;

    // Field events.
    void a4_LostFocus();
    void A18_LostFocus();
    void Grid1_DblClick(int row);
    void DBGrid1_DblClick(int row);
    void search(const QString& column, const QString& typed);

    // Grava's parts.
    bool checkRequired();
    bool deliveredLock(bool& passed);
    void writeRow(Recordset& rs, bool adding);
    void printSlip();
    bool askPassword(const QString& title, const QString& label);
};

} // namespace rtx::ui
