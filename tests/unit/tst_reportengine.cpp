// The report engine without a database: layout files read or refused with their line, the
// pages laid out (headings on every page, groups, totals, "n de m", forms in two copies),
// and the spreadsheet file.

#include "output/core/compose.h"
#include "output/core/csv.h"
#include "output/core/defaultlayouts.h"
#include "output/core/layout.h"
#include "output/core/values.h"
#include "output/core/xlsx.h"
#include "xlsxread.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace rtx;
using namespace rtx::output;
using rtx::test::readXlsx;
using rtx::test::XlsxSheet;
using namespace Qt::Literals::StringLiterals;

namespace {

// Every text of a page, in the order laid out, one a line.
QString pageText(const Document& d, int page) {
    QStringList out;
    for (const Item& i : d.pages[page].items)
        if (i.kind == Item::Kind::Text) out << i.text;
    return out.join(u'\n');
}

// Dispatch rows: number, date, client, courier, status, value in cents.
ReportData dispatches(const QString& layoutText, int count) {
    ReportData d;
    d.layout = parseLayout(layoutText, u"teste.rpt"_s);
    d.table = u"atendimentos"_s;
    d.columns = {u"CODIGO"_s, u"a2"_s, u"a6"_s, u"a18"_s, u"ST"_s, u"a19"_s};
    d.types = {ColType::Text, ColType::Date, ColType::Text,
               ColType::Text, ColType::Text, ColType::Money};
    for (int i = 0; i < count; ++i)
        d.rows << QVariantList{u"%1"_s.arg(i + 1, 7, 10, QLatin1Char('0')),
                               QDate(2025, 3, 1).addDays(i / 10),
                               u"CLIENTE %1"_s.arg(i % 3),
                               u"ZÉ"_s,
                               i < count / 2 ? u"A caminho"_s : u"Entregue"_s,
                               qint64(1000 + i)};
    d.company.name = u"ROTALIX ENTREGAS"_s;
    d.company.city = u"SÃO PAULO"_s;
    d.printedAt = QDateTime(QDate(2025, 4, 1), QTime(8, 30));
    return d;
}

const QString kList = uR"(título "Atendimentos"
página A4 retrato
letra 9
[cabeçalho]
texto "{empresa.nome} - {empresa.cidade}" "{título}" negrito
texto "Período: {DATA}" omitir-vazio
texto "Entregador: {seleção}{rel_atendimentos.MOTO}"
[colunas]
estilo grade listrado
coluna CODIGO "Nº" 20
coluna a2 "Data" 22 dd/mm/yyyy
coluna a6 "Cliente" *
coluna a19 "Valor" 25 "###,##0.00" soma
[grupo ST]
texto "Status: {ST}" negrito
[fim do grupo]
total "Total de {ST}: {linhas}"
[fim]
total "Total geral: {linhas}"
[rodapé]
texto "Impresso em {agora}" "Página {página} de {páginas}"
)"_s;

} // namespace

class ReportEngineTest : public QObject {
    Q_OBJECT

private slots:
    // A mistake in a layout file is said with the file, its line and what is wrong.
    void mistakesNameTheLine() {
        const QString cols = u"[colunas]\ncoluna a6 \"Cliente\" 50\n"_s;
        const QList<std::tuple<QString, int, QString>> mistakes{
            {cols + u"[cabeçalho]\n\ntexto \"Relatório\n"_s, 5, u"falta fechar as aspas"_s},
            {u"[colunas]\ncoluna a6 \"Cliente\" larga\n"_s, 2, u"A largura deve ser um número"_s},
            {u"[cabeça]\n"_s, 1, u"seção desconhecida [cabeça]"_s}};
        for (const auto& [text, line, problem] : mistakes) {
            try {
                parseLayout(text, u"rela9.rpt"_s);
                QFAIL("no error");
            } catch (const LayoutError& e) {
                QCOMPARE(e.line(), line);
                QVERIFY2(e.problem().contains(problem), qPrintable(e.problem()));
                QVERIFY(e.text().startsWith(
                    u"O arquivo de relatório rela9.rpt tem um erro na linha %1: "_s.arg(line)));
            }
        }
    }

    void filesByNameBlindToCase() {
        QTemporaryDir dir;
        // An old installation's file in capitals, saved in the Windows code page.
        QFile f(dir.filePath(u"RELA3.RPT"_s));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray("t\xedtulo \"Relat\xf3rio\"\n[colunas]\ncoluna a6 \"Cliente\" *\n"));
        f.close();
        QCOMPARE(loadLayout(layoutPath(dir.path(), u"rela3.rpt"_s)).title, u"Relatório"_s);
        // A new installation gets every layout but leaves one the office changed alone.
        QCOMPARE(writeMissingLayouts(dir.path()).size(), 12);
        QCOMPARE(loadLayout(layoutPath(dir.path(), u"rela3.rpt"_s)).title, u"Relatório"_s);
    }

    void pagesGroupsAndTotals() {
        ReportData d = dispatches(kList, 120);
        d.formulas << Formula{u"DATA"_s, u"01/03/2025 até 31/03/2025"_s};
        d.selectionName = u"ZÉ"_s;
        const Document doc = compose(d);
        const int n = int(doc.pages.size());
        QVERIFY(n >= 3);
        QString all;
        for (int p = 0; p < n; ++p) {
            const QString t = pageText(doc, p);
            all += t + u'\n';
            // Heading, column headings and the foot on every page, "n de m" filled in.
            QVERIFY(t.startsWith(u"ROTALIX ENTREGAS - SÃO PAULO\nAtendimentos\n"
                                 u"Período: 01/03/2025 até 31/03/2025\nEntregador: ZÉ\nNº\nData\n"
                                 u"Cliente\nValor"_s));
            QVERIFY(
                t.endsWith(u"Impresso em 01/04/2025 08:30\nPágina %1 de %2"_s.arg(p + 1).arg(n)));
        }
        QVERIFY(all.contains(u"Status: A caminho\n0000001\n01/03/2025\nCLIENTE 0\n10,00"_s));
        // Group totals: rows 1-60 are 1000..1059 cents, 61-120 are 1060..1119.
        QVERIFY(all.contains(u"Total de A caminho: 60\n617,70"_s));
        QVERIFY(all.contains(u"Total de Entregue: 60\n653,70\nTotal geral: 120\n1.271,40"_s));
        // A group that goes on to another page has its heading there again, marked.
        QVERIFY(pageText(doc, 1).contains(u"Cliente\nValor\nStatus: A caminho (continuação)\n"_s));
        QCOMPARE(all.count(u"(continuação)"_s), n - 1);
        // No rows: one page, headings and totals all the same.
        QCOMPARE(pageText(compose(dispatches(kList, 0)), 0),
                 u"ROTALIX ENTREGAS - SÃO PAULO\nAtendimentos\nEntregador: \nNº\nData\nCliente\n"
                 u"Valor\nTotal geral: 0\n0,00\nImpresso em 01/04/2025 08:30\nPágina 1 de 1"_s);
    }

    // One layout reads the dispatch table and the work table: a column named with its table
    // prints only on that table; formulas print as given, quotes and braces included.
    void fieldsOfBothSources() {
        ReportData d = dispatches(kList, 1);
        d.table = u"rel_atendimentos"_s;
        d.columns << u"MOTO"_s;
        d.types << ColType::Text;
        d.rows[0] << u"D'AVILA {a6}"_s;
        const QString t = pageText(compose(d), 0);
        QVERIFY(t.contains(u"\nEntregador: D'AVILA {a6}\n"_s));

        ReportData live = dispatches(kList, 1);
        live.formulas << Formula{u"DATA"_s, u"x' {y}"_s};
        QVERIFY(pageText(compose(live), 0).contains(u"Período: x' {y}\nEntregador: \n"_s));
    }

    void formsInCopiesAndPages() {
        const QString form = uR"(título "Ficha"
[ficha]
nova página
cópias 2
campo 40 "Número" "{CODIGO}"
campo * "Cliente" "{a6}" negrito
campo * "Valor" "{a19}"
)"_s;
        const Document doc = compose(dispatches(form, 3));
        QCOMPARE(doc.pages.size(), 3);
        QCOMPARE(pageText(doc, 1), u"Número\n0000002\nCliente\nCLIENTE 1\nValor\n10,01\n"
                                   u"Número\n0000002\nCliente\nCLIENTE 1\nValor\n10,01"_s);
    }

    // The CSV file: a grouped list carries its group's value on every row, under the word
    // of the group's heading, since a sheet has no headings between rows.
    void spreadsheet() {
        ReportData d = dispatches(kList, 2);
        d.rows[1][2] = u"BAR; \"DO ZÉ\""_s;
        d.rows[1][5] = qint64(123456);
        const QByteArray csv = toCsv(d);
        QVERIFY(csv.startsWith("\xEF\xBB\xBF"));
        QCOMPARE(QString::fromUtf8(csv.mid(3)),
                 u"Nº;Data;Cliente;Valor;Status\r\n0000001;01/03/2025;CLIENTE 0;10,00;A caminho\r\n"
                 u"0000002;01/03/2025;\"BAR; \"\"DO ZÉ\"\"\";1234,56;Entregue\r\n"_s);
    }

    // The workbook keeps what the data is: codes and tax numbers as text with their zeros
    // (never 8 for 0000008, never 1,12E+13), dates as dates shown dd/mm/yyyy, money as a
    // number shown with two decimals. A title with characters a sheet's name cannot hold still
    // makes a workbook.
    void workbookCellsKeepTheirKinds() {
        ReportData d = dispatches(uR"(título "Atendimentos: 1ª/2ª quinzena"
[colunas]
coluna CODIGO "Nº" 20
coluna a2 "Data" 22 dd/mm/yyyy
coluna C3 "CNPJ" 30
coluna a19 "Valor" 25 "###,##0.00" soma
)"_s,
                                  2);
        d.columns << u"C3"_s;
        d.types << ColType::Text;
        d.rows[0][0] = u"0000008"_s;
        d.rows[0] << u"11222333000181"_s;
        d.rows[1] << QVariant();
        d.rows[1][1] = QVariant(QMetaType(QMetaType::QDate));
        d.rows[1][5] = qint64(123456);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"lista.xlsx"_s);
        QString error;
        QVERIFY2(writeXlsx(d, path, error), qPrintable(error));
        const XlsxSheet x = readXlsx(path);
        QVERIFY2(x.ok, qPrintable(x.problem));
        QCOMPARE(x.sheetName, u"Atendimentos 1ª2ª quinzena"_s);
        QCOMPARE(x.text(u"A2"_s), u"0000008"_s);
        QCOMPARE(x.text(u"C2"_s), u"11222333000181"_s);
        QCOMPARE(x.value(u"B2"_s), XlsxSheet::serial(QDate(2025, 3, 1)));
        QCOMPARE(x.format(u"B2"_s), u"dd/mm/yyyy"_s);
        QCOMPARE(x.value(u"D3"_s).toDouble(), 1234.56);
        // An empty date or tax number is an empty cell, not a zero.
        QVERIFY(!x.has(u"B3"_s) && !x.has(u"C3"_s));
    }

    // A form whose boxes grow: many lines of remarks are printed whole, what follows moves
    // down and onto further pages; a box that does not grow marks what it leaves out, "…".
    void longTextsGrowAndGoOn() {
        const QString form = uR"(título "Ficha"
margens 10
letra 10
[cabeçalho]
texto "ORDEM" negrito
[ficha]
campo 40 "Número" "{CODIGO}"
campo * "Endereço" "{a6}" crescer
campo * "Observações" "{a18}" linhas=4 crescer
campo * "Curto" "{a18}" linhas=2
texto "ASSINATURA"
[rodapé]
texto "Página {página} de {páginas}"
)"_s;
        ReportData d = dispatches(form, 1);
        QStringList remarks;
        for (int i = 1; i <= 60; ++i)
            remarks << u"LINHA%1 DAS OBSERVACOES DO CLIENTE PARA O ENTREGADOR LER"_s.arg(i);
        d.rows[0][3] = remarks.join(u'\n');
        const Document doc = compose(d);
        const int n = int(doc.pages.size());
        QVERIFY(n >= 2);
        QString pages;
        for (int p = 0; p < n; ++p)
            pages += pageText(doc, p) + u'\n';
        for (const QString& line : remarks)
            QVERIFY2(pages.contains(line.section(u' ', 0, 0) + u' '), qPrintable(line));
        QVERIFY(pages.contains(u"Observações (continuação)"_s));
        QVERIFY(pages.contains(u"…"_s)); // the box that does not grow
        QVERIFY(pageText(doc, n - 1).endsWith(u"ASSINATURA\nPágina %1 de %1"_s.arg(n)));
        for (const Page& p : doc.pages) // every line stays inside the page
            for (const Item& i : p.items)
                QVERIFY(i.rect.bottom() <= doc.height - 10 + 0.01);
    }

    // Lines broken at words, numbers and texts as the office writes them.
    void linesAndValues() {
        auto chars = [](const QString& t) { return double(t.size()); };
        QCOMPARE(breakLines(u"AV. PAULISTA 900 CONJ 12"_s, 12, chars),
                 (QStringList{u"AV. PAULISTA"_s, u"900 CONJ 12"_s}));
        QCOMPARE(breakLines(u"UM\r\n\nDOIS"_s, 10, chars),
                 (QStringList{u"UM"_s, QString(), u"DOIS"_s}));
        QCOMPARE(formatTaxNumber(u"11222333000181"_s), u"11.222.333/0001-81"_s);
        QCOMPARE(formatTaxNumber(u"12.abc.345/01de-35"_s), u"12.ABC.345/01DE-35"_s);
        QCOMPARE(formatPhone(u"11933334444"_s), u"(11) 93333-4444"_s);
        // Work tables of the office hold money and dates as text: they still print and add up.
        QCOMPARE(display(u"12,5"_s, ColType::Text, Format::Money, true), u"12,50"_s);
        QCOMPARE(display(u"n/d"_s, ColType::Text, Format::Money, true), u"n/d"_s);
        QCOMPARE(display(u"2025-03-01"_s, ColType::Text, Format::Date, true), u"01/03/2025"_s);
        QCOMPARE(centsOf(u"1.234,56"_s, ColType::Text), 123456);
    }

    // Bills due across a year end, kept as text by the work table, sort as dates; amounts
    // as numbers; words blind to case and accents; ties keep their order.
    void sortsByTypedValues() {
        ReportData d;
        d.layout = parseLayout(u"ordem A1 A2\n[colunas]\ncoluna A1 \"V\" 20\n"_s, u"c.rpt"_s);
        d.columns = {u"A1"_s, u"A2"_s};
        d.types = {ColType::Text, ColType::Text};
        for (const QString& r : {u"05/01/2027 1,00"_s, u"24/10/2026 1.000,00"_s,
                                 u"15/12/2026 3,00"_s, u"24/10/2026 200,00"_s})
            d.rows << QVariantList{r.section(u' ', 0, 0), r.section(u' ', 1)};
        sortRows(d);
        QStringList got;
        for (const QVariantList& r : std::as_const(d.rows))
            got << r[0].toString() + u' ' + r[1].toString();
        QCOMPARE(got, (QStringList{u"24/10/2026 200,00"_s, u"24/10/2026 1.000,00"_s,
                                   u"15/12/2026 3,00"_s, u"05/01/2027 1,00"_s}));
    }

    // A name that no table, formula or word of the format answers to is said with its line;
    // the names of the other source of a two-source layout are not.
    void unknownNamesAreSaid() {
        ReportData d = dispatches(kList, 1);
        d.layout = parseLayout(kList.left(kList.indexOf(u"[colunas]"_s)) +
                                   u"texto \"{CLIENTEX} {DI} {empresa.fax} {R15|empresa.nome}\"\n"
                                   u"[colunas]\ncoluna a6 \"Cliente\" *\ncoluna NADA \"X\" 20\n"_s,
                               u"t.rpt"_s);
        QCOMPARE(unknownNames(d),
                 (QStringList{u"linha 8: {CLIENTEX}"_s, u"linha 8: {empresa.fax}"_s,
                              u"linha 11: {NADA}"_s}));
        for (const DefaultLayout& l : defaultLayouts()) {
            ReportData any;
            any.layout = parseLayout(l.text, l.file);
            QVERIFY2(unknownNames(any).isEmpty(),
                     qPrintable(l.file + unknownNames(any).join(u' ')));
        }
    }
};

QTEST_MAIN(ReportEngineTest)
#include "tst_reportengine.moc"
