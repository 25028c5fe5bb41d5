// The dispatch as the courier gets it: his mobile as WhatsApp wants it, the text of the job,
// and the WhatsApp and map addresses, whose texts must reach the browser letter for letter
// whatever the operator typed (accents, quotes, line breaks, & and #).

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
    d.pickup = {u"RUA DAS FLORES, 100 - AP 12 #3"_s, u"D'ÁVILA"_s, u"(11) 3333-4444"_s,
                u"RETIRAR ENVELOPE & CAIXA"_s};
    d.delivery = {u"AV. PAULISTA, 1.000"_s, u"MARIA"_s, u"(  )     -    "_s,
                  u"ENTREGAR NA RECEPÇÃO"_s};
    d.service = u"ENTREGA ZONA SUL"_s;
    d.remarks = u"Ligar antes.\nPortão 50% aberto?"_s;
    d.returnTrip = u"SIM"_s;
    d.courier = u"BETO"_s;
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
        QTest::newRow("with area code")
            << QStringList{u"(11) 98765-4321"_s} << u"21"_s << u"5511987654321"_s;
        QTest::newRow("without: the office's")
            << QStringList{u"98765-4321"_s} << u"21"_s << u"5521987654321"_s;
        QTest::newRow("international form")
            << QStringList{u"+55 (31) 99876-5432"_s} << u"11"_s << u"5531998765432"_s;
        QTest::newRow("trunk and carrier code")
            << QStringList{u"0 21 41 99876-5432"_s} << u"11"_s << u"5541998765432"_s;
        QTest::newRow("landline first, mobile second")
            << QStringList{u"(11) 3333-4444"_s, u"(11) 91234-5678"_s} << u"11"_s
            << u"5511912345678"_s;
        QTest::newRow("landlines only")
            << QStringList{u"(11) 3333-4444"_s, u"2222-1111"_s} << u"11"_s << QString();
        QTest::newRow("old eight-digit mobile")
            << QStringList{u"(11) 8765-4321"_s} << u"11"_s << QString();
        QTest::newRow("no area code anywhere")
            << QStringList{u"98765-4321"_s} << QString() << QString();
        QTest::newRow("no area code 01")
            << QStringList{u"(01) 98765-4321"_s} << u"11"_s << QString();
        QTest::newRow("nothing") << QStringList{u"(  )     -    "_s} << u"11"_s << QString();
    }
    void mobileOfTheCourier() {
        QFETCH(QStringList, phones);
        QFETCH(QString, areaCode);
        QFETCH(QString, mobile);
        QCOMPARE(mobileNumber(phones, areaCode).value_or(QString()), mobile);
    }

    void areaCodeOfTheOffice() {
        QCOMPARE(officeAreaCode(u"(11)3333-4444"_s), u"11"_s);
        QCOMPARE(officeAreaCode(u"+55 21 3333-4444"_s), u"21"_s);
        QCOMPARE(officeAreaCode(u"0 (48) 3333-4444"_s), u"48"_s);
        QCOMPARE(officeAreaCode(u"3333-4444"_s), QString());
        QCOMPARE(officeAreaCode(QString()), QString());
    }

    void textOfTheDispatch() {
        QCOMPARE(dispatchMessage(sample()), u"*Atendimento 0000042* - 24/11/2026 09:30\n"
                                            u"Cliente: PADARIA SÃO JOÃO \"FILIAL 2\"\n"
                                            u"\n"
                                            u"*Coleta:* RUA DAS FLORES, 100 - AP 12 #3\n"
                                            u"Contato: D'ÁVILA - tel. (11) 3333-4444\n"
                                            u"Tarefa: RETIRAR ENVELOPE & CAIXA\n"
                                            u"\n"
                                            u"*Entrega:* AV. PAULISTA, 1.000\n"
                                            u"Contato: MARIA\n"
                                            u"Tarefa: ENTREGAR NA RECEPÇÃO\n"
                                            u"\n"
                                            u"Serviço: ENTREGA ZONA SUL\n"
                                            u"Obs.: Ligar antes.\nPortão 50% aberto?\n"
                                            u"Retorno: SIM\n"
                                            u"*Receber do cliente: R$ 45,50 (à vista)*"_s);

        // Invoiced work has nothing to collect; what was left empty gives no line.
        Dispatch d = sample();
        d.payment = invoicePayment;
        d.remarks.clear();
        d.returnTrip.clear();
        d.service.clear();
        d.delivery = {u"AV. PAULISTA, 1.000"_s, {}, {}, {}};
        QVERIFY(dispatchMessage(d).endsWith(u"*Entrega:* AV. PAULISTA, 1.000"_s));
        d.payment = u"a vista "_s; // as an old row may hold it
        d.clientValue = 0;
        QVERIFY(!dispatchMessage(d).contains(u"Receber"_s));
    }

    void whatsAppAddressCarriesTheTextWhole() {
        const QString text = dispatchMessage(sample()) + u"\r\nfim + #1 ? a=b&c"_s;
        const QString url = whatsAppUrl(u"5511987654321"_s, text);
        QVERIFY(url.startsWith(u"https://wa.me/5511987654321?text=%2AAtendimento%200000042%2A"_s));
        // Nothing the browser could read as another part of the address is left bare.
        const QString query = url.mid(url.indexOf(u"?text="_s) + 6);
        for (const QChar c : query)
            QVERIFY2(c.isLetterOrNumber() || QStringView(u"%-._~").contains(c), qPrintable(query));
        for (const char* piece :
             {"%C3%83O%20JO%C3%83O", "%22FILIAL%202%22", "D%27%C3%81VILA", "%26%20CAIXA",
              "%0APort%C3%A3o%2050%25%20aberto%3F", "%23", "%0D%0Afim%20%2B%20%231", "a%3Db%26c"})
            QVERIFY2(query.contains(QLatin1String(piece)), piece);
        // What the browser gets back from it is the text, letter for letter.
        const QUrl parsed = QUrl::fromEncoded(url.toLatin1(), QUrl::StrictMode);
        QVERIFY(parsed.isValid());
        QCOMPARE(parsed.toString(QUrl::FullyEncoded), url);
        QCOMPARE(QUrlQuery(parsed).queryItemValue(u"text"_s, QUrl::FullyDecoded), text);
    }

    void routeFromPickupToDelivery() {
        const Dispatch d = sample();
        const QString url = routeUrl(d.pickup.address, d.delivery.address, u"SÃO PAULO"_s, u"SP"_s);
        QVERIFY(url.startsWith(u"https://www.google.com/maps/dir/?api=1&origin="_s));
        const QUrl parsed = QUrl::fromEncoded(url.toLatin1(), QUrl::StrictMode);
        QVERIFY(parsed.isValid());
        const QUrlQuery query(parsed);
        QCOMPARE(query.queryItemValue(u"origin"_s, QUrl::FullyDecoded),
                 u"RUA DAS FLORES, 100 - AP 12 #3, SÃO PAULO - SP"_s);
        QCOMPARE(query.queryItemValue(u"destination"_s, QUrl::FullyDecoded),
                 u"AV. PAULISTA, 1.000, SÃO PAULO - SP"_s);
        QCOMPARE(query.queryItemValue(u"api"_s), u"1"_s);
        // A company without a city: the addresses alone.
        QCOMPARE(QUrlQuery(QUrl::fromEncoded(routeUrl(u"A"_s, u"B"_s, {}, u"SP"_s).toLatin1()))
                     .queryItemValue(u"origin"_s),
                 u"A"_s);
    }
};

QTEST_GUILESS_MAIN(CourierLinksCoreTest)
#include "tst_courierlinks_core.moc"
