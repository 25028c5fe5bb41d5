// The month's invoices: what an invoice gathers and its write-off from billing, the screen
// that makes, prints and mails them, the company's PIX key, and the upgrade's grant.

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

#include <QFile>
#include <QProcess>

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

void addClient(Store& st, const QString& code, const QString& name,
               const QString& mail = u"financeiro@cliente.com.br"_s, const QVariant& days = {}) {
    st.execute(u"INSERT INTO clientes (CODIGO, C1, C5, C11, prazo) VALUES (?, 'ATIVO', ?, ?, ?)"_s,
               {code, name, mail, days});
}

// A dispatch and the receivable its money left, entered on its day.
void dispatchWithReceivable(Store& st, int number, const QDate& day, const QString& client,
                            qint64 cents, const QString& status = u"A receber"_s) {
    const QString code = u"%1"_s.arg(number, 7, 10, QChar(u'0'));
    st.execute(u"INSERT INTO atendimentos (CODIGO, a2, a6, a9, a13, a20, a21, a19) "
               u"VALUES (?, ?, ?, ?, ?, 'FATURAR', 'ENTREGA', ?)"_s,
               {code, day, client, u"RUA A, %1"_s.arg(number), u"AV. B, %1"_s.arg(number), cents});
    st.execute(u"INSERT INTO contas_receber (codigo, c1, c2, c3, c5, c6, c12, c13) "
               u"VALUES (?, ?, ?, ?, 'ATENDIMENTO', ?, ?, ?)"_s,
               {u"%1"_s.arg(number, 5, 10, QChar(u'0')), day, status, code, client, cents, day});
}

// A figure of the receivables an invoice gathered; by default how many are still open.
qint64 ofInvoice(const QString& code,
                 const QString& figure = u"COUNT(CASE WHEN c2 = 'A receber' THEN 1 END)"_s) {
    return Store::current()
        .scalar(u"SELECT %1 FROM contas_receber WHERE codigo IN "
                u"(SELECT f2 FROM faturas_contas WHERE f1 = ?)"_s.arg(figure),
                {code})
        .toLongLong();
}

QString run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput());
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
    // What an invoice gathers and what a second run leaves; then billing writes it off by its
    // number typed without the zeros: a failure of the book halfway says the engine's words
    // and leaves everything as it was; then every open receivable of the invoice is settled
    // at its amount with one credit each, none that billing settled before credited twice,
    // the list follows, and a second time nothing is credited.
    void invoiceGathersAndBillingWritesItOff() {
        Desk<cobra> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        setCompanyPix(st);
        addClient(st, u"00007"_s, u"ACME LTDA"_s, u"a@acme.com.br"_s, u"5"_s);
        addClient(st, u"00008"_s, u"SEM CONTAS"_s);
        dispatchWithReceivable(st, 1, QDate(2026, 3, 1), u"ACME LTDA"_s, 1000);
        dispatchWithReceivable(st, 2, QDate(2026, 3, 31), u"acme ltda"_s, 2550);
        dispatchWithReceivable(st, 3, QDate(2026, 3, 15), u"ACME LTDA"_s, 700);
        dispatchWithReceivable(st, 4, QDate(2026, 3, 16), u"ACME LTDA"_s, 999, u"Recebida"_s);
        dispatchWithReceivable(st, 5, QDate(2026, 4, 1), u"ACME LTDA"_s, 5000); // next month
        dispatchWithReceivable(st, 7, QDate(2026, 3, 10), u"OUTRO"_s, 300);
        const QDate today(2026, 4, 2);
        const auto made =
            out::makeInvoices(st, {u"ACME LTDA"_s, u"SEM CONTAS"_s}, kFrom, kTo, today);
        QCOMPARE(made.size(), 1); // the client with none gets none
        const fin::Invoice inv = made.first();
        QCOMPARE(inv.total, qint64(4250));
        QCOMPARE(inv.due, std::optional<QDate>(today.addDays(5))); // his own days
        QVERIFY(out::makeInvoices(st, {u"ACME LTDA"_s}, kFrom, kTo, today).isEmpty());
        QVERIFY(out::readInvoiceSheet(st, inv.code).payload.contains(u"540542.50"_s));

        st.execute(u"UPDATE contas_receber SET c2 = 'Recebida', c16 = c12, c15 = ? "
                   u"WHERE codigo = '00003'"_s,
                   {today});
        const QString bare = QString::number(inv.code.toLongLong());
        QVERIFY(d.open());
        cobra* s = d.s();
        listMarch(s);
        const qint64 credits = st.count(u"caixa"_s);
        refuseCredit(st, u"0000002"_s);
        d.prompts.answerText(bare);
        d.prompts.answerYes();
        click(s, u"Command16"_s);
        QVERIFY(d.prompts.texts(ScriptedPrompter::Kind::Question)
                    .value(0)
                    .startsWith(
                        u"Confirma a baixa da fatura %1 de ACME LTDA, R$ 42,50"_s.arg(inv.code)));
        QVERIFY2(d.prompts.lastText().contains(u"disco cheio (teste)"_s),
                 qPrintable(d.prompts.lastText()));
        QCOMPARE(st.count(u"caixa"_s), credits);
        QCOMPARE(ofInvoice(inv.code), 2);
        refuseInserts(st, u"caixa"_s, false);

        d.prompts.answerText(u" %1 "_s.arg(bare));
        d.prompts.answerYes();
        click(s, u"Command16"_s);
        QCOMPARE(ofInvoice(inv.code), 0);
        QCOMPARE(ofInvoice(inv.code, u"COALESCE(SUM(c16), 0)"_s), inv.total);
        QCOMPARE(st.count(u"caixa"_s), credits + 2);
        QCOMPARE(fin::loadInvoice(st, inv.code)->paid, std::optional<QDate>(QDate::currentDate()));
        QTRY_COMPARE(control<MSFlexGrid>(s, u"Grid1"_s)->rows(), 2);
        d.prompts.answerText(inv.code);
        click(s, u"Command16"_s);
        QCOMPARE(st.count(u"caixa"_s), credits + 2);
    }

    // 300 dispatches of a client whose name has a quote and accents, and three others: without
    // the company's PIX key nothing is made; with it, one PDF each in the month's folder, the
    // big one on several pages with its total and its QR code read back. Mailed through a
    // server on the loopback, each with its own PDF byte for byte; no e-mail and a refused
    // recipient listed in one message, a paid one not sent; once fixed, a second press sends.
    void generateAndMailFromTheScreen() {
        Desk<Faturas> d(false);
        RTX_REQUIRE_INSTALL(d.inst);
        Store& st = d.inst.store();
        addClient(st, u"00012"_s, kQuoted);
        addClient(st, u"00013"_s, u"BANCA DO ZÉ"_s, u""_s);
        addClient(st, u"00014"_s, u"CASA"_s, u"recusado@casa.com.br"_s);
        addClient(st, u"00015"_s, u"JÁ PAGOU"_s);
        qint64 expected = 0;
        {
            UnitOfWork unit(st);
            for (int i = 1; i <= 300; ++i) {
                const qint64 cents = 1000 + (i * 37) % 5000;
                dispatchWithReceivable(st, i, kFrom.addDays(i % 31), kQuoted, cents);
                expected += cents;
            }
            dispatchWithReceivable(st, 301, QDate(2026, 3, 20), u"BANCA DO ZÉ"_s, 1234);
            dispatchWithReceivable(st, 302, QDate(2026, 3, 21), u"CASA"_s, 1000);
            dispatchWithReceivable(st, 303, QDate(2026, 3, 22), u"JÁ PAGOU"_s, 1000);
            unit.commit();
        }
        QVERIFY(d.open());
        Faturas* s = d.s();
        auto* clients = control<MSFlexGrid>(s, u"Grid1"_s);
        listMarch(s);
        QCOMPARE(shown(s, u"TT"_s), formatMoney(expected + 3234));
        for (int row = 1; row < clients->rows(); ++row)
            doubleClickRow(clients, row);
        click(s, u"Command1"_s);
        QVERIFY(d.prompts.lastText().startsWith(u"A chave PIX da empresa"_s));
        QCOMPARE(st.count(u"faturas"_s), 0);

        setCompanyPix(st);
        d.prompts.answerYes();
        click(s, u"Command1"_s);
        QCOMPARE(s->writtenFiles().size(), 4);
        QVERIFY(s->preview());
        delete s->preview();
        const QString code =
            st.scalar(u"SELECT codigo FROM faturas WHERE f1 = '00012'"_s).toString();
        const QString pdf =
            d.inst.folder() +
            u"/Faturas 03.2026/00012 PADARIA D'ÁVILA & FILHOS AÇÚCAR - fatura %1.pdf"_s.arg(code);
        QVERIFY2(s->writtenFiles().contains(pdf), qPrintable(s->writtenFiles().join(u"; "_s)));
        const QString all = pdfLines(pdfText(pdf)).join(u'\n');
        QVERIFY(all.contains(u"Cliente: "_s + kQuoted));
        QVERIFY(all.contains(u"TOTAL: R$ "_s + formatMoney(expected)));
        QCOMPARE(all.count(u" -> AV. B, "_s), 300);
        // The last page rendered at 150 dots per inch and its QR code read by zbarimg.
        const int pages =
            run(u"pdfinfo"_s, {pdf}).section(u"Pages:"_s, 1).section(u'\n', 0, 0).trimmed().toInt();
        QVERIFY2(pages >= 5, qPrintable(QString::number(pages)));
        const QString png = d.inst.folder() + u"/pagina"_s;
        run(u"pdftoppm"_s, {u"-r"_s, u"150"_s, u"-f"_s, QString::number(pages), u"-l"_s,
                            QString::number(pages), u"-singlefile"_s, u"-png"_s, pdf, png});
        QCOMPARE(run(u"zbarimg"_s, {u"--raw"_s, u"-q"_s, png + u".png"_s}).trimmed(),
                 out::readInvoiceSheet(st, code).payload);

        fin::writeOffInvoice(
            st, st.scalar(u"SELECT codigo FROM faturas WHERE f1 = '00015'"_s).toString());
        click(s, u"Command9"_s); // the paid one is listed as paid
        const QString python = pythonWithServer();
        if (python.isEmpty()) QSKIP("python3-aiosmtpd ausente");
        SmtpServer server(python, freePort());
        QVERIFY(server.started());
        QFile ini(d.inst.folder() + u"/rotalix.ini"_s);
        QVERIFY(ini.open(QIODevice::Append));
        ini.write("\n[email]\nservidor=127.0.0.1\ntls=nao\nremetente=financeiro@rotalix.com.br\n");
        ini.write("porta=" + QByteArray::number(server.port()) + "\n");
        ini.close();
        d.prompts.clear();
        d.prompts.answerYes();
        click(s, u"Command4"_s);
        QCOMPARE(d.prompts.texts().value(0), u"Confirma o envio por e-mail de 3 fatura(s)?"_s);
        QCOMPARE(server.recipients(), QStringList{u"financeiro@cliente.com.br"_s});
        QFile sent(server.messages()[0][u"attachments"_s].toArray()[0][u"file"_s].toString()),
            kept(pdf);
        QVERIFY(sent.open(QIODevice::ReadOnly) && kept.open(QIODevice::ReadOnly));
        QCOMPARE(sent.readAll(), kept.readAll());
        const QStringList errors = d.prompts.texts(ScriptedPrompter::Kind::Error);
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors[0].contains(u"BANCA DO ZÉ (fatura "_s) &&
                     errors[0].contains(u"Cliente sem e-mail no cadastro."_s) &&
                     errors[0].contains(u"recusado@casa.com.br): "_s) &&
                     errors[0].contains(u"Caixa postal inexistente"_s),
                 qPrintable(errors[0]));

        st.execute(u"UPDATE clientes SET C11 = 'banca@ze.com.br' WHERE CODIGO = '00013'"_s);
        st.execute(u"UPDATE clientes SET C11 = 'casa@casa.com.br' WHERE CODIGO = '00014'"_s);
        d.prompts.answerYes();
        click(s, u"Command4"_s);
        QCOMPARE(server.recipients().mid(1),
                 (QStringList{u"banca@ze.com.br"_s, u"casa@casa.com.br"_s}));
    }

    // The company register: a key refused as its kind requires (the kinds' rules are the PIX
    // test's) with the focus on it and nothing saved, then the good key saved.
    void companyRegisterChecksThePixKey() {
        Desk<empe> d(false);
        RTX_OPEN_DESK(d);
        empe* s = d.s();
        typeInto(s, u"E10"_s, u"CNPJ"_s);
        typeInto(s, u"E11"_s, u"11.222.333/0001-82"_s);
        click(s, u"Command16"_s);
        QVERIFY(d.prompts.lastText() != u"Operação realizada com sucesso."_s);
        QCOMPARE(QApplication::focusWidget(), control(s, u"E11"_s));
        QCOMPARE(rowTexts(u"SELECT * FROM empresa"_s, {}, {u"e11"_s}), QStringList{QString()});

        typeInto(s, u"E10"_s, u"TELEFONE"_s);
        typeInto(s, u"E11"_s, u"(11) 98765-4321"_s);
        click(s, u"Command16"_s);
        QCOMPARE(d.prompts.lastText(), u"Operação realizada com sucesso."_s);
        QCOMPARE(rowTexts(u"SELECT * FROM empresa"_s, {}, {u"e10"_s, u"e11"_s}),
                 (QStringList{u"TELEFONE"_s, u"(11) 98765-4321"_s}));
    }

    // A database of the step before: whoever was granted billing is granted the invoices,
    // whoever was not is not; a receivable stands on one invoice at most.
    void upgradeGrantsInvoicesToBilling() {
        TestInstallation db(TestInstallation::Empty{});
        RTX_REQUIRE_INSTALL(db);
        {
            Store st(db.settings());
            migrate(st, migrations().mid(0, 4));
            st.execute(
                u"INSERT INTO funcionarios (x1, x8) VALUES ('ANA', 'ana'), ('BETO', 'beto')"_s);
            st.execute(u"INSERT INTO permissoes (a1, a2, a4, a5) VALUES ('ana', 'ANA', ?, 'Sim'), "
                       u"('beto', 'BETO', ?, 'Não')"_s,
                       {u"Cobrança"_s, u"Cobrança"_s});
        }
        Store st(db.settings());
        st.ensureSchema();
        const QString invoicesOf = u"SELECT a5 FROM permissoes WHERE a4 = 'Faturas' AND a1 = "
                                   u"(SELECT x8 FROM funcionarios WHERE x1 = ?)"_s;
        QCOMPARE(st.scalar(invoicesOf, {u"ANA"_s}).toString(), u"Sim"_s);
        QCOMPARE(st.scalar(invoicesOf, {u"BETO"_s}).toString(), u"Não"_s);
        st.execute(u"INSERT INTO faturas_contas (f1, f2) VALUES ('000001', '00001')"_s);
        QVERIFY_THROWS_EXCEPTION(
            StoreError,
            st.execute(u"INSERT INTO faturas_contas (f1, f2) VALUES ('000002', '00001')"_s));
    }
};

QTEST_MAIN(FaturasTest)
#include "tst_faturas.moc"
