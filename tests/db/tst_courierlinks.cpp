// The dispatch screen's WhatsApp and Rota: the operator loads a dispatch, presses the button,
// its menu entry or its key, and the browser is asked for the address of the courier's
// mobile with the job as text, or for the route; a courier without a mobile, a dispatch not
// saved and a route without its addresses are said so and open nothing.

#include "dispatch/atendimento.h"
#include "dispatch/core/dispatch.h"
#include "keyboard.h"
#include "kit/kit.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "testinstall.h"

#include <QAction>
#include <QMenuBar>
#include <QUrlQuery>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;
using Kind = ScriptedPrompter::Kind;

class CourierLinksTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<ScriptedPrompter> prompts;
    QPointer<Atendimento> screen;
    QString number;

    Store& store() { return inst->store(); }
    template <class T = QWidget> T* get(const QString& name) { return control<T>(screen, name); }

    void open() {
        session::start({u"ANA PAULA"_s, {}, {}});
        screen = new Atendimento;
        screen->show();
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen));
        QVERIFY(screen->showDispatch(number));
    }

    // The addresses the browser was asked for, forgetting them.
    QStringList opened() {
        const QStringList urls = prompts->texts(Kind::Browser);
        prompts->clear();
        return urls;
    }

    // Types over a field's text and leaves it, as the operator does.
    void type(const QString& name, const QString& text) {
        QWidget* w = get(name);
        w->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->lineEdit())
            combo->lineEdit()->selectAll();
        typeText(w, text);
        QTest::keyClick(w, Qt::Key_Tab);
        QApplication::processEvents();
    }

private slots:
    void init() {
        inst = std::make_unique<TestInstallation>(true, true);
        prompts = std::make_unique<ScriptedPrompter>();
        if (!inst->ok()) return;
        // BETO: a landline first, then his mobile typed without the area code; DUDA: a
        // landline alone. The company's telephone gives the office's area code (11).
        store().execute(u"UPDATE motoqueiros SET C8 = ?, C9 = ?, C10 = ? WHERE C4 = ?"_s,
                        {u"(11) 3333-1111"_s, u"98765-4321"_s, QString(), u"BETO"_s});
        store().execute(u"UPDATE motoqueiros SET C8 = ?, C9 = ?, C10 = ? WHERE C4 = ?"_s,
                        {u"(11) 2222-3333"_s, QString(), QString(), u"DUDA"_s});
        dispatch::Dispatch d;
        d.attendant = u"ANA PAULA"_s;
        d.date = QDate(2026, 11, 24);
        d.time = u"09:30"_s;
        d.clientName = u"PADARIA SÃO JOÃO \"FILIAL 2\""_s;
        d.pickup = {u"RUA DAS FLORES, 100 #3"_s, u"D'ÁVILA"_s, {}, u"RETIRAR ENVELOPE"_s};
        d.delivery = {u"AV. PAULISTA, 1.000"_s, u"MARIA"_s, {}, u"ENTREGAR & VOLTAR"_s};
        d.remarks = u"Ligar antes.\nPortão azul."_s;
        d.returnTrip = u"SIM"_s;
        d.courier = u"BETO"_s;
        d.payment = dispatch::invoicePayment;
        d.clientValue = 3000;
        dispatch::add(store(), d);
        number = d.number;
    }

    void cleanup() {
        delete screen.data();
        session::end();
        prompts.reset();
        inst.reset();
    }

    void whatsAppToTheCourierMobile() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        get<QAbstractButton>(u"CommandWhats"_s)->click();
        QStringList urls = opened();
        QCOMPARE(urls.size(), 1);
        // To the mobile of the courier shown, the office's area code before it; the text is
        // the dispatch shown (its wording is the core test's).
        const QUrl url(urls.first(), QUrl::StrictMode);
        QCOMPARE(url.host() + url.path(), u"wa.me/5511987654321"_s);
        const QString text = QUrlQuery(url).queryItemValue(u"text"_s, QUrl::FullyDecoded);
        QVERIFY2(text.startsWith(u"*Atendimento %1* - 24/11/2026 09:30\n"_s.arg(number)) &&
                     text.endsWith(u"Retorno: SIM"_s),
                 qPrintable(text));

        // What is on the screen goes, saved or not: the amount typed and cash payment give
        // the line of what to collect. Sent with the key, from the field just typed in.
        get<QComboBox>(u"A20"_s)->setCurrentText(dispatch::cashPayment);
        type(u"A19"_s, u"45,50"_s);
        get(u"A19"_s)->setFocus();
        QTest::keyClick(get(u"A19"_s), Qt::Key_W, Qt::AltModifier);
        urls = opened();
        QCOMPARE(urls.size(), 1);
        QVERIFY2(QUrlQuery(QUrl(urls.first()))
                     .queryItemValue(u"text"_s, QUrl::FullyDecoded)
                     .endsWith(u"Retorno: SIM\n*Receber do cliente: R$ 45,50 (à vista)*"_s),
                 qPrintable(urls.first()));

        // A browser that cannot be opened is said so.
        prompts->setBrowserResult(false);
        screen->findChild<QAction*>(u"MenuWhats"_s)->trigger();
        QCOMPARE(prompts->count(Kind::Error), 1);
        QVERIFY(prompts->texts(Kind::Error).first().contains(u"wa.me/5511987654321"_s));
    }

    void noMobileNoCourierNotSaved() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        // DUDA has a landline only: the notice says so, naming what the register holds.
        get<QComboBox>(u"A18"_s)->setEditText(u"DUDA"_s);
        screen->findChild<QAction*>(u"MenuWhats"_s)->trigger();
        QCOMPARE(prompts->count(Kind::Browser), 0);
        QCOMPARE(prompts->texts(),
                 QStringList{u"O entregador DUDA não tem celular com DDD no cadastro (telefones: "
                             u"(11) 2222-3333). Corrija os telefones dele no cadastro de "
                             u"entregadores para enviar pelo WhatsApp."_s});
        prompts->clear();

        get<QComboBox>(u"A18"_s)->setEditText(u"NINGUEM"_s);
        get<QAbstractButton>(u"CommandWhats"_s)->click();
        QCOMPARE(prompts->texts(),
                 QStringList{u"O entregador \"NINGUEM\" não está no cadastro de entregadores."_s});
        prompts->clear();
        get<QComboBox>(u"A18"_s)->setEditText(QString());
        get<QAbstractButton>(u"CommandWhats"_s)->click();
        QCOMPARE(prompts->texts(), QStringList{u"Escolha o entregador do atendimento."_s});
        prompts->clear();

        // A new dispatch has no number for the courier to report back on.
        get<QAbstractButton>(u"Command4"_s)->click();
        get<QComboBox>(u"A18"_s)->setEditText(u"BETO"_s);
        get<QAbstractButton>(u"CommandWhats"_s)->click();
        QCOMPARE(prompts->texts(),
                 QStringList{u"Grave o atendimento antes de enviá-lo ao entregador."_s});
    }

    void routeOnTheMap() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        QTest::keyClick(screen, Qt::Key_R, Qt::AltModifier);
        QStringList urls = opened();
        QCOMPARE(urls.size(), 1);
        const QUrlQuery query{QUrl(urls.first())};
        QCOMPARE(query.queryItemValue(u"origin"_s, QUrl::FullyDecoded),
                 u"RUA DAS FLORES, 100 #3, SÃO PAULO - SP"_s);
        QCOMPARE(query.queryItemValue(u"destination"_s, QUrl::FullyDecoded),
                 u"AV. PAULISTA, 1.000, SÃO PAULO - SP"_s);

        // The delivery as retyped on the screen, accents and all; then none.
        type(u"A13"_s, u"PRAÇA DA SÉ, 1"_s);
        screen->findChild<QAction*>(u"MenuRota"_s)->trigger();
        urls = opened();
        QCOMPARE(urls.size(), 1);
        QCOMPARE(QUrlQuery(QUrl(urls.first())).queryItemValue(u"destination"_s, QUrl::FullyDecoded),
                 u"PRAÇA DA SÉ, 1, SÃO PAULO - SP"_s);
        get<QLineEdit>(u"A13"_s)->clear();
        get<QAbstractButton>(u"CommandRota"_s)->click();
        QCOMPARE(prompts->texts(),
                 QStringList{u"Preencha o endereço de entrega para ver a rota."_s});
    }

    void buttonsInTheKeyboardOrderAndTheScreenStillFits() {
        RTX_REQUIRE_INSTALL(*inst);
        open();
        QWidget* coupon = get(u"Command24"_s);
        QCOMPARE(coupon->nextInFocusChain(), get(u"CommandWhats"_s));
        QCOMPARE(get(u"CommandWhats"_s)->nextInFocusChain(), get(u"CommandRota"_s));
        QCOMPARE(misfit(screen, QSize(1004, 724)), QString());
    }
};

QTEST_MAIN(CourierLinksTest)
#include "tst_courierlinks.moc"
