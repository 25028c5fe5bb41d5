// Reports on the store: the report screen of dispatches driven as an operator drives it
// (its checks, the period at both ends, the station's own work table, the status and payment
// quirks), a formula of the search tab's reports, two stations at once, layouts missing,
// edited or wrong, the preview's buttons, printers that are missing or refuse, and every
// default layout rendered to PDF and read back with pdftotext.

#include "dispatch/atendeimpre.h"
#include "dispatch/core/dispatchreports.h"
#include "kit/fields.h"
#include "kit/maskedbox.h"
#include "output/core/compose.h"
#include "output/core/defaultlayouts.h"
#include "output/printing.h"
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
#include <QDir>
#include <QLabel>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRegularExpression>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QString kDavila = u"D'AVILA ADVOGADOS"_s;
const QString kPadaria = u"PADARIA PÃO QUENTE"_s;

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

    void courier(const QString& code, const QString& name, const QString& status) {
        store().insert(u"motoqueiros"_s, {{u"CODIGO"_s, code},
                                          {u"C1"_s, status},
                                          {u"C4"_s, name},
                                          {u"C5"_s, name + u" DA SILVA"_s}});
    }

    // March 2025: two dispatches of BETO at both ends of the month, one of CHICO in the
    // middle, and two of BETO just outside it.
    void month() {
        courier(u"00001"_s, u"CHICO"_s, u"ATIVO"_s);
        courier(u"00002"_s, u"BETO"_s, u"ATIVO"_s);
        courier(u"00003"_s, u"ZECA"_s, u"INATIVO"_s);
        courier(u"00004"_s, u"DUDA"_s, u"ativo"_s);
        store().insert(u"clientes"_s, {{u"CODIGO"_s, u"00001"_s}, {u"C5"_s, kPadaria}});
        store().insert(u"clientes"_s, {{u"CODIGO"_s, u"00002"_s}, {u"C5"_s, kDavila}});
        dispatch(u"0000001"_s, {2025, 3, 1}, kDavila, u"BETO"_s, u"Entregue"_s, u"A VISTA"_s, 2500,
                 900);
        dispatch(u"0000002"_s, {2025, 3, 31}, kPadaria, u"BETO"_s, u"A caminho"_s, u"FATURAR"_s,
                 4000, 1000);
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
        typeDate(u"k1"_s, u"01032025"_s);
        typeDate(u"k2"_s, u"31032025"_s);
    }

    void typeDate(const QString& name, const QString& digits) {
        // The operator closes the preview and is back on the screen.
        if (ReportPreview* preview = screen->report()->preview()) {
            preview->close();
            QApplication::processEvents();
        }
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen));
        auto* field = control<MaskEdBox>(screen, name);
        field->setFocus();
        field->clear();
        QTest::keyClicks(field, digits);
        QTest::keyClick(field, Qt::Key_Tab);
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

    void rewriteLayout(const QString& file, const QString& from, const QString& to) {
        QFile f(QDir(inst->folder()).filePath(file));
        QVERIFY(f.open(QIODevice::ReadOnly));
        QString text = QString::fromUtf8(f.readAll());
        f.close();
        QVERIFY(text.contains(from));
        text.replace(from, to);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text.toUtf8());
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

    // The screen as it opens, and the report by courier: both ends of the period are in,
    // the courier's values come along, the PDF holds the heading, the rows and the total.
    // A second report on the screen empties the first's rows; a quote in a name is data.
    void byCourierThenByClient() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        screen = new atendeimpre;
        screen->show();
        QCOMPARE(control<MaskEdBox>(screen, u"k1"_s)->shownText(), u"01/01/2013"_s);
        QCOMPARE(control<MaskEdBox>(screen, u"k2"_s)->shownText(),
                 formatDate(QDate::currentDate()));
        auto items = [&](const QString& box) {
            QStringList out;
            auto* c = control<QComboBox>(screen, box);
            for (int i = 0; i < c->count(); ++i)
                out << c->itemText(i);
            return out;
        };
        QCOMPARE(items(u"A18"_s), (QStringList{u"BETO"_s, u"CHICO"_s}));
        QCOMPARE(items(u"A6"_s), (QStringList{kDavila, kPadaria}));
        QCOMPARE(items(u"Combo1"_s), (QStringList{u"A VISTA"_s, u"FATURAR"_s}));
        delete screen.data();

        open();
        choose(u"A18"_s, u"BETO"_s);
        QCOMPARE(press(u"Command10"_s), QStringList());
        QCOMPARE(workRows(store()),
                 (QStringList{u"0000001|BETO|01/03/2025|31/03/2025|9,00|9,50"_s,
                              u"0000002|BETO|01/03/2025|31/03/2025|10,00|10,50"_s}));
        QVERIFY(screen->report()->preview());
        QCOMPARE(screen->report()->definition().layoutFile(), u"rela3.rpt"_s);
        QStringList text = pdfLines(previewText(u"rela3-trabalho"_s));
        QVERIFY2(
            text.value(0).startsWith(u"ROTALIX ENTREGAS RÁPIDAS Atendimentos por entregador"_s),
            qPrintable(text.join(u'\n')));
        QVERIFY(text.contains(u"Entregador: BETO"_s));
        QVERIFY(text.contains(u"Período: 01/03/2025 a 31/03/2025"_s));
        QVERIFY(text.contains(u"0000001 01/03/2025 10:15 D'AVILA ADVOGADOS RUA AUGUSTA, 100 AV. "
                              u"PAULISTA, 900 ENTREGA CENTRO Entregue 9,00"_s));
        QVERIFY(text.contains(u"Total do período: 2 atendimento(s) 19,00"_s));
        QVERIFY(!text.join(u'\n').contains(u"0000003"_s) &&
                !text.join(u'\n').contains(u"0000004"_s));

        choose(u"A6"_s, kDavila);
        QCOMPARE(press(u"Command17"_s), QStringList());
        QCOMPARE(workRows(store()),
                 (QStringList{u"0000001|D'AVILA ADVOGADOS|01/03/2025|31/03/2025||"_s,
                              u"0000005|D'AVILA ADVOGADOS|01/03/2025|31/03/2025||"_s}));
        text = pdfLines(previewText(u"rela4-trabalho"_s));
        QVERIFY(text.contains(u"Cliente: D'AVILA ADVOGADOS"_s));
        QVERIFY(text.contains(u"Total do período: 2 atendimento(s) 43,00"_s));

        // A period that ends before it starts finds nothing; the report still opens.
        typeDate(u"k2"_s, u"28022025"_s);
        typeDate(u"k1"_s, u"01032025"_s);
        QCOMPARE(press(u"Command17"_s), QStringList());
        QCOMPARE(workRows(store()), QStringList());
        text = pdfLines(previewText(u"rela4-vazio"_s));
        QVERIFY(text.contains(u"Total do período: 0 atendimento(s) 0,00"_s));
        // A date left unreadable (the field's rule: the kit's test) runs no report on
        // another period.
        typeDate(u"k1"_s, u"3102"_s);
        QCOMPARE(press(u"Command17"_s), QStringList{rtx::ui::badDateMessage(u"31/02"_s)});
        QVERIFY(!screen->report()->preview() || !screen->report()->preview()->isVisible());
    }

    void checksOfTheButtons() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        open();
        QCOMPARE(press(u"Command10"_s),
                 QStringList{u"Antes da impressão selecione o nome do motoqueiro."_s});
        QCOMPARE(press(u"Command17"_s),
                 QStringList{u"Antes da impressão selecione o nome do cliente."_s});
        QVERIFY(!screen->report()->preview());
        QCOMPARE(prompts->count(Kind::Notice), 1);
        // "Seleciona" shows the printer dialog, and what the operator answers stops nothing.
        prompts->clear();
        prompts->answerPrinter(false);
        control<QPushButton>(screen, u"SSCommand1"_s)->click();
        QCOMPARE(prompts->count(Kind::Printer), 1);
        choose(u"A18"_s, u"CHICO"_s);
        QCOMPARE(press(u"Command10"_s), QStringList());
        QVERIFY(screen->report()->preview());
    }

    // By status; with no status, every status through rela5x with a total for each; by
    // payment, MOTO takes the status box's text, so its heading shows a status or nothing.
    void statusesAndPayments() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        open();
        choose(u"ST"_s, u"Entregue"_s);
        QCOMPARE(press(u"Command18"_s), QStringList());
        QCOMPARE(screen->report()->definition().layoutFile(), u"rela5.rpt"_s);
        QCOMPARE(workRows(store()), (QStringList{u"0000001|Entregue|01/03/2025|31/03/2025||"_s,
                                                 u"0000005|Entregue|01/03/2025|31/03/2025||"_s}));

        choose(u"ST"_s, QString());
        QCOMPARE(press(u"Command18"_s), QStringList());
        QCOMPARE(screen->report()->definition().layoutFile(), u"rela5x.rpt"_s);
        QCOMPARE(workRows(store()).size(), 3);
        QStringList text = pdfLines(previewText(u"rela5x"_s));
        QVERIFY(text.contains(u"Status: A caminho"_s) && text.contains(u"Status: Entregue"_s));
        QVERIFY(text.contains(u"Total de A caminho: 1 atendimento(s) 40,00"_s));
        QVERIFY(text.contains(u"Total de Entregue: 2 atendimento(s) 43,00"_s));
        QVERIFY(text.contains(u"Total geral do período: 3 atendimento(s) 83,00"_s));

        choose(u"Combo1"_s, u"A VISTA"_s);
        choose(u"ST"_s, u"A caminho"_s);
        QCOMPARE(press(u"Command1"_s), QStringList());
        QCOMPARE(screen->report()->definition().layoutFile(), u"rela5.rpt"_s);
        QCOMPARE(workRows(store()), QStringList{u"0000001|A caminho|01/03/2025|31/03/2025||"_s});
        text = pdfLines(previewText(u"rela5-pagamento"_s));
        QVERIFY(text.contains(u"Status: A caminho"_s));
        QVERIFY(!text.join(u'\n').contains(u"Status: A VISTA"_s));
        QVERIFY(text.contains(u"0000001 01/03/2025 D'AVILA ADVOGADOS AV. PAULISTA, 900 BETO A "
                              u"VISTA Entregue 25,00"_s));

        choose(u"ST"_s, QString());
        press(u"Command1"_s);
        QCOMPARE(workRows(store()), QStringList{u"0000001||01/03/2025|31/03/2025||"_s});
        // No way of payment chosen: only the dispatches without one, here none.
        choose(u"Combo1"_s, QString());
        press(u"Command1"_s);
        QCOMPARE(workRows(store()), QStringList());
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
        const dispatch::PeriodFill a = dispatch::fillPeriodReport(store(), mine);
        const dispatch::PeriodFill b = dispatch::fillPeriodReport(*other, theirs);
        QWidget host;
        ReportControl first(&host), second(&host);
        second.setStore(other.get());
        dispatch::setUpPeriodReport(first.definition(), a);
        dispatch::setUpPeriodReport(second.definition(), b);
        auto firstData = first.read();
        auto secondData = second.read();
        QVERIFY(firstData && secondData);
        QCOMPARE(firstData->rows.size(), 2);
        QCOMPARE(secondData->rows.size(), 4);
    }

    // A formula of the search tab's reports stays for the next report on the same control:
    // the fee of the report by courier shows on the next, by client, whatever its own.
    void formulaStaysOnTheControl() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        QWidget host;
        ReportControl report(&host);
        dispatch::setUpSearchReport(
            report.definition(),
            {dispatch::ReportBy::Courier, u"beto"_s, u"01/03/2025"_s, u"31/03/2025"_s, u"9,00"_s});
        rewriteLayout(u"rela4.rpt"_s, u"texto \"Período: {DATA}\" omitir-vazio"_s,
                      u"texto \"Período: {DATA}\" omitir-vazio\ntexto \"Último valor: {VM}\""_s);
        dispatch::setUpSearchReport(
            report.definition(),
            {dispatch::ReportBy::Client, kDavila, u"01/01/2025"_s, u"31/12/2025"_s, u"99,00"_s});
        auto data = report.read();
        QVERIFY(data);
        const QStringList text = pdfLines(render(output::compose(*data), u"rela4-atendimentos"_s));
        QVERIFY(text.contains(u"Cliente: D'AVILA ADVOGADOS"_s));
        QVERIFY(text.contains(u"Último valor: 9,00"_s));
        QVERIFY(text.contains(u"Total do período: 4 atendimento(s) 241,00"_s));
    }

    // A missing layout and a hand-edited one: the message names the file, the screen keeps
    // what was typed; the edit shows. (A mistake's line: the report engine's test.)
    void layoutFiles() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        open();
        choose(u"A18"_s, u"BETO"_s);
        QVERIFY(QFile::remove(QDir(inst->folder()).filePath(u"rela3.rpt"_s)));
        QStringList said = press(u"Command10"_s);
        QCOMPARE(said.size(), 1);
        QVERIFY2(said[0].contains(u"rela3.rpt"_s) && said[0].contains(u"não foi encontrado"_s),
                 qPrintable(said[0]));
        QCOMPARE(prompts->count(Kind::Error), 1);
        QVERIFY(!screen->report()->preview());
        QVERIFY(screen->isVisible());
        QCOMPARE(control<QComboBox>(screen, u"A18"_s)->currentText(), u"BETO"_s);

        output::writeMissingLayouts(inst->folder());
        rewriteLayout(u"rela3.rpt"_s, u"título \"Atendimentos por entregador\""_s,
                      u"título \"Extrato do motoboy\""_s);
        QCOMPARE(press(u"Command10"_s), QStringList());
        QVERIFY(
            pdfLines(previewText(u"rela3-editado"_s)).value(0).contains(u"Extrato do motoboy"_s));
        // A field the layout names and nothing answers to is said once, with the file, the
        // line and the name; the report still opens.
        rewriteLayout(
            u"rela3.rpt"_s, u"texto \"Valor por entrega: R$ {VM}\" omitir-vazio"_s,
            u"texto \"Valor por entrega: R$ {VM}\" omitir-vazio\ntexto \"Placa: {PLACA}\""_s);
        QCOMPARE(press(u"Command10"_s),
                 QStringList{u"O arquivo de relatório rela3.rpt tem campos que não existem e saem "
                             u"em branco:\nlinha 23: {PLACA}"_s});
        QCOMPARE(prompts->count(Kind::Notice), 1);
        QVERIFY(screen->report()->preview());
        // The other source's names are no mistake: the report on its own table says nothing.
        rewriteLayout(u"rela3.rpt"_s, u"\ntexto \"Placa: {PLACA}\""_s, QString());
        QCOMPARE(press(u"Command10"_s), QStringList());
    }

    // The bills' report sorts its due dates as dates, though the work table keeps them as
    // text: across a year end they come out in the calendar's order.
    void billsSortedByDueDate() {
        RTX_REQUIRE_INSTALL(*inst);
        const QStringList due{u"05/01/2027"_s, u"02/11/2026"_s, u"15/12/2026"_s, u"24/10/2026"_s};
        for (int i = 0; i < due.size(); ++i)
            store().insert(u"rel_contas"_s, {{u"nome"_s, u"Relatório de contas a pagar."_s},
                                             {u"A1"_s, due[i]},
                                             {u"A2"_s, u"10,00"_s},
                                             {u"A3"_s, u"FORNECEDOR %1"_s.arg(i)},
                                             {u"A6"_s, u"0000%1"_s.arg(i + 1)}});
        QWidget host;
        ReportControl report(&host);
        report.definition().setDataSource(u"rel_contas"_s);
        report.definition().setLayoutFile(u"contas.rpt"_s);
        QVERIFY(report.run());
        const QStringList lines = previewLines(&report, out.path(), u"contas-virada"_s);
        QList<qsizetype> at;
        for (const QString& d :
             {u"24/10/2026"_s, u"02/11/2026"_s, u"15/12/2026"_s, u"05/01/2027"_s}) {
            qsizetype found = -1;
            for (qsizetype i = 0; i < lines.size() && found < 0; ++i)
                if (lines[i].startsWith(d)) found = i;
            at << found;
        }
        QVERIFY2(at[0] >= 0 && at[0] < at[1] && at[1] < at[2] && at[2] < at[3],
                 qPrintable(lines.join(u'\n')));
    }

    // The preview's own buttons: pages, the spreadsheet, the PDF file, the printer.
    void previewButtons() {
        RTX_REQUIRE_INSTALL(*inst);
        month();
        open();
        choose(u"A18"_s, u"BETO"_s);
        press(u"Command10"_s);
        ReportPreview* preview = screen->report()->preview();
        QVERIFY(preview);

        const QString sheet = out.filePath(u"beto.csv"_s);
        prompts->clear();
        prompts->answerText(sheet);
        control<QPushButton>(preview, u"salvarPlanilha"_s)->click();
        QFile f(sheet);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray bytes = f.readAll();
        QVERIFY(QString::fromUtf8(bytes).contains(
            u"\r\n0000001;01/03/2025;10:15;D'AVILA ADVOGADOS;RUA AUGUSTA, 100;AV. "
            u"PAULISTA, 900;ENTREGA CENTRO;Entregue;9,00\r\n"_s));

        // A name without an extension is a workbook (what each cell holds: the report
        // engine's test).
        prompts->clear();
        prompts->answerText(out.filePath(u"beto"_s));
        control<QPushButton>(preview, u"salvarPlanilha"_s)->click();
        const QString book = out.filePath(u"beto.xlsx"_s);
        QCOMPARE(prompts->lastText(), u"Planilha salva em %1."_s.arg(book));
        const XlsxSheet x = readXlsx(book);
        QVERIFY2(x.ok, qPrintable(x.problem));

        const QString pdf = out.filePath(u"beto.pdf"_s);
        prompts->clear();
        prompts->answerText(pdf);
        control<QPushButton>(preview, u"salvarPdf"_s)->click();
        QVERIFY(pdfLines(pdfText(pdf)).contains(u"Entregador: BETO"_s));

        // Cancelar in the printer dialog prints nothing; with no printer in the system the
        // operator is told so; a printer that refuses the job is named.
        prompts->clear();
        prompts->answerPrinter(false);
        control<QPushButton>(preview, u"imprimir"_s)->click();
        QCOMPARE(prompts->texts(Kind::Error), QStringList());
        if (QPrinterInfo::availablePrinters().isEmpty()) {
            prompts->clear();
            prompts->answerPrinter(true);
            control<QPushButton>(preview, u"imprimir"_s)->click();
            QCOMPARE(prompts->texts(Kind::Error).size(), 1);
            QVERIFY(prompts->texts(Kind::Error)[0].startsWith(
                u"Nenhuma impressora foi encontrada neste computador."_s));
        }
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
    }

    // Every default layout on the demo office: each opens with its title and its rows.
    void everyLayoutOnTheDemo() {
        inst.reset();
        inst = std::make_unique<TestInstallation>(true, true);
        RTX_REQUIRE_INSTALL(*inst);
        session::setInstallation(inst->installation());
        output::writeMissingLayouts(inst->folder());
        Store& st = store();
        // Long texts where the office has them, for a person to look at in the pictures
        // (the slip's and the receipt's are checked whole by the printing test).
        const QString longAddress =
            u"AVENIDA BRIGADEIRO FARIA LIMA, 3477, TORRE NORTE, 14º ANDAR, CONJUNTO 1402, "
            u"ITAIM BIBI, ENTRADA PELA RUA JOAQUIM FLORIANO, PORTARIA DE SERVIÇO NOS FUNDOS"_s;
        // The office screens fill their own work tables; a few rows stand for theirs here.
        st.insert(u"rel_caixa_impressao"_s,
                  {{u"A1"_s, u"03/03/2025"_s},
                   {u"A2"_s, u"CRÉDITO"_s},
                   {u"DOC"_s, u"0000001"_s},
                   {u"TIPO"_s, u"ATENDIMENTO"_s},
                   {u"DESCR"_s, u"ATENDIMENTO NR. 0000001 - "_s + longAddress},
                   {u"PLANO"_s, u"RECEITAS"_s},
                   {u"CR"_s, qint64(125000)},
                   {u"CODIGO"_s, u"0000001"_s}});
        st.insert(u"rel_caixa"_s, {{u"CODIGO"_s, u"0000001"_s},
                                   {u"A1"_s, u"03/03/2025"_s},
                                   {u"A2"_s, u"CRÉDITO"_s},
                                   {u"A3"_s, u"0000001"_s},
                                   {u"A4"_s, u"ATENDIMENTO"_s},
                                   {u"A6"_s, u"ATENDIMENTO NR. 0000001 - "_s + longAddress},
                                   {u"PLANO"_s, u"RECEITAS"_s},
                                   {u"CR"_s, u"1.250,00"_s},
                                   {u"L"_s, u"C"_s},
                                   {u"SALDO"_s, u"1.250,00"_s},
                                   {u"limi"_s, u"0,00"_s}});
        st.insert(u"rel_contas"_s, {{u"nome"_s, u"Relatório de contas a pagar."_s},
                                    {u"DI"_s, u"01/03/2025"_s},
                                    {u"DF"_s, u"31/03/2025"_s},
                                    {u"A1"_s, u"10/03/2025"_s},
                                    {u"A2"_s, u"900,00"_s},
                                    {u"A3"_s, u"BETO"_s},
                                    {u"A4"_s, u"ATENDIMENTO NR. 0000001"_s},
                                    {u"A5"_s, u""_s},
                                    {u"A6"_s, u"00001"_s},
                                    {u"A7"_s, u"PESSOAL"_s}});
        st.insert(u"rel_agenda"_s, {{u"Codigo"_s, u"1"_s},
                                    {u"DI"_s, u"01/03/2025"_s},
                                    {u"DF"_s, u"31/03/2025"_s},
                                    {u"A1"_s, u"03/03/2025 09:00 REUNIÃO - "_s + longAddress}});
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
            {u"rela3.rpt"_s, u"atendimentos"_s, u"Atendimentos por entregador"_s,
             output::Selection::namePeriod(u"a18"_s, u"BETO"_s, u"a2"_s, today.addDays(-40),
                                           today)},
            {u"rela4.rpt"_s, u"atendimentos"_s, u"Atendimentos por cliente"_s, {}},
            {u"rela5.rpt"_s, u"atendimentos"_s, u"Atendimentos por status"_s,
             output::Selection::namePeriod(u"ST"_s, u"Entregue"_s, u"a2"_s, today.addDays(-40),
                                           today)},
            {u"rela5x.rpt"_s, u"atendimentos"_s, u"Atendimentos de todos os status"_s, {}},
            {u"TMP.rpt"_s, u"rel_caixa_impressao"_s, u"Movimento do caixa"_s, {}},
            {u"CX1.rpt"_s, u"rel_caixa"_s, u"Caixa do dia"_s, {}},
            {u"contas.rpt"_s, u"rel_contas"_s, u"Relatório de contas a pagar."_s, {}},
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
            // The formulas each report gets from its screen.
            if (c.layout.startsWith(u"ATENDE"_s))
                report.definition().setFormula(1, u"NOME"_s,
                                               u"ROTALIX ENTREGAS RÁPIDAS  Tel: (11) 3333-4444"_s);
            if (c.layout.startsWith(u"rela"_s) && c.table == u"atendimentos"_s)
                report.definition().setFormula(
                    1, u"DATA"_s, formatDate(today.addDays(-40)) + u" até "_s + formatDate(today));
            if (c.layout == u"CX1.rpt"_s)
                report.definition().setFormula(1, u"nome"_s, u"ROTALIX ENTREGAS RÁPIDAS"_s);
            const auto data = report.read();
            QVERIFY2(data, qPrintable(c.layout));
            QVERIFY2(!data->rows.isEmpty(), qPrintable(c.layout));
            const output::Document doc = output::compose(*data, &fontMeasure());
            const QString text = render(doc, QFileInfo(c.layout).completeBaseName());
            QVERIFY2(text.contains(c.title), qPrintable(c.layout + u": "_s + text.left(400)));
            QVERIFY2(text.contains(u"1 de %1"_s.arg(doc.pages.size())) ||
                         c.layout.startsWith(u"ATENDE1"_s) || c.layout.startsWith(u"RECI"_s),
                     qPrintable(c.layout));
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
        typeDate(u"k1"_s, formatDate(today.addDays(-30)).remove(u'/'));
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
