#include "registers/empe.h"

#include "session/kit/kit.h"
#include "session/modules.h"
#include "store/store.h"

#include <QLineEdit>

namespace rtx::ui {

RTX_REGISTER_MODULE("Empresa", [](QWidget* parent) -> QDialog* { return new empe(parent); });

namespace {

// The company's fields and a branch's are the same nine, under the letter E or X; the
// branch's telephone has the telephone mask, the company's none.
QList<FieldSpec> addressFields(QChar letter) {
    const bool branch = letter == u'X';
    const auto name = [&](int n, bool capital) {
        return QString(capital ? letter : letter.toLower()) + QString::number(n);
    };
    return {
        {name(1, true), QStringLiteral("NOME DA EMPRESA..."), std::nullopt, 360, 0, false, true},
        {name(2, true), QStringLiteral("TELEFONE....................."),
         branch ? QStringLiteral("(##)####-####") : QString(), 130},
        {name(3, !branch), QStringLiteral("ENDEREÇO.....................")},
        {name(4, !branch), QStringLiteral("BAIRRO..........................")},
        {name(5, !branch), QStringLiteral("CIDADE...........................")},
        {name(6, !branch), QStringLiteral("ESTADO.........................."), std::nullopt, 50},
        {name(7, true), QStringLiteral("CEP................................"),
         QStringLiteral("#####-###"), 100},
        {name(8, !branch), QStringLiteral("E-MAIL..............................")},
        {name(9, true), QStringLiteral("CNPJ.............................."),
         QStringLiteral("##.###.###/####-##"), 160}};
}

} // namespace

empe::empe(QWidget* parent)
    : CdRegister(QStringLiteral("empe"), QStringLiteral("Cadastro da Empresa"), parent) {
    company_ = addFormTab(QStringLiteral("01- Cadastro da Matriz"), addressFields(u'E'));
    branch_ = addFormTab(QStringLiteral("02- Cadastro das Filiais"), addressFields(u'X'));
    addListTab(QStringLiteral("03- Pesquisa Filiais"), QStringLiteral("filiais"),
               {{QStringLiteral("x1"), QStringLiteral("Nome"), 230},
                {QStringLiteral("x3"), QStringLiteral("Endereço"), 230},
                {QStringLiteral("x2"), QStringLiteral("Telefone"), 120},
                {QStringLiteral("cd"), QStringLiteral("Cd"), 50}});

    finish();
    loadCompany();
}

void empe::loadCompany() {
    guarded(this, [this] {
        Recordset rs = Store::current().open(QStringLiteral("SELECT * FROM empresa ORDER BY rid"));
        if (!rs.eof()) fillFields(company_, rs);
    });
}

void empe::loadByCd() {
    guarded(this, [this] {
        const std::optional<qint64> number = cdNumber();
        if (!number) return;
        Recordset rs =
            Store::current().open(QStringLiteral("SELECT * FROM filiais WHERE cd = ?"), {*number});
        if (!rs.eof()) fillFields(branch_, rs);
    });
    SSTab1->setTab(1);
}

// Grava: the branch by its name when it has one, and the company's one row, in one unit.
void empe::Command16_Click() {
    QLineEdit* E1 = company_[0];
    QLineEdit* X1 = branch_[0];
    if (text(E1).trimmed().isEmpty()) {
        notice(this, QStringLiteral("O campo [Nome], não pode ficar em branco."));
        SSTab1->setTab(0);
        E1->setFocus();
        return;
    }
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        if (!text(X1).trimmed().isEmpty()) saveByField(QStringLiteral("filiais"), X1, branch_);
        Recordset rs = store.open(QStringLiteral("SELECT * FROM empresa ORDER BY rid"));
        if (rs.eof())
            throw StoreError(QStringLiteral(
                "O registro da empresa não existe nesta instalação; nada foi gravado."));
        rs.edit();
        storeFields(company_, rs);
        rs.update();
        unit.commit();
    });
    // cd still names the branch that was looked up: a branch renamed and saved is a new row,
    // and Apaga goes on meaning the one found.
    if (ok) notice(this, QStringLiteral("Operação realizada com sucesso."));
}

// Novo: a new branch; the company's fields stay as they are.
void empe::Command4_Click() {
    fillGrid1();
    cd->clear();
    clearFields(branch_);
}

void empe::Command3_Click() {
    const std::optional<qint64> number = cdNumber();
    if (!number) {
        notice(this, QStringLiteral("Primeiro faça a pesquisa."));
        return;
    }
    if (!ask(this, QStringLiteral("Confirma exclusão?"))) return;
    const bool ok = guarded(this, [&] {
        Store::current().execute(QStringLiteral("DELETE FROM filiais WHERE cd = ?"), {*number});
    });
    if (ok) Command4_Click();
}

} // namespace rtx::ui
