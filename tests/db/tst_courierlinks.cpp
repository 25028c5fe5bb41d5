// The dispatch screen's WhatsApp and Rota: the browser is asked for the courier's mobile with
// the job as text, or for the route; what is missing is said so and opens nothing.

#include "dispatch/core/dispatch.h"
#include "dispatchdesk.h"

#include <QAction>
#include <QUrlQuery>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

class CourierLinksTest : public QObject, DispatchDesk {
    Q_OBJECT

    QString number;

    void openDispatch() {
        open();
        QVERIFY(screen->showDispatch(number));
    }
    // The addresses the browser was asked for, forgetting them.
    QStringList opened() {
        const QStringList urls = prompts->texts(Kind::Browser);
        prompts->clear();
        return urls;
    }

private slots:
    void init() {
        begin();
        if (!inst->ok()) return;
        // BETO's mobile typed without the area code (the office's, 11), DUDA's landline alone.
        const QString phones = u"UPDATE motoqueiros SET C8 = ?, C9 = ?, C10 = ? WHERE C4 = ?"_s;
        store().execute(phones, {u"(11) 3333-1111"_s, u"98765-4321"_s, QString(), u"BETO"_s});
        store().execute(phones, {u"(11) 2222-3333"_s, QString(), QString(), u"DUDA"_s});
        dispatch::Dispatch d;
        d.date = QDate(2026, 11, 24);
        d.time = u"09:30"_s;
        d.pickup.address = u"RUA DAS FLORES, 100 #3"_s;
        d.delivery.address = u"AV. PAULISTA, 1.000"_s;
        d.returnTrip = u"SIM"_s;
        d.courier = u"BETO"_s;
        dispatch::add(store(), d);
        number = d.number;
    }
    void cleanup() { end(); }

    void whatsAppToTheCourierMobile() {
        RTX_REQUIRE_INSTALL(*inst);
        openDispatch();
        // To the mobile of the courier shown, the office's area code before it; the text is
        // what is on the screen, saved or not: the amount typed and cash payment give the
        // line of what to collect. Sent with the key, from the field just typed in.
        get<QComboBox>(u"A20"_s)->setCurrentText(dispatch::cashPayment);
        type(u"A19"_s, u"45,50"_s);
        get(u"A19"_s)->setFocus();
        QTest::keyClick(get(u"A19"_s), Qt::Key_W, Qt::AltModifier);
        const QStringList urls = opened();
        const QUrl url(urls.value(0), QUrl::StrictMode);
        QCOMPARE(url.host() + url.path(), u"wa.me/5511987654321"_s);
        const QString text = QUrlQuery(url).queryItemValue(u"text"_s, QUrl::FullyDecoded);
        QVERIFY2(urls.size() == 1 &&
                     text.startsWith(u"*Atendimento %1* - 24/11/2026 09:30\n"_s.arg(number)) &&
                     text.endsWith(u"Retorno: SIM\n*Receber do cliente: R$ 45,50 (à vista)*"_s),
                 qPrintable(text));

        // A browser that cannot be opened is said so.
        prompts->setBrowserResult(false);
        screen->findChild<QAction*>(u"MenuWhats"_s)->trigger();
        QVERIFY(prompts->texts(Kind::Error).value(0).contains(u"wa.me/5511987654321"_s));
    }

    void noMobileOrNotSaved() {
        RTX_REQUIRE_INSTALL(*inst);
        openDispatch();
        // DUDA has a landline only: the notice says so, naming what the register holds.
        get<QComboBox>(u"A18"_s)->setEditText(u"DUDA"_s);
        QCOMPARE(press(u"CommandWhats"_s),
                 QStringList{u"O entregador DUDA não tem celular com DDD no cadastro (telefones: "
                             u"(11) 2222-3333). Corrija os telefones dele no cadastro de "
                             u"entregadores para enviar pelo WhatsApp."_s});
        // A new dispatch has no number for the courier to report back on.
        click(u"Command4"_s);
        get<QComboBox>(u"A18"_s)->setEditText(u"BETO"_s);
        QCOMPARE(press(u"CommandWhats"_s),
                 QStringList{u"Grave o atendimento antes de enviá-lo ao entregador."_s});
        QCOMPARE(prompts->count(Kind::Browser), 0);
    }

    void routeOnTheMap() {
        RTX_REQUIRE_INSTALL(*inst);
        openDispatch();
        QTest::keyClick(screen, Qt::Key_R, Qt::AltModifier);
        const QUrlQuery query{QUrl(opened().value(0))};
        QCOMPARE(query.queryItemValue(u"origin"_s, QUrl::FullyDecoded),
                 u"RUA DAS FLORES, 100 #3, SÃO PAULO - SP"_s);
        QCOMPARE(query.queryItemValue(u"destination"_s, QUrl::FullyDecoded),
                 u"AV. PAULISTA, 1.000, SÃO PAULO - SP"_s);
        get<QLineEdit>(u"A13"_s)->clear();
        QCOMPARE(press(u"CommandRota"_s),
                 QStringList{u"Preencha o endereço de entrega para ver a rota."_s});
    }
};

QTEST_MAIN(CourierLinksTest)
#include "tst_courierlinks.moc"
