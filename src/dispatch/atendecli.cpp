#include "dispatch/atendecli.h"

#include "dispatch/atendimento.h"
#include "dispatch/searchgrid.h"
#include "session/kit/kit.h"
#include "store/store.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

atendecli::atendecli(Atendimento* target, QWidget* parent) : QDialog(parent), target_(target) {
    setObjectName(u"atendecli"_s);
    setWindowTitle(u"Busca cliente"_s);
    auto* box = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    X1 = new QLineEdit(this);
    X1->setObjectName(u"X1"_s);
    line->addWidget(new QLabel(u"BUSCA PELO NOME:"_s, this));
    line->addWidget(X1, 1);
    box->addLayout(line);
    DBGrid1 = new DBGrid(this);
    DBGrid1->setObjectName(u"DBGrid1"_s);
    DBGrid1->setColumns({{u"CODIGO"_s, u"Código"_s, 70}, {u"C5"_s, u"Nome"_s, 330}});
    box->addWidget(DBGrid1, 1);
    cd1 = new QLineEdit(this);
    cd1->setObjectName(u"cd1"_s);
    cd1->hide();
    auto* back = new QPushButton(u"Volta"_s, this);
    back->setObjectName(u"Command5"_s);
    back->setAutoDefault(false);
    box->addWidget(back, 0, Qt::AlignRight);
    resize(460, 420);

    setupFields(this);
    // In the name box Enter goes down to the list, where Enter chooses.
    setTabOrder(X1, DBGrid1);
    setTabOrder(DBGrid1, back);
    connect(X1, &QLineEdit::textChanged, this, [this](const QString& t) { search(t); });
    connect(DBGrid1, &DBGrid::recordActivated, this, [this](int r) { choose(r); });
    connect(back, &QPushButton::clicked, this, &QDialog::reject);

    centreScreen(this);
    search(QString());
    X1->setFocus();
}

void atendecli::setCaller(const QString& caller) {
    cd1->setText(caller);
}

void atendecli::search(const QString& typed) {
    guarded(this, [&] {
        showSearch(DBGrid1, {u"clientes"_s,
                             {u"CODIGO"_s, u"C5"_s},
                             Store::prefixClause(u"C5"_s),
                             Store::prefixParams(typed),
                             u"C5"_s});
    });
}

void atendecli::choose(int row) {
    const QString code = DBGrid1->text(row, u"CODIGO"_s);
    QString remarks;
    guarded(this, [&] {
        Recordset rs = Store::current().open(u"SELECT * FROM clientes WHERE CODIGO = ?"_s, {code});
        if (rs.eof() || !target_) return;
        const QString address = rs.text(u"C14"_s) + u"  "_s + rs.text(u"C15"_s);
        const QString tel = rs.text(u"C8"_s);
        const QString caller = cd1->text();
        if (caller == u"1"_s) {
            target_->setField(u"a4"_s, tel);
            target_->setField(u"A5"_s, rs.text(u"C7"_s));
            target_->setField(u"A6"_s, rs.text(u"C5"_s));
            target_->setField(u"A7"_s, address);
            target_->setField(u"A9"_s, address);
            target_->setField(u"A13"_s, address);
            target_->setField(u"A8"_s, rs.text(u"C25"_s));
        } else if (caller == u"2"_s) {
            target_->setField(u"A9"_s, address);
            target_->setField(u"A11"_s, tel);
        } else if (caller == u"3"_s) {
            target_->setField(u"A13"_s, address);
            target_->setField(u"A15"_s, tel);
        }
        remarks = rs.text(u"C31"_s);
    });
    if (!remarks.isEmpty()) notice(this, u"Obs. "_s + remarks);
    accept();
}

} // namespace rtx::ui
