// The report engine without a database: layout files read or refused with their line, the
// pages laid out (headings on every page, groups, totals, "n de m", forms in two copies),
// and the spreadsheet file.

#include "output/core/compose.h"
#include "output/core/csv.h"
#include "output/core/defaultlayouts.h"
#include "output/core/layout.h"
#include "output/core/sheet.h"
#include "output/core/values.h"
#include "output/core/xlsx.h"
#include "store/schema.h"
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
    QTemporaryDir dir;

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
        // A group that goes on to another page has its heading there again, marked.
        QVERIFY2(pageText(doc, 1).contains(u"Cliente\nValor\nStatus: A caminho (continuação)\n"_s),
                 qPrintable(pageText(doc, 1).left(300)));
        QCOMPARE(all.count(u"(continuação)"_s), n - 1);
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

    // The CSV file: a grouped list carries its group's value on every row, under the word
    // of the group's heading, since a sheet has no headings between rows.
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

    // The workbook keeps what the data is: codes and tax numbers as text with their zeros
    // (never 8 for 0000008, never 1,12E+13), dates as dates shown dd/mm/yyyy, money as a
    // number shown with two decimals; a column of several fields is the text the page
    // prints. A title with characters a sheet's name cannot hold still makes a workbook.
    void workbookCellsKeepTheirKinds() {
        ReportData d = dispatches(uR"(título "Atendimentos: 1ª/2ª quinzena"
[colunas]
coluna CODIGO "Nº" 20
coluna a2 "Data" 22 dd/mm/yyyy
coluna C3 "CNPJ" 30
coluna a19 "Valor" 25 "###,##0.00" soma
coluna "{a18} - {ST}" "Entregador e status" *
)"_s,
                                  2);
        d.columns << u"C3"_s;
        d.types << ColType::Text;
        d.rows[0][0] = u"0000008"_s;
        d.rows[0] << u"11222333000181"_s;
        d.rows[1] << QVariant();
        d.rows[1][1] = QVariant(QMetaType(QMetaType::QDate));
        d.rows[1][5] = qint64(123456);
        const QString path = dir.filePath(u"lista.xlsx"_s);
        QString error;
        QVERIFY2(writeXlsx(d, path, error), qPrintable(error));
        const XlsxSheet x = readXlsx(path);
        QVERIFY2(x.ok, qPrintable(x.problem));
        QCOMPARE(x.sheetName, u"Atendimentos 1ª2ª quinzena"_s);
        for (const QString& code : {u"A2"_s, u"C2"_s, u"A3"_s, u"E2"_s})
            QVERIFY2(x.type(code) == u"s"_s || x.type(code) == u"inlineStr"_s, qPrintable(code));
        QCOMPARE(x.text(u"A2"_s), u"0000008"_s);
        QCOMPARE(x.text(u"C2"_s), u"11222333000181"_s);
        QCOMPARE(x.text(u"E2"_s), u"ZÉ - A caminho"_s);
        QCOMPARE(x.type(u"B2"_s), u"n"_s);
        QCOMPARE(x.value(u"B2"_s), XlsxSheet::serial(QDate(2025, 3, 1)));
        QCOMPARE(x.format(u"B2"_s), u"dd/mm/yyyy"_s);
        QCOMPARE(x.type(u"D3"_s), u"n"_s);
        QCOMPARE(x.value(u"D3"_s).toDouble(), 1234.56);
        QCOMPARE(x.format(u"D3"_s), u"#,##0.00"_s);
        // An empty date or tax number is an empty cell, not a zero.
        QVERIFY(!x.has(u"B3"_s) && !x.has(u"C3"_s));
    }

    // A work table keeps money and dates as text: the layout's formats say what they are,
    // and what cannot be read so stays text, as typed.
    void workbookOfTextColumns() {
        ReportData d;
        d.layout = parseLayout(uR"rpt(título "Caixa"
[colunas]
coluna A1 "Data" 18 dd/mm/yyyy
coluna A6 "Descritivo" *
coluna DE "Débito (R$)" 24 "###,##0.00"
)rpt"_s,
                               u"CX1.rpt"_s);
        d.table = u"rel_caixa"_s;
        d.columns = {u"A1"_s, u"A6"_s, u"DE"_s};
        d.types = {ColType::Text, ColType::Text, ColType::Text};
        d.rows << QVariantList{u"05/03/2025"_s, u"0012"_s, u"1.234,56"_s}
               << QVariantList{u"sem data"_s, u"ALUGUEL"_s, u"n/d"_s};
        const QString path = dir.filePath(u"caixa.xlsx"_s);
        QString error;
        QVERIFY2(writeXlsx(d, path, error), qPrintable(error));
        const XlsxSheet x = readXlsx(path);
        QVERIFY2(x.ok, qPrintable(x.problem));
        QCOMPARE(x.value(u"A2"_s), XlsxSheet::serial(QDate(2025, 3, 5)));
        QCOMPARE(x.format(u"A2"_s), u"dd/mm/yyyy"_s);
        QCOMPARE(x.text(u"B2"_s), u"0012"_s);
        QCOMPARE(x.value(u"C2"_s).toDouble(), 1234.56);
        QCOMPARE(x.text(u"A3"_s), u"sem data"_s);
        QCOMPARE(x.text(u"C3"_s), u"n/d"_s);
        QCOMPARE(QString::fromUtf8(toCsv(d).mid(3)),
                 u"Data;Descritivo;Débito (R$)\r\n05/03/2025;0012;1234,56\r\n"
                 u"sem data;ALUGUEL;n/d\r\n"_s);
    }

    // The slips are forms: each box a column, the boxes left blank for a signature none.
    // The slip has an address, a contact and a telephone for the client, the pickup and
    // the delivery: the headers tell them apart by the section they stand in.
    void slipHeaders() {
        const TableDef& t = rtx::table(u"atendimentos"_s);
        ReportData d;
        d.table = t.name;
        d.columns << t.codeColumn;
        d.types << ColType::Text;
        for (const Column& c : t.columns) {
            d.columns << c.name;
            d.types << c.type;
        }
        QVariantList row;
        for (int i = 0; i < d.columns.size(); ++i)
            row << (d.types[i] == ColType::Money  ? QVariant(qint64(1250))
                    : d.types[i] == ColType::Date ? QVariant(QDate(2025, 3, 1))
                                                  : QVariant(d.columns[i] + u" texto"_s));
        row[0] = u"0000042"_s;
        d.rows << row;
        auto headers = [&](const QString& file) {
            for (const DefaultLayout& l : defaultLayouts())
                if (l.file == file) d.layout = parseLayout(l.text, l.file);
            QStringList out;
            for (const SheetColumn& c : sheetOf(d).columns)
                out << c.header;
            return out;
        };
        auto column = [&](const QString& header) {
            const Sheet sheet = sheetOf(d);
            for (int i = 0; i < sheet.columns.size(); ++i)
                if (sheet.columns[i].header == header) return sheet.rows[0][i].toString();
            return u"(nenhuma)"_s;
        };
        for (const QString& file : {u"ATENDE.rpt"_s, u"ATENDE1.rpt"_s}) {
            const QStringList h = headers(file);
            QCOMPARE(QSet<QString>(h.begin(), h.end()).size(), h.size());
            QVERIFY2(!h.join(u'|').contains(u"assinatura"_s), qPrintable(h.join(u'|')));
            QCOMPARE(column(u"Contato coleta"_s), u"a10 texto"_s);
            QCOMPARE(column(u"Telefone entrega"_s), u"a15 texto"_s);
            QCOMPARE(column(u"Tarefa coleta"_s), u"a12 texto"_s);
        }
        headers(u"ATENDE.rpt"_s);
        QCOMPARE(column(u"Endereço cliente"_s), u"a7 texto"_s);
        QCOMPARE(column(u"Endereço coleta"_s), u"a9 texto"_s);
        QCOMPARE(column(u"Endereço entrega"_s), u"a13 texto"_s);
    }

    // A form whose boxes grow: a long address and many lines of remarks are printed whole,
    // what follows moves down and onto a second page; a box that does not grow marks what
    // it leaves out with "…".
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
        QString address;
        for (int i = 0; address.size() < 150; ++i)
            address += u"RUA%1 "_s.arg(i);
        QStringList remarks;
        for (int i = 1; i <= 12; ++i)
            remarks << u"LINHA%1 DAS OBSERVACOES DO CLIENTE PARA O ENTREGADOR LER"_s.arg(i);
        d.rows[0][2] = address.trimmed();
        d.rows[0][3] = remarks.join(u'\n');
        Document doc = compose(d);
        QCOMPARE(doc.pages.size(), 1);
        QString all = pageText(doc, 0);
        for (const QString& word : address.split(u' ', Qt::SkipEmptyParts))
            QVERIFY2(all.contains(word), qPrintable(word));
        for (const QString& line : remarks)
            QVERIFY2(all.contains(line.section(u' ', 0, 0) + u' '), qPrintable(line));
        // The box that does not grow ends its second line in "…".
        QVERIFY(all.contains(u"…"_s));
        QVERIFY(all.endsWith(u"ASSINATURA\nPágina 1 de 1"_s));
        // Five times the remarks: the form runs onto a second page, each page with its
        // heading and foot, the remarks going on under their label.
        d.rows[0][3] = (remarks + remarks + remarks + remarks + remarks).join(u'\n');
        doc = compose(d);
        const int n = int(doc.pages.size());
        QVERIFY(n >= 2);
        QString pages;
        for (int p = 0; p < n; ++p) {
            QVERIFY(pageText(doc, p).startsWith(u"ORDEM\n"_s));
            pages += pageText(doc, p) + u'\n';
        }
        QVERIFY(pages.contains(u"Observações (continuação)"_s));
        QCOMPARE(pages.count(u"LINHA12 "_s), 5);
        QVERIFY(pageText(doc, n - 1).endsWith(u"ASSINATURA\nPágina %1 de %1"_s.arg(n)));
        // Every line stays inside the page.
        for (const Page& p : doc.pages)
            for (const Item& i : p.items)
                QVERIFY(i.rect.bottom() <= doc.height - 10 + 0.01);
    }

    // A list's column that grows holds its whole text, the row as tall as it needs; one that
    // does not is left to end in "…" where it is drawn.
    void listColumnsThatGrow() {
        ReportData d = dispatches(u"[colunas]\ncoluna a6 \"Cliente\" 30 crescer\n"
                                  u"coluna CODIGO \"Nº\" 20\n"_s,
                                  2);
        d.rows[0][2] = u"RESTAURANTE SABOR E CIA FILIAL DO CENTRO VELHO DE SÃO PAULO"_s;
        const Document doc = compose(d);
        const QString t = pageText(doc, 0);
        for (const QString& word : d.rows[0][2].toString().split(u' '))
            QVERIFY2(t.contains(word), qPrintable(word));
        double second = 0, first = 0;
        for (const Item& i : doc.pages[0].items) {
            if (i.text == u"0000001"_s) first = i.rect.top();
            if (i.text == u"0000002"_s) second = i.rect.top();
        }
        QVERIFY2(second - first > 3 * lineHeight(9), qPrintable(t));
    }

    void breakingLines() {
        auto chars = [](const QString& t) { return double(t.size()); };
        QCOMPARE(breakLines(u"AV. PAULISTA 900 CONJ 12"_s, 12, chars),
                 (QStringList{u"AV. PAULISTA"_s, u"900 CONJ 12"_s}));
        QCOMPARE(breakLines(u"ABCDEFGHIJ KL"_s, 4, chars),
                 (QStringList{u"ABCD"_s, u"EFGH"_s, u"IJ"_s, u"KL"_s}));
        QCOMPARE(breakLines(u"UM\r\n\nDOIS"_s, 10, chars),
                 (QStringList{u"UM"_s, QString(), u"DOIS"_s}));
    }

    // Bills due across a year end, kept as text by the work table, sort as dates; amounts
    // as numbers; words blind to case and accents; ties keep their order.
    void sortsByTypedValues() {
        ReportData d;
        d.layout = parseLayout(u"ordem A1 A2\n[colunas]\ncoluna A1 \"V\" 20\n"_s, u"c.rpt"_s);
        d.columns = {u"A1"_s, u"A2"_s, u"A3"_s};
        d.types = {ColType::Text, ColType::Text, ColType::Text};
        const QStringList due{u"05/01/2027"_s, u"24/10/2026"_s, u"15/12/2026"_s, u"02/11/2026"_s,
                              u"24/10/2026"_s};
        const QStringList amount{u"1,00"_s, u"1.000,00"_s, u"3,00"_s, u"4,00"_s, u"200,00"_s};
        for (int i = 0; i < due.size(); ++i)
            d.rows << QVariantList{due[i], amount[i], QString::number(i)};
        sortRows(d);
        QStringList got;
        for (const QVariantList& r : std::as_const(d.rows))
            got << r[0].toString() + u' ' + r[1].toString();
        QCOMPARE(got,
                 (QStringList{u"24/10/2026 200,00"_s, u"24/10/2026 1.000,00"_s,
                              u"02/11/2026 4,00"_s, u"15/12/2026 3,00"_s, u"05/01/2027 1,00"_s}));
        d.layout.order = {u"A3"_s};
        d.rows = {{QString(), QString(), u"Ébano"_s},
                  {QString(), QString(), u"abacate"_s},
                  {QString(), QString(), u"EBANO"_s},
                  {QString(), QString(), u""_s}};
        sortRows(d);
        got.clear();
        for (const QVariantList& r : std::as_const(d.rows))
            got << r[2].toString();
        QCOMPARE(got, (QStringList{u""_s, u"abacate"_s, u"Ébano"_s, u"EBANO"_s}));
    }

    // A name that no table, formula or word of the format answers to is said with its line;
    // the names of the other source of a two-source layout are not.
    void unknownNamesAreSaid() {
        ReportData d = dispatches(kList + u"texto \"{CLIENTEX} {DI} {empresa.fax}\"\n"_s, 1);
        d.layout = parseLayout(kList.left(kList.indexOf(u"[colunas]"_s)) +
                                   u"texto \"{CLIENTEX} {DI} {empresa.fax} {R15|empresa.nome}\"\n"
                                   u"[colunas]\ncoluna a6 \"Cliente\" *\ncoluna NADA \"X\" 20\n"_s,
                               u"t.rpt"_s);
        QCOMPARE(unknownNames(d),
                 (QStringList{u"linha 8: {CLIENTEX}"_s, u"linha 8: {empresa.fax}"_s,
                              u"linha 11: {NADA}"_s}));
        QCOMPARE(unknownNames(dispatches(kList, 1)), QStringList());
        for (const DefaultLayout& l : defaultLayouts()) {
            ReportData any;
            any.layout = parseLayout(l.text, l.file);
            QVERIFY2(unknownNames(any).isEmpty(),
                     qPrintable(l.file + unknownNames(any).join(u' ')));
        }
    }

    void numbersAsTheOfficeWritesThem() {
        QCOMPARE(formatTaxNumber(u"11222333000181"_s), u"11.222.333/0001-81"_s);
        QCOMPARE(formatTaxNumber(u"12345678909"_s), u"123.456.789-09"_s);
        QCOMPARE(formatTaxNumber(u"11.222.333/0001-81"_s), u"11.222.333/0001-81"_s);
        QCOMPARE(formatTaxNumber(u"ISENTO"_s), u"ISENTO"_s);
        QCOMPARE(formatTaxNumber(u"12ABC34501DE35"_s), u"12.ABC.345/01DE-35"_s);
        QCOMPARE(formatTaxNumber(u"12.abc.345/01de-35"_s), u"12.ABC.345/01DE-35"_s);
        QCOMPARE(formatTaxNumber(u"CONSTRUTORA 1"_s), u"CONSTRUTORA 1"_s);
        QCOMPARE(formatPostcode(u"01310100"_s), u"01310-100"_s);
        QCOMPARE(formatPhone(u"1133334444"_s), u"(11) 3333-4444"_s);
        QCOMPARE(formatPhone(u"(11)3333-4444"_s), u"(11) 3333-4444"_s);
        QCOMPARE(formatPhone(u"11933334444"_s), u"(11) 93333-4444"_s);
        QCOMPARE(formatPhone(u"33334444"_s), u"3333-4444"_s);
        QCOMPARE(formatPhone(u"RAMAL 12"_s), u"RAMAL 12"_s);
        QCOMPARE(formatCount(1234567), u"1.234.567"_s);
        // In a layout: a column with its format, the company's numbers, the counts.
        ReportData d = dispatches(uR"([cabeçalho]
texto "CNPJ {empresa.cnpj} CEP {empresa.cep} Tel. {empresa.telefone}"
[colunas]
coluna a6 "Documento" 40 cnpj
coluna "{a18:telefone}" "Telefone" 30
coluna CODIGO "Conta" 20 conta
[fim]
total "{linhas} atendimentos"
)"_s,
                                  1234);
        d.company.cnpj = u"11222333000181"_s;
        d.company.postcode = u"01310100"_s;
        d.company.phone = u"1133334444"_s;
        d.rows[0][2] = u"11222333000181"_s;
        d.rows[0][3] = u"1133334444"_s;
        const Document doc = compose(d);
        const QString first = pageText(doc, 0);
        QVERIFY(first.startsWith(
            u"CNPJ 11.222.333/0001-81 CEP 01310-100 Tel. (11) 3333-4444\nDocumento\nTelefone\n"
            u"Conta\n11.222.333/0001-81\n(11) 3333-4444\n"_s));
        QVERIFY(pageText(doc, int(doc.pages.size()) - 1).contains(u"1.234 atendimentos\n1.234"_s));
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
