// The print buttons of the screens on the demo office, pressed as an operator presses them:
// the A4 slip, the counter coupon, the search tab's report and the lists of the registers,
// read back from their pages written as PDF (pdftotext).

#include "dispatch/core/dispatchreports.h"
#include "dispatchdesk.h"
#include "output/core/coupon.h"
#include "output/core/defaultlayouts.h"
#include "pdftext.h"
#include "registers/partyscreen.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QCheckBox>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;

class PrintingTest : public QObject, DispatchDesk {
    Q_OBJECT

    QTemporaryDir out;

    QString shownBy(ReportControl* report, const QString& name) {
        return previewLines(report, out.path(), name).join(u'\n');
    }

    void closePreviews() {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (qobject_cast<ReportPreview*>(w)) delete w;
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
    // Grava prints the dispatch just saved. The screen keeps what was typed.
    void slipOfTheSavedDispatch() {
        RTX_REQUIRE_INSTALL(*inst);
        const QString code =
            store()
                .scalar(u"SELECT MIN(CODIGO) FROM atendimentos WHERE a6 = ?"_s, {kDavila})
                .toString();
        open();
        screen->showDispatch(code);
        type(u"A6"_s, u"CLIENTE NÃO GRAVADO"_s);
        QCOMPARE(press(u"Command7"_s), QStringList());
        QString text = shownBy(screen->report(), u"ATENDE"_s);
        QVERIFY2(text.contains(u"ORDEM DE SERVIÇO"_s) && text.contains(code) &&
                     text.count(kDavila) == 1 && !text.contains(u"NÃO GRAVADO"_s),
                 qPrintable(text));

        get<QCheckBox>(u"Check1"_s)->setChecked(true);
        QCOMPARE(press(u"Command8"_s), QStringList());
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
        text = shownBy(screen->report(), u"ATENDE-gravado"_s);
        QVERIFY(text.contains(fieldText(screen, u"CODIGO"_s)) &&
                text.contains(u"PADARIA SÃO JOÃO"_s));
    }

    // A dispatch with a 150-character pickup and delivery address and 12 lines of remarks:
    // every word is on the slip, in the one-copy form and twice in "Em 2 Vias" (the second
    // copy on a page of its own when the two do not share a sheet).
    void longSlipPrintsWhole() {
        RTX_REQUIRE_INSTALL(*inst);
        QStringList pickup, delivery, remarks;
        for (int i = 1; i <= 15; ++i)
            pickup << u"COLETA%1"_s.arg(i, 2, 10, QLatin1Char('0'));
        for (int i = 1; i <= 15; ++i)
            delivery << u"ENTREGA%1"_s.arg(i, 2, 10, QLatin1Char('0'));
        for (int line = 1; line <= 12; ++line)
            remarks << u"OBS%1A OBS%1B OBS%1C OBS%1D OBS%1E"_s.arg(line, 2, 10, QLatin1Char('0'));
        store().insert(u"atendimentos"_s, {{u"CODIGO"_s, u"0999999"_s},
                                           {u"a2"_s, QDate(2026, 11, 23)},
                                           {u"a6"_s, kDavila},
                                           {u"a9"_s, pickup.join(u' ')},
                                           {u"a13"_s, delivery.join(u' ')},
                                           {u"a17"_s, remarks.join(u'\n')}});
        open();
        screen->showDispatch(u"0999999"_s);
        for (bool twice : {false, true}) {
            closePreviews();
            get<QCheckBox>(u"Check1"_s)->setChecked(twice);
            QCOMPARE(press(u"Command7"_s), QStringList());
            const QString text = shownBy(screen->report(), u"ATENDE-longo%1"_s.arg(twice));
            for (const QString& word : pickup + delivery + remarks.join(u' ').split(u' '))
                QVERIFY2(text.count(word) == (twice ? 2 : 1), qPrintable(word + u'\n' + text));
        }
    }

    // The coupon takes the fields as the screen shows them, saved or not, to the counter
    // printer of rotalix.ini; with none set the operator is told so and the typing stays.
    void couponOfTheScreen() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        get<QAbstractButton>(u"Command4"_s)->click();
        output::CouponFields expected;
        dispatch::fillCouponCompany(expected, store());
        type(u"a4"_s, expected.phone = u"1140041234"_s);
        type(u"A6"_s, expected.client = u"PADARIA SÃO JOÃO"_s);
        type(u"A18"_s, expected.courier = u"BETO"_s);
        type(u"A19"_s, u"35,5"_s);
        expected.value = u"35,50"_s;
        QVERIFY(press(u"Command24"_s).value(0).startsWith(u"Nenhuma impressora de cupom"_s));
        QCOMPARE(prompts->count(ScriptedPrompter::Kind::Error), 1);
        QCOMPARE(fields(u"a4 A6 A18 A19"_s), u"1140041234|PADARIA SÃO JOÃO|BETO|35,50"_s);

        const QString device = out.filePath(u"lp0"_s);
        appendIni(u"\n[cupom]\nporta=%1\n"_s.arg(device));
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
    void searchTabReport() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        get<QAbstractButton>(u"Command4"_s)->click();
        auto* tabs = get<SSTab>(u"SSTab1"_s);
        tabs->setTab(1);
        QCOMPARE(
            press(u"Command10"_s),
            QStringList{u"Antes da impressão selecione o nome do motoqueiro, na primeira aba."_s});
        QCOMPARE(tabs->tab(), 0);
        QCOMPARE(screen->focusWidget(), get(u"A18"_s));
        QVERIFY(!screen->report()->preview());

        type(u"A18"_s, u"BETO"_s);
        const QDate today = QDate::currentDate(), from = today.addDays(-45);
        get<MaskEdBox>(u"k1"_s)->setText(formatDate(from));
        tabs->setTab(1);
        QCOMPARE(press(u"Command10"_s), QStringList());
        QVERIFY(!get(u"Command17"_s)->isEnabled() && !get(u"Command18"_s)->isEnabled());
        const qint64 found =
            store()
                .scalar(u"SELECT COUNT(*) FROM atendimentos WHERE a18 = ? AND a2 BETWEEN ? AND ?"_s,
                        {u"BETO"_s, from, today})
                .toLongLong();
        const QString text = shownBy(screen->report(), u"Command10"_s);
        QVERIFY2(
            text.contains(u"Entregador: BETO"_s) &&
                text.contains(u"Período: %1 até %2"_s.arg(formatDate(from), formatDate(today))) &&
                text.contains(u"Total do período: %1 atendimento(s)"_s.arg(found)) &&
                text.contains(u"Valor por entrega: R$ "_s + fieldText(screen, u"VM"_s)),
            qPrintable(text));
    }

    // "Relatórios" of the clients and of the couriers: every row of the register.
    void registerLists() {
        RTX_REQUIRE_INSTALL(*inst);
        for (const auto& [module, table, total] :
             {std::tuple{u"Clientes"_s, u"clientes"_s, u"Total: %1 cliente(s)"_s},
              std::tuple{u"Courier (entregador)"_s, u"motoqueiros"_s,
                         u"Total: %1 entregador(es)"_s}}) {
            std::unique_ptr<QDialog> dialog(moduleFactory(module)(nullptr));
            auto* party = qobject_cast<PartyScreen*>(dialog.get());
            QVERIFY(party);
            party->show();
            control<QAbstractButton>(party, u"Command1"_s)->click();
            QCOMPARE(prompts->texts(), QStringList());
            const QString text = shownBy(party->reportControl(), table);
            QVERIFY2(text.contains(total.arg(store().count(table))), qPrintable(text.left(600)));
            Recordset rs = store().open(u"SELECT C5 FROM %1"_s.arg(table));
            for (; !rs.eof(); rs.moveNext())
                QVERIFY2(text.contains(rs.text(u"C5"_s)), qPrintable(rs.text(u"C5"_s)));
        }
    }
};

QTEST_MAIN(PrintingTest)
#include "tst_printing.moc"
