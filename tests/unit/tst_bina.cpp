// The caller-id service against a pseudo-terminal that plays the modem: the settings of
// rotalix.ini, the set-up commands with their fallbacks, a call reaching the screens with the
// number in the register's form, and the device's troubles (withheld numbers, noise, a device
// missing or gone in the middle of a call) told in words, never a crash.

#include "callerid/core/audiosource.h"
#include "callerid/core/bina.h"
#include "fakemodem.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace rtx::callerid;
using rtx::test::FakeModem;
using namespace Qt::Literals::StringLiterals;

namespace {

void writeIni(const QString& folder, const QString& text) {
    QFile f(QDir(folder).filePath(u"rotalix.ini"_s));
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(text.toUtf8());
}

QString notices(const QSignalSpy& spy) {
    QStringList all;
    for (const auto& args : spy)
        all << args.at(0).toString();
    return all.join(u" | "_s);
}

} // namespace

class BinaTest : public QObject {
    Q_OBJECT

private slots:
    // The [bina] group of rotalix.ini as an installer writes it by hand; nothing set:
    // arming says what to write and where; a port that is not there says so.
    void settingsAndNothingToArm() {
        QTemporaryDir dir;
        CallerIdService none(readBinaSettings(dir.path()));
        QSignalSpy told(&none, &CallerIdService::notice);
        QVERIFY(!none.arm());
        QVERIFY2(notices(told).contains(u"porta=/dev/ttyUSB0"_s) &&
                     notices(told).contains(QDir(dir.path()).filePath(u"rotalix.ini"_s)),
                 qPrintable(notices(told)));

        writeIni(dir.path(),
                 u"[bina]\nfonte=serial\nporta=/dev/nenhuma-porta-aqui\nvelocidade=38400\n"
                 u"comandos=AT#CID=1, AT+VCID=1\nddd_local=(21)\nddd_nos_locais=não\n"_s);
        BinaSettings s = readBinaSettings(dir.path());
        QCOMPARE(s.baud, 38400);
        QCOMPARE(s.commands, (QStringList{u"AT#CID=1"_s, u"AT+VCID=1"_s}));
        QCOMPARE(s.plan.localAreaCode, u"21"_s);
        QVERIFY(!s.plan.localWithAreaCode);
        CallerIdService missing(s);
        QSignalSpy told2(&missing, &CallerIdService::notice);
        QVERIFY(!missing.arm());
        QVERIFY(notices(told2).contains(u"não foi encontrado"_s));
        writeIni(dir.path(), u"[bina]\nfonte=radio\n"_s);
        QVERIFY(readBinaSettings(dir.path()).problem.contains(u"radio"_s));
    }

    // The modem refuses the first caller-id command and takes the second; then a call with
    // a local number reaches the screens in the register's form, a block the modem ends by
    // its silence too, a withheld one comes with its flag and a notice, and a line of noise
    // is told and changes nothing.
    void callsFromTheModem() {
        FakeModem modem;
        if (!modem.ok()) QSKIP("no pseudo-terminal here");
        modem.answers = {{u"AT"_s, "\r\nOK\r\n"},
                         {u"AT+VCID=1"_s, "\r\nERROR\r\n"},
                         {u"AT#CID=1"_s, "\r\nOK\r\n"}};
        QTemporaryDir dir;
        writeIni(dir.path(), u"[bina]\nfonte=serial\nporta=%1\nddd_local=11\n"_s.arg(modem.path()));
        CallerIdService service(readBinaSettings(dir.path()));
        QSignalSpy calls(&service, &CallerIdService::incomingCall);
        QSignalSpy told(&service, &CallerIdService::notice);
        QVERIFY(service.arm());
        QTRY_COMPARE(modem.commands(), (QStringList{u"AT"_s, u"AT+VCID=1"_s, u"AT#CID=1"_s}));

        const auto number = [&](int i) { return calls.at(i).at(0).value<Call>().number; };
        modem.send("\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\nNMBR = 33334444\r\n\r\nRING\r\n");
        QTRY_COMPARE(calls.size(), 1);
        QCOMPARE(number(0), u"1133334444"_s);
        modem.send("DATE=1123\r\nTIME=1406\r\nNMBR=021987654321\r\n");
        QTRY_COMPARE(calls.size(), 2);
        QCOMPARE(number(1), u"21987654321"_s);

        modem.send("\r\nRING\r\n\r\nNMBR = P\r\n\r\nRING\r\n");
        QTRY_COMPARE(calls.size(), 3);
        QVERIFY(calls.at(2).at(0).value<Call>().withheld() && number(2).isEmpty());
        QTRY_VERIFY(notices(told).contains(u"privado"_s));

        modem.send(QByteArray("\x01\x02\xff\xfe%$#@\r\n", 11));
        QTRY_VERIFY(notices(told).contains(u"não foi entendido"_s));
        QCOMPARE(calls.size(), 3);
    }

    // The sound input: samples of the formats sound cards give, the first channel of two;
    // an input that is not there is told, and nothing is armed.
    void soundInput() {
        QAudioFormat stereo16;
        stereo16.setSampleRate(8000);
        stereo16.setChannelCount(2);
        stereo16.setSampleFormat(QAudioFormat::Int16);
        const qint16 pcm[] = {16384, -32768, -16384, 32767, 0, 5};
        QCOMPARE(monoSamples(QByteArray(reinterpret_cast<const char*>(pcm), sizeof pcm), stereo16),
                 (std::vector<float>{0.5f, -0.5f, 0.0f}));

        QTemporaryDir dir;
        writeIni(dir.path(), u"[bina]\nfonte=audio\ndispositivo=Placa Que Nao Existe 123\n"_s);
        CallerIdService service(readBinaSettings(dir.path()));
        QSignalSpy told(&service, &CallerIdService::notice);
        QVERIFY(!service.arm());
        QVERIFY2(notices(told).contains(u"Placa Que Nao Existe 123"_s), qPrintable(notices(told)));
    }

    // The device goes away in the middle of a call: a notice that says so, no call, no
    // crash, and the service can be turned off and on again.
    void deviceGoneMidCall() {
        auto modem = std::make_unique<FakeModem>();
        if (!modem->ok()) QSKIP("no pseudo-terminal here");
        QTemporaryDir dir;
        writeIni(dir.path(), u"[bina]\nporta=%1\ncomandos=\n"_s.arg(modem->path()));
        CallerIdService service(readBinaSettings(dir.path()));
        QSignalSpy calls(&service, &CallerIdService::incomingCall);
        QSignalSpy told(&service, &CallerIdService::notice);
        QVERIFY(service.arm());
        modem->send("\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 14");
        QTest::qWait(100);
        modem->hangUp();
        QTRY_VERIFY(notices(told).contains(u"durante uma chamada"_s));
        QCOMPARE(calls.size(), 0);
        QVERIFY(modem->commands().isEmpty()); // comandos= empty: a box that does not speak AT
        service.disarm();
        QVERIFY(!service.arm()); // the port is gone: told, not armed
        QVERIFY(notices(told).contains(u"não foi encontrado"_s));
    }
};

QTEST_GUILESS_MAIN(BinaTest)
#include "tst_bina.moc"
