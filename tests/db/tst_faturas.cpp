// The month's invoices: what an invoice gathers and its write-off, the screen that makes,
// prints, mails and writes them off, the company's PIX key, and the upgrade's grant.

#include "finance/cobra.h"
#include "finance/core/invoices.h"
#include "finance/core/pix.h"
#include "finance/faturas.h"
#include "output/core/invoicing.h"
#include "output/reportpreview.h"
#include "pdftext.h"
#include "registerdesk.h"
#include "registers/empe.h"
#include "screendriver.h"
#include "smtpserver.h"
#include "store/formats.h"
#include "store/migrations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <array>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;
namespace fin = rtx::finance;
namespace out = rtx::output;

namespace {

const QDate kFrom(2026, 3, 1);
const QDate kTo(2026, 3, 31);
const QString kQuoted = u"PADARIA D'ÁVILA & FILHOS AÇÚCAR"_s;

void setCompanyPix(Store& st, const QString& days = u"15"_s) {
    st.execute(u"UPDATE empresa SET e10 = ?, e11 = ?, e12 = ?, e13 = ?, e14 = ?"_s,
               {u"CNPJ"_s, u"11.222.333/0001-81"_s, u"Rotalix Entregas Rápidas Ltda"_s,
                u"São Paulo"_s, days});
}

void addClient(Store& st, const QString& code, const QString& name, const QString& days = {}) {
    st.insert(u"clientes"_s, {{u"CODIGO"_s, code},
                              {u"C1"_s, u"ATIVO"_s},
                              {u"C3"_s, u"11222333000181"_s},
                              {u"C5"_s, name},
                              {u"C11"_s, u"financeiro@cliente.com.br"_s},
                              {u"C14"_s, u"RUA DO ORATÓRIO, 55"_s},
                              {u"C16"_s, u"SÃO PAULO"_s},
                              {u"C17"_s, u"SP"_s},
                              {u"prazo"_s, days.isEmpty() ? QVariant() : QVariant(days)}});
}

// A dispatch and the receivable its money left, entered on its day.
void dispatchWithReceivable(Store& st, int number, const QDate& day, const QString& client,
                            qint64 cents, const QString& status = u"A receber"_s) {
    const QString code = u"%1"_s.arg(number, 7, 10, QChar(u'0'));
    st.insert(u"atendimentos"_s, {{u"CODIGO"_s, code},
                                  {u"a2"_s, day},
                                  {u"a6"_s, client},
                                  {u"a9"_s, u"RUA A, %1"_s.arg(number)},
                                  {u"a13"_s, u"AV. B, %1"_s.arg(number)},
                                  {u"a20"_s, u"FATURAR"_s},
                                  {u"a21"_s, u"ENTREGA"_s},
                                  {u"a19"_s, cents}});
    st.insert(u"contas_receber"_s, {{u"codigo"_s, u"%1"_s.arg(number, 5, 10, QChar(u'0'))},
                                    {u"c1"_s, day},
                                    {u"c2"_s, status},
                                    {u"c3"_s, code},
                                    {u"c5"_s, u"ATENDIMENTO"_s},
                                    {u"c6"_s, client},
                                    {u"c12"_s, cents},
                                    {u"c13"_s, day}});
}

qint64 sumOf(const QString& sql, const QVariantList& params = {}) {
    return Store::current().scalar(sql, params).toLongLong();
}

// The invoice's total, what its receivables are worth, and what was received of them.
struct Agreement {
    qint64 invoice, receivables, received;
    int open;
};
Agreement agreementOf(const QString& code) {
    const QString items =
        u"SELECT f2 FROM faturas_contas WHERE f1 = ?"_s; // the receivables of the invoice
    return {
        sumOf(u"SELECT f5 FROM faturas WHERE codigo = ?"_s, {code}),
        sumOf(u"SELECT COALESCE(SUM(c12), 0) FROM contas_receber WHERE codigo IN (%1)"_s.arg(items),
              {code}),
        sumOf(u"SELECT COALESCE(SUM(c16), 0) FROM contas_receber WHERE codigo IN (%1)"_s.arg(items),
              {code}),
        int(sumOf(u"SELECT COUNT(*) FROM contas_receber WHERE c2 = 'A receber' AND "
                  u"codigo IN (%1)"_s.arg(items),
                  {code}))};
}

QString run(const QString& program, const QStringList& args, bool* ok = nullptr) {
    QProcess p;
    p.start(program, args);
    const bool done = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit;
    if (ok) *ok = done && p.exitCode() == 0;
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The QR code of a page of a PDF as a reader sees it: the page rendered to PNG at 150 dots
// per inch, read by zbarimg.
QString qrOfPage(const QString& pdf, int page, const QString& workDir) {
    const QString prefix = workDir + u"/pagina"_s;
    bool ok = false;
    run(u"pdftoppm"_s,
        {u"-r"_s, u"150"_s, u"-f"_s, QString::number(page), u"-l"_s, QString::number(page),
         u"-singlefile"_s, u"-png"_s, pdf, prefix},
        &ok);
    if (!ok) return u"(pdftoppm falhou)"_s;
    const QString text = run(u"zbarimg"_s, {u"--raw"_s, u"-q"_s, prefix + u".png"_s}, &ok);
    if (!ok) return u"(zbarimg não leu o código)"_s;
    return text.trimmed();
}

int pdfPages(const QString& pdf) {
    const QString info = run(u"pdfinfo"_s, {pdf});
    for (const QString& l : info.split(u'\n'))
        if (l.startsWith(u"Pages:"_s)) return l.mid(6).trimmed().toInt();
    return 0;
}

// The period of March typed on a screen and listed.
void listMarch(QDialog* s) {
    typeAndLeave(s, u"k1"_s, u"01032026"_s);
    typeAndLeave(s, u"k2"_s, u"31032026"_s);
    click(s, u"Command9"_s);
}

} // namespace

class FaturasTest : public QObject {
    Q_OBJECT

private slots:
    // What an invoice gathers, what a second run leaves, and the write-off: every open
    // receivable of the invoice settled at its amount with one credit each, none that billing
    // settled before credited twice, a failure halfway leaving everything as it was.
    void invoiceGathersAndWritesOffExactlyItsReceivables() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        setCompanyPix(st);
        addClient(st, u"00007"_s, u"ACME LTDA"_s, u"5"_s);
        addClient(st, u"00008"_s, u"SEM CONTAS"_s);
        dispatchWithReceivable(st, 1, QDate(2026, 3, 1), u"ACME LTDA"_s, 1000);
        dispatchWithReceivable(st, 2, QDate(2026, 3, 31), u"acme ltda"_s, 2550);
        dispatchWithReceivable(st, 3, QDate(2026, 3, 15), u"ACME LTDA"_s, 700);
        dispatchWithReceivable(st, 4, QDate(2026, 3, 16), u"ACME LTDA"_s, 999, u"Recebida"_s);
        dispatchWithReceivable(st, 5, QDate(2026, 4, 1), u"ACME LTDA"_s, 5000);  // next month
        dispatchWithReceivable(st, 6, QDate(2026, 2, 28), u"ACME LTDA"_s, 5000); // last month
        dispatchWithReceivable(st, 7, QDate(2026, 3, 10), u"OUTRO"_s, 300);

        const auto listed = fin::clientsToInvoice(st, kFrom, kTo);
        QCOMPARE(listed.size(), 2);
        QCOMPARE(listed[0].client.toUpper(), u"ACME LTDA"_s);
        QCOMPARE(listed[0].count, 3);
        QCOMPARE(listed[0].total, qint64(4250));

        const QDate today(2026, 4, 2);
        const auto made =
            out::makeInvoices(st, {u"ACME LTDA"_s, u"SEM CONTAS"_s}, kFrom, kTo, today);
        QCOMPARE(made.size(), 1); // the client with none gets none
        const fin::Invoice inv = made.first();
        QCOMPARE(inv.total, qint64(4250));
        QCOMPARE(inv.due, std::optional<QDate>(today.addDays(5))); // his own days
        QCOMPARE(st.count(u"faturas_contas"_s), 3);
        // Nothing is gathered twice; the other client is still to invoice.
        QVERIFY(out::makeInvoices(st, {u"ACME LTDA"_s}, kFrom, kTo, today).isEmpty());
        QCOMPARE(fin::clientsToInvoice(st, kFrom, kTo).size(), 1);
        QCOMPARE(st.count(u"faturas"_s), 1);

        // The sheet: one line per dispatch, the total, the charge of that total.
        const out::InvoiceSheet sheet = out::readInvoiceSheet(st, inv.code);
        QCOMPARE(sheet.lines.size(), 3);
        QCOMPARE(sheet.lines.first().route, u"RUA A, 1 -> AV. B, 1"_s);
        QVERIFY(sheet.payload.contains(u"540542.50"_s));
        QVERIFY(sheet.payload.contains(fin::invoiceTxid(inv.code)));

        // Billing writes one of them off first; a failure of the book halfway through the
        // invoice's write-off leaves everything as it was.
        st.execute(u"UPDATE contas_receber SET c2 = 'Recebida', c16 = c12, c15 = ? "
                   u"WHERE codigo = '00003'"_s,
                   {today});
        const qint64 credits = st.count(u"caixa"_s);
        refuseCredit(st, u"0000002"_s);
        QVERIFY_THROWS_EXCEPTION(StoreError, fin::writeOffInvoice(st, inv.code, today));
        QCOMPARE(st.count(u"caixa"_s), credits);
        QCOMPARE(agreementOf(inv.code).open, 2);
        QCOMPARE(fin::loadInvoice(st, inv.code)->status, fin::invoiceOpen);
        refuseInserts(st, u"caixa"_s, false);

        QCOMPARE(fin::writeOffInvoice(st, inv.code, today), 2);
        const Agreement a = agreementOf(inv.code);
        QCOMPARE(a.receivables, a.invoice);
        QCOMPARE(a.received, a.invoice);
        QCOMPARE(a.open, 0);
        QCOMPARE(st.count(u"caixa"_s), credits + 2);
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM caixa WHERE A3 = '0000003'"_s), 0);
        QCOMPARE(fin::loadInvoice(st, inv.code)->paid, std::optional<QDate>(today));
        // Other receivables stay open.
        QCOMPARE(countRows(u"SELECT COUNT(*) FROM contas_receber WHERE c2 = 'A receber'"_s), 3);
    }

    // Billing writes off a paid invoice by its number: asked through the prompt, an unknown
    // number and a "Não" write nothing; the number without its zeros settles exactly the
    // invoice's receivables, one credit each, and the list of the period follows; a second
    // time it is said to be paid, nothing credited twice.
    void billingWritesOffAnInvoice() {
        Desk<cobra> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        setCompanyPix(st);
        addClient(st, u"00007"_s, u"ACME LTDA"_s);
        dispatchWithReceivable(st, 1, QDate(2026, 3, 2), u"ACME LTDA"_s, 1000);
        dispatchWithReceivable(st, 2, QDate(2026, 3, 20), u"ACME LTDA"_s, 2550);
        dispatchWithReceivable(st, 3, QDate(2026, 3, 10), u"OUTRO"_s, 300);
        const auto made = out::makeInvoices(st, {u"ACME LTDA"_s}, kFrom, kTo, QDate(2026, 4, 1));
        QCOMPARE(made.size(), 1);
        const QString code = made.first().code;
        const QString bare = QString::number(code.toLongLong());
        QVERIFY(bare != code); // typed without the zeros the invoice prints

        QVERIFY(d.open());
        cobra* s = d.s();
        auto* bills = control<MSFlexGrid>(s, u"Grid1"_s);
        listMarch(s);
        QCOMPARE(shown(s, u"TT"_s), u"38,50"_s);
        const qint64 credits = st.count(u"caixa"_s);
        d.prompts.clear();

        d.prompts.answerText(u"999"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"A fatura 999 não existe."_s);
        d.prompts.answerText(bare);
        d.prompts.answerNo();
        click(s, u"Command16"_s);
        QVERIFY(d.prompts.lastText().startsWith(u"Confirma a baixa da fatura %1 de ACME LTDA, "
                                                u"R$ 35,50"_s.arg(code)));
        QCOMPARE(st.count(u"caixa"_s), credits);
        QCOMPARE(agreementOf(code).open, 2);

        d.prompts.answerText(u" %1 "_s.arg(bare));
        d.prompts.answerYes();
        click(s, u"Command16"_s);
        QCOMPARE(agreementOf(code).open, 0);
        QCOMPARE(st.count(u"caixa"_s), credits + 2);
        QTRY_COMPARE(bills->rows(), 2);
        QCOMPARE(shown(s, u"TT"_s), u"3,00"_s);

        d.prompts.answerText(code);
        click(s, u"Command16"_s);
        QCOMPARE(st.count(u"caixa"_s), credits + 2);
    }

    // The screen: 300 dispatches of a client whose name has a quote and accents, and one
    // other client; both marked, one run, two PDFs in the month's folder, the first in the
    // preview; the big one on several pages, its total the receivables', its QR read back.
    // Then the invoice written off from the second tab.
    void generateFromTheScreen() {
        Desk<Faturas> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        addClient(st, u"00012"_s, kQuoted);
        addClient(st, u"00013"_s, u"BANCA DO ZÉ"_s);
        qint64 expected = 0;
        {
            UnitOfWork unit(st);
            for (int i = 1; i <= 300; ++i) {
                const qint64 cents = 1000 + (i * 37) % 5000;
                dispatchWithReceivable(st, i, kFrom.addDays(i % 31), kQuoted, cents);
                expected += cents;
            }
            dispatchWithReceivable(st, 301, QDate(2026, 3, 20), u"BANCA DO ZÉ"_s, 1234);
            unit.commit();
        }
        QVERIFY(d.open());
        Faturas* s = d.s();
        auto* clients = control<MSFlexGrid>(s, u"Grid1"_s);
        auto* invoices = control<MSFlexGrid>(s, u"Grid2"_s);

        listMarch(s);
        QCOMPARE(clients->rows(), 3);
        QCOMPARE(shown(s, u"TT"_s), formatMoney(expected + 1234));

        // No PIX key in the company: said so, nothing made.
        doubleClickRow(clients, 1);
        doubleClickRow(clients, 2);
        click(s, u"Command1"_s);
        QVERIFY(d.prompts.lastText().startsWith(u"A chave PIX da empresa"_s));
        QCOMPARE(st.count(u"faturas"_s), 0);

        setCompanyPix(st);
        d.prompts.answerYes();
        click(s, u"Command1"_s);
        QCOMPARE(d.prompts.count(ScriptedPrompter::Kind::Error), 0);
        const QString folder = d.inst.folder() + u"/Faturas 03.2026"_s;
        QCOMPARE(s->writtenFiles().size(), 2);
        QCOMPARE(clients->rows(), 1); // nothing left to invoice

        const QString bigCode =
            st.scalar(u"SELECT codigo FROM faturas WHERE f1 = '00012'"_s).toString();
        const QString pdf =
            folder + u"/00012 PADARIA D'ÁVILA & FILHOS AÇÚCAR - fatura %1.pdf"_s.arg(bigCode);
        QVERIFY2(s->writtenFiles().contains(pdf), qPrintable(s->writtenFiles().join(u"; "_s)));

        // The preview shows the first invoice; it has the pages of the file.
        QVERIFY(s->preview());
        const int pages = pdfPages(pdf);
        QVERIFY2(pages >= 5, qPrintable(QString::number(pages)));
        const bool bigFirst =
            st.scalar(u"SELECT MIN(CAST(codigo AS BIGINT)) FROM faturas"_s).toLongLong() ==
            bigCode.toLongLong();
        if (bigFirst) QCOMPARE(s->preview()->pageCount(), pages);
        const QStringList text = pdfLines(pdfText(pdf));
        const QString all = text.join(u'\n');
        QVERIFY(all.contains(u"Cliente: "_s + kQuoted));
        QVERIFY(all.contains(u"TOTAL: R$ "_s + formatMoney(expected)));
        int lines = 0;
        for (const QString& l : text)
            if (l.contains(u" -> AV. B, "_s)) ++lines;
        QCOMPARE(lines, 300);

        // The QR code of the last page, read by a reader of its own, is the invoice's payload.
        const out::InvoiceSheet sheet = out::readInvoiceSheet(st, bigCode);
        const QString read = qrOfPage(pdf, pages, d.inst.folder());
        QCOMPARE(read, sheet.payload); // what the payload holds is the core's and PIX test's
        // The "copia e cola" text is on the page as well, cut into lines, every character
        // kept (the blanks of the name too).
        const qsizetype at = text.indexOf(u"PIX copia e cola:"_s);
        QVERIFY(at > 0);
        QString copied;
        for (qsizetype i = at + 1; i < text.size() && !text[i].startsWith(u"Página"_s); ++i)
            copied += text[i];
        QCOMPARE(copied, sheet.payload);

        // The invoice written off from the second tab.
        invoices->setRow(gridRow(invoices, bigCode));
        d.prompts.answerYes();
        click(s, u"Command3"_s);
        QCOMPARE(agreementOf(bigCode).open, 0);
        QCOMPARE(invoices->textMatrix(gridRow(invoices, bigCode), 5), fin::invoicePaid);
    }

    // "Enviar por e-mail" against a mail server on the loopback: without the [email] group
    // it says which keys to fill; then each open invoice goes to its client with its own PDF
    // attached, byte for byte; a client without e-mail and a recipient the server refuses
    // are listed with the server's words, and once fixed a second press sends only those.
    void sendInvoicesByMail() {
        const QString python = pythonWithServer();
        if (python.isEmpty()) QSKIP("python3-aiosmtpd ausente");
        Desk<Faturas> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        setCompanyPix(st);
        addClient(st, u"00021"_s, u"ACME LTDA"_s);
        addClient(st, u"00022"_s, u"BANCA DO ZÉ"_s);
        addClient(st, u"00023"_s, u"CASA RECUSADA"_s);
        addClient(st, u"00024"_s, u"JÁ PAGOU"_s);
        st.execute(u"UPDATE clientes SET C11 = '' WHERE CODIGO = '00022'"_s);
        st.execute(u"UPDATE clientes SET C11 = 'recusado@casa.com.br' WHERE CODIGO = '00023'"_s);
        dispatchWithReceivable(st, 1, QDate(2026, 3, 3), u"ACME LTDA"_s, 1500);
        dispatchWithReceivable(st, 2, QDate(2026, 3, 4), u"BANCA DO ZÉ"_s, 2500);
        dispatchWithReceivable(st, 3, QDate(2026, 3, 5), u"CASA RECUSADA"_s, 3500);
        dispatchWithReceivable(st, 4, QDate(2026, 3, 6), u"JÁ PAGOU"_s, 4500);
        QVERIFY(d.open());
        Faturas* s = d.s();
        listMarch(s);
        auto* clients = control<MSFlexGrid>(s, u"Grid1"_s);
        for (int row = 1; row < clients->rows(); ++row)
            doubleClickRow(clients, row);
        d.prompts.answerYes();
        click(s, u"Command1"_s);
        QCOMPARE(st.count(u"faturas"_s), 4);
        const auto codeOf = [&](const QString& client) {
            return st.scalar(u"SELECT codigo FROM faturas WHERE f1 = ?"_s, {client}).toString();
        };
        QCOMPARE(fin::writeOffInvoice(st, codeOf(u"00024"_s)), 1); // paid: not charged again
        click(s, u"Command9"_s);
        delete s->preview();

        // No mail server set: said so, with the keys to fill, nothing asked.
        d.prompts.clear();
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.texts(ScriptedPrompter::Kind::Question).size(), 0);
        QVERIFY2(d.prompts.lastText().contains(u"[email]"_s) &&
                     d.prompts.lastText().contains(u"servidor"_s),
                 qPrintable(d.prompts.lastText()));

        SmtpServer server(python, freePort());
        QVERIFY(server.started());
        {
            QSettings ini(d.inst.folder() + u"/rotalix.ini"_s, QSettings::IniFormat);
            ini.setValue(u"email/servidor"_s, u"127.0.0.1"_s);
            ini.setValue(u"email/porta"_s, server.port());
            ini.setValue(u"email/tls"_s, u"nao"_s);
            ini.setValue(u"email/remetente"_s, u"Financeiro <financeiro@rotalix.com.br>"_s);
        }
        d.prompts.clear();
        d.prompts.answerYes();
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.texts().value(0), u"Confirma o envio por e-mail de 3 fatura(s)?"_s);
        QList<QJsonObject> got = server.messages();
        QCOMPARE(got.size(), 1);
        const QString acme = codeOf(u"00021"_s);
        QCOMPARE(got[0][u"to"_s].toArray().first().toString(), u"financeiro@cliente.com.br"_s);
        const QJsonArray files = got[0][u"attachments"_s].toArray();
        QCOMPARE(files.size(), 1);
        const QString pdf =
            d.inst.folder() + u"/Faturas 03.2026/00021 ACME LTDA - fatura %1.pdf"_s.arg(acme);
        QFile sent(files[0][u"file"_s].toString()), kept(pdf);
        QVERIFY(sent.open(QIODevice::ReadOnly) && kept.open(QIODevice::ReadOnly));
        QCOMPARE(sent.readAll(), kept.readAll());

        // One message lists both failures, each with its client and why.
        QCOMPARE(d.prompts.count(ScriptedPrompter::Kind::Error), 1);
        const QString listed = d.prompts.texts(ScriptedPrompter::Kind::Error).first();
        QVERIFY2(listed.contains(u"BANCA DO ZÉ (fatura %1): Cliente sem e-mail no cadastro."_s.arg(
                     codeOf(u"00022"_s))),
                 qPrintable(listed));
        QVERIFY2(listed.contains(u"CASA RECUSADA (fatura %1, recusado@casa.com.br): "_s.arg(
                     codeOf(u"00023"_s))) &&
                     listed.contains(u"Caixa postal inexistente"_s),
                 qPrintable(listed));

        // The registers fixed, the second press sends those two only; a third has nothing.
        st.execute(u"UPDATE clientes SET C11 = 'banca@ze.com.br' WHERE CODIGO = '00022'"_s);
        st.execute(u"UPDATE clientes SET C11 = 'casa@casa.com.br' WHERE CODIGO = '00023'"_s);
        d.prompts.clear();
        d.prompts.answerYes();
        click(s, u"Command4"_s);
        QCOMPARE(server.recipients(), (QStringList{u"financeiro@cliente.com.br"_s,
                                                   u"banca@ze.com.br"_s, u"casa@casa.com.br"_s}));
        click(s, u"Command4"_s);
        QCOMPARE(server.messages().size(), 3);
    }

    // The company register: the key checked as its kind requires (the kinds' rules are the
    // PIX test's), the focus on the field to fix, and the good key with its kind, name, city and
    // days saved.
    void companyRegisterChecksThePixKey() {
        Desk<empe> d(false);
        RTX_OPEN_DESK(d);
        empe* s = d.s();
        const auto save = [&](const QString& kind, const QString& key, const QString& days) {
            typeInto(s, u"E10"_s, kind);
            typeInto(s, u"E11"_s, key);
            typeInto(s, u"E14"_s, days);
            d.prompts.clear();
            click(s, u"Command16"_s);
            return d.prompts.lastText();
        };
        // Each refusal puts the focus on the field to fix.
        for (const auto& [kind, key, days, field] : QList<std::array<QString, 4>>{
                 {u"CNPJ"_s, u"11.222.333/0001-82"_s, u"10"_s, u"E11"_s},
                 {QString(), u"123e4567"_s, u"10"_s, u"E10"_s},
                 {u"TELEFONE"_s, u"(11) 98765-4321"_s, u"400"_s, u"E14"_s}}) {
            QVERIFY(save(kind, key, days) != u"Operação realizada com sucesso."_s);
            QCOMPARE(QApplication::focusWidget(), control(s, field));
        }
        QCOMPARE(rowTexts(u"SELECT * FROM empresa"_s, {}, {u"e11"_s}), QStringList{QString()});

        typeInto(s, u"E12"_s, u"Rotalix D'Ávila"_s);
        typeInto(s, u"E13"_s, u"São Paulo"_s);
        QCOMPARE(save(u"TELEFONE"_s, u"(11) 98765-4321"_s, u"20"_s),
                 u"Operação realizada com sucesso."_s);
        QCOMPARE(rowTexts(u"SELECT * FROM empresa"_s, {},
                          {u"e10"_s, u"e11"_s, u"e12"_s, u"e13"_s, u"e14"_s}),
                 (QStringList{u"TELEFONE"_s, u"(11) 98765-4321"_s, u"Rotalix D'Ávila"_s,
                              u"São Paulo"_s, u"20"_s}));
        QVERIFY(!out::invoicingProblem(d.inst.store()));
    }

    // A database of the step before: whoever was granted billing is granted the invoices,
    // whoever was not is not; the clients and the company get their new columns.
    void upgradeGrantsInvoicesToBilling() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        {
            Store st(db.settings());
            migrate(st, migrations().mid(0, 4));
            for (const auto& [password, access] :
                 QList<std::pair<QString, QString>>{{u"ana"_s, u"Sim"_s}, {u"beto"_s, u"Não"_s}}) {
                st.execute(u"INSERT INTO funcionarios (x1, x8) VALUES (?, ?)"_s,
                           {password.toUpper(), password});
                st.execute(u"INSERT INTO permissoes (a1, a2, a4, a5) VALUES (?, ?, ?, ?)"_s,
                           {password, password.toUpper(), u"Cobrança"_s, access});
            }
        }
        Store st(db.settings());
        st.ensureSchema();
        const QString invoicesOf = u"SELECT a5 FROM permissoes WHERE a4 = 'Faturas' AND a1 = "
                                   u"(SELECT x8 FROM funcionarios WHERE x1 = ?)"_s;
        QCOMPARE(st.scalar(invoicesOf, {u"ANA"_s}).toString(), u"Sim"_s);
        QCOMPARE(st.scalar(invoicesOf, {u"BETO"_s}).toString(), u"Não"_s);
        st.execute(u"INSERT INTO faturas_contas (f1, f2) VALUES ('000001', '00001')"_s);
        // A receivable stands on one invoice at most.
        QVERIFY_THROWS_EXCEPTION(
            StoreError,
            st.execute(u"INSERT INTO faturas_contas (f1, f2) VALUES ('000002', '00001')"_s));
    }
};

QTEST_MAIN(FaturasTest)
#include "tst_faturas.moc"
