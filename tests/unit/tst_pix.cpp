// The PIX charge of the invoices: the Central Bank manual's own static example byte for
// byte, payloads read back field by field from the format rather than by the program's
// writer, CRCs held against the CRC's own property, and the keys as the register types them.

#include "finance/core/pix.h"

#include <QMap>
#include <QtTest>

using namespace rtx::finance;
using namespace rtx::registers;
using namespace Qt::StringLiterals;

namespace {

// The fields of a payload by id, in their order, read from the format alone; a length that
// runs past the end gives the id "!".
QList<std::pair<QString, QString>> fieldsOf(const QString& text) {
    QList<std::pair<QString, QString>> out;
    for (int at = 0; at < text.size();) {
        const int length = text.mid(at + 2, 2).toInt();
        if (at + 4 + length > text.size()) return {{u"!"_s, text.mid(at)}};
        out.append({text.mid(at, 2), text.mid(at + 4, length)});
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
    const uint crc = payload.right(4).toUInt(nullptr, 16);
    return crc16(payload.chopped(4).toLatin1() + char(crc >> 8) + char(crc & 0xFF)) == 0;
}

const QString kManualKey = u"123e4567-e12b-12d1-a456-426655440000"_s;

} // namespace

class TestPix : public QObject {
    Q_OBJECT

private slots:
    // The manual's static example: a random key, no amount, "***" as the transaction.
    void manualStaticExampleByteForByte() {
        const QString expected =
            u"00020126580014br.gov.bcb.pix0136123e4567-e12b-12d1-a456-42665544000052040000"
            u"53039865802BR5913Fulano de Tal6008BRASILIA62070503***63041D3D"_s;
        PixCharge c;
        c.key = pixKeyForPayload(PixKeyKind::Random, kManualKey.toUpper());
        c.name = u"Fulano de Tal"_s;
        c.city = u"BRASILIA"_s;
        QCOMPARE(crc16("123456789"), quint16(0x29B1));
        QCOMPARE(brCode(c), expected);
        QVERIFY(crcResidueIsZero(expected));
        QVERIFY(!crcHolds(QString(expected).replace(u"Tal"_s, u"Tai"_s)));
    }

    // A charge with everything at once: the fields in their order, the amount, the names
    // folded to plain characters on one line and cut to their limits.
    void chargeWithAmountAndLimits() {
        PixCharge c;
        c.key = pixKeyForPayload(PixKeyKind::Cnpj, u"11.222.333/0001-81"_s);
        c.name = u"  Expresso D'Ávila\tAção & Cia"_s;
        c.city = u"São João\r\nd'El-Rei"_s;
        c.amount = 5;
        c.txid = u"FAT-000123/2026"_s;
        const QString payload = brCode(c);
        QVERIFY(crcResidueIsZero(payload));
        QString ids;
        for (const auto& f : fieldsOf(payload))
            ids += f.first + u' ';
        QCOMPARE(ids, u"00 26 52 53 54 58 59 60 62 63 "_s);
        const auto m = mapOf(payload);
        QCOMPARE(mapOf(m[u"26"_s])[u"01"_s], u"11222333000181"_s);
        QCOMPARE(m[u"54"_s], u"0.05"_s);
        QCOMPARE(m[u"59"_s], u"Expresso D'Avila Acao & C"_s);
        QCOMPARE(m[u"60"_s], u"Sao Joao d'El-R"_s);
        QCOMPARE(mapOf(m[u"62"_s])[u"05"_s], u"FAT0001232026"_s);
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
        QCOMPARE(mapOf(m[u"26"_s])[u"01"_s], c.key);
        QCOMPARE(mapOf(m[u"62"_s])[u"05"_s], QString(25, u'7'));
        QVERIFY(crcResidueIsZero(payload));
    }

    // The keys as the company register types them; an empty payload marks a key refused.
    void keysByKind() {
        const struct {
            PixKeyKind kind;
            QString typed, payload;
        } cases[] = {
            {PixKeyKind::Cnpj, u"11.222.333/0001-81"_s, u"11222333000181"_s},
            {PixKeyKind::Cnpj, u"11.222.333/0001-82"_s, {}},
            {PixKeyKind::Email, u"Financeiro@Rotalix.com.br"_s, u"financeiro@rotalix.com.br"_s},
            {PixKeyKind::Phone, u"(11) 98765-4321"_s, u"+5511987654321"_s},
            {PixKeyKind::Phone, u"98765-4321"_s, {}},
            {PixKeyKind::Phone, u"+1 212 555 0100"_s, {}},
            {PixKeyKind::Random, kManualKey.toUpper(), kManualKey},
            {PixKeyKind::Random, u"123e4567e12b12d1a456426655440000"_s, {}},
        };
        for (const auto& k : cases) {
            const auto problem = checkPixKey(k.kind, k.typed);
            QVERIFY2(problem.has_value() == k.payload.isEmpty(), qPrintable(k.typed));
            if (!problem) QCOMPARE(pixKeyForPayload(k.kind, k.typed), k.payload);
        }
    }
};

QTEST_APPLESS_MAIN(TestPix)
#include "tst_pix.moc"
