#pragma once
// cobra1 ("Altera valor"): the client's and the courier's value of one dispatch. Altera
// writes them on the dispatch and nothing else; Volta leaves without writing.

#include <QDialog>

class QLineEdit;

namespace rtx::ui {

class MaskEdBox;

class cobra1 : public QDialog {
    Q_OBJECT
public:
    cobra1(const QString& code, const QString& client, const QString& clientValue,
           const QString& courierValue, QWidget* parent = nullptr);

    void change(); // Command6

private:
    QLineEdit* codeField_ = nullptr;
    QLineEdit* clientField_ = nullptr;
    MaskEdBox* clientValueField_ = nullptr;
    MaskEdBox* courierValueField_ = nullptr;
};

} // namespace rtx::ui
