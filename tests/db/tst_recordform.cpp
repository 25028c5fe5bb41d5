// The record-form engine on its own, configured on the service table as other screens use
// it, and the binding of a screen laid out by hand.

#include "kit/maskedbox.h"
#include "kit/recordform.h"
#include "registerdesk.h"
#include "screendriver.h"
#include "store/formats.h"

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kTable = u"servicos"_s;

FormDefinition serviceDefinition() {
    using R = FormAction::Role;
    FormDefinition f;
    f.screen = u"servicos"_s;
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
    f.actions = {{u"grava"_s, u"mGrava"_s, u"Grava"_s, u"+"_s, {}, R::Save, {}},
                 {u"apaga"_s, {}, u"Apaga"_s, u"+"_s, {}, R::Delete, {}}};
    f.firstField = u"A1"_s;
    f.searchFirst = u"Primeiro faça a pesquisa."_s;
    f.search.tab = 1;
    f.search.boxes = {{u"busca"_s, u"BUSCA:"_s}};
    f.search.columns = {{u"cod"_s, u"Código"_s, 70}, {u"A1"_s, u"Descrição"_s, 200}};
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
    bool open(const FormDefinition& definition = serviceDefinition(),
              const RecordSource& source = serviceSource()) {
        form = std::make_unique<RecordForm>(definition);
        form->setSource(source);
        form->start();
        return showActive(form.get());
    }
};

} // namespace

class RecordFormTest : public QObject {
    Q_OBJECT

private slots:
    // A screen's own words: checks of its own before a delete, the first problem told with
    // the focus on its field before any question, nothing deleted; then its own question.
    // Questions before a save stop it (nothing written, nothing said) or let it go on, and
    // its own words of success.
    void screensOwnQuestionsAndWords() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        d.addServices({u"COLETA"_s});
        FormDefinition definition = serviceDefinition();
        definition.savedMessage = u"Operação realizada."_s;
        definition.deleteQuestion = u"Deseja realmente apagar este serviço?"_s;
        RecordSource source = serviceSource();
        bool goOn = false;
        source.confirm = [&](QWidget*, const Row&) { return goOn; };
        source.checkRemove = [](const Row& row) {
            return row.value(u"A2"_s).toLongLong() ? std::optional<Problem>()
                                                   : Problem{u"A2"_s, u"Valor não localizado."_s};
        };
        QVERIFY(d.open(definition, source));
        RecordForm* f = d.form.get();
        emit f->searchGrid()->recordActivated(0);
        typeAndLeave(f, u"A2"_s, u"0"_s);
        d.prompts.answerYes();
        QVERIFY(!f->remove());
        QCOMPARE(d.prompts.pending(), 1); // told, not asked
        QCOMPARE(QApplication::focusWidget(), control(f, u"A2"_s));
        typeAndLeave(f, u"A2"_s, u"9"_s);
        script(d.prompts, {true});
        QVERIFY(f->remove());
        QCOMPARE(d.prompts.texts(), QStringList{u"Deseja realmente apagar este serviço?"_s});
        QCOMPARE(d.inst.store().count(kTable), qint64(0));
        typeAndLeave(f, u"A1"_s, u"ENTREGA"_s);
        d.prompts.clear();
        click(f, u"grava"_s);
        QCOMPARE(d.inst.store().count(kTable) + d.prompts.texts().size(), qint64(0));
        goOn = true;
        click(f, u"grava"_s);
        QCOMPARE(d.prompts.texts(), QStringList{u"Operação realizada."_s});
    }

    // A save lacking the description says so and takes the focus to it, from the other tab;
    // a save the store refuses keeps what was typed and draws no code; a new record draws its
    // code at its first save, and is updated by the next. The search narrows the grid at
    // each key and a double click loads its row; a row another station deleted after the
    // grid was read is no record found, the one on the screen staying. A day that is no date
    // stops Apaga; an empty one is today. Delete asks, and ends in Novo.
    void saveSearchAndDelete() {
        ServiceDesk d;
        RTX_REQUIRE_INSTALL(d.inst);
        d.addServices({u"COLETA"_s, u"ENTREGA"_s, u"ENTREGA URGENTE"_s});
        QVERIFY(d.open());
        RecordForm* f = d.form.get();
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
        d.prompts.clear();
        click(f, u"grava"_s);
        typeAndLeave(f, u"A1"_s, u"ENTREGA EXPRESSA"_s);
        click(f, u"grava"_s);
        QCOMPARE(d.prompts.texts(), QStringList(2, u"Operação realizada com sucesso."_s));
        QCOMPARE(
            rowTexts(u"SELECT * FROM servicos WHERE cod = ?"_s, {u"000004"_s}, {u"A1"_s, u"A2"_s}),
            (QStringList{u"ENTREGA EXPRESSA"_s, u"12,50"_s}));
        DBGrid* grid = f->searchGrid();
        typeInto(f, u"busca"_s, u"entrega"_s);
        emit grid->recordActivated(2);
        QCOMPARE(shownAll(f, {u"A1"_s, u"A2"_s}), (QStringList{u"ENTREGA URGENTE"_s, u"10,00"_s}));
        d.inst.store().execute(u"DELETE FROM servicos WHERE cod = ?"_s, {u"000002"_s});
        emit grid->recordActivated(0);
        QCOMPARE(f->foundKey().toString(), u"000003"_s);
        d.prompts.clear();
        typeAndLeave(f, u"DIA"_s, u"310220"_s);
        QCOMPARE(QApplication::focusWidget(), f->field(u"DIA"_s));
        d.prompts.answerYes();
        click(f, u"apaga"_s);
        QCOMPARE(d.prompts.texts(), QStringList(2, badDateMessage(u"31/02/20"_s)));
        QCOMPARE(d.inst.store().count(kTable), qint64(3));
        typeAndLeave(f, u"DIA"_s, QString());
        QCOMPARE(shown(f, u"DIA"_s), formatDate(QDate::currentDate()));
        script(d.prompts, {true});
        click(f, u"apaga"_s);
        QCOMPARE(d.inst.store().count(kTable), qint64(2));
        QCOMPARE(shownAll(f, {u"A1"_s, u"busca"_s}), (QStringList{QString(), QString()}));
    }

    // Controls laid out by hand, bound to their columns: a row shown goes into the masked
    // fields as the forms show it, and comes back the same; a row lacking a column leaves its
    // field alone; an amount or a date that cannot be read reads as nothing, never as zero
    // or as no date.
    void bindingOfAScreenBuiltByHand() {
        QWidget screen;
        auto* day = new MaskEdBox(MaskEdBox::dateMask(), &screen);
        auto* amount = new MaskEdBox(MaskEdBox::moneyMask(), &screen);
        RecordBinding binding;
        const QList<std::tuple<QWidget*, QString, FormField::Value>> bound{
            {day, u"a2"_s, FormField::Value::Date}, {amount, u"a19"_s, FormField::Value::Money}};
        for (const auto& [control, column, value] : bound) {
            FormField f = FormField::text(column.toUpper(), column, {});
            f.value = value;
            binding.add(f);
            binding.bind(f.name, control);
        }
        const Row row{{u"a2"_s, QDate(2024, 2, 29)}, {u"a19"_s, qint64(123456)}};
        binding.showRow(row);
        QCOMPARE(day->text() + u'|' + amount->text(), u"29/02/2024|1.234,56"_s);
        QCOMPARE(binding.row(), row);
        binding.showRow({{u"a2"_s, QDate()}}); // a row lacking a column leaves its field alone
        QCOMPARE(binding.value(u"a19"_s).toLongLong(), 123456);
        day->setText(u"3102"_s);
        amount->setText(u"1,2,3"_s);
        QVERIFY(!binding.value(u"A2"_s).isValid());
        QVERIFY(!binding.value(u"A19"_s).isValid());
    }
};

QTEST_MAIN(RecordFormTest)
#include "tst_recordform.moc"
