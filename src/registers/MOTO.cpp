#include "registers/MOTO.h"

#include "kit/maskedbox.h"
#include "session/modules.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace reg = rtx::registers;
namespace col = rtx::registers::couriercol;

PartySetup MOTO::setup() {
    using F = FormField;
    const QString date = MaskEdBox::dateMask();
    const QString money = MaskEdBox::moneyMask();
    PartySetup setup;
    setup.party = reg::Party::Courier;
    setup.reportLayout = u"rela1.rpt"_s;
    setup.searches = {reg::SearchBy::Name, reg::SearchBy::TaxNumber};
    setup.cpfPageOnly = true;
    FormDefinition& c = setup.form;
    c = PartyScreen::baseForm(
        u"MOTO"_s, setup.party, u"Cadastro de Courier (entregador/motoqueiro)"_s,
        u"Courier - Motoqueiro"_s, {u"01-Cadastro"_s, u"02-Complemento"_s, u"03-Pesquisa"_s});

    F shortName = F::text(u"C4"_s, col::shortName, u"APELIDO OU SOBRENOME........"_s, {0, 1, 1, 2});
    shortName.red = true;
    F name = F::text(u"C5"_s, col::name, u"NOME.........................................."_s,
                     {0, 2, 0, 3});
    name.red = name.bold = true;
    c.fields = {
        PartyScreen::status({0, 0, 0}),
        PartyScreen::since(u"DATA ADMISSÃO......"_s, {0, 0, 1}),
        PartyScreen::taxNumber(u"CPF.............................................."_s, {0, 1, 0}),
        shortName,
        name,
        F::masked(u"C13"_s, col::postcode, u"CEP ENDEREÇO........................."_s,
                  u"#####-###"_s, {0, 3, 0}),
        F::text(u"C14"_s, col::street, u"ENDEREÇO......"_s, {0, 3, 1, 2}),
        F::text(u"C15"_s, col::district, u"BAIRRO......"_s, {0, 4, 0}),
        F::text(u"C16"_s, col::city, u"CIDADE........................................"_s,
                {0, 4, 1}),
        F::combo(u"C17"_s, col::state, u"ESTADO....."_s, PartyScreen::states(), true, {0, 4, 2}),
        F::masked(u"C8"_s, col::phone1, u"TELEFONE 1..............................."_s, {},
                  {0, 5, 0}),
        F::masked(u"C9"_s, col::phone2, u"TELEFONE 2..."_s, {}, {0, 5, 1}),
        F::masked(u"C10"_s, col::phone3, u"TELEFONE 3......"_s, {}, {0, 5, 2}),
        F::masked(u"C29"_s, col::birth, u"DATA NASCIMENTO.................."_s, date, {0, 6, 0}),
        F::text(u"C21"_s, col::maritalState, u"ESTADO CIVÍL....."_s, {0, 6, 1}),
        F::text(u"C12"_s, col::children, u"FILHOS...."_s, {0, 6, 2}),
        F::text(u"C6"_s, col::father, u"NOME DO PAI............................"_s, {0, 7, 0, 3}),
        F::text(u"C7"_s, col::mother, u"MÃE..........."_s, {0, 8, 0, 3}),
        F::text(u"C19"_s, col::workCard, u"CARTEIRA DE TRABALHO........."_s, {0, 9, 0}),
        F::text(u"C11"_s, col::title, u"TÍTULO......"_s, {0, 9, 1}),
        F::text(u"C20"_s, col::licence, u"CARTEIRA DE MOTORISTA......."_s, {0, 10, 0}),
        F::masked(u"C18"_s, col::licenceExpiry, u"VENCE EM....."_s, {}, {0, 10, 1}),
        F::combo(u"C22"_s, col::insurance, u"SEGURO NÚMERO....."_s, {}, true, {0, 11, 0}),
        F::combo(u"C23"_s, col::motorcycle, u"IDENTIFICAÇÃO DA MOTO.........."_s, {}, false,
                 {0, 11, 1}),
        F::masked(u"C27"_s, col::salary, u"SALÁRIO MENSAL R$......................."_s, money,
                  {1, 0, 0}),
        F::masked(u"C28"_s, col::fee, u"VALOR POR ENTREGA....................."_s, money,
                  {1, 1, 0}),
        F::memo(u"C31"_s, col::remarks, u"OBSERVAÇÕES................................."_s,
                {1, 2, 0, 3}),
        F::hidden(u"C24"_s, col::kept24),
        F::hidden(u"C25"_s, col::position),
        F::hidden(u"C26"_s, col::kept26),
        F::hidden(u"C30"_s, col::kept30),
        F::hidden(u"C34"_s, col::kept34),
    };
    c.buttons = PartyScreen::commonButtons();
    c.buttons += {
        {u"Command10"_s, {}, u"Busca endereço pelo cep."_s, u"\u2302"_s, u"C13"_s, {}},
        {u"Command18"_s, u"Avança >"_s, {}, {}, {}, {0, 11, 2}, true},
    };
    c.tabOrder = {u"c3"_s,  u"C4"_s,        u"C5"_s,  u"C13"_s, u"C14"_s, u"C15"_s, u"C16"_s,
                  u"C17"_s, u"C8"_s,        u"C9"_s,  u"C10"_s, u"C29"_s, u"C21"_s, u"C12"_s,
                  u"C6"_s,  u"C7"_s,        u"C19"_s, u"C11"_s, u"C20"_s, u"C18"_s, u"C22"_s,
                  u"C23"_s, u"Command18"_s, u"C27"_s, u"C28"_s, u"C31"_s};
    c.search.tab = 2;
    c.search.boxes = {{u"X1"_s, u"BUSCA PELO NOME:"_s}, {u"X2"_s, u"BUSCA PELO CPF:"_s}};
    c.search.columns = PartyScreen::gridColumns(false);
    c.search.keyColumn = col::code;
    return setup;
}

MOTO::MOTO(QWidget* parent) : PartyScreen(setup(), parent) {}

RTX_REGISTER_MODULE("Courier (entregador)",
                    [](QWidget* parent) -> QDialog* { return new MOTO(parent); });

} // namespace rtx::ui
