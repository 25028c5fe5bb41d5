#include "registers/partyscreen.h"

#include "kit/kit.h"
#include "output/reportcontrol.h"
#include "registers/core/docnumbers.h"
#include "registers/core/employees.h"
#include "registers/core/lists.h"
#include "registers/lists.h"
#include "session/core/current.h"
#include "store/changes.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace reg = rtx::registers;

namespace {

// While typed: twelve places for digits or letters (a CPF's eleven digits fit in them), then
// the two check digits.
const QString kTypingMask = u"AAAAAAAAAAAA##"_s;
const QString kCpfMask = u"#########-##"_s;
const QString kCnpjMask = u"########/####-##"_s;
// A CNPJ with letters, as the revenue service writes it.
const QString kLetteredCnpjMask = u"AA.AAA.AAA/AAAA-##"_s;

bool hasLetters(const QString& chars) {
    for (QChar c : chars)
        if (c.isLetter()) return true;
    return false;
}

QString cnpjMaskFor(const QString& chars) {
    return hasLetters(chars) ? kLetteredCnpjMask : kCnpjMask;
}
const QString kTaxField = u"c3"_s;

RecordSource partySource(const PartySetup& setup) {
    const reg::Party party = setup.party;
    const QList<reg::SearchBy> searches = setup.searches;
    RecordSource s;
    s.keyColumn = reg::clientcol::code;
    s.load = [party](Store& store, const QVariant& key) {
        return reg::loadParty(store, party, key.toString());
    };
    s.check = [party](const Row& row) -> std::optional<Problem> {
        if (const auto p = reg::checkParty(party, row)) return Problem{p->column, p->message};
        return std::nullopt;
    };
    s.save = [party](Store& store, const Row& row, const QVariant& own) -> QVariant {
        return reg::saveParty(store, party, row, own.toString(), session::userName());
    };
    s.remove = [party](Store& store, const QVariant& found, const Row&) {
        reg::removeParty(store, party, found.toString());
    };
    s.walk = [party](Store& store, Walk direction, const QVariant& found) -> QVariant {
        return reg::walk(store, party, direction, found.toString());
    };
    s.search = [party, searches](const Store& store, int box, const QString& typed) {
        const reg::SearchBy by = box < 0 ? reg::SearchBy::All : searches.value(box);
        return reg::partySearch(store, party, by, typed);
    };
    return s;
}

// The form with the rules of the core that act as the user types: the names lose their
// apostrophes as he leaves them.
FormDefinition ruled(const PartySetup& setup) {
    FormDefinition form = setup.form;
    const QStringList quoteless = reg::quotelessColumns(setup.party);
    for (FormField& f : form.fields)
        if (quoteless.contains(f.column)) f.tidy = rtx::withoutQuotes;
    return form;
}

} // namespace

// --- The parts of the setups ------------------------------------------------------------

FormDefinition PartyScreen::baseForm(const QString& screen, reg::Party party, const QString& title,
                                     const QString& heading, const QStringList& tabs) {
    FormDefinition f;
    f.screen = screen;
    f.title = title;
    f.heading = heading;
    f.table = reg::partyTable(party);
    f.tabs = tabs;
    f.actions = actions();
    f.bar = FormDefinition::Bar::Tools;
    f.firstField = kTaxField;
    f.searchFirst = u"Primeiro faça a busca do cliente."_s;
    f.size = QSize(960, 640);
    return f;
}

QList<FormAction> PartyScreen::actions() {
    using R = FormAction::Role;
    const QColor blue(0x1F618D), green(0x1E8449), red(0x922B21), grey(0x5D6D7E);
    return {
        {u"Command16"_s, u"sd"_s, u"Grava"_s, u"\u2714"_s, green, R::Save,
         QKeySequence(Qt::CTRL | Qt::Key_G)},
        {u"Command4"_s, u"sdsss"_s, u"Novo"_s, u"\u271A"_s, blue, R::New,
         QKeySequence(Qt::CTRL | Qt::Key_N)},
        {u"Command3"_s, u"gff"_s, u"Exclui"_s, u"\u2716"_s, red, R::Delete, {}},
        {u"Command1"_s, u"ferr"_s, u"Relatórios"_s, u"\u2630"_s, grey, R::Other, {}},
        {u"Command5"_s, u"fdfff"_s, u"Volta"_s, u"\u21A9"_s, grey, R::Close, {}},
        {u"Command11"_s, {}, u"Primeiro"_s, u"\u00AB"_s, blue, R::First, {}, true},
        {u"Command13"_s, {}, u"Anterior"_s, u"\u25C0"_s, blue, R::Previous, {}},
        {u"Command14"_s, {}, u"Próximo"_s, u"\u25B6"_s, blue, R::Next, {}},
        {u"Command12"_s, {}, u"Último"_s, u"\u00BB"_s, blue, R::Last, {}},
    };
}

QList<FormButton> PartyScreen::commonButtons() {
    const QString nearby = u"Busca pelo campo ao lado."_s;
    const QString phone = u"\u260E"_s;
    return {{u"Command19"_s, u"< Verifica"_s, {}, {}, kTaxField, {}},
            {u"Command6"_s, {}, nearby, phone, u"C8"_s, {}},
            {u"Command7"_s, {}, nearby, phone, u"C9"_s, {}},
            {u"Command8"_s, {}, nearby, phone, u"C10"_s, {}}};
}

FormField PartyScreen::status(FormPlace place) {
    FormField f = FormField::combo(u"C1"_s, reg::clientcol::status, u"STATUS...."_s,
                                   {reg::activeStatus(), reg::inactiveStatus()}, false, place);
    // After viewing an inactive party, a new one starts as inactive.
    f.onNew = FormField::OnNew::Keep;
    return f;
}

FormField PartyScreen::since(const QString& caption, FormPlace place) {
    FormField f = FormField::masked(u"C2"_s, reg::clientcol::registered, caption,
                                    MaskEdBox::dateMask(), place);
    f.onNew = FormField::OnNew::Set;
    f.todayWhenEmpty = true;
    return f;
}

FormField PartyScreen::taxNumber(const QString& caption, FormPlace place) {
    FormField f =
        FormField::masked(kTaxField, reg::clientcol::taxNumber, caption, kTypingMask, place);
    f.value = FormField::Value::Digits;
    return f;
}

QList<DBGrid::Column> PartyScreen::gridColumns(bool tradeName) {
    namespace c = reg::clientcol;
    QList<DBGrid::Column> columns{{c::code, u"Código"_s, 70}, {c::name, u"Nome"_s, 300}};
    if (tradeName) columns.append({c::tradeName, u"Nome Fantasia"_s, 200});
    columns += QList<DBGrid::Column>{{c::phone1, u"Telefone"_s, 120}, {c::status, u"Status"_s, 80}};
    return columns;
}

QString PartyScreen::cnpjPage() {
    return u"https://www.receita.fazenda.gov.br/PessoaJuridica/CNPJ/cnpjreva/"
           "Cnpjreva_Solicitacao.asp"_s;
}

QString PartyScreen::cpfPage() {
    return u"https://www.receita.fazenda.gov.br/Aplicacoes/ATCTA/cpf/ConsultaPublica.asp"_s;
}

QStringList PartyScreen::states() {
    return {u"AC"_s, u"AL"_s, u"AM"_s, u"AP"_s, u"BA"_s, u"CE"_s, u"DF"_s, u"ES"_s, u"EX"_s,
            u"GO"_s, u"MA"_s, u"MG"_s, u"MS"_s, u"MT"_s, u"PA"_s, u"PB"_s, u"PE"_s, u"PI"_s,
            u"PR"_s, u"RJ"_s, u"RN"_s, u"RR"_s, u"RS"_s, u"SC"_s, u"SE"_s, u"SP"_s, u"TO"_s};
}

// --- The screen ---------------------------------------------------------------------------

PartyScreen::PartyScreen(const PartySetup& setup, QWidget* parent)
    : RecordForm(ruled(setup), parent), setup_(setup) {
    report_ = new ReportControl(this);
    taxField_ = qobject_cast<MaskEdBox*>(field(kTaxField));
    buildFoot();
    connectButtons();
    setSource(partySource(setup));

    connect(this, &RecordForm::fieldEntered, this, [this](const QString& name) {
        if (name == kTaxField) enterTaxNumber();
    });
    connect(this, &RecordForm::fieldLeft, this, [this](const QString& name) {
        if (name == kTaxField) leaveTaxNumber();
    });
    connect(this, &RecordForm::loaded, this, [this](const Row& row) {
        codeLabel_->setText(row.value(reg::clientcol::code).toString());
        showTaxNumber(row.value(reg::clientcol::taxNumber).toString());
    });
    connect(this, &RecordForm::saved, this,
            [this](const QVariant& code) { codeLabel_->setText(code.toString()); });
    connect(this, &RecordForm::cleared, this, [this] {
        resetTaxNumber();
        guarded(this, [this] { showNextCode(); });
    });

    if (setup.party == reg::Party::Client) {
        // Lists offered while no client screen was open show behind the regions of this one.
        offeredLists_ = ListOffers::instance().take();
        connect(&ListOffers::instance(), &ListOffers::offered, this, [this](const QString& list) {
            ListOffers::instance().take();
            if (!offeredLists_.contains(list)) offeredLists_ << list;
            fillRegions();
        });
        connect(&changes(), &Changes::tableChanged, this, [this](const QString& table) {
            if (table == reg::lists::regions || offeredLists_.contains(table)) fillRegions();
            if (table == reg::employeeTable()) fillEmployees();
        });
        fillRegions();
        fillEmployees();
    }
    start();
    guarded(this, [this] { showNextCode(); });
}

void PartyScreen::buildFoot() {
    auto* line = new QHBoxLayout;
    auto* codeCaption = new QLabel(u"CÓDIGO:"_s, this);
    codeCaption->setObjectName(u"Label2"_s);
    codeLabel_ = new QLabel(this);
    codeLabel_->setObjectName(u"A1"_s);
    QFont bold = codeLabel_->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    codeLabel_->setFont(bold);
    codeLabel_->setMinimumWidth(80);
    auto* countCaption = new QLabel(u"REGISTROS:"_s, this);
    countCaption->setObjectName(u"Label3"_s);
    countLabel_ = new QLabel(this);
    countLabel_->setObjectName(u"nr"_s);
    line->addWidget(codeCaption);
    line->addWidget(codeLabel_);
    line->addStretch();
    line->addWidget(countCaption);
    line->addWidget(countLabel_);
    foot()->addLayout(line);
}

void PartyScreen::connectButtons() {
    const auto on = [this](const QString& name, auto action) {
        if (QAbstractButton* b = button(name)) connect(b, &QAbstractButton::clicked, this, action);
    };
    on(u"Command1"_s, [this] { report(); });
    on(u"Command19"_s, [this] { lookUp(); });
    on(u"Command6"_s, [this] { findByPhone(1); });
    on(u"Command7"_s, [this] { findByPhone(2); });
    on(u"Command8"_s, [this] { findByPhone(3); });
    // "Avança >": the second tab, the focus on C23 (on the courier's screen C23 stands on the
    // first tab, out of sight until Tab moves on; so it always was).
    on(u"Command18"_s, [this] {
        tabs()->setTab(1);
        if (QWidget* w = field(u"C23"_s)) w->setFocus(Qt::OtherFocusReason);
    });
    on(u"Command17"_s, [this] {
        cadgrupo list(this);
        list.exec();
    });
}

QString PartyScreen::foundCode() const {
    return foundKey().toString();
}

void PartyScreen::showNextCode() {
    Store& store = Store::current();
    codeLabel_->setText(reg::nextPartyCode(store, setup_.party));
    countLabel_->setText(QString::number(reg::partyCount(store, setup_.party)));
}

// --- Finding ------------------------------------------------------------------------------

void PartyScreen::findByPhone(int which) {
    const QString phone = value(which == 2 ? u"C9"_s : which == 3 ? u"C10"_s : u"C8"_s).toString();
    if (phone.isEmpty()) return;
    QString code;
    guarded(this, [&] { code = reg::findByPhone(Store::current(), setup_.party, which, phone); });
    if (!code.isEmpty()) loadFound(code);
}

void PartyScreen::lookUp() {
    if (!ask(this, u"Você está conectado a internet?"_s)) return;
    if (setup_.cpfPageOnly) {
        openUrl(QUrl(cpfPage()));
        return;
    }
    if (value(u"C33"_s).toBool()) openUrl(QUrl(cnpjPage()));
    if (value(u"C32"_s).toBool()) openUrl(QUrl(cpfPage()));
}

void PartyScreen::report() {
    if (setup_.reportDisabled) {
        notice(this, u"Desabilitado nesta versão."_s);
        return;
    }
    if (setup_.reportLayout.isEmpty()) return;
    // Every row of the table, with no selection.
    report_->definition().setDataSource(reg::partyTable(setup_.party));
    report_->definition().setLayoutFile(setup_.reportLayout);
    report_->run();
}

// --- The tax number -----------------------------------------------------------------------

// The field shows the digits alone while it is typed in.
void PartyScreen::resetTaxNumber() {
    if (!taxField_) return;
    taxField_->setPromptInclude(false);
    taxField_->setMask(kTypingMask);
    taxField_->clear();
    taxField_->setPromptInclude(true);
}

// A number on file shows with the mask that suits it, so that no digit is cut.
void PartyScreen::showTaxNumber(const QString& digits) {
    if (!taxField_) return;
    taxField_->setPromptInclude(false);
    taxField_->setMask(digits.size() == 11   ? kCpfMask
                       : digits.size() == 14 ? cnpjMaskFor(digits)
                                             : kTypingMask);
    taxField_->setText(digits);
    taxField_->setPromptInclude(true);
}

void PartyScreen::enterTaxNumber() {
    const QString digits = taxField_->digits();
    taxField_->setMask(kTypingMask);
    taxField_->setText(digits);
    taxField_->setCursorPosition(0);
    taxField_->selectAll();
    taxField_->setPromptInclude(false);
    clearHourglass();
}

// Eleven digits are a CPF, fourteen a CNPJ; a wrong length or wrong check digits empty the
// field without a word. A right number already on file brings that party to the screen.
void PartyScreen::leaveTaxNumber() {
    const QString digits = taxField_->digits();
    const TaxNumber kind = taxNumberKind(digits);
    if (kind == TaxNumber::Wrong) {
        resetTaxNumber();
        return;
    }
    taxField_->setMask(kind == TaxNumber::Cpf ? kCpfMask : cnpjMaskFor(digits));
    QString code;
    guarded(this, [&] { code = reg::findByTaxNumber(Store::current(), setup_.party, digits); });
    if (code.isEmpty()) return;
    // The number of the party on the screen (just saved, or loaded) finds that same party:
    // it counts as found, so that Exclui works, and nothing typed in the other fields is lost.
    if (code == ownKey().toString())
        setFoundKey(code);
    else
        loadFound(code);
}

// --- The client's lists -----------------------------------------------------------------

void PartyScreen::refill(QComboBox* combo, const QStringList& items) {
    if (!combo) return;
    const QString typed = combo->currentText();
    combo->clear();
    combo->addItems(items);
    combo->setEditText(typed);
}

void PartyScreen::fillRegions() {
    guarded(this, [this] {
        Store& store = Store::current();
        QStringList items = reg::listNames(store, reg::lists::regions);
        for (const QString& list : std::as_const(offeredLists_))
            items += reg::listNames(store, list);
        refill(qobject_cast<QComboBox*>(field(u"C34"_s)), items);
    });
}

void PartyScreen::fillEmployees() {
    guarded(this, [this] {
        refill(qobject_cast<QComboBox*>(field(u"C23"_s)), reg::employeeNames(Store::current()));
    });
}

} // namespace rtx::ui
