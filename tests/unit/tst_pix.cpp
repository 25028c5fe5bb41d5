// The PIX charge of the invoices: the Central Bank manual's own static example byte for
// byte, every payload read back by a reader of the fields written here from the format
// (id, two-digit length, value) rather than from the program's writer, and every CRC held
// against the CRC's own property: the message followed by its CRC in two bytes leaves no
// remainder. Then the checks of the keys as the company register types them.

#include "finance/core/pix.h"

#include <QMap>
#include <QtTest>

using namespace rtx::finance;
using namespace rtx::registers;
using namespace Qt::StringLiterals;

namespace {

// The fields of a payload by id, in their order; fails the test on a length that runs past
// the end.
QList<std::pair<QString, QString>> fieldsOf(const QString& text) {
    QList<std::pair<QString, QString>> out;
    int at = 0;
    while (at < text.size()) {
        if (at + 4 > text.size()) return {{u"!"_s, text.mid(at)}};
        const QString id = text.mid(at, 2);
        bool ok = false;
        const int length = text.mid(at + 2, 2).toInt(&ok);
        if (!ok || at + 4 + length > text.size()) return {{u"!"_s, text.mid(at)}};
        out.append({id, text.mid(at + 4, length)});
        at += 4 + length;
    }
    return out;
}

QMap<QString, QString> mapOf(const QString& text) {
    QMap<QString, QString> m;
    for (const auto& [id, value] : fieldsOf(text))
        m.insert(id, value);
    return m;
}

// The CRC's own property: appending the CRC, high byte first, to the bytes it was computed
// over gives a CRC of zero.
bool crcResidueIsZero(const QString& payload) {
    QByteArray bytes = payload.left(payload.size() - 4).toLatin1();
    const uint crc = payload.right(4).toUInt(nullptr, 16);
    bytes.append(char(crc >> 8));
    bytes.append(char(crc & 0xFF));
    return crc16(bytes) == 0;
}

const QString kManualKey = u"123e4567-e12b-12d1-a456-426655440000"_s;

} // namespace

class TestPix : public QObject {
    Q_OBJECT

private slots:
    void crcOfTheStandardCheckString() {
        QCOMPARE(crc16("123456789"), quint16(0x29B1));
        QCOMPARE(crc16(""), quint16(0xFFFF));
    }

    // The manual's static example: a random key, no amount, "***" as the transaction.
    void manualStaticExampleByteForByte() {
        const QString expected =
            u"00020126580014br.gov.bcb.pix0136123e4567-e12b-12d1-a456-42665544000052040000"
            u"53039865802BR5913Fulano de Tal6008BRASILIA62070503***63041D3D"_s;
        PixCharge c;
        c.key = pixKeyForPayload(PixKeyKind::Random, kManualKey.toUpper());
        c.name = u"Fulano de Tal"_s;
        c.city = u"BRASILIA"_s;
        QCOMPARE(brCode(c), expected);
        QVERIFY(crcHolds(expected));
        QVERIFY(crcResidueIsZero(expected));
        // One character changed anywhere breaks the CRC.
        for (int i = 0; i < expected.size() - 4; i += 7) {
            QString broken = expected;
            broken[i] = broken[i] == u'X' ? u'Y' : u'X';
            QVERIFY2(!crcHolds(broken), qPrintable(broken));
        }
        QVERIFY(!crcHolds(expected.left(expected.size() - 4) + u"1d3d"_s));
    }

    // A charge with everything at once: the fields in their order, the amount, the limits.
    void chargeWithAmountAndLimits_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("city");
        QTest::addColumn<QString>("expectedName");
        QTest::addColumn<QString>("expectedCity");
        QTest::addColumn<qint64>("cents");
        QTest::addColumn<QString>("expectedAmount");
        QTest::newRow("plain") << u"ROTALIX ENTREGAS"_s << u"SAO PAULO"_s << u"ROTALIX ENTREGAS"_s
                               << u"SAO PAULO"_s << qint64(12345) << u"123.45"_s;
        QTest::newRow("accents and quote")
            << u"Expresso D'Ávila Ação & Cia"_s << u"São João d'El-Rei"_s
            << u"Expresso D'Avila Acao & C"_s << u"Sao Joao d'El-R"_s << qint64(5) << u"0.05"_s;
        QTest::newRow("99 characters")
            << QString(99, u'Ç') << QString(99, u'é') << QString(25, u'C') << QString(15, u'e')
            << qint64(99999999999) << u"999999999.99"_s;
        QTest::newRow("line breaks and tabs")
            << u"  MOTO\nEXPRESS\t LTDA "_s << u"RIO\r\nDE JANEIRO"_s << u"MOTO EXPRESS LTDA"_s
            << u"RIO DE JANEIRO"_s << qint64(100) << u"1.00"_s;
    }
    void chargeWithAmountAndLimits() {
        QFETCH(QString, name);
        QFETCH(QString, city);
        QFETCH(QString, expectedName);
        QFETCH(QString, expectedCity);
        QFETCH(qint64, cents);
        QFETCH(QString, expectedAmount);
        PixCharge c;
        c.key = pixKeyForPayload(PixKeyKind::Cnpj, u"11.222.333/0001-81"_s);
        c.name = name;
        c.city = city;
        c.amount = cents;
        c.txid = u"FAT-000123/2026"_s;
        const QString payload = brCode(c);
        QVERIFY(crcHolds(payload));
        QVERIFY(crcResidueIsZero(payload));
        for (QChar ch : payload)
            QVERIFY2(ch.unicode() >= 0x20 && ch.unicode() <= 0x7E, qPrintable(payload));
        const auto fields = fieldsOf(payload);
        QStringList ids;
        for (const auto& f : fields)
            ids << f.first;
        QCOMPARE(ids, (QStringList{u"00"_s, u"26"_s, u"52"_s, u"53"_s, u"54"_s, u"58"_s, u"59"_s,
                                   u"60"_s, u"62"_s, u"63"_s}));
        const auto m = mapOf(payload);
        QCOMPARE(m[u"00"_s], u"01"_s);
        const auto account = mapOf(m[u"26"_s]);
        QCOMPARE(account[u"00"_s], u"br.gov.bcb.pix"_s);
        QCOMPARE(account[u"01"_s], u"11222333000181"_s);
        QCOMPARE(m[u"53"_s], u"986"_s);
        QCOMPARE(m[u"54"_s], expectedAmount);
        QCOMPARE(m[u"58"_s], u"BR"_s);
        QCOMPARE(m[u"59"_s], expectedName);
        QCOMPARE(m[u"60"_s], expectedCity);
        QVERIFY(m[u"59"_s].size() <= 25 && m[u"60"_s].size() <= 15);
        QCOMPARE(mapOf(m[u"62"_s])[u"05"_s], u"FAT0001232026"_s);
        QCOMPARE(m[u"63"_s].size(), 4);
    }

    // The words for the payer give way so that the account field stays within 99; a
    // transaction id is letters and digits, 25 at most.
    void accountFieldAndTxidWithinLimits() {
        PixCharge c;
        c.key = u"financeiro.entregas.rapidas.do.centro@empresa-muito-longa.com.br"_s;
        c.name = u"X"_s;
        c.city = u"Y"_s;
        c.description = QString(80, u'a');
        c.txid = QString(40, u'7') + u"çÇ"_s;
        const QString payload = brCode(c);
        const auto m = mapOf(payload);
        QVERIFY(m[u"26"_s].size() <= 99);
        const auto account = mapOf(m[u"26"_s]);
        QCOMPARE(account[u"01"_s], c.key);
        QVERIFY(account[u"02"_s].size() > 0);
        QCOMPARE(mapOf(m[u"62"_s])[u"05"_s], QString(25, u'7'));
        QVERIFY(crcHolds(payload) && crcResidueIsZero(payload));
        // Without an amount there is no field 54.
        QVERIFY(!m.contains(u"54"_s));
    }

    void keysByKind_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("good");
        QTest::addColumn<QString>("payload");
        const int cnpj = int(PixKeyKind::Cnpj), email = int(PixKeyKind::Email),
                  phone = int(PixKeyKind::Phone), random = int(PixKeyKind::Random);
        QTest::newRow("cnpj masked")
            << cnpj << u"11.222.333/0001-81"_s << true << u"11222333000181"_s;
        QTest::newRow("cnpj wrong digit") << cnpj << u"11.222.333/0001-82"_s << false << QString();
        QTest::newRow("cnpj all same") << cnpj << u"11111111111111"_s << false << QString();
        QTest::newRow("cpf is no cnpj") << cnpj << u"529.982.247-25"_s << false << QString();
        QTest::newRow("email") << email << u"Financeiro@Rotalix.com.br"_s << true
                               << u"financeiro@rotalix.com.br"_s;
        QTest::newRow("email no domain") << email << u"financeiro@"_s << false << QString();
        QTest::newRow("email blank inside")
            << email << u"fin anceiro@x.com"_s << false << QString();
        QTest::newRow("mobile masked")
            << phone << u"(11) 98765-4321"_s << true << u"+5511987654321"_s;
        QTest::newRow("mobile with +55")
            << phone << u"+55 21 99876 5432"_s << true << u"+5521998765432"_s;
        QTest::newRow("fixed") << phone << u"1133334444"_s << true << u"+551133334444"_s;
        QTest::newRow("no area code") << phone << u"98765-4321"_s << false << QString();
        QTest::newRow("eleven without 9") << phone << u"11887654321"_s << false << QString();
        QTest::newRow("other country") << phone << u"+1 212 555 0100"_s << false << QString();
        QTest::newRow("uuid") << random << kManualKey.toUpper() << true << kManualKey;
        QTest::newRow("uuid short") << random << kManualKey.left(35) << false << QString();
        QTest::newRow("uuid no hyphens")
            << random << u"123e4567e12b12d1a456426655440000"_s << false << QString();
        QTest::newRow("blank") << random << u"   "_s << false << QString();
    }
    void keysByKind() {
        QFETCH(int, kind);
        QFETCH(QString, typed);
        QFETCH(bool, good);
        QFETCH(QString, payload);
        const auto k = PixKeyKind(kind);
        const auto problem = checkPixKey(k, typed);
        QCOMPARE(!problem.has_value(), good);
        if (good)
            QCOMPARE(pixKeyForPayload(k, typed), payload);
        else
            QVERIFY(!problem->isEmpty());
    }

    void kindNamesGoBothWays() {
        for (PixKeyKind k :
             {PixKeyKind::Cnpj, PixKeyKind::Email, PixKeyKind::Phone, PixKeyKind::Random})
            QCOMPARE(pixKindOf(pixKindName(k).toLower()), std::optional<PixKeyKind>(k));
        QVERIFY(!pixKindOf(u"CPF"_s));
    }
};

QTEST_APPLESS_MAIN(TestPix)
#include "tst_pix.moc"
