#include "registers/forne.h"

#include "registers/cliente.h"
#include "session/modules.h"

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace reg = rtx::registers;
namespace col = rtx::registers::suppliercol;

PartySetup forne::setup() {
    using F = FormField;
    PartySetup setup;
    setup.party = reg::Party::Supplier;
    setup.searches = {reg::SearchBy::Name, reg::SearchBy::TaxNumber, reg::SearchBy::TradeName};
    setup.reportDisabled = true;
    FormDefinition& c = setup.form;
    c = PartyScreen::baseForm(u"forne"_s, setup.party, u"Cadastro de Fornecedores"_s,
                              u"Fornecedores"_s, {u"01-Cadastro"_s, u"02-Pesquisa"_s});
    c.fields = cliente::identityFields();
    for (F& f : c.fields)
        if (f.name == u"C13"_s) f.caption = u"CEP ENDEREÇO ........................"_s;
    F privatePerson = F::option(u"C32"_s, col::privatePerson, u"Pessoa Física"_s, u"Frame1"_s);
    privatePerson.onNew = F::OnNew::Set;
    c.fields += {
        F::masked(u"C18"_s, col::bank, u"BANCO........................................"_s, {},
                  {0, 9, 0}),
        F::text(u"C19"_s, col::agency, u"AGÊNCIA..."_s, {0, 9, 1}),
        F::text(u"C20"_s, col::account, u"NR. CONTA...."_s, {0, 9, 2}),
        F::memo(u"C31"_s, col::remarks, u"OBSERVAÇÕES................................."_s,
                {0, 10, 0, 3}),
        privatePerson,
        F::option(u"C33"_s, col::company, u"Pessoa Jurídica"_s, u"Frame1"_s),
    };
    c.groups = {{u"Frame1"_s, u"TIPO...."_s, {0, 0, 2}}};
    c.buttons = PartyScreen::commonButtons();
    c.buttons += {{u"Command9"_s, {}, {}, u"@"_s, u"C11"_s, {}}};
    c.tabOrder = {u"c3"_s,  u"C4"_s,  u"C5"_s,  u"C6"_s,  u"C7"_s,  u"C8"_s,  u"C9"_s,
                  u"C10"_s, u"C11"_s, u"C12"_s, u"C13"_s, u"C14"_s, u"C15"_s, u"C16"_s,
                  u"C17"_s, u"C18"_s, u"C19"_s, u"C20"_s, u"C31"_s};
    c.search = cliente::search();
    c.search.tab = 1;
    return setup;
}

forne::forne(QWidget* parent) : PartyScreen(setup(), parent) {}

RTX_REGISTER_MODULE("Fornecedores", [](QWidget* parent) -> QDialog* { return new forne(parent); });

} // namespace rtx::ui
