#include "registers/cliente.h"

#include "kit/maskedbox.h"
#include "session/modules.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace reg = rtx::registers;
namespace col = rtx::registers::clientcol;

namespace {

const QString kPostcode = u"#####-###"_s;

} // namespace

QList<FormField> cliente::identityFields() {
    using F = FormField;
    F fullName = F::text(u"C5"_s, col::name, u"NOME / RAZÃO SOCIAL............"_s, {0, 2, 0, 3});
    fullName.red = fullName.bold = true;
    return {
        PartyScreen::status({0, 0, 0}),
        PartyScreen::since(u"DATA CADASTRO........"_s, {0, 0, 1}),
        PartyScreen::taxNumber(u"CNPJ/CPF..................................."_s, {0, 1, 0}),
        F::text(u"C4"_s, col::identity, u"RG/ INSC.ESTADUAL..............."_s, {0, 1, 1, 2}),
        fullName,
        F::text(u"C6"_s, col::tradeName, u"APELIDO / NOME FANTASIA....."_s, {0, 3, 0, 3}),
        F::text(u"C7"_s, col::contact, u"CONTATO......................................."_s,
                {0, 4, 0, 3}),
        F::masked(u"C8"_s, col::phone1, u"TELEFONE 1..............................."_s, {},
                  {0, 5, 0}),
        F::masked(u"C9"_s, col::phone2, u"TELEFONE 2..."_s, {}, {0, 5, 1}),
        F::masked(u"C10"_s, col::phone3, u"TELEFONE 3......"_s, {}, {0, 5, 2}),
        F::text(u"C11"_s, col::email, u"E-MAIL........................................."_s,
                {0, 6, 0, 2}),
        F::text(u"C12"_s, col::site, u"SITE....."_s, {0, 6, 2}),
        F::masked(u"C13"_s, col::postcode, u"CEP ENDEREÇO 1........................"_s, kPostcode,
                  {0, 7, 0}),
        F::text(u"C14"_s, col::street, u"ENDEREÇO......"_s, {0, 7, 1, 2}),
        F::text(u"C15"_s, col::district, u"BAIRRO......"_s, {0, 8, 0}),
        F::text(u"C16"_s, col::city, u"CIDADE........................................"_s,
                {0, 8, 1}),
        F::combo(u"C17"_s, col::state, u"ESTADO....."_s, PartyScreen::states(), true, {0, 8, 2}),
    };
}

FormSearch cliente::search() {
    FormSearch s;
    s.tab = 2;
    s.boxes = {{u"X1"_s, u"BUSCA PELO NOME:"_s},
               {u"X2"_s, u"BUSCA PELO CNPJ/CPF:"_s},
               {u"Text1"_s, u"BUSCA PELO NOME FANTASIA:"_s}};
    s.columns = PartyScreen::gridColumns(true);
    s.keyColumn = col::code;
    return s;
}

PartySetup cliente::setup() {
    using F = FormField;
    PartySetup setup;
    setup.party = reg::Party::Client;
    setup.reportLayout = u"rela2.rpt"_s;
    setup.searches = {reg::SearchBy::Name, reg::SearchBy::TaxNumber, reg::SearchBy::TradeName};
    FormDefinition& c = setup.form;
    c = PartyScreen::baseForm(u"cliente"_s, setup.party, u"Cadastro de Clientes"_s, u"Clientes"_s,
                              {u"01-Cadastro"_s, u"02-Complemento"_s, u"03-Pesquisa"_s});
    c.fields = identityFields();
    F due = F::text(u"C24"_s, col::dueDay, u"DIA VENCIMENTO CONTRATO........"_s, {1, 1, 0});
    due.maxLength = 2;
    // The days his invoices are given; empty, the company's.
    F invoiceDays =
        F::text(u"PRAZO"_s, col::dueDays, u"PRAZO DA FATURA (DIAS).."_s, {1, 4, 1}).fixed(60);
    invoiceDays.maxLength = 3;
    invoiceDays.digitsOnly = true;
    F privatePerson = F::option(u"C32"_s, col::privatePerson, u"Pessoa Física"_s, u"Frame1"_s);
    privatePerson.onNew = F::OnNew::Set;
    c.fields += {
        F::masked(u"C18"_s, col::postcode2, u"CEP ENDEREÇO 2........................."_s, kPostcode,
                  {0, 9, 0}),
        F::text(u"C19"_s, col::street2, u"ENDEREÇO......"_s, {0, 9, 1, 2}),
        F::text(u"C20"_s, col::district2, u"BAIRRO......"_s, {0, 10, 0}),
        F::text(u"C21"_s, col::city2, u"CIDADE........................................"_s,
                {0, 10, 1}),
        F::combo(u"C22"_s, col::state2, u"ESTADO....."_s, PartyScreen::states(), true, {0, 10, 2}),
        F::combo(u"C23"_s, col::attendedBy, u"ATENDIDO POR................................."_s, {},
                 true, {1, 0, 0, 2}),
        due,
        F::combo(u"C25"_s, col::kind, u"TIPO  DE CLIENTE.............................."_s,
                 {u"AVULSO"_s, u"CONTRATO"_s, u"OUTROS"_s}, false, {1, 1, 1}),
        F::combo(u"c26"_s, col::charging, u"FORMA DE COBRANÇA...................."_s,
                 {u"BOLETO"_s, u"RECIBO"_s, u"OUTROS"_s}, false, {1, 2, 1}),
        F::masked(u"C27"_s, col::monthlyContract, u"CONTRATO MENSAL R$..................."_s,
                  MaskEdBox::moneyMask(), {1, 2, 0}),
        F::masked(u"C28"_s, col::creditLimit, u"LIMITE CRÉDITO..............................."_s,
                  MaskEdBox::moneyMask(), {1, 3, 0}),
        F::masked(u"C29"_s, col::birth, u"DATA NASCIMENTO........................."_s,
                  MaskEdBox::dateMask(), {1, 3, 1}),
        F::text(u"C30"_s, col::sitePassword,
                u"SENHA PARA ACESSO AO SITE................................"_s, {1, 5, 0, 2}),
        F::memo(u"C31"_s, col::remarks, u"OBSERVAÇÕES................................."_s,
                {1, 6, 0, 2}),
        F::combo(u"C34"_s, col::region, u"REGIÃO/GRUPO................................"_s, {}, true,
                 {1, 4, 0}),
        invoiceDays,
        privatePerson,
        F::option(u"C33"_s, col::company, u"Pessoa Jurídica"_s, u"Frame1"_s),
    };
    c.groups = {{u"Frame1"_s, u"TIPO...."_s, {0, 0, 2}}};
    c.buttons = PartyScreen::commonButtons();
    c.buttons += {
        {u"Command9"_s, {}, {}, u"@"_s, u"C11"_s, {}},
        {u"Command18"_s, u"Avança >"_s, {}, {}, {}, {0, 11, 2}, true},
        {u"Command17"_s, {}, {}, u"+"_s, u"C34"_s, {}},
    };
    c.tabOrder = {u"c3"_s,  u"C4"_s,    u"C5"_s,  u"C6"_s,  u"C7"_s,  u"C8"_s,  u"C9"_s,
                  u"C10"_s, u"C11"_s,   u"C12"_s, u"C13"_s, u"C14"_s, u"C15"_s, u"C16"_s,
                  u"C17"_s, u"C18"_s,   u"C19"_s, u"C20"_s, u"C21"_s, u"C22"_s, u"Command18"_s,
                  u"C23"_s, u"C24"_s,   u"C27"_s, u"C28"_s, u"C34"_s, u"C25"_s, u"c26"_s,
                  u"C29"_s, u"PRAZO"_s, u"C30"_s, u"C31"_s};
    c.search = search();
    return setup;
}

cliente::cliente(QWidget* parent) : PartyScreen(setup(), parent) {}

RTX_REGISTER_MODULE("Clientes", [](QWidget* parent) -> QDialog* { return new cliente(parent); });

} // namespace rtx::ui
