#include "registers/funci.h"

#include "session/kit/kit.h"
#include "session/modules.h"
#include "store/schema.h"
#include "store/store.h"

#include <QEvent>
#include <QFocusEvent>
#include <QLineEdit>
#include <QVBoxLayout>

namespace rtx::ui {

RTX_REGISTER_MODULE("Funcionários", [](QWidget* parent) -> QDialog* { return new funci(parent); });

namespace {

const QString sim = QStringLiteral("Sim");
const QString nao = QStringLiteral("Não");

} // namespace

funci::funci(QWidget* parent)
    : CdRegister(QStringLiteral("funci"), QStringLiteral("Cadastro de Funcionários"), parent) {
    form_ = addFormTab(QStringLiteral("01- Cadastro"),
                       {{QStringLiteral("X1"), QStringLiteral("NOME ............................")},
                        {QStringLiteral("X2"), QStringLiteral("TELEFONE....................."),
                         QStringLiteral("(##)####-####"), 130},
                        {QStringLiteral("x3"), QStringLiteral("ENDEREÇO.....................")},
                        {QStringLiteral("x4"), QStringLiteral("DATA ADMISSÃO....................."),
                         std::nullopt, 130},
                        {QStringLiteral("x5"), QStringLiteral("FUNÇÃO........................"),
                         std::nullopt, 200},
                        {QStringLiteral("x6"), QStringLiteral("COMISSÃO......................"),
                         std::nullopt, 50, 2, true},
                        {QStringLiteral("X7"), QStringLiteral("SALÁRIO.........................."),
                         QString(), 130},
                        {QStringLiteral("x8"), QStringLiteral("SENHA.........................."),
                         std::nullopt, 130},
                        {QStringLiteral("X9"), QStringLiteral("CART. DE TRAB.................."),
                         QString(), 200}});
    X1 = form_[0];
    X2 = form_[1];
    x3 = form_[2];
    x4 = form_[3];
    x5 = form_[4];
    x6 = form_[5];
    X7 = form_[6];
    x8 = form_[7];
    X9 = form_[8];
    x8->installEventFilter(this);

    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    Grid2 = new MSFlexGrid(page);
    Grid2->setObjectName(QStringLiteral("Grid2"));
    Grid2->setHeaders({QStringLiteral("Módulo"), QStringLiteral("Acesso")});
    Grid2->setColWidth(0, 260);
    Grid2->setColWidth(1, 90);
    fitList(Grid2, 16);
    box->addWidget(Grid2);
    addTab(page, QStringLiteral("02- Permissões"));
    connect(Grid2, &MSFlexGrid::rowDoubleClicked, this, [this](int row) { togglePermission(row); });

    addListTab(QStringLiteral("03- Pesquisa"), QStringLiteral("funcionarios"),
               {{QStringLiteral("x1"), QStringLiteral("Nome"), 240},
                {QStringLiteral("x8"), QStringLiteral("Senha"), 110},
                {QStringLiteral("x2"), QStringLiteral("Telefone"), 120},
                {QStringLiteral("cd"), QStringLiteral("Cd"), 50}});

    finish();
    defaultPermissions();
}

void funci::defaultPermissions() {
    Grid2->setRows(1);
    for (const QString& module : permissionModules())
        Grid2->addItem(module + u'\t' + nao);
    stripeGrid(Grid2);
}

// The rows of the password in x8, in the order they were written, and nothing else: a
// password with no rows shows the header alone.
void funci::loadPermissions() {
    Grid2->setRows(1);
    Recordset rs = Store::current().open(
        QStringLiteral("SELECT * FROM permissoes WHERE a1 = ? ORDER BY rid"), {text(x8)});
    for (; !rs.eof(); rs.moveNext())
        Grid2->addItem(rs.text(QStringLiteral("a4")) + u'\t' + rs.text(QStringLiteral("a5")));
    stripeGrid(Grid2);
}

void funci::togglePermission(int row) {
    if (row < 1) return;
    const QString now = Grid2->textMatrix(row, 1);
    if (now.isEmpty() || now == nao)
        Grid2->setTextMatrix(row, 1, sim);
    else if (now == sim)
        Grid2->setTextMatrix(row, 1, nao);
}

void funci::loadByCd() {
    guarded(this, [this] {
        const std::optional<qint64> number = cdNumber();
        if (number) {
            Recordset rs = Store::current().open(
                QStringLiteral("SELECT * FROM funcionarios WHERE cd = ?"), {*number});
            if (!rs.eof()) fillFields(form_, rs);
        }
        loadPermissions();
    });
    SSTab1->setTab(0);
}

// A password already in use turns the screen into the first employee who has it. Only a
// password typed now counts: passing through the field of a record leaves it as it is.
void funci::recallByPassword() {
    const QString password = text(x8);
    if (password.isEmpty()) return;
    guarded(this, [&] {
        Recordset rs = Store::current().open(
            QStringLiteral("SELECT * FROM funcionarios WHERE x8 = ? ORDER BY cd"), {password});
        if (rs.eof()) return;
        fillFields(form_, rs);
        loadPermissions();
    });
}

bool funci::eventFilter(QObject* watched, QEvent* event) {
    if (watched == x8 && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        const bool away = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
        if (!away && event->type() == QEvent::FocusIn) x8AtEntry_ = text(x8);
        if (!away && event->type() == QEvent::FocusOut && text(x8) != x8AtEntry_) {
            x8AtEntry_ = text(x8);
            recallByPassword();
        }
    }
    return CdRegister::eventFilter(watched, event);
}

// Grava: the employee by his name (edited when the name exists, added otherwise) and the
// whole permission grid under his password, in one unit: both or neither.
void funci::Command16_Click() {
    if (text(X1).trimmed().isEmpty()) {
        notice(this, QStringLiteral("O campo [Nome], não pode ficar em branco."));
        SSTab1->setTab(0);
        X1->setFocus();
        return;
    }
    if (text(x8).trimmed().isEmpty()) {
        notice(this, QStringLiteral("O campo [Senha], não pode ficar em branco."));
        SSTab1->setTab(0);
        x8->setFocus();
        return;
    }
    const QString name = text(X1);
    const QString password = text(x8);
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        saveByField(QStringLiteral("funcionarios"), X1, form_);

        store.execute(QStringLiteral("DELETE FROM permissoes WHERE a1 = ?"), {password});
        for (int row = 1; row < Grid2->rows(); ++row) {
            const QString module = Grid2->textMatrix(row, 0);
            if (module.isEmpty()) continue;
            store.execute(
                QStringLiteral("INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"),
                {password, name, module, Grid2->textMatrix(row, 1)});
        }
        unit.commit();
    });
    // The screen stays as it is: cd still names the record that was looked up, if any.
    if (ok) notice(this, QStringLiteral("Operação realizada com sucesso."));
}

void funci::Command4_Click() {
    fillGrid1();
    cd->clear();
    defaultPermissions();
    clearFields(form_);
    x8AtEntry_.clear();
    SSTab1->setTab(0);
    X1->setFocus();
}

void funci::Command3_Click() {
    const std::optional<qint64> number = cdNumber();
    if (!number) {
        notice(this, QStringLiteral("Primeiro faça a pesquisa."));
        return;
    }
    if (!ask(this, QStringLiteral("Confirma exclusão?"))) return;
    const bool ok = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        store.execute(QStringLiteral("DELETE FROM funcionarios WHERE cd = ?"), {*number});
        store.execute(QStringLiteral("DELETE FROM permissoes WHERE a1 = ?"), {text(x8)});
        unit.commit();
    });
    if (ok) Command4_Click();
}

} // namespace rtx::ui
