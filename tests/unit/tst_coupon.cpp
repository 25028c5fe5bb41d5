// The counter coupon: its bytes compared byte for byte (labels, blanks, the printer's code
// page, the cut at the end), and the way the bytes reach the printer set in rotalix.ini.

#include "output/core/coupon.h"
#include "output/core/couponsink.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

using namespace rtx::output;
using namespace Qt::Literals::StringLiterals;

namespace {

const QDateTime kNow(QDate(2025, 3, 15), QTime(9, 5, 42));
const QByteArray kStart("\x1b@\x1bt\x02\x1b!\x08", 8); // reset, CP850, font A bold
const QByteArray kSep(47, '-');

CouponFields filled() {
    return {u"ROTALIX ENTREGAS RÁPIDAS"_s,
            u"(11)3333-4444"_s,
            u"0000123"_s,
            u"JOSÉ DA CONCEIÇÃO"_s,
            u"1155551234"_s,
            u"RUA AUGUSTA, 100  CENTRO"_s,
            u"AV. PAULISTA, 900"_s,
            u"MÁRCIA"_s,
            u"(11)3030-1010"_s,
            u"RETIRAR ENVELOPE"_s,
            u"RUA TUIUTI, 45"_s,
            u"JOÃO"_s,
            u"(11)2020-3030"_s,
            u"ENTREGAR"_s,
            u"ENTREGA RÁPIDA"_s,
            u"NÃO"_s,
            u"ZÉ"_s,
            u"25,00"_s};
}

QString writeIni(const QTemporaryDir& dir, const QString& section) {
    QFile ini(dir.filePath(u"rotalix.ini"_s));
    if (ini.open(QIODevice::WriteOnly)) ini.write(section.toUtf8());
    return dir.path();
}

} // namespace

class CouponTest : public QObject {
    Q_OBJECT

private slots:
    void filledScreen() {
        // Each line ends in a line feed; "=" stands for the separator line.
        QByteArray lines(" \n \n=\n ROTALIX ENTREGAS R\xb5PIDAS\n Telefone: (11)3333-4444\n=\n"
                         " Nro: 0000123 Data: 15/03/2025 Hora: 09:05\n=\n"
                         " Cliente: JOS\x90 DA CONCEI\x80\xc7O\n Telefone: 1155551234\n"
                         " RUA AUGUSTA, 100  CENTRO\n=\n ORIGEM\n AV. PAULISTA, 900  M\xb5RCIA\n"
                         " Tel:(11)3030-1010  RETIRAR ENVELOPE\n=\n DESTINO\n"
                         " RUA TUIUTI, 45  JO\xc7O\n Tel:(11)2020-3030  ENTREGAR\n=\n"
                         " ENTREGA R\xb5PIDA\n  Com retorno: N\xc7O\n  Entregador: Z\x90\n"
                         "  Valor: 25,00\n \n \n \n \n \n");
        const QByteArray expected = kStart + lines.replace("=", kSep) + "\x1bi"; // the cut
        QCOMPARE(couponBytes(filled(), kNow), expected);
    }

    // A dispatch not saved yet has no number, and every empty field keeps its label and its
    // blanks: "Tel:" and three blanks for an empty pickup telephone and task.
    void unsavedAndEmptyFields() {
        CouponFields f;
        f.companyName = u"ROTALIX"_s;
        const QStringList lines = couponLines(f, kNow);
        QCOMPARE(lines[6], u" Nro:  Data: 15/03/2025 Hora: 09:05"_s);
        QCOMPARE(lines.mid(13, 2), (QStringList{u"   "_s, u" Tel:  "_s}));
    }

    void codePages() {
        QCOMPARE(encode(u"ÇÃÕÁÉÍÓÚÂÊÔÀ çãõáéíóúâêôà ü €"_s, CodePage::CP850),
                 QByteArray("\x80\xc7\xe5\xb5\x90\xd6\xe0\xe9\xb6\xd2\xe2\xb7 "
                            "\x87\xc6\xe4\xa0\x82\xa1\xa2\xa3\x83\x88\x93\x85 \x81 ?"));
        QCOMPARE(encode(u"ção"_s, CodePage::CP860), QByteArray("\x87\x84o"));
        // Letters typed with a separate accent mark are the same letters.
        QCOMPARE(encode(u"C\u0327A\u0303"_s, CodePage::CP850), QByteArray("\x80\xc7"));
        // A field can never send a printer command: control characters print as blanks.
        QCOMPARE(encode(u"A\x1b"_s + u"iB\tC"_s, CodePage::CP850), QByteArray("A iB C"));
        // The code page is named in the job, and may be numbered as the printer wants.
        QVERIFY(couponBytes(filled(), kNow, CodePage::CP850, 21).startsWith("\x1b@\x1bt\x15"));
        QCOMPARE(codePageNamed(u"cp-860"_s), CodePage::CP860);
    }

    // No destination: the message says where and how to set one. What the system answers
    // about the port is said in Portuguese, naming it.
    void settingsAndPortProblems() {
        QTemporaryDir dir;
        QString said = sendCoupon("x", readCouponSettings(dir.path()));
        QVERIFY2(said.contains(dir.filePath(u"rotalix.ini"_s)) && said.contains(u"[cupom]"_s) &&
                     said.contains(u"porta=/dev/usb/lp0"_s),
                 qPrintable(said));
        const QString missingFolder = dir.filePath(u"usb/lp0"_s);
        said = sendCoupon(
            "x", readCouponSettings(writeIni(dir, u"[cupom]\nporta=%1\n"_s.arg(missingFolder))));
        QVERIFY2(said.contains(u"a pasta %1 não existe"_s.arg(dir.filePath(u"usb"_s))) &&
                     !said.contains(u"No such file"_s),
                 qPrintable(said));
        QVERIFY(!QFile::exists(missingFolder));
    }

    // The job reaches a serial line (a pseudo-terminal) as built, where the system would
    // otherwise turn each line feed into two.
    void bytesArriveUnchanged() {
        QTemporaryDir dir;
        const QByteArray bytes = couponBytes(filled(), kNow);
        int master = -1, slave = -1;
        char name[256] = {};
        QVERIFY(::openpty(&master, &slave, name, nullptr, nullptr) == 0);
        const CouponSettings s = readCouponSettings(writeIni(
            dir, u"[cupom]\nporta=%1\nvelocidade=9600\n"_s.arg(QString::fromLatin1(name))));
        QCOMPARE(sendCoupon(bytes, s), QString());
        QByteArray got;
        char buffer[4096];
        ::fcntl(master, F_SETFL, O_NONBLOCK);
        for (int tries = 0; tries < 100 && got.size() < bytes.size(); ++tries) {
            const ssize_t n = ::read(master, buffer, sizeof buffer);
            if (n > 0)
                got.append(buffer, n);
            else
                QTest::qWait(10);
        }
        ::close(slave);
        ::close(master);
        QCOMPARE(got, bytes);
    }
};

QTEST_GUILESS_MAIN(CouponTest)
#include "tst_coupon.moc"
