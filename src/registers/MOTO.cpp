#include "registers/MOTO.h"

#include "session/kit/maskedbox.h"
#include "session/modules.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RegisterConfig MOTO::setup() {
    using F = RegisterField;
    using B = RegisterButton;
    const QString date = MaskEdBox::dateMask();
    const QString money = MaskEdBox::moneyMask();
    RegisterConfig c;
    c.screen = u"MOTO"_s;
    c.table = u"motoqueiros"_s;
    c.title = u"Cadastro de Courier (entregador/motoqueiro)"_s;
    c.heading = u"Courier - Motoqueiro"_s;
    c.tabs = {u"01-Cadastro"_s, u"02-Complemento"_s, u"03-Pesquisa"_s};

    F shortName = F::text(u"C4"_s, u"APELIDO OU SOBRENOME........"_s, {0, 1, 1, 2});
    shortName.red = true;
    F name = F::text(u"C5"_s, u"NOME.........................................."_s, {0, 2, 0, 3});
    name.red = name.bold = name.stripQuotes = true;
    F father = F::text(u"C6"_s, u"NOME DO PAI............................"_s, {0, 7, 0, 3});
    father.stripQuotes = true;
    c.fields = {
        F::status({0, 0, 0}),
        F::since(u"DATA ADMISSÃO......"_s, {0, 0, 1}),
        F::masked(u"c3"_s, u"CPF.............................................."_s,
                  u"##############"_s, {0, 1, 0}),
        shortName,
        name,
        F::masked(u"C13"_s, u"CEP ENDEREÇO........................."_s, u"#####-###"_s, {0, 3, 0}),
        F::text(u"C14"_s, u"ENDEREÇO......"_s, {0, 3, 1, 2}),
        F::text(u"C15"_s, u"BAIRRO......"_s, {0, 4, 0}),
        F::text(u"C16"_s, u"CIDADE........................................"_s, {0, 4, 1}),
        F::combo(u"C17"_s, u"ESTADO....."_s, RegisterScreen::states(), true, {0, 4, 2}),
        F::masked(u"C8"_s, u"TELEFONE 1..............................."_s, {}, {0, 5, 0}),
        F::masked(u"C9"_s, u"TELEFONE 2..."_s, {}, {0, 5, 1}),
        F::masked(u"C10"_s, u"TELEFONE 3......"_s, {}, {0, 5, 2}),
        F::masked(u"C29"_s, u"DATA NASCIMENTO.................."_s, date, {0, 6, 0}),
        F::text(u"C21"_s, u"ESTADO CIVÍL....."_s, {0, 6, 1}),
        F::text(u"C12"_s, u"FILHOS...."_s, {0, 6, 2}),
        father,
        F::text(u"C7"_s, u"MÃE..........."_s, {0, 8, 0, 3}),
        F::text(u"C19"_s, u"CARTEIRA DE TRABALHO........."_s, {0, 9, 0}),
        F::text(u"C11"_s, u"TÍTULO......"_s, {0, 9, 1}),
        F::text(u"C20"_s, u"CARTEIRA DE MOTORISTA......."_s, {0, 10, 0}),
        F::masked(u"C18"_s, u"VENCE EM....."_s, {}, {0, 10, 1}),
        F::combo(u"C22"_s, u"SEGURO NÚMERO....."_s, {}, true, {0, 11, 0}),
        F::combo(u"C23"_s, u"IDENTIFICAÇÃO DA MOTO.........."_s, {}, false, {0, 11, 1}),
        F::masked(u"C27"_s, u"SALÁRIO MENSAL R$......................."_s, money, {1, 0, 0}),
        F::masked(u"C28"_s, u"VALOR POR ENTREGA....................."_s, money, {1, 1, 0}),
        F::memo(u"C31"_s, u"OBSERVAÇÕES................................."_s, {1, 2, 0, 3}),
        F::hidden(u"C24"_s),
        F::hidden(u"C25"_s),
        F::hidden(u"C26"_s),
        F::hidden(u"C30"_s),
        F::hidden(u"C34"_s),
    };
    c.buttons = RegisterButton::common();
    c.buttons += {
        {u"Command10"_s, {}, u"Busca endereço pelo cep."_s, B::Inert, u"C13"_s, {}},
        {u"Command18"_s, u"Avança >"_s, {}, B::NextTab, {}, {0, 11, 2}},
    };
    c.tabOrder = {u"c3"_s,  u"C4"_s,        u"C5"_s,  u"C13"_s, u"C14"_s, u"C15"_s, u"C16"_s,
                  u"C17"_s, u"C8"_s,        u"C9"_s,  u"C10"_s, u"C29"_s, u"C21"_s, u"C12"_s,
                  u"C6"_s,  u"C7"_s,        u"C19"_s, u"C11"_s, u"C20"_s, u"C18"_s, u"C22"_s,
                  u"C23"_s, u"Command18"_s, u"C27"_s, u"C28"_s, u"C31"_s};
    c.required = {{u"C5"_s, u"NOME"_s}, {u"C4"_s, u"APELIDO OU SOBRENOME"_s}};
    for (int i = 1; i <= 34; ++i)
        c.written << QStringLiteral("C%1").arg(i);
    c.written << u"EMPE"_s;
    // A save puts the courier back on the board as free, whatever he was doing.
    c.constants = {{u"C25"_s, u"Livre"_s}, {u"C32"_s, QString()}, {u"C33"_s, QString()}};
    c.searches = {{u"X1"_s, u"BUSCA PELO NOME:"_s, u"C5"_s, u"C5"_s},
                  {u"X2"_s, u"BUSCA PELO CPF:"_s, u"C3"_s, u"C5"_s}};
    c.gridColumns = {{u"CODIGO"_s, u"Código"_s, 70},
                     {u"C5"_s, u"Nome"_s, 320},
                     {u"C8"_s, u"Telefone"_s, 120},
                     {u"C1"_s, u"Status"_s, 80}};
    c.lookUp = RegisterConfig::LookUp::CpfPage;
    return c;
}

MOTO::MOTO(QWidget* parent) : RegisterScreen(setup(), parent) {}

RTX_REGISTER_MODULE("Courier (entregador)",
                    [](QWidget* parent) -> QDialog* { return new MOTO(parent); });

} // namespace rtx::ui
