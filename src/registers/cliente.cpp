#include "registers/cliente.h"

#include "session/kit/maskedbox.h"
#include "session/modules.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace {

QStringList columns(int from, int to) {
    QStringList out;
    for (int i = from; i <= to; ++i)
        out << QStringLiteral("C%1").arg(i);
    return out;
}

} // namespace

QList<RegisterField> cliente::identityFields() {
    using F = RegisterField;
    const QString date = MaskEdBox::dateMask();
    const QString cep = u"#####-###"_s;
    F name = F::text(u"C5"_s, u"NOME / RAZÃO SOCIAL............"_s, {0, 2, 0, 3});
    name.red = name.bold = name.stripQuotes = true;
    F trade = F::text(u"C6"_s, u"APELIDO / NOME FANTASIA....."_s, {0, 3, 0, 3});
    trade.stripQuotes = true;
    return {
        F::status({0, 0, 0}),
        F::since(u"DATA CADASTRO........"_s, {0, 0, 1}),
        F::masked(u"c3"_s, u"CNPJ/CPF..................................."_s, u"##############"_s,
                  {0, 1, 0}),
        F::text(u"C4"_s, u"RG/ INSC.ESTADUAL..............."_s, {0, 1, 1, 2}),
        name,
        trade,
        F::text(u"C7"_s, u"CONTATO......................................."_s, {0, 4, 0, 3}),
        F::masked(u"C8"_s, u"TELEFONE 1..............................."_s, {}, {0, 5, 0}),
        F::masked(u"C9"_s, u"TELEFONE 2..."_s, {}, {0, 5, 1}),
        F::masked(u"C10"_s, u"TELEFONE 3......"_s, {}, {0, 5, 2}),
        F::text(u"C11"_s, u"E-MAIL........................................."_s, {0, 6, 0, 2}),
        F::text(u"C12"_s, u"SITE....."_s, {0, 6, 2}),
        F::masked(u"C13"_s, u"CEP ENDEREÇO 1........................"_s, cep, {0, 7, 0}),
        F::text(u"C14"_s, u"ENDEREÇO......"_s, {0, 7, 1, 2}),
        F::text(u"C15"_s, u"BAIRRO......"_s, {0, 8, 0}),
        F::text(u"C16"_s, u"CIDADE........................................"_s, {0, 8, 1}),
        F::combo(u"C17"_s, u"ESTADO....."_s, RegisterScreen::states(), true, {0, 8, 2}),
    };
}

QList<RegisterSearch> cliente::searches() {
    return {{u"X1"_s, u"BUSCA PELO NOME:"_s, u"C5"_s, u"C5"_s},
            {u"X2"_s, u"BUSCA PELO CNPJ/CPF:"_s, u"C3"_s, u"C5"_s},
            {u"Text1"_s, u"BUSCA PELO NOME FANTASIA:"_s, u"C6"_s, u"C6"_s}};
}

QList<DBGrid::Column> cliente::gridColumns() {
    return {{u"CODIGO"_s, u"Código"_s, 70},
            {u"C5"_s, u"Nome"_s, 300},
            {u"C6"_s, u"Nome Fantasia"_s, 200},
            {u"C8"_s, u"Telefone"_s, 120},
            {u"C1"_s, u"Status"_s, 80}};
}

RegisterConfig cliente::setup() {
    using F = RegisterField;
    using B = RegisterButton;
    const QString cep = u"#####-###"_s;
    const QString money = MaskEdBox::moneyMask();
    RegisterConfig c;
    c.screen = u"cliente"_s;
    c.table = u"clientes"_s;
    c.title = u"Cadastro de Clientes"_s;
    c.heading = u"Clientes"_s;
    c.tabs = {u"01-Cadastro"_s, u"02-Complemento"_s, u"03-Pesquisa"_s};
    c.fields = identityFields();
    F due = F::text(u"C24"_s, u"DIA VENCIMENTO CONTRATO........"_s, {1, 1, 0});
    due.maxLength = 2;
    F birth = F::masked(u"C29"_s, u"DATA NASCIMENTO........................."_s,
                        MaskEdBox::dateMask(), {1, 3, 1});
    c.fields += {
        F::masked(u"C18"_s, u"CEP ENDEREÇO 2........................."_s, cep, {0, 9, 0}),
        F::text(u"C19"_s, u"ENDEREÇO......"_s, {0, 9, 1, 2}),
        F::text(u"C20"_s, u"BAIRRO......"_s, {0, 10, 0}),
        F::text(u"C21"_s, u"CIDADE........................................"_s, {0, 10, 1}),
        F::combo(u"C22"_s, u"ESTADO....."_s, RegisterScreen::states(), true, {0, 10, 2}),
        F::combo(u"C23"_s, u"ATENDIDO POR................................."_s, {}, true,
                 {1, 0, 0, 2}),
        due,
        F::combo(u"C25"_s, u"TIPO  DE CLIENTE.............................."_s,
                 {u"AVULSO"_s, u"CONTRATO"_s, u"OUTROS"_s}, false, {1, 1, 1}),
        F::combo(u"c26"_s, u"FORMA DE COBRANÇA...................."_s,
                 {u"BOLETO"_s, u"RECIBO"_s, u"OUTROS"_s}, false, {1, 2, 1}),
        F::masked(u"C27"_s, u"CONTRATO MENSAL R$..................."_s, money, {1, 2, 0}),
        F::masked(u"C28"_s, u"LIMITE CRÉDITO..............................."_s, money, {1, 3, 0}),
        birth,
        F::text(u"C30"_s, u"SENHA PARA ACESSO AO SITE................................"_s,
                {1, 5, 0, 2}),
        F::memo(u"C31"_s, u"OBSERVAÇÕES................................."_s, {1, 6, 0, 2}),
        F::combo(u"C34"_s, u"REGIÃO/GRUPO................................"_s, {}, true, {1, 4, 0}),
    };
    c.buttons = RegisterButton::common();
    c.buttons += {
        {u"Command9"_s, {}, {}, B::Inert, u"C11"_s, {}},
        {u"Command18"_s, u"Avança >"_s, {}, B::NextTab, {}, {0, 11, 2}},
        {u"Command17"_s, {}, {}, B::AddRegion, u"C34"_s, {}},
    };
    c.tabOrder = {u"c3"_s,  u"C4"_s,  u"C5"_s,  u"C6"_s,  u"C7"_s,  u"C8"_s,  u"C9"_s,
                  u"C10"_s, u"C11"_s, u"C12"_s, u"C13"_s, u"C14"_s, u"C15"_s, u"C16"_s,
                  u"C17"_s, u"C18"_s, u"C19"_s, u"C20"_s, u"C21"_s, u"C22"_s, u"Command18"_s,
                  u"C23"_s, u"C24"_s, u"C27"_s, u"C28"_s, u"C34"_s, u"C25"_s, u"c26"_s,
                  u"C29"_s, u"C30"_s, u"C31"_s};
    c.options = true;
    c.optionsPlace = {0, 0, 2};
    c.required = {{u"C5"_s, u"NOME"_s}};
    c.written = columns(1, 34) << u"EMPE"_s;
    c.lists = {{u"C34"_s, u"SELECT A1 FROM grupos_clientes GROUP BY A1 ORDER BY A1"_s},
               {u"C23"_s, u"SELECT x1 FROM funcionarios ORDER BY x1"_s}};
    c.searches = searches();
    c.gridColumns = gridColumns();
    return c;
}

cliente::cliente(QWidget* parent) : RegisterScreen(setup(), parent) {}

RTX_REGISTER_MODULE("Clientes", [](QWidget* parent) -> QDialog* { return new cliente(parent); });

} // namespace rtx::ui
