#pragma once
// SERVI2: "Tabela", the service price table. From the hub it keeps the list (Grava always
// adds a service, Exclui removes the one picked); from the dispatch screen it is a picker:
// a double click copies the service and its value into the dispatch and closes.

#include <QDialog>
#include <QPointer>

class QLineEdit;

namespace rtx::ui {

class Atendimento;
class MaskEdBox;
class MSFlexGrid;

class SERVI2 : public QDialog {
    Q_OBJECT
public:
    explicit SERVI2(QWidget* parent = nullptr);

    // Picker mode: saving and deleting are off, a double click fills the dispatch screen
    // and closes.
    void setPicker(Atendimento* target);
    bool picker() const;

    void Command16_Click(); // Grava
    void Command11_Click(); // Exclui
    void Grid1_DblClick(int row);

private:
    QPointer<Atendimento> target_;
    QLineEdit* A1 = nullptr;
    MaskEdBox* A2 = nullptr;
    QLineEdit* COD = nullptr;
    QLineEdit* cd = nullptr;
    QLineEdit* XP = nullptr;
    MSFlexGrid* Grid1 = nullptr;

    void load();
};

} // namespace rtx::ui
