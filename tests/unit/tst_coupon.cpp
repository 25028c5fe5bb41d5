// The counter coupon: its bytes compared byte for byte (labels, blanks, the printer's code
// page, the cut at the end), and the way the bytes reach the printer set in rotalix.ini.

#include "output/core/coupon.h"
#include "output/core/couponsink.h"

#include <QFile>
#include <QSocketNotifier>
#include <QStandardPaths>
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
    CouponFields f;
    f.companyName = u"ROTALIX ENTREGAS RÁPIDAS"_s;
    f.companyPhone = u"(11)3333-4444"_s;
    f.number = u"0000123"_s;
    f.client = u"JOSÉ DA CONCEIÇÃO"_s;
    f.phone = u"1155551234"_s;
    f.address = u"RUA AUGUSTA, 100  CENTRO"_s;
    f.pickupAddress = u"AV. PAULISTA, 900"_s;
    f.pickupContact = u"MÁRCIA"_s;
    f.pickupPhone = u"(11)3030-1010"_s;
    f.pickupTask = u"RETIRAR ENVELOPE"_s;
    f.deliveryAddress = u"RUA TUIUTI, 45"_s;
    f.deliveryContact = u"JOÃO"_s;
    f.deliveryPhone = u"(11)2020-3030"_s;
    f.deliveryTask = u"ENTREGAR"_s;
    f.service = u"ENTREGA RÁPIDA"_s;
    f.returnTrip = u"NÃO"_s;
    f.courier = u"ZÉ"_s;
    f.value = u"25,00"_s;
    return f;
}

// The job for lines 1 to 29 as written here, each followed by a line feed, then the cut.
QByteArray job(const QList<QByteArray>& lines) {
    QByteArray out = kStart;
    for (const QByteArray& l : lines)
        out += l + '\n';
    return out + "\x1bi";
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
        const QByteArray expected = job({
            " ",
            " ",
            kSep,
            " ROTALIX ENTREGAS R\xb5PIDAS",
            " Telefone: (11)3333-4444",
            kSep,
            " Nro: 0000123 Data: 15/03/2025 Hora: 09:05",
            kSep,
            " Cliente: JOS\x90 DA CONCEI\x80\xc7O",
            " Telefone: 1155551234",
            " RUA AUGUSTA, 100  CENTRO",
            kSep,
            " ORIGEM",
            " AV. PAULISTA, 900  M\xb5RCIA",
            " Tel:(11)3030-1010  RETIRAR ENVELOPE",
            kSep,
            " DESTINO",
            " RUA TUIUTI, 45  JO\xc7O",
            " Tel:(11)2020-3030  ENTREGAR",
            kSep,
            " ENTREGA R\xb5PIDA",
            "  Com retorno: N\xc7O",
            "  Entregador: Z\x90",
            "  Valor: 25,00",
            " ",
            " ",
            " ",
            " ",
            " ",
        });
        QCOMPARE(couponBytes(filled(), kNow), expected);
    }

    // A dispatch not saved yet has no number, and every empty field keeps its label and its
    // blanks: "Tel:" and three blanks for an empty pickup telephone and task.
    void unsavedAndEmptyFields() {
        CouponFields f;
        f.companyName = u"ROTALIX"_s;
        const QStringList lines = couponLines(f, kNow);
        QCOMPARE(lines.size(), 29);
        QCOMPARE(lines[6], u" Nro:  Data: 15/03/2025 Hora: 09:05"_s);
        QCOMPARE(lines.mid(8, 3), (QStringList{u" Cliente: "_s, u" Telefone: "_s, u" "_s}));
        QCOMPARE(lines.mid(13, 2), (QStringList{u"   "_s, u" Tel:  "_s}));
        QCOMPARE(lines.mid(20, 4),
                 (QStringList{u" "_s, u"  Com retorno: "_s, u"  Entregador: "_s, u"  Valor: "_s}));
    }

    void codePages() {
        const QString text = u"ÇÃÕÁÉÍÓÚÂÊÔÀ çãõáéíóúâêôà ü €"_s;
        QCOMPARE(encode(text, CodePage::CP850),
                 QByteArray("\x80\xc7\xe5\xb5\x90\xd6\xe0\xe9\xb6\xd2\xe2\xb7 "
                            "\x87\xc6\xe4\xa0\x82\xa1\xa2\xa3\x83\x88\x93\x85 \x81 ?"));
        QCOMPARE(encode(text, CodePage::CP860),
                 QByteArray("\x80\x8e\x99\x86\x90\x8b\x9f\x96\x8f\x89\x8c\x91 "
                            "\x87\x84\x94\xa0\x82\xa1\xa2\xa3\x83\x88\x93\x85 \x81 ?"));
        QCOMPARE(encode(u"€"_s, CodePage::CP858), QByteArray("\xd5"));
        QCOMPARE(encode(u"ção"_s, CodePage::CP1252), QByteArray("\xe7\xe3o"));
        // Letters typed with a separate accent mark are the same letters.
        QCOMPARE(encode(u"C\u0327A\u0303"_s, CodePage::CP850), QByteArray("\x80\xc7"));
        // A field can never send a printer command: control characters print as blanks.
        QCOMPARE(encode(u"A\x1b"_s + u"iB\tC"_s, CodePage::CP850), QByteArray("A iB C"));
        // The code page is named in the job, and may be numbered as the printer wants.
        QVERIFY(couponBytes(filled(), kNow, CodePage::CP860).startsWith("\x1b@\x1bt\x03"));
        QVERIFY(couponBytes(filled(), kNow, CodePage::CP850, 21).startsWith("\x1b@\x1bt\x15"));
        QCOMPARE(codePageNamed(u"cp-860"_s), CodePage::CP860);
        QCOMPARE(codePageNamed(u"850"_s), CodePage::CP850);
        QCOMPARE(codePageNamed(u"UTF-8"_s), std::nullopt);
    }

    void settingsAndMessages() {
        QTemporaryDir dir;
        // No destination: the message says where and how to set one.
        CouponSettings s = readCouponSettings(dir.path());
        QString said = sendCoupon("x", s);
        QVERIFY2(said.contains(dir.filePath(u"rotalix.ini"_s)) && said.contains(u"[cupom]"_s) &&
                     said.contains(u"porta=/dev/usb/lp0"_s) && said.contains(u"fila="_s),
                 qPrintable(said));
        // A code page the program does not know.
        s = readCouponSettings(writeIni(dir, u"[cupom]\nporta=/dev/null\ncodigo=UTF-8\n"_s));
        QVERIFY(sendCoupon("x", s).contains(u"UTF-8"_s));
        // A print queue without the system's lp command.
        if (QStandardPaths::findExecutable(u"lp"_s).isEmpty()) {
            s = readCouponSettings(writeIni(dir, u"[cupom]\nfila=BALCAO\n"_s));
            said = sendCoupon("x", s);
            QVERIFY2(said.contains(u"BALCAO"_s) && said.contains(u"lp"_s), qPrintable(said));
        }
    }

    // What the system answers is said in Portuguese, naming the port: a folder that is not
    // there, a port that is not there, a folder given as the port, a port without
    // permission.
    void portProblemsInPortuguese() {
        QTemporaryDir dir;
        auto said = [&](const QString& port) {
            return sendCoupon(
                "x", readCouponSettings(writeIni(dir, u"[cupom]\nporta=%1\n"_s.arg(port))));
        };
        const QString missingFolder = dir.filePath(u"usb/lp0"_s);
        QString text = said(missingFolder);
        QVERIFY2(text.contains(u"a pasta %1 não existe"_s.arg(dir.filePath(u"usb"_s))),
                 qPrintable(text));
        QVERIFY2(!text.contains(u"No such file"_s), qPrintable(text));
        QVERIFY(!QFile::exists(missingFolder));

        const QString missingPort = dir.filePath(u"lp9"_s);
        text = said(missingPort);
        QVERIFY2(text.contains(u"%1 não existe"_s.arg(missingPort)), qPrintable(text));

        text = said(dir.path());
        QVERIFY2(text.contains(u"é uma pasta"_s) && text.contains(dir.path()), qPrintable(text));

        if (::geteuid() != 0) { // root opens any file
            const QString locked = dir.filePath(u"lp1"_s);
            QFile f(locked);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.close();
            QFile::setPermissions(locked, QFileDevice::ReadOwner);
            text = said(locked);
            QVERIFY2(text.contains(u"sem permissão"_s), qPrintable(text));
        }
    }

    // The job reaches a serial line (a pseudo-terminal) as built, where the system would
    // otherwise turn each line feed into two. (A file standing for a printer, with a longer
    // job before in it: the dispatch screen's printing test.)
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
