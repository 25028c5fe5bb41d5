// Reports on the store: the report screen of dispatches driven as an operator drives it,
// two stations at once, layouts missing or edited, the preview's buttons and printers, and
// every default layout rendered to PDF and read back with pdftotext.

#include "dispatch/atendeimpre.h"
#include "dispatch/core/dispatchreports.h"
#include "kit/maskedbox.h"
#include "output/core/compose.h"
#include "output/core/defaultlayouts.h"
#include "output/reportcontrol.h"
#include "output/reportpainter.h"
#include "output/reportpreview.h"
#include "pdftext.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "store/formats.h"
#include "testinstall.h"
#include "xlsxread.h"

#include <QComboBox>
#include <QPrinter>
#include <QPushButton>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kDavila = u"D'AVILA ADVOGADOS"_s;

// The printer dialog confirmed with a PDF file as the printer, as a test's stand-in for a
// printer of the system.
class FilePrinterPrompter : public ScriptedPrompter {
public:
    QString target;
    bool choosePrinter(QWidget* parent, QPrinter* printer) override {
        const bool ok = ScriptedPrompter::choosePrinter(parent, printer);
        if (ok && !target.isEmpty()) {
            printer->setOutputFormat(QPrinter::PdfFormat);
            printer->setOutputFileName(target);
        }
        return ok;
    }
};

} // namespace

class ReportsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<FilePrinterPrompter> prompts;
    QPointer<atendeimpre> screen;
    QTemporaryDir out;
    // Where the PDFs, and the pictures of the windows, are kept for a person to look at,
    // when set (scripts/screenshots-reports.sh).
    const QString keep = qEnvironmentVariable("ROTALIX_REPORTS_OUT");
    const QString pictures = qEnvironmentVariable("ROTALIX_SHOTS");

    Store& store() { return inst->store(); }

    void dispatch(const QString& code, const QDate& date, const QString& client,
                  const QString& courier, const QString& status, const QString& payment,
                  qint64 value, qint64 courierValue) {
        store().insert(u"atendimentos"_s, {{u"CODIGO"_s, code},
                                           {u"a1"_s, u"ANA PAULA"_s},
                                           {u"a2"_s, date},
                                           {u"a3"_s, u"10:15"_s},
                                           {u"a6"_s, client},
                                           {u"a9"_s, u"RUA AUGUSTA, 100"_s},
                                           {u"a13"_s, u"AV. PAULISTA, 900"_s},
                                           {u"a18"_s, courier},
                                           {u"a19"_s, value},
                                           {u"a20"_s, payment},
                                           {u"a21"_s, u"ENTREGA CENTRO"_s},
                                           {u"ST"_s, status},
                                           {u"VE"_s, courierValue},
                                           {u"moto"_s, courierValue + 50}});
    }

    // March 2025: two dispatches of BETO at both ends of the month, one of CHICO in the
    // middle, and two of BETO just outside it.
    void month() {
        dispatch(u"0000001"_s, {2025, 3, 1}, kDavila, u"BETO"_s, u"Entregue"_s, u"A VISTA"_s, 2500,
                 900);
        dispatch(u"0000002"_s, {2025, 3, 31}, u"PADARIA PÃO QUENTE"_s, u"BETO"_s, u"A caminho"_s,
                 u"FATURAR"_s, 4000, 1000);
        dispatch(u"0000003"_s, {2025, 4, 1}, kDavila, u"BETO"_s, u"Entregue"_s, u"A VISTA"_s, 9900,
                 900);
        dispatch(u"0000004"_s, {2025, 2, 28}, kDavila, u"BETO"_s, u"Entregue"_s, u"A VISTA"_s, 9900,
                 900);
        dispatch(u"0000005"_s, {2025, 3, 15}, kDavila, u"CHICO"_s, u"Entregue"_s, u"FATURAR"_s,
                 1800, 800);
    }

    void open() {
        screen = new atendeimpre;
        screen->show();
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen));
        control<MaskEdBox>(screen, u"k1"_s)->setText(u"01/03/2025"_s);
        control<MaskEdBox>(screen, u"k2"_s)->setText(u"31/03/2025"_s);
    }

    void choose(const QString& box, const QString& text) {
        control<QComboBox>(screen, box)->setEditText(text);
    }

    // Clicks a button of the report screen with the messages forgotten; gives those shown.
    QStringList press(const QString& button) {
        prompts->clear();
        control<QPushButton>(screen, button)->click();
        return prompts->texts();
    }

    // The station's work table: number, MOTO, period, courier's values.
    QStringList workRows(Store& st) {
        QStringList out;
        Recordset rs = st.open(u"SELECT * FROM rel_atendimentos ORDER BY CODIGO"_s);
        for (; !rs.eof(); rs.moveNext())
            out << QStringList{rs.text(u"CODIGO"_s), rs.text(u"MOTO"_s), rs.text(u"DI"_s),
                               rs.text(u"DF"_s),     rs.text(u"ve"_s),   rs.text(u"vMOTO"_s)}
                       .join(u'|');
        return out;
    }

    // The pages of a document written as PDF and read back.
    QString render(const output::Document& doc, const QString& name) {
        return renderedText(doc, keep.isEmpty() ? out.path() : keep, name);
    }
    QString previewText(const QString& name) {
        ReportPreview* p = screen->report()->preview();
        return p ? render(p->document(), name) : u"(sem visualização)"_s;
    }

    void keepPicture(QWidget* w, const QString& name) {
        if (pictures.isEmpty()) return;
        QApplication::processEvents();
        w->grab().save(QDir(pictures).filePath(name + u".png"_s));
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, false);
        if (!inst->ok()) return;
        session::setInstallation(inst->installation());
        output::writeMissingLayouts(inst->folder());
        prompts = std::make_unique<FilePrinterPrompter>();
    }

    void cleanup() {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (qobject_cast<ReportPreview*>(w)) delete w;
        delete screen.data();
        prompts.reset();
        inst.reset();
    }

    // The report by courier: both ends of the period are in, the courier's values come
    // along, the PDF holds the heading, the rows and the total. A name is asked for first.
    void byCourier() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        open();
        QCOMPARE(press(u"Command10"_s),
                 QStringList{u"Antes da impressão selecione o nome do motoqueiro."_s});
        QVERIFY(!screen->report()->preview());
        // "Seleciona" shows the printer dialog, and what the operator answers stops nothing.
        prompts->answerPrinter(false);
        control<QPushButton>(screen, u"SSCommand1"_s)->click();
        QCOMPARE(prompts->count(Kind::Printer), 1);

        choose(u"A18"_s, u"BETO"_s);
        QCOMPARE(press(u"Command10"_s), QStringList());
        QCOMPARE(workRows(store()),
                 (QStringList{u"0000001|BETO|01/03/2025|31/03/2025|9,00|9,50"_s,
                              u"0000002|BETO|01/03/2025|31/03/2025|10,00|10,50"_s}));
        QStringList text = pdfLines(previewText(u"rela3-trabalho"_s));
        QVERIFY2(text.contains(u"Entregador: BETO"_s) &&
                     text.contains(u"Período: 01/03/2025 a 31/03/2025"_s) &&
                     text.contains(u"0000001 01/03/2025 10:15 D'AVILA ADVOGADOS RUA AUGUSTA, 100 "
                                   u"AV. PAULISTA, 900 ENTREGA CENTRO Entregue 9,00"_s) &&
                     text.contains(u"Total do período: 2 atendimento(s) 19,00"_s),
                 qPrintable(text.join(u'\n')));

        // The preview's own buttons: the spreadsheet and the printer.
        ReportPreview* preview = screen->report()->preview();
        QVERIFY(preview);

        const QString sheet = out.filePath(u"beto.csv"_s);
        prompts->clear();
        prompts->answerText(sheet);
        control<QPushButton>(preview, u"salvarPlanilha"_s)->click();
        QFile f(sheet);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY(
            QString::fromUtf8(f.readAll())
                .contains(u"\r\n0000001;01/03/2025;10:15;D'AVILA ADVOGADOS;RUA AUGUSTA, 100;AV. "
                          u"PAULISTA, 900;ENTREGA CENTRO;Entregue;9,00\r\n"_s));

        // A name without an extension is a workbook (its cells: the engine's test).
        prompts->clear();
        prompts->answerText(out.filePath(u"beto"_s));
        control<QPushButton>(preview, u"salvarPlanilha"_s)->click();
        QCOMPARE(prompts->lastText(), u"Planilha salva em %1."_s.arg(out.filePath(u"beto.xlsx"_s)));
        QVERIFY(readXlsx(out.filePath(u"beto.xlsx"_s)).ok);

        // A printer that refuses the job is named.
        prompts->target = out.filePath(u"sem-pasta/impressora.pdf"_s);
        prompts->clear();
        prompts->answerPrinter(true);
        control<QPushButton>(preview, u"imprimir"_s)->click();
        QCOMPARE(prompts->texts(Kind::Error).size(), 1);
        QVERIFY2(prompts->texts(Kind::Error)[0].startsWith(
                     u"A impressora %1 recusou o trabalho de impressão"_s.arg(prompts->target)),
                 qPrintable(prompts->texts(Kind::Error)[0]));
        // A printer that takes the job gets the same pages.
        prompts->target = out.filePath(u"impressora.pdf"_s);
        prompts->clear();
        prompts->answerPrinter(true);
        control<QPushButton>(preview, u"imprimir"_s)->click();
        QCOMPARE(prompts->texts(Kind::Error), QStringList());
        QVERIFY(pdfLines(pdfText(prompts->target)).contains(u"Entregador: BETO"_s));
        // A missing layout and a hand-edited one: the message names the file, the screen
        // keeps what was typed; the edit shows. (A mistake's line: the engine's test.)
        delete preview;
        QVERIFY(QFile::remove(QDir(inst->folder()).filePath(u"rela3.rpt"_s)));
        QStringList said = press(u"Command10"_s);
        QCOMPARE(prompts->count(Kind::Error), 1);
        QVERIFY2(said[0].contains(u"rela3.rpt"_s) && said[0].contains(u"não foi encontrado"_s),
                 qPrintable(said[0]));
        QVERIFY(!screen->report()->preview());
        QCOMPARE(control<QComboBox>(screen, u"A18"_s)->currentText(), u"BETO"_s);

        output::writeMissingLayouts(inst->folder());
        QFile layout(QDir(inst->folder()).filePath(u"rela3.rpt"_s));
        QVERIFY(layout.open(QIODevice::ReadOnly));
        const QByteArray edited =
            layout.readAll().replace("Atendimentos por entregador", "Extrato");
        layout.close();
        QVERIFY(layout.open(QIODevice::WriteOnly | QIODevice::Truncate));
        layout.write(edited);
        layout.close();
        QCOMPARE(press(u"Command10"_s), QStringList());
        QVERIFY(pdfLines(previewText(u"rela3-editado"_s)).value(0).contains(u"Extrato"_s));
    }

    // With no status, every status through rela5x; by payment, MOTO takes the status box's
    // text, so its heading shows a status. Each report empties the rows of the one before.
    void statusesAndPayments() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        open();
        choose(u"ST"_s, QString());
        QCOMPARE(press(u"Command18"_s), QStringList());
        QStringList text = pdfLines(previewText(u"rela5x"_s));
        QVERIFY(text.contains(u"Total de Entregue: 2 atendimento(s) 43,00"_s));
        QVERIFY(text.contains(u"Total geral do período: 3 atendimento(s) 83,00"_s));

        choose(u"Combo1"_s, u"A VISTA"_s);
        choose(u"ST"_s, u"A caminho"_s);
        QCOMPARE(press(u"Command1"_s), QStringList());
        QCOMPARE(workRows(store()), QStringList{u"0000001|A caminho|01/03/2025|31/03/2025||"_s});
        text = pdfLines(previewText(u"rela5-pagamento"_s));
        QVERIFY(text.contains(u"Status: A caminho"_s));
        QVERIFY(text.contains(u"0000001 01/03/2025 D'AVILA ADVOGADOS AV. PAULISTA, 900 BETO A "
                              u"VISTA Entregue 25,00"_s));
    }

    // Two stations on one database, reports at the same time: each sees its own rows.
    void twoStationsAtOnce() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        std::unique_ptr<Store> other = inst->openSecondStore();
        other->ensureSchema();
        dispatch::PeriodReport mine{
            dispatch::ReportBy::Courier, {2025, 3, 1}, {2025, 3, 31}, u"BETO"_s, {}, {}, {}};
        dispatch::PeriodReport theirs{
            dispatch::ReportBy::Client, {2025, 1, 1}, {2025, 12, 31}, {}, kDavila, {}, {}};
        QWidget host;
        ReportControl first(&host), second(&host);
        second.setStore(other.get());
        dispatch::setUpPeriodReport(first.definition(), dispatch::fillPeriodReport(store(), mine));
        dispatch::setUpPeriodReport(second.definition(),
                                    dispatch::fillPeriodReport(*other, theirs));
        QCOMPARE(first.read()->rows.size(), 2);
        QCOMPARE(second.read()->rows.size(), 4);
    }

    // Every default layout on the demo office: each opens with its title and its rows. With
    // ROTALIX_SHOTS set, the previews and the report screen are kept as pictures.
    void everyLayoutOnTheDemo() {
        inst.reset();
        inst = std::make_unique<TestInstallation>(true, true);
        RTX_REQUIRE_INSTALL(*inst);
        session::setInstallation(inst->installation());
        output::writeMissingLayouts(inst->folder());
        Store& st = store();
        const QString first = st.firstCode(u"atendimentos"_s);
        const QDate today = QDate::currentDate();
        struct Case {
            QString layout, table, title;
            output::Selection selection;
        };
        const QList<Case> cases{
            {u"ATENDE.rpt"_s, u"atendimentos"_s, u"ORDEM DE SERVIÇO"_s,
             output::Selection::byKey(u"CODIGO"_s, first)},
            {u"ATENDE1.rpt"_s, u"atendimentos"_s, u"ORDEM DE SERVIÇO"_s,
             output::Selection::byKey(u"CODIGO"_s, first)},
            {u"rela1.rpt"_s, u"motoqueiros"_s, u"Relação de entregadores"_s, {}},
            {u"rela2.rpt"_s, u"clientes"_s, u"Relação de clientes"_s, {}},
            {u"rela3.rpt"_s, u"atendimentos"_s, u"Atendimentos por entregador"_s, {}},
            {u"rela4.rpt"_s, u"atendimentos"_s, u"Atendimentos por cliente"_s, {}},
            {u"rela5.rpt"_s, u"atendimentos"_s, u"Atendimentos por status"_s, {}},
            {u"rela5x.rpt"_s, u"atendimentos"_s, u"Atendimentos de todos os status"_s, {}},
            {u"TMP.rpt"_s, u"rel_caixa_impressao"_s, u"Movimento do caixa"_s, {}},
            {u"CX1.rpt"_s, u"rel_caixa"_s, u"Caixa do dia"_s, {}},
            {u"contas.rpt"_s, u"rel_contas"_s, u"Vencimento"_s, {}},
            {u"RECI.rpt"_s, u"recibos"_s, u"RECIBO"_s,
             output::Selection::byKey(u"CODIGO"_s, u"00001"_s)},
            {u"AGENDAk.rpt"_s, u"rel_agenda"_s, u"Agenda"_s, {}},
        };
        QCOMPARE(cases.size(), output::defaultLayouts().size());
        QWidget host;
        for (const Case& c : cases) {
            ReportControl report(&host);
            report.definition().setDataSource(c.table);
            report.definition().setLayoutFile(c.layout);
            report.definition().setSelection(c.selection);
            const auto data = report.read();
            QVERIFY2(data, qPrintable(c.layout));
            // The office screens fill their own work tables; here only the live tables have rows.
            QVERIFY2(!data->rows.isEmpty() || c.table.startsWith(u"rel_"_s), qPrintable(c.layout));
            const output::Document doc = output::compose(*data, &fontMeasure());
            const QString text = render(doc, QFileInfo(c.layout).completeBaseName());
            QVERIFY2(text.contains(c.title), qPrintable(c.layout + u": "_s + text.left(400)));
            if (!pictures.isEmpty()) {
                ReportPreview preview(*data, doc);
                preview.resize(1100, 800);
                preview.show();
                QVERIFY(QTest::qWaitForWindowExposed(&preview));
                keepPicture(&preview, u"relatorio-"_s + QFileInfo(c.layout).completeBaseName());
            }
        }
        // The report screen on the demo office, and its report by courier.
        screen = new atendeimpre;
        screen->show();
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen));
        control<MaskEdBox>(screen, u"k1"_s)->setText(formatDate(today.addDays(-30)));
        choose(u"A18"_s, u"BETO"_s);
        keepPicture(screen, u"atendeimpre"_s);
        QCOMPARE(press(u"Command10"_s), QStringList());
        QVERIFY(screen->report()->preview());
        screen->report()->preview()->resize(1100, 800);
        keepPicture(screen->report()->preview(), u"relatorio-atendeimpre-entregador"_s);
    }
};

QTEST_MAIN(ReportsTest)
#include "tst_reports.moc"
