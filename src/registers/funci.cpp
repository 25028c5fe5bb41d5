#include "registers/funci.h"

#include "kit/kit.h"
#include "session/modules.h"

#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("Funcionários", [](QWidget* parent) -> QDialog* { return new funci(parent); });

namespace reg = rtx::registers;
namespace col = rtx::registers::employeecol;

namespace {

FormField line(const QString& name, const QString& column, const QString& caption, int row,
               int width = 0) {
    return FormField::text(name, column, caption, {0, row, 0}).fixed(width);
}

FormField maskedLine(const QString& name, const QString& column, const QString& caption,
                     const QString& mask, int row, int width) {
    return FormField::masked(name, column, caption, mask, {0, row, 0}).fixed(width);
}

} // namespace

FormDefinition funci::form() {
    FormDefinition f;
    f.screen = u"funci"_s;
    f.title = u"Cadastro de Funcionários"_s;
    f.table = reg::employeeTable();
    f.tabs = {u"01- Cadastro"_s, u"02- Permissões"_s, u"03- Pesquisa"_s};
    FormField commission =
        line(u"x6"_s, col::commission, u"COMISSÃO......................"_s, 5, 50);
    commission.maxLength = 2;
    commission.digitsOnly = true;
    f.fields = {
        line(u"X1"_s, col::name, u"NOME ............................"_s, 0),
        maskedLine(u"X2"_s, col::phone, u"TELEFONE....................."_s, u"(##)####-####"_s, 1,
                   130),
        line(u"x3"_s, col::address, u"ENDEREÇO....................."_s, 2),
        line(u"x4"_s, col::admission, u"DATA ADMISSÃO....................."_s, 3, 130),
        line(u"x5"_s, col::function, u"FUNÇÃO........................"_s, 4, 200),
        commission,
        maskedLine(u"X7"_s, col::salary, u"SALÁRIO.........................."_s, {}, 6, 130),
        line(u"x8"_s, col::password, u"SENHA.........................."_s, 7, 130),
        maskedLine(u"X9"_s, col::workCard, u"CART. DE TRAB.................."_s, {}, 8, 200),
    };
    f.actions = FormDefinition::saveNewDeleteBack();
    f.bar = FormDefinition::Bar::Buttons;
    f.labelPrefix = u"Label"_s;
    f.firstField = u"X1"_s;
    f.focusOnTab = true;
    f.list.tab = 2;
    // No password column: the passwords are not kept in a form that could be shown.
    f.list.headers = {u"Nome"_s, u"Telefone"_s, u"Cd"_s};
    f.list.widths = {240, 120, 50};
    f.list.hint = u"Para consultar de um duplo clique sobre o registro."_s;
    f.searchFirst = u"Primeiro faça a pesquisa."_s;
    return f;
}

funci::funci(QWidget* parent) : RecordForm(form(), parent) {
    permissionGrid = new MSFlexGrid(page(1));
    permissionGrid->setObjectName(u"Grid2"_s);
    permissionGrid->setHeaders({u"Módulo"_s, u"Acesso"_s});
    permissionGrid->setColWidth(0, 260);
    permissionGrid->setColWidth(1, 90);
    fitList(permissionGrid, 16);
    (new QVBoxLayout(page(1)))->addWidget(permissionGrid);
    connect(permissionGrid, &MSFlexGrid::rowDoubleClicked, this,
            [this](int row) { togglePermission(row); });

    RecordSource source;
    source.load = [](Store& store, const QVariant& key) -> std::optional<Row> {
        if (const auto e = reg::loadEmployee(store, rtx::recordNumber(key)))
            return rtx::toRow(*e, reg::employeeFields());
        return std::nullopt;
    };
    // An employee already saved under the name keeps his password when the field is left
    // empty; a new one must be given one.
    source.check = [](const Row& row) -> std::optional<Problem> {
        const reg::Employee e = rtx::fromRow(row, reg::employeeFields());
        // One read from his row keeps it too: were the row deleted at another station since,
        // the save says that rather than ask for a password.
        bool saved = e.version > 0;
        if (!saved && e.password.isEmpty() && !e.name.isEmpty()) {
            try {
                saved = reg::employeeNamed(Store::current(), e.name);
            } catch (const StoreError&) {
                // The save itself will meet the failure and say so.
            }
        }
        if (const auto p = reg::checkEmployee(e, saved)) return Problem{p->column, p->message};
        return std::nullopt;
    };
    // The employee by his name and the whole grid as his rights, both or neither.
    source.save = [this](Store& store, const Row& row, const QVariant&) -> QVariant {
        reg::Employee e = rtx::fromRow(row, reg::employeeFields());
        if (!emptyKey(foundKey())) e.id = rtx::recordNumber(foundKey());
        return reg::saveEmployee(store, e, permissions());
    };
    source.remove = [](Store& store, const QVariant& found, const Row&) {
        reg::removeEmployee(store, rtx::recordNumber(found));
    };
    source.list = [](Store& store) {
        QList<QStringList> rows;
        for (const reg::Employee& e : reg::employees(store))
            rows << QStringList{e.name, e.phone, QString::number(e.id)};
        return rows;
    };
    setSource(source);
    // What is typed as a new password is not left on the screen for whoever passes by.
    if (auto* password = qobject_cast<QLineEdit*>(field(u"x8"_s)))
        password->setEchoMode(QLineEdit::Password);

    connect(this, &RecordForm::cleared, this,
            [this] { showPermissions(reg::defaultPermissions()); });
    start();
    showPermissions(reg::defaultPermissions());
}

QList<reg::Permission> funci::permissions() const {
    QList<reg::Permission> rights;
    for (int row = 1; row < permissionGrid->rows(); ++row)
        rights.append({permissionGrid->textMatrix(row, 0), permissionGrid->textMatrix(row, 1)});
    return rights;
}

void funci::showPermissions(const QList<reg::Permission>& rights) {
    permissionGrid->setRows(1);
    for (const reg::Permission& right : rights)
        permissionGrid->addItem(right.module + u'\t' + right.access);
    stripeGrid(permissionGrid);
}

// The rows of the employee found, in the order they were written, and nothing else: one
// with no rows, or gone, shows the header alone.
void funci::loadPermissions() {
    guarded(this, [this] {
        showPermissions(reg::permissionsOf(Store::current(), rtx::recordNumber(foundKey())));
    });
}

void funci::togglePermission(int row) {
    if (row < 1) return;
    permissionGrid->setTextMatrix(row, 1, reg::toggledAccess(permissionGrid->textMatrix(row, 1)));
}

void funci::openFound(const QVariant& key, int tab) {
    if (!loadFound(key)) return;
    loadPermissions();
    tabs()->setTab(tab);
}

} // namespace rtx::ui
