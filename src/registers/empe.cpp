#include "registers/empe.h"

#include "kit/kit.h"
#include "registers/core/pixkey.h"
#include "session/modules.h"
#include "store/record.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("Empresa", [](QWidget* parent) -> QDialog* { return new empe(parent); });

namespace reg = rtx::registers;

namespace {

// The company's fields and a branch's are the same nine, under the letter E or X, on
// their tab; the branch's telephone has the telephone mask, the company's none. Both names
// lose their apostrophes as the user leaves them.
QList<FormField> letterheadFields(QChar letter, const QStringList& columns) {
    using F = FormField;
    const bool branch = letter == u'X';
    const int tab = branch ? 1 : 0;
    const auto name = [&](int n, bool capital) {
        return QString(capital ? letter : letter.toLower()) + QString::number(n);
    };
    const auto at = [&](int row) { return FormPlace{tab, row, 0}; };
    F companyName = F::text(name(1, true), columns[0], u"NOME DA EMPRESA..."_s, at(0));
    companyName.tidy = rtx::withoutQuotes;
    QList<F> fields{
        companyName,
        F::masked(name(2, true), columns[1], u"TELEFONE....................."_s,
                  branch ? u"(##)####-####"_s : QString(), at(1))
            .fixed(130),
        F::text(name(3, !branch), columns[2], u"ENDEREÇO....................."_s, at(2)),
        F::text(name(4, !branch), columns[3], u"BAIRRO.........................."_s, at(3)),
        F::text(name(5, !branch), columns[4], u"CIDADE..........................."_s, at(4)),
        F::text(name(6, !branch), columns[5], u"ESTADO.........................."_s, at(5))
            .fixed(50),
        F::masked(name(7, true), columns[6], u"CEP................................"_s,
                  u"#####-###"_s, at(6))
            .fixed(100),
        F::text(name(8, !branch), columns[7], u"E-MAIL.............................."_s, at(7)),
        F::masked(name(9, true), columns[8], u"CNPJ.............................."_s,
                  u"##.###.###/####-##"_s, at(8))
            .fixed(160),
    };
    // Novo concerns the branch only.
    if (!branch)
        for (F& f : fields)
            f.onNew = F::OnNew::Keep;
    return fields;
}

} // namespace

FormDefinition empe::form() {
    namespace c = reg::companycol;
    namespace b = reg::branchcol;
    FormDefinition f;
    f.screen = u"empe"_s;
    f.title = u"Cadastro da Empresa"_s;
    f.table = reg::branchTable();
    f.tabs = {u"01- Cadastro da Matriz"_s, u"02- Cadastro das Filiais"_s,
              u"03- Pesquisa Filiais"_s};
    f.fields = letterheadFields(u'E', {c::name, c::phone, c::address, c::district, c::city,
                                       c::state, c::postcode, c::email, c::cnpj});
    // How the office's invoices are paid, below its letterhead.
    const QStringList kinds{QString(), reg::pixKindName(reg::PixKeyKind::Cnpj),
                            reg::pixKindName(reg::PixKeyKind::Email),
                            reg::pixKindName(reg::PixKeyKind::Phone),
                            reg::pixKindName(reg::PixKeyKind::Random)};
    QList<FormField> payment{
        FormField::combo(u"E10"_s, c::pixKind, u"TIPO DA CHAVE PIX.........."_s, kinds, true,
                         {0, 9, 0})
            .fixed(160),
        FormField::text(u"E11"_s, c::pixKey, u"CHAVE PIX......................."_s, {0, 10, 0}),
        FormField::text(u"E12"_s, c::pixName, u"BENEFICIÁRIO PIX.........."_s, {0, 11, 0}),
        FormField::text(u"E13"_s, c::pixCity, u"CIDADE DO PIX..............."_s, {0, 12, 0}),
        FormField::text(u"E14"_s, c::dueDays, u"PRAZO DA FATURA (DIAS)"_s, {0, 13, 0}).fixed(60),
    };
    for (FormField& p : payment)
        p.onNew = FormField::OnNew::Keep;
    payment[4].digitsOnly = true;
    payment[4].maxLength = 3;
    f.fields += payment;
    f.fields += letterheadFields(u'X', {b::name, b::phone, b::address, b::district, b::city,
                                        b::state, b::postcode, b::email, b::cnpj});
    f.actions = FormDefinition::saveNewDeleteBack();
    f.bar = FormDefinition::Bar::Buttons;
    f.labelPrefix = u"Label"_s;
    f.firstField = u"E1"_s;
    f.newMovesFocus = false;
    f.focusOnTab = true;
    f.list.tab = 2;
    f.list.headers = {u"Nome"_s, u"Endereço"_s, u"Telefone"_s, u"Cd"_s};
    f.list.widths = {230, 230, 120, 50};
    f.list.hint = u"Para consultar de um duplo clique sobre o registro."_s;
    f.list.openTab = 1;
    f.searchFirst = u"Primeiro faça a pesquisa."_s;
    return f;
}

empe::empe(QWidget* parent) : RecordForm(form(), parent) {
    RecordSource source;
    source.load = [](Store& store, const QVariant& key) -> std::optional<Row> {
        if (const auto b = reg::loadBranch(store, rtx::recordNumber(key)))
            return rtx::toRow(*b, reg::branchFields());
        return std::nullopt;
    };
    source.check = [](const Row& row) -> std::optional<Problem> {
        if (const auto p = reg::checkCompany(rtx::fromRow(row, reg::companyFields())))
            return Problem{p->column, p->message};
        return std::nullopt;
    };
    // The found branch stays found: a branch renamed and saved is a new row, and Apaga goes
    // on meaning the one found.
    source.save = [](Store& store, const Row& row, const QVariant&) -> QVariant {
        reg::saveCompany(store, rtx::fromRow(row, reg::companyFields()),
                         rtx::fromRow(row, reg::branchFields()));
        return {};
    };
    source.remove = [](Store& store, const QVariant& found, const Row&) {
        reg::removeBranch(store, rtx::recordNumber(found));
    };
    source.list = [](Store& store) {
        QList<QStringList> rows;
        for (const reg::Branch& b : reg::branches(store))
            rows << QStringList{b.name, b.address, b.phone, QString::number(b.id)};
        return rows;
    };
    setSource(source);
    start();
    loadCompany();
}

void empe::loadCompany() {
    guarded(this, [this] {
        if (const auto company = reg::loadCompany(Store::current()))
            showRow(rtx::toRow(*company, reg::companyFields()));
    });
}

} // namespace rtx::ui
