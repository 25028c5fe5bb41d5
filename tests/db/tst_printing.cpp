// The print buttons of the screens on the demo office, pressed as an operator presses them:
// the A4 slip of the saved dispatch (once or twice on the page, refused before Grava, and
// after Grava's question), the counter coupon of what the dispatch screen shows, the search
// tab's three reports with their checks, the report screen, and the lists of clients and
// couriers. What a report shows is read back from its pages written as PDF (pdftotext).

#include "dispatch/core/dispatchreports.h"
#include "dispatchdesk.h"
#include "keyboard.h"
#include "output/core/coupon.h"
#include "output/core/defaultlayouts.h"
#include "output/printing.h"
#include "output/reportcontrol.h"
#include "output/reportpreview.h"
#include "pdftext.h"
#include "registers/partyscreen.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "session/modules.h"
#include "store/formats.h"
#include "testinstall.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDir>
#include <QPushButton>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

namespace {

const QStringList kReportButtons{u"Command10"_s, u"Command17"_s, u"Command18"_s};

} // namespace

class PrintingTest : public QObject, DispatchDesk {
    Q_OBJECT

    QTemporaryDir out;

    // The pages of the last run of a report control, as PDF read back.
    QString shownBy(ReportControl* report, const QString& name) {
        return previewLines(report, out.path(), name).join(u'\n');
    }

    void closePreviews() {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (qobject_cast<ReportPreview*>(w)) delete w;
    }

    void setCouponPrinter(const QString& device) {
        appendIni(u"\n[cupom]\nporta=%1\n"_s.arg(device));
    }

private slots:
    void init() {
        begin();
        if (inst->ok()) output::writeMissingLayouts(inst->folder());
    }

    void cleanup() {
        closePreviews();
        end();
    }

    // The A4 slip prints the saved row, not what was changed on the screen since; "Em 2
    // Vias" puts it twice on the page; a dispatch not saved yet is refused; the Yes after
    // Grava prints the dispatch just saved. The screen keeps what was typed; the report
    // screen opens from its picture button.
    void slipOfTheSavedDispatch() {
        RTX_REQUIRE_INSTALL(*inst);
        const QString code =
            store()
                .scalar(u"SELECT MIN(CODIGO) FROM atendimentos WHERE a6 = ?"_s, {kDavila})
                .toString();
        QVERIFY(!code.isEmpty());
        open();
        screen->showDispatch(code);
        type(u"A6"_s, u"CLIENTE NÃO GRAVADO"_s);
        QCOMPARE(press(u"Command7"_s), QStringList());
        QCOMPARE(screen->report()->definition().layoutFile(), u"ATENDE.rpt"_s);
        QString text = shownBy(screen->report(), u"ATENDE"_s);
        QVERIFY2(text.contains(u"ORDEM DE SERVIÇO"_s) && text.contains(code) &&
                     text.contains(u"ROTALIX ENTREGAS RÁPIDAS Tel: (11) 3333-4444"_s) &&
                     text.count(kDavila) == 1 && !text.contains(u"NÃO GRAVADO"_s),
                 qPrintable(text));

        get<QCheckBox>(u"Check1"_s)->setChecked(true);
        QCOMPARE(press(u"Command8"_s), QStringList());
        QCOMPARE(screen->report()->definition().layoutFile(), u"ATENDE1.rpt"_s);
        QCOMPARE(screen->report()->preview()->pageCount(), 1);
        QCOMPARE(shownBy(screen->report(), u"ATENDE1"_s).count(kDavila), 2);

        QCOMPARE(fieldText(screen, u"A6"_s), u"CLIENTE NÃO GRAVADO"_s);

        closePreviews();
        get<QAbstractButton>(u"Command4"_s)->click();
        get<QCheckBox>(u"Check1"_s)->setChecked(false);
        QCOMPARE(press(u"Command7"_s),
                 QStringList{u"Primeiro grave o antendimento para depois imprimir."_s});
        QVERIFY(!screen->report()->preview());

        type(u"A6"_s, u"PADARIA SÃO JOÃO"_s);
        type(u"ST"_s, u"A c"_s);
        QCOMPARE(press(u"Command16"_s, {false, true}),
                 (QStringList{u"Confirma movimentação financeira?"_s, u"Atendimento registrado."_s,
                              u"Imprimir atendimento?"_s}));
        const QString saved = fieldText(screen, u"CODIGO"_s);
        QVERIFY(saved > code);
        text = shownBy(screen->report(), u"ATENDE-gravado"_s);
        QVERIFY2(text.contains(saved) && text.contains(u"PADARIA SÃO JOÃO"_s), qPrintable(text));

        bool opened = false;
        onModal([&](QWidget* reports) {
            opened = reports->objectName() == u"atendeimpre"_s &&
                     reports->windowTitle() == u"Impressão de Relatórios"_s;
        });
        get<SSTab>(u"SSTab1"_s)->setTab(1);
        press(u"Command20"_s);
        QVERIFY(opened);
    }

    // A dispatch with a 150-character pickup and delivery address, long contacts and tasks,
    // and 12 lines of remarks: every word is on the slip, in the one-copy form and twice in
    // "Em 2 Vias" (the second copy on a page of its own when the two do not share a sheet).
    void longSlipPrintsWhole() {
        RTX_REQUIRE_INSTALL(*inst);
        auto words = [](const QString& stem, int chars) {
            QStringList out;
            for (int i = 1; out.join(u' ').size() < chars; ++i)
                out << u"%1%2"_s.arg(stem).arg(i, 2, 10, QLatin1Char('0'));
            return out;
        };
        const QStringList pickup = words(u"COLETA"_s, 150), delivery = words(u"ENTREGA"_s, 150),
                          contact = words(u"CONTATO"_s, 60), task = words(u"TAREFA"_s, 90);
        QStringList remarks;
        for (int line = 1; line <= 12; ++line)
            remarks << u"OBS%1A OBS%1B OBS%1C OBS%1D OBS%1E"_s.arg(line, 2, 10, QLatin1Char('0'));
        const QString code = u"0999999"_s;
        store().insert(u"atendimentos"_s, {{u"CODIGO"_s, code},
                                           {u"a2"_s, QDate(2026, 11, 23)},
                                           {u"a6"_s, kDavila},
                                           {u"a9"_s, pickup.join(u' ')},
                                           {u"a10"_s, contact.join(u' ')},
                                           {u"a12"_s, task.join(u' ')},
                                           {u"a13"_s, delivery.join(u' ')},
                                           {u"a14"_s, contact.join(u' ')},
                                           {u"a16"_s, task.join(u' ')},
                                           {u"a17"_s, remarks.join(u'\n')},
                                           {u"a18"_s, u"BETO"_s},
                                           {u"a19"_s, qint64(3550)}});
        open();
        screen->showDispatch(code);
        const QStringList all = pickup + delivery + contact + task + remarks.join(u' ').split(u' ');
        for (bool twice : {false, true}) {
            closePreviews();
            get<QCheckBox>(u"Check1"_s)->setChecked(twice);
            QCOMPARE(press(u"Command7"_s), QStringList());
            const QString text =
                shownBy(screen->report(), twice ? u"ATENDE1-longo"_s : u"ATENDE-longo"_s);
            for (const QString& word : all) {
                // Contacts and tasks stand twice on a copy (pickup and delivery).
                const int times =
                    (twice ? 2 : 1) * (contact.contains(word) || task.contains(word) ? 2 : 1);
                QVERIFY2(text.count(word) == times,
                         qPrintable(
                             u"%1 %2 vez(es) em:\n%3"_s.arg(word).arg(text.count(word)).arg(text)));
            }
            QVERIFY2(!text.contains(u"…"_s), qPrintable(text));
        }
    }

    // The receipt's sentence with a long "referring to" is printed whole, on both copies.
    void longReceiptPrintsWhole() {
        RTX_REQUIRE_INSTALL(*inst);
        QStringList about;
        for (int i = 1; about.join(u' ').size() < 400; ++i)
            about << u"SERVICO%1"_s.arg(i, 2, 10, QLatin1Char('0'));
        store().insert(u"recibos"_s,
                       {{u"CODIGO"_s, u"09999"_s},
                        {u"R2"_s, kDavila},
                        {u"R3"_s, u"11222333000181"_s},
                        {u"R4"_s, QDate(2026, 11, 23)},
                        {u"R9"_s, qint64(12550)},
                        {u"R10"_s, u"( Cento e vinte e cinco reais e cinquenta centavos.' )."_s},
                        {u"R11"_s, about.join(u' ')},
                        {u"R13"_s, u"ANA PAULA"_s}});
        QWidget host;
        ReportControl report(&host);
        report.definition().setDataSource(u"recibos"_s);
        report.definition().setLayoutFile(u"RECI.rpt"_s);
        report.definition().setSelection(output::Selection::byKey(u"CODIGO"_s, u"09999"_s));
        QVERIFY(report.run());
        const QString text = shownBy(&report, u"RECI-longo"_s);
        for (const QString& word : about)
            QVERIFY2(text.count(word) == 2, qPrintable(word + u"\n"_s + text));
        QVERIFY(text.contains(u"CNPJ/CPF do pagador: 11.222.333/0001-81"_s));
        QVERIFY2(!text.contains(u"…"_s), qPrintable(text));
    }

    // The coupon takes the fields as the screen shows them, saved or not, to the counter
    // printer of rotalix.ini; with none set the operator is told so and what was typed
    // stays.
    void couponOfTheScreen() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        get<QAbstractButton>(u"Command4"_s)->click();
        output::CouponFields expected;
        dispatch::fillCouponCompany(expected, store());
        using F = QString output::CouponFields::*;
        const QList<std::tuple<QString, QString, F>> fields{
            {u"a4"_s, u"1140041234"_s, &output::CouponFields::phone},
            {u"A6"_s, u"PADARIA SÃO JOÃO"_s, &output::CouponFields::client},
            {u"A7"_s, u"RUA DA CONSOLAÇÃO, 10"_s, &output::CouponFields::address},
            {u"A9"_s, u"AV. BRASIL, 5"_s, &output::CouponFields::pickupAddress},
            {u"A12"_s, u"RETIRAR CAIXA"_s, &output::CouponFields::pickupTask},
            {u"A13"_s, u"RUA AURORA, 77"_s, &output::CouponFields::deliveryAddress},
            {u"A15"_s, u"1132321010"_s, &output::CouponFields::deliveryPhone},
            {u"A18"_s, u"BETO"_s, &output::CouponFields::courier}};
        for (const auto& [field, text, member] : fields) {
            type(field, text);
            expected.*member = text;
        }
        type(u"A19"_s, u"35,5"_s);
        expected.value = u"35,50"_s;
        const QString typed = u"1140041234|PADARIA SÃO JOÃO|AV. BRASIL, 5|BETO|35,50"_s;
        auto onScreen = [&] {
            QStringList out;
            for (const QString& f : {u"a4"_s, u"A6"_s, u"A9"_s, u"A18"_s, u"A19"_s})
                out << fieldText(screen, f);
            return out.join(u'|');
        };

        QStringList said = press(u"Command24"_s);
        QCOMPARE(prompts->count(Kind::Error), 1);
        QVERIFY2(said.value(0).startsWith(u"Nenhuma impressora de cupom foi configurada."_s),
                 qPrintable(said.value(0)));
        QCOMPARE(onScreen(), typed);

        const QString device = out.filePath(u"lp0"_s);
        setCouponPrinter(device);
        // The port holds a longer job printed before: only this coupon is left in it.
        QFile printer(device);
        QVERIFY(printer.open(QIODevice::WriteOnly));
        printer.write(QByteArray(4096, 'X'));
        printer.close();
        const QDateTime before = QDateTime::currentDateTime();
        QCOMPARE(press(u"Command24"_s), QStringList());
        const QDateTime after = QDateTime::currentDateTime();
        QVERIFY(printer.open(QIODevice::ReadOnly));
        const QByteArray sent = printer.readAll();
        QVERIFY2(sent == output::couponBytes(expected, before) ||
                     sent == output::couponBytes(expected, after),
                 sent.constData());
    }

    // The search tab's reports take the name from the first tab: an empty one is said so,
    // with the first tab shown and the focus on the field. A report shows the dispatches of
    // the name in the period, and switches the other two buttons off for good.
    void searchTabReports_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QString>("heading");
        QTest::newRow("courier") << u"Command10"_s << u"A18"_s << u"BETO"_s << u"a18"_s
                                 << u"Antes da impressão selecione o nome do motoqueiro, na "
                                    u"primeira aba."_s
                                 << u"Entregador: BETO"_s;
        QTest::newRow("client") << u"Command17"_s << u"A6"_s << kDavila << u"a6"_s
                                << u"Antes da impressão selecione o nome do cliente, na "
                                   u"primeira aba."_s
                                << u"Cliente: "_s + kDavila;
        QTest::newRow("status") << u"Command18"_s << u"ST"_s << u"Entregue"_s << u"ST"_s
                                << u"Antes da impressão selecione o status, na primeira aba."_s
                                << u"Status: Entregue"_s;
    }

    void searchTabReports() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, button);
        QFETCH(QString, field);
        QFETCH(QString, name);
        QFETCH(QString, column);
        QFETCH(QString, refusal);
        QFETCH(QString, heading);
        open();
        get<QAbstractButton>(u"Command4"_s)->click();
        auto* tabs = get<SSTab>(u"SSTab1"_s);
        tabs->setTab(1);
        QCOMPARE(press(button), QStringList{refusal});
        QCOMPARE(tabs->tab(), 0);
        QCOMPARE(screen->focusWidget(), get(field));
        QVERIFY(!screen->report()->preview());
        for (const QString& b : kReportButtons)
            QVERIFY(get(b)->isEnabled());

        type(field, name);
        const QDate today = QDate::currentDate(), from = today.addDays(-45);
        get<MaskEdBox>(u"k1"_s)->setText(formatDate(from));
        tabs->setTab(1);
        QCOMPARE(press(button), QStringList());
        for (const QString& b : kReportButtons)
            QCOMPARE(get(b)->isEnabled(), b == button);
        const qint64 found =
            store()
                .scalar(
                    u"SELECT COUNT(*) FROM atendimentos WHERE %1 = ? AND a2 BETWEEN ? AND ?"_s.arg(
                        column),
                    {name, from, today})
                .toLongLong();
        QVERIFY(found > 0);
        const QString text = shownBy(screen->report(), button);
        QVERIFY2(
            text.contains(heading) &&
                text.contains(u"Período: %1 até %2"_s.arg(formatDate(from), formatDate(today))) &&
                text.contains(u"Total do período: %1 atendimento(s)"_s.arg(found)),
            qPrintable(text));
        if (button == u"Command10"_s)
            QVERIFY(text.contains(u"Valor por entrega: R$ "_s + fieldText(screen, u"VM"_s)));
    }

    // "Relatórios" of the clients and of the couriers: every row of the register.
    void registerLists_data() {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("total");
        QTest::newRow("clients") << u"Clientes"_s << u"rela2.rpt"_s << u"clientes"_s
                                 << u"Relação de clientes"_s << u"Total: %1 cliente(s)"_s;
        QTest::newRow("couriers") << u"Courier (entregador)"_s << u"rela1.rpt"_s << u"motoqueiros"_s
                                  << u"Relação de entregadores"_s << u"Total: %1 entregador(es)"_s;
    }

    void registerLists() {
        RTX_REQUIRE_INSTALL(*inst);
        QFETCH(QString, module);
        QFETCH(QString, layout);
        QFETCH(QString, table);
        QFETCH(QString, title);
        QFETCH(QString, total);
        std::unique_ptr<QDialog> dialog(moduleFactory(module)(nullptr));
        auto* party = qobject_cast<PartyScreen*>(dialog.get());
        QVERIFY(party);
        party->show();
        prompts->clear();
        control<QAbstractButton>(party, u"Command1"_s)->click();
        QCOMPARE(prompts->texts(), QStringList());
        QCOMPARE(party->reportControl()->definition().layoutFile(), layout);
        const QString text = shownBy(party->reportControl(), layout);
        QVERIFY2(text.contains(title) && text.contains(total.arg(store().count(table))),
                 qPrintable(text.left(600)));
        Recordset rs = store().open(u"SELECT C5 FROM %1"_s.arg(table));
        for (; !rs.eof(); rs.moveNext())
            QVERIFY2(text.contains(rs.text(u"C5"_s)), qPrintable(rs.text(u"C5"_s)));
    }
};

QTEST_MAIN(PrintingTest)
#include "tst_printing.moc"
