// The dispatch as the courier gets it: his mobile, the text of the job, and the addresses
// that must carry it letter for letter whatever was typed (accents, quotes, & and #).

#include "dispatch/core/courierlinks.h"

#include <QUrl>
#include <QUrlQuery>
#include <QtTest>

using namespace rtx::dispatch;
using namespace Qt::Literals::StringLiterals;

namespace {

Dispatch sample() {
    Dispatch d;
    d.number = u"0000042"_s;
    d.date = QDate(2026, 11, 24);
    d.time = u"09:30"_s;
    d.clientName = u"PADARIA SÃO JOÃO \"FILIAL 2\""_s;
    d.pickup = {u"RUA DAS FLORES, 100 #3"_s, u"D'ÁVILA"_s, u"(11) 3333-4444"_s,
                u"RETIRAR ENVELOPE & CAIXA"_s};
    d.delivery = {u"AV. PAULISTA, 1.000"_s, u"MARIA"_s, u"(  )     -    "_s, {}};
    d.remarks = u"Ligar antes.\nPortão 50% aberto?"_s;
    d.returnTrip = u"SIM"_s;
    d.payment = cashPayment;
    d.clientValue = 4550;
    return d;
}

} // namespace

class CourierLinksCoreTest : public QObject {
    Q_OBJECT

private slots:
    void mobileOfTheCourier_data() {
        QTest::addColumn<QStringList>("phones");
        QTest::addColumn<QString>("areaCode");
        QTest::addColumn<QString>("mobile");
        QTest::newRow("without area code: the office's")
            << QStringList{u"98765-4321"_s} << u"21"_s << u"5521987654321"_s;
        QTest::newRow("international, trunk and carrier")
            << QStringList{u"0 21 41 99876-5432"_s} << u"11"_s << u"5541998765432"_s;
        QTest::newRow("landline first, mobile second")
            << QStringList{u"(11) 3333-4444"_s, u"(11) 91234-5678"_s} << u"11"_s
            << u"5511912345678"_s;
        QTest::newRow("no area code anywhere")
            << QStringList{u"98765-4321"_s} << QString() << QString();
    }
    void mobileOfTheCourier() {
        QFETCH(QStringList, phones);
        QFETCH(QString, areaCode);
        QFETCH(QString, mobile);
        QCOMPARE(mobileNumber(phones, areaCode).value_or(QString()), mobile);
        QCOMPARE(officeAreaCode(u"0 (48) 3333-4444"_s) + officeAreaCode(u"3333-4444"_s), u"48"_s);
    }

    // The text of the job, and the address that carries it whole to WhatsApp.
    void textAndWhatsAppAddress() {
        const QString text = dispatchMessage(sample());
        QCOMPARE(text, u"*Atendimento 0000042* - 24/11/2026 09:30\n"
                       u"Cliente: PADARIA SÃO JOÃO \"FILIAL 2\"\n\n"
                       u"*Coleta:* RUA DAS FLORES, 100 #3\n"
                       u"Contato: D'ÁVILA - tel. (11) 3333-4444\n"
                       u"Tarefa: RETIRAR ENVELOPE & CAIXA\n\n"
                       u"*Entrega:* AV. PAULISTA, 1.000\n"
                       u"Contato: MARIA\n\n"
                       u"Obs.: Ligar antes.\nPortão 50% aberto?\n"
                       u"Retorno: SIM\n"
                       u"*Receber do cliente: R$ 45,50 (à vista)*"_s);
        Dispatch invoiced = sample();
        invoiced.payment = invoicePayment; // nothing to collect
        QVERIFY(!dispatchMessage(invoiced).contains(u"Receber"_s));

        const QString sent = text + u"\r\nfim + #1 ? a=b&c"_s;
        const QString url = whatsAppUrl(u"5511987654321"_s, sent);
        QVERIFY(url.startsWith(u"https://wa.me/5511987654321?text=%2AAtendimento%200000042%2A"_s));
        // Nothing the browser could read as another part of the address is left bare.
        const QString query = url.mid(url.indexOf(u"?text="_s) + 6);
        for (const QChar c : query)
            QVERIFY2(c.isLetterOrNumber() || QStringView(u"%-._~").contains(c), qPrintable(query));
        const QUrl parsed = QUrl::fromEncoded(url.toLatin1(), QUrl::StrictMode);
        QCOMPARE(parsed.toString(QUrl::FullyEncoded), url);
        QCOMPARE(QUrlQuery(parsed).queryItemValue(u"text"_s, QUrl::FullyDecoded), sent);
    }

    void routeFromPickupToDelivery() {
        const Dispatch d = sample();
        const QString url = routeUrl(d.pickup.address, d.delivery.address, u"SÃO PAULO"_s, u"SP"_s);
        const QUrlQuery query{QUrl(url)};
        QCOMPARE(query.queryItemValue(u"origin"_s, QUrl::FullyDecoded),
                 u"RUA DAS FLORES, 100 #3, SÃO PAULO - SP"_s);
        QCOMPARE(query.queryItemValue(u"destination"_s, QUrl::FullyDecoded),
                 u"AV. PAULISTA, 1.000, SÃO PAULO - SP"_s);
    }
};

QTEST_GUILESS_MAIN(CourierLinksCoreTest)
#include "tst_courierlinks_core.moc"
