// The report engine without a database: layout files read or refused with their line, the
// pages laid out (headings on every page, groups, totals, "n de m", forms in two copies),
// and the spreadsheet file.

#include "output/core/compose.h"
#include "output/core/csv.h"
#include "output/core/defaultlayouts.h"
#include "output/core/layout.h"
#include "output/core/values.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace rtx;
using namespace rtx::output;
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
    void settings() {
        const Layout l = parseLayout(u"Página carta PAISAGEM\nmargens 10 20\nletra 7,5\n"
                                     u"[colunas]\ncoluna a6 \"Cliente\" *\n"_s,
                                     u"x.rpt"_s);
        QCOMPARE(l.pageWidth(), 279.4);
        QCOMPARE(l.pageHeight(), 215.9);
        QCOMPARE(QList<double>({l.top, l.right, l.bottom, l.left}),
                 QList<double>({10, 20, 10, 20}));
        QCOMPARE(l.bodySize, 7.5);
    }

    void mistakesNameTheLine_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("problem");
        const QString cols = u"[colunas]\ncoluna a6 \"Cliente\" 50\n"_s;
        QTest::newRow("quote") << cols + u"[cabeçalho]\n\ntexto \"Relatório\n"_s << 5
                               << u"falta fechar as aspas"_s;
        QTest::newRow("word") << u"# comentário\n"_s + cols + u"[fim]\ntextoo \"x\"\n"_s << 5
                              << u"palavra desconhecida \"textoo\""_s;
        QTest::newRow("width") << u"[colunas]\ncoluna a6 \"Cliente\" larga\n"_s << 2
                               << u"A largura deve ser um número"_s;
        QTest::newRow("brace") << cols + u"[cabeçalho]\ntexto \"{a6\"\n"_s << 4
                               << u"falta fechar a chave"_s;
        QTest::newRow("format") << cols + u"[fim]\ntexto \"{a2:dd-mm}\"\n"_s << 4
                                << u"formato desconhecido"_s;
        QTest::newRow("section") << u"[cabeça]\n"_s << 1 << u"seção desconhecida [cabeça]"_s;
        QTest::newRow("option") << cols + u"[fim]\ntexto \"x\" grande\n"_s << 4
                                << u"opção desconhecida \"grande\""_s;
        QTest::newRow("total") << u"[ficha]\ncampo 20 \"A\" \"{a6}\"\n[fim]\ntotal \"x\"\n"_s << 4
                               << u"total precisa das [colunas]"_s;
        QTest::newRow("no data") << u"título \"x\"\n"_s << 1 << u"falta a seção [colunas]"_s;
        QTest::newRow("setting") << cols + u"letra 9\n"_s << 3
                                 << u"em [colunas] cada linha é coluna ou estilo"_s;
    }
    void mistakesNameTheLine() {
        QFETCH(QString, text);
        QFETCH(int, line);
        QFETCH(QString, problem);
        try {
            parseLayout(text, u"rela9.rpt"_s);
            QFAIL("no error");
        } catch (const LayoutError& e) {
            QCOMPARE(e.line(), line);
            QVERIFY2(e.problem().contains(problem), qPrintable(e.problem()));
            QVERIFY2(e.text().startsWith(
                         u"O arquivo de relatório rela9.rpt tem um erro na linha %1: "_s.arg(line)),
                     qPrintable(e.text()));
        }
    }

    void filesByNameBlindToCase() {
        QTemporaryDir dir;
        try {
            loadLayout(layoutPath(dir.path(), u"rela3.rpt"_s));
            QFAIL("no error");
        } catch (const LayoutError& e) {
            QCOMPARE(e.line(), 0);
            QVERIFY2(e.text().contains(u"rela3.rpt"_s) && e.text().contains(dir.path()),
                     qPrintable(e.text()));
        }
        // An old installation's file in capitals, saved in the Windows code page.
        QFile f(dir.filePath(u"RELA3.RPT"_s));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray("t\xedtulo \"Relat\xf3rio\"\n[colunas]\ncoluna a6 \"Cliente\" *\n"));
        f.close();
        QCOMPARE(loadLayout(layoutPath(dir.path(), u"rela3.rpt"_s)).title, u"Relatório"_s);
        // A new installation gets every layout; a second pass leaves changed ones alone.
        QCOMPARE(writeMissingLayouts(dir.path()).size(), 12);
        QVERIFY(writeMissingLayouts(dir.path()).isEmpty());
        QCOMPARE(loadLayout(layoutPath(dir.path(), u"rela3.rpt"_s)).title, u"Relatório"_s);
    }

    void pagesGroupsAndTotals() {
        ReportData d = dispatches(kList, 120);
        d.formulas << Formula{u"DATA"_s, u"01/03/2025 até 31/03/2025"_s};
        d.selectionName = u"ZÉ"_s;
        const Document doc = compose(d);
        QVERIFY(doc.pages.size() >= 3);
        const int n = int(doc.pages.size());
        QCOMPARE(doc.rows, 120);
        for (int p = 0; p < n; ++p) {
            const QString t = pageText(doc, p);
            // Heading, column headings and the foot on every page, "n de m" filled in.
            QVERIFY(t.startsWith(u"ROTALIX ENTREGAS - SÃO PAULO\nAtendimentos\n"
                                 u"Período: 01/03/2025 até 31/03/2025\nEntregador: ZÉ\nNº\nData\n"
                                 u"Cliente\nValor"_s));
            QVERIFY(
                t.endsWith(u"Impresso em 01/04/2025 08:30\nPágina %1 de %2"_s.arg(p + 1).arg(n)));
        }
        const QString first = pageText(doc, 0), last = pageText(doc, n - 1);
        QVERIFY(first.contains(u"Status: A caminho\n0000001\n01/03/2025\nCLIENTE 0\n10,00"_s));
        // Group totals: rows 1-60 are 1000..1059 cents, 61-120 are 1060..1119.
        const QString all = [&] {
            QString s;
            for (int p = 0; p < n; ++p)
                s += pageText(doc, p) + u'\n';
            return s;
        }();
        QVERIFY(all.contains(u"Total de A caminho: 60\n617,70"_s));
        QVERIFY(all.contains(u"Status: Entregue\n"_s));
        QVERIFY(last.contains(u"Total de Entregue: 60\n653,70"_s));
        QVERIFY(last.contains(u"Total geral: 120\n1.271,40"_s));
    }

    void emptyReportKeepsItsHeadings() {
        const Document doc = compose(dispatches(kList, 0));
        QCOMPARE(doc.pages.size(), 1);
        QCOMPARE(pageText(doc, 0), u"ROTALIX ENTREGAS - SÃO PAULO\nAtendimentos\nEntregador: \nNº\n"
                                   u"Data\nCliente\nValor\nTotal geral: 0\n0,00\n"
                                   u"Impresso em 01/04/2025 08:30\nPágina 1 de 1"_s);
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
        QVERIFY(!t.contains(u"Período"_s));

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
        bool cut = false;
        for (const Item& i : doc.pages[0].items)
            cut = cut || (i.kind == Item::Kind::Line && i.dashed);
        QVERIFY(cut);
    }

    void spreadsheet() {
        ReportData d = dispatches(kList, 2);
        d.rows[1][2] = u"BAR; \"DO ZÉ\""_s;
        d.rows[1][5] = qint64(123456);
        const QByteArray csv = toCsv(d);
        QVERIFY(csv.startsWith("\xEF\xBB\xBF"));
        // The group's value, said once above its rows on paper, stands on every row of the
        // sheet, under the words of its heading.
        QCOMPARE(QString::fromUtf8(csv.mid(3)),
                 u"Nº;Data;Cliente;Valor;Status\r\n0000001;01/03/2025;CLIENTE 0;10,00;A caminho\r\n"
                 u"0000002;01/03/2025;\"BAR; \"\"DO ZÉ\"\"\";1234,56;Entregue\r\n"_s);
        // A form's boxes are its columns.
        d.layout = parseLayout(u"[ficha]\ncampo 40 \"Número\" \"{CODIGO}\"\n"
                               u"campo * \"Valor\" \"{a19}\"\n"_s,
                               u"f.rpt"_s);
        QCOMPARE(QString::fromUtf8(toCsv(d).mid(3)),
                 u"Número;Valor\r\n0000001;10,00\r\n0000002;1234,56\r\n"_s);
    }

    // Work tables of the office hold money and dates as text: they still print and add up.
    void textHoldingMoneyAndDates() {
        QCOMPARE(display(u"12,5"_s, ColType::Text, Format::Money, true), u"12,50"_s);
        QCOMPARE(display(u"1234"_s, ColType::Text, Format::Money, true), u"1.234,00"_s);
        QCOMPARE(display(u"n/d"_s, ColType::Text, Format::Money, true), u"n/d"_s);
        QCOMPARE(display(u"2025-03-01"_s, ColType::Text, Format::Date, true), u"01/03/2025"_s);
        QCOMPARE(display(QDate(2025, 3, 1), ColType::Date, Format::Plain, false), u"01/03/2025"_s);
        QCOMPARE(
            display(QVariant(QMetaType(QMetaType::LongLong)), ColType::Money, Format::Money, true),
            QString());
        QCOMPARE(centsOf(u"1.234,56"_s, ColType::Text), 123456);
        QCOMPARE(centsOf(u""_s, ColType::Text), 0);
    }
};

QTEST_MAIN(ReportEngineTest)
#include "tst_reportengine.moc"
