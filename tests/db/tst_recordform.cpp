// The record-form engine on its own, configured on the service table as other screens use
// it; the binding of a screen laid out by hand, and the walk both share.

#include "kit/maskedbox.h"
#include "kit/recordform.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "store/changes.h"
#include "store/formats.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kTable = u"servicos"_s;
const QString kSaved = u"Operação realizada com sucesso."_s;

FormSpec serviceSpec() {
    using R = FormAction::Role;
    FormSpec f;
    f.screen = u"servicos"_s;
    f.title = u"Serviços"_s;
    f.table = kTable;
    f.tabs = {u"Dados"_s, u"Busca"_s};
    FormField day =
        FormField::masked(u"DIA"_s, {}, u"DIA....."_s, MaskEdBox::dateMask(), {0, 2, 0});
    day.onNew = FormField::OnNew::Set;
    day.todayWhenEmpty = true;
    f.fields = {
        FormField::text(u"A1"_s, u"A1"_s, u"DESCRIÇÃO....."_s, {0, 0, 0}),
        FormField::masked(u"A2"_s, u"A2"_s, u"VALOR....."_s, MaskEdBox::moneyMask(), {0, 1, 0}),
        day};
    const QColor blue(0x1F618D);
    f.actions = {{u"grava"_s, u"mGrava"_s, u"Grava"_s, u"+"_s, blue, R::Save, {}},
                 {u"novo"_s, {}, u"Novo"_s, u"+"_s, blue, R::New, {}},
                 {u"apaga"_s, {}, u"Apaga"_s, u"+"_s, blue, R::Delete, {}}};
    f.firstField = u"A1"_s;
    f.searchFirst = u"Primeiro faça a pesquisa."_s;
    f.search.tab = 1;
    f.search.boxes = {{u"busca"_s, u"BUSCA:"_s}};
    f.search.columns = {
        {u"cod"_s, u"Código"_s, 70}, {u"A1"_s, u"Descrição"_s, 200}, {u"A2"_s, u"Valor"_s, 80}};
    f.search.keyColumn = u"cod"_s;
    return f;
}

RecordSource serviceSource() {
    RecordSource s;
    s.keyColumn = u"cod"_s;
    s.load = [](Store& store, const QVariant& key) -> std::optional<Row> {
        Recordset rs = store.open(u"SELECT * FROM servicos WHERE cod = ?"_s, {key});
        if (rs.eof()) return std::nullopt;
        return Row{{u"cod"_s, rs.text(u"cod"_s)},
                   {u"A1"_s, rs.text(u"A1"_s)},
                   {u"A2"_s, rs.cents(u"A2"_s)}};
    };
    s.check = [](const Row& row) -> std::optional<Problem> {
        if (row.value(u"A1"_s).toString().trimmed().isEmpty())
            return Problem{u"A1"_s, u"O campo [DESCRIÇÃO], não pode ficar em branco."_s};
        return std::nullopt;
    };
    s.save = [](Store& store, const Row& row, const QVariant& own) -> QVariant {
        const QString code = own.isNull() ? store.nextCode(kTable) : own.toString();
        store.saveByKey(kTable, u"cod"_s, code,
                        {{u"A1"_s, row.value(u"A1"_s)}, {u"A2"_s, row.value(u"A2"_s)}});
        return code;
    };
    s.remove = [](Store& store, const QVariant& found, const Row&) {
        store.execute(u"DELETE FROM servicos WHERE cod = ?"_s, {found});
    };
    s.search = [](const Store& store, int box, const QString& typed) {
        PageQuery q{kTable, {u"cod"_s, u"A1"_s, u"A2"_s}, {}, {}, {SortKey{u"A1"_s}}};
        if (box >= 0) {
            q.where = store.startsWith(kTable, u"A1"_s);
            q.params = store.startParams(typed);
        }
        return q;
    };
    return s;
}

struct ServiceDesk {
    TestInstallation inst{true, false};
    ScriptedPrompter prompts;
    std::unique_ptr<RecordForm> form;
    void addServices(const QStringList& names) {
        for (const QString& name : names)
            inst.store().insert(kTable, {{u"cod"_s, inst.store().peekCode(kTable)},
                                         {u"A1"_s, name},
                                         {u"A2"_s, qint64(1000)}});
    }
    bool open(const FormSpec& spec = serviceSpec(), const RecordSource& source = serviceSource()) {
        form = std::make_unique<RecordForm>(spec);
        form->setSource(source);
        form->start();
        return showActive(form.get());
    }
};

} // namespace

class RecordFormTest : public QObject {
    Q_OBJECT

private slots:
    // A screen's questions before a save can stop it (nothing written, nothing said) or let
    // it go on; its own words of success; a delete with nothing found that asks all the same
    // and deletes nothing; a list without typing shows one of its items, or nothing.
    void questionsAndOwnWords() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        FormSpec definition = serviceSpec();
        definition.savedMessage = u"Operação realizada."_s;
        definition.searchFirst.clear();
        for (FormField& field : definition.fields)
            if (field.name == u"A1"_s)
                field = FormField::combo(u"A1"_s, u"A1"_s, u"DESCRIÇÃO"_s,
                                         {u"COLETA"_s, u"ENTREGA"_s}, false, {0, 0, 0});
        RecordSource source = serviceSource();
        bool goOn = false;
        QStringList asked;
        source.confirm = [&](QWidget*, const Row& row) {
            asked << row.value(u"A1"_s).toString();
            return goOn;
        };
        QVERIFY(d.open(definition, source));
        RecordForm* f = d.form.get();
        auto* list = control<QComboBox>(f, u"A1"_s);
        list->setEditable(false);
        f->setValue(u"A1"_s, u"OUTRA"_s);
        QCOMPARE(list->currentIndex(), -1);
        f->setValue(u"A1"_s, u"COLETA"_s);
        click(f, u"grava"_s);
        QCOMPARE(asked, QStringList{u"COLETA"_s});
        QVERIFY(d.prompts.texts().isEmpty());
        QCOMPARE(d.inst.store().count(kTable), qint64(0));
        goOn = true;
        click(f, u"grava"_s);
        QCOMPARE(d.prompts.texts(), QStringList{u"Operação realizada."_s});
        QCOMPARE(d.inst.store().count(kTable), qint64(1));
        click(f, u"novo"_s);
        script(d.prompts, {true});
        click(f, u"apaga"_s);
        QCOMPARE(d.prompts.texts(), QStringList{u"Confirma exclusão?"_s});
        QCOMPARE(d.inst.store().count(kTable), qint64(1));
    }

    // A save lacking the description says so and takes the focus to it, from the other tab;
    // a save the store refuses keeps what was typed and draws no code; a new record draws its
    // code at its first save, and is updated by the next; the table is announced each time.
    void checkAndSave() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        QVERIFY(d.open());
        RecordForm* f = d.form.get();
        QCOMPARE(shown(f, u"DIA"_s), formatDate(QDate::currentDate()));
        f->tabs()->setTab(1);
        f->findChild<QAction*>(u"mGrava"_s)->trigger();
        QCOMPARE(d.prompts.count(Kind::Notice), 1);
        QCOMPARE(f->tabs()->tab(), 0);
        QCOMPARE(QApplication::focusWidget(), control(f, u"A1"_s));

        typeAndLeave(f, u"A1"_s, u"ENTREGA"_s);
        typeAndLeave(f, u"A2"_s, u"12,5"_s);
        refuseInserts(d.inst.store(), kTable, true);
        click(f, u"grava"_s);
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QVERIFY(f->ownKey().isNull()); // a refused save draws no code
        QCOMPARE(shownAll(f, {u"A1"_s, u"A2"_s}), (QStringList{u"ENTREGA"_s, u"12,50"_s}));
        refuseInserts(d.inst.store(), kTable, false);
        QSignalSpy announced(&changes(), &Changes::tableChanged);
        d.prompts.clear();
        click(f, u"grava"_s);
        typeAndLeave(f, u"A1"_s, u"ENTREGA EXPRESSA"_s);
        QApplication::processEvents();
        click(f, u"grava"_s);
        QApplication::processEvents();
        QCOMPARE(d.prompts.texts(), (QStringList{kSaved, kSaved}));
        QCOMPARE(announced.size(), 2);
        QCOMPARE(d.inst.store().count(kTable), qint64(1));
        QCOMPARE(rowTexts(u"SELECT * FROM servicos"_s, {}, {u"A1"_s, u"A2"_s}),
                 (QStringList{u"ENTREGA EXPRESSA"_s, u"12,50"_s}));
    }

    // The search narrows the grid at each key and a double click loads its row (one where
    // there is no row finds nothing); delete needs a row found, asks, and ends in Novo: fields
    // cleared or set, keys forgotten, the grid whole again. A day that is no date stops
    // Apaga; an empty one is today.
    void searchDeleteAndNew() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        d.addServices({u"COLETA"_s, u"ENTREGA"_s, u"ENTREGA URGENTE"_s});
        QVERIFY(d.open());
        RecordForm* f = d.form.get();
        click(f, u"apaga"_s);
        QCOMPARE(d.prompts.lastText(), u"Primeiro faça a pesquisa."_s);

        DBGrid* grid = f->searchGrid();
        QCOMPARE(grid->recordCount(), 3);
        typeInto(f, u"busca"_s, u"entrega u"_s);
        QCOMPARE(grid->recordCount(), 1);
        emit grid->recordActivated(-1); // no row: nothing found, the first tab
        QVERIFY(f->foundKey().isNull());
        emit grid->recordActivated(0);
        QCOMPARE(f->foundKey().toString(), u"000003"_s);
        QCOMPARE(f->tabs()->tab(), 0);
        QCOMPARE(shownAll(f, {u"A1"_s, u"A2"_s}), (QStringList{u"ENTREGA URGENTE"_s, u"10,00"_s}));

        // A day half typed is said so as it is left, and again by Apaga, which deletes
        // nothing; left empty, it is today.
        d.prompts.clear();
        typeAndLeave(f, u"DIA"_s, u"310220"_s);
        QCOMPARE(QApplication::focusWidget(), f->field(u"DIA"_s));
        d.prompts.answerYes();
        click(f, u"apaga"_s);
        QCOMPARE(d.prompts.texts(), QStringList(2, badDateMessage(u"31/02/20"_s)));
        QCOMPARE(d.prompts.pending(), 1);
        QCOMPARE(d.inst.store().count(kTable), qint64(3));
        typeAndLeave(f, u"DIA"_s, QString());
        QCOMPARE(shown(f, u"DIA"_s), formatDate(QDate::currentDate()));
        script(d.prompts, {false});
        click(f, u"apaga"_s);
        QCOMPARE(d.inst.store().count(kTable), qint64(3));
        d.prompts.answerYes();
        click(f, u"apaga"_s);
        QCOMPARE(d.inst.store().count(kTable), qint64(2));
        QCOMPARE(shownAll(f, {u"A1"_s, u"busca"_s}), (QStringList{QString(), QString()}));
        QVERIFY(f->foundKey().isNull() && f->ownKey().isNull());
        QCOMPARE(grid->recordCount(), 2);
    }

    // A row another station deleted after the grid was read is no record found: the record
    // on the screen stays the one found, whatever is clicked below or on the gone row, and
    // Apaga deletes that one.
    void vanishedKeyIsNoRecord() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        d.addServices({u"COLETA"_s, u"ENTREGA"_s});
        QVERIFY(d.open());
        RecordForm* f = d.form.get();
        DBGrid* grid = f->searchGrid();
        emit grid->recordActivated(0);
        QCOMPARE(f->foundKey().toString(), u"000001"_s);
        d.inst.store().execute(u"DELETE FROM servicos WHERE cod = ?"_s, {u"000002"_s});
        QCOMPARE(grid->text(1, u"cod"_s), u"000002"_s);
        emit grid->recordActivated(1);
        emit grid->recordActivated(-1);
        QCOMPARE(f->foundKey().toString(), u"000001"_s);
        QCOMPARE(shown(f, u"A1"_s), u"COLETA"_s);
        script(d.prompts, {true});
        click(f, u"apaga"_s);
        QCOMPARE(d.inst.store().count(kTable), qint64(0));
    }

    // A screen whose delete has checks of its own: the first problem is told with the focus
    // on its field before any question, and nothing is deleted; then its own question, where
    // No deletes nothing and Yes deletes and clears. remove() says which it was.
    void deleteCheckedAndAskedInTheScreensWords() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        d.inst.store().insert(
            kTable, {{u"cod"_s, u"000001"_s}, {u"A1"_s, u"COLETA"_s}, {u"A2"_s, qint64(900)}});
        FormSpec definition = serviceSpec();
        definition.deleteQuestion = u"Deseja realmente apagar este serviço?"_s;
        RecordSource source = serviceSource();
        source.checkRemove = [](const Row& row) -> std::optional<Problem> {
            if (row.value(u"A2"_s).toLongLong() == 0)
                return Problem{u"A2"_s, u"Valor não localizado."_s};
            return std::nullopt;
        };
        QVERIFY(d.open(definition, source));
        RecordForm* f = d.form.get();
        emit f->searchGrid()->recordActivated(0);
        typeAndLeave(f, u"A2"_s, u"0"_s);
        d.prompts.answerYes();
        QVERIFY(!f->remove());
        QCOMPARE(d.prompts.pending(), 1); // told, not asked
        QCOMPARE(QApplication::focusWidget(), control(f, u"A2"_s));
        QCOMPARE(d.inst.store().count(kTable), qint64(1));

        d.prompts.clear();
        typeAndLeave(f, u"A2"_s, u"9"_s);
        script(d.prompts, {false});
        QVERIFY(!f->remove());
        QCOMPARE(d.inst.store().count(kTable), qint64(1));
        d.prompts.answerYes();
        click(f, u"apaga"_s);
        QCOMPARE(d.prompts.texts(), QStringList(2, u"Deseja realmente apagar este serviço?"_s));
        QCOMPARE(d.inst.store().count(kTable), qint64(0));
    }

    // Controls laid out by hand, bound to their columns: a row shown goes into the caption,
    // the lines, the lists and the masked fields as the forms show it, and comes back the
    // same; a row lacking a column leaves its field alone; an amount or a date that cannot
    // be read reads as nothing, never as zero or as no date. The walk goes from the key
    // found: previous and next without one ask nothing of the store, and a store that fails
    // is told once and walks nowhere.
    void bindingOfAScreenBuiltByHand() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        QWidget screen;
        auto* number = new QLabel(&screen);
        auto* day = new MaskEdBox(MaskEdBox::dateMask(), &screen);
        auto* amount = new MaskEdBox(MaskEdBox::moneyMask(), &screen);
        auto* status = new QComboBox(&screen);
        status->setEditable(true);
        status->addItems({u"A caminho"_s, u"Entregue"_s});
        auto* payment = new QComboBox(&screen);
        payment->addItems({u"A VISTA"_s, u"FATURAR"_s});
        auto* remarks = new QPlainTextEdit(&screen);
        auto* client = new QLineEdit(&screen);
        RecordBinding binding;
        const QList<std::tuple<QWidget*, QString, FormField::Value>> bound{
            {number, u"CODIGO"_s, FormField::Value::Text},
            {day, u"a2"_s, FormField::Value::Date},
            {amount, u"a19"_s, FormField::Value::Money},
            {status, u"ST"_s, FormField::Value::Text},
            {payment, u"a20"_s, FormField::Value::Text},
            {remarks, u"a17"_s, FormField::Value::Text},
            {client, u"a6"_s, FormField::Value::Text}};
        for (const auto& [control, column, value] : bound) {
            control->setObjectName(column.toUpper());
            FormField f = FormField::text(column.toUpper(), column, {});
            f.value = value;
            binding.add(f);
            binding.bind(f.name, control);
        }
        const Row row{{u"CODIGO"_s, u"0000007"_s}, {u"a2"_s, QDate(2024, 2, 29)},
                      {u"a19"_s, qint64(123456)},  {u"ST"_s, u"Outros"_s},
                      {u"a20"_s, u"FATURAR"_s},    {u"a17"_s, u"linha 1\nlinha 2"_s},
                      {u"a6"_s, u"D'AVILA"_s}};
        binding.showRow(row);
        QCOMPARE(number->text() + u'|' + day->text() + u'|' + amount->text() + u'|' +
                     status->currentText() + u'|' + payment->currentText(),
                 u"0000007|29/02/2024|1.234,56|Outros|FATURAR"_s);
        QCOMPARE(binding.row(), row);
        binding.showRow({{u"a6"_s, u"OUTRO"_s}});
        QCOMPARE(binding.value(u"codigo"_s).toString(), u"0000007"_s);
        binding.showRow({{u"a2"_s, QDate()}, {u"a20"_s, QString()}});
        QCOMPARE(payment->currentIndex(), -1);
        QVERIFY(binding.value(u"A2"_s).toDate().isNull());
        day->setText(u"3102"_s);
        amount->setText(u"1,2,3"_s);
        QVERIFY(!binding.value(u"A2"_s).isValid());
        QVERIFY(!binding.value(u"A19"_s).isValid());

        QStringList asked;
        const WalkFrom walk = [&](Store&, Walk w, const QVariant& from) -> QVariant {
            asked << QString::number(int(w)) + from.toString();
            if (from.toString() == u"falha"_s) throw StoreError(u"sem conexão"_s);
            return w == Walk::First ? u"0000001"_s : u"0000009"_s;
        };
        QCOMPARE(walkTarget(&screen, walk, Walk::Next, QString()), QVariant());
        QCOMPARE(walkTarget(&screen, walk, Walk::Previous, QVariant()), QVariant());
        QVERIFY(asked.isEmpty());
        QCOMPARE(walkTarget(&screen, walk, Walk::Next, u"0000001"_s)->toString(), u"0000009"_s);
        QVERIFY(!walkTarget(&screen, walk, Walk::Previous, u"falha"_s));
        QCOMPARE(d.prompts.count(Kind::Error), 1);
        QCOMPARE(asked.size(), 2);
    }
};

QTEST_MAIN(RecordFormTest)
#include "tst_recordform.moc"
