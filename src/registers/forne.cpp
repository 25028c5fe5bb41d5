#include "registers/forne.h"

#include "registers/cliente.h"
#include "session/modules.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RegisterConfig forne::setup() {
    using F = RegisterField;
    using B = RegisterButton;
    RegisterConfig c;
    c.screen = u"forne"_s;
    c.table = u"fornecedores"_s;
    c.title = u"Cadastro de Fornecedores"_s;
    c.heading = u"Fornecedores"_s;
    c.tabs = {u"01-Cadastro"_s, u"02-Pesquisa"_s};
    c.fields = cliente::identityFields();
    for (F& f : c.fields)
        if (f.name == u"C13"_s) f.caption = u"CEP ENDEREÇO ........................"_s;
    c.fields += {
        F::masked(u"C18"_s, u"BANCO........................................"_s, {}, {0, 9, 0}),
        F::text(u"C19"_s, u"AGÊNCIA..."_s, {0, 9, 1}),
        F::text(u"C20"_s, u"NR. CONTA...."_s, {0, 9, 2}),
        F::memo(u"C31"_s, u"OBSERVAÇÕES................................."_s, {0, 10, 0, 3}),
    };
    c.buttons = RegisterButton::common();
    c.buttons += {
        {u"Command9"_s, {}, {}, B::Inert, u"C11"_s, {}},
    };
    c.tabOrder = {u"c3"_s,  u"C4"_s,  u"C5"_s,  u"C6"_s,  u"C7"_s,  u"C8"_s,  u"C9"_s,
                  u"C10"_s, u"C11"_s, u"C12"_s, u"C13"_s, u"C14"_s, u"C15"_s, u"C16"_s,
                  u"C17"_s, u"C18"_s, u"C19"_s, u"C20"_s, u"C31"_s};
    c.options = true;
    c.optionsPlace = {0, 0, 2};
    c.required = {{u"C5"_s, u"NOME"_s}};
    for (int i = 1; i <= 20; ++i)
        c.written << QStringLiteral("C%1").arg(i);
    c.written << u"C31"_s << u"C32"_s << u"C33"_s << u"C34"_s << u"EMPE"_s;
    c.constants = {{u"C34"_s, QString()}};
    c.searches = cliente::searches();
    c.gridColumns = cliente::gridColumns();
    c.report = RegisterConfig::Report::Disabled;
    return c;
}

forne::forne(QWidget* parent) : RegisterScreen(setup(), parent) {}

RTX_REGISTER_MODULE("Fornecedores", [](QWidget* parent) -> QDialog* { return new forne(parent); });

} // namespace rtx::ui
