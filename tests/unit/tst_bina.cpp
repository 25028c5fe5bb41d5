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
    // The [bina] group of rotalix.ini, as an installer writes it by hand.
    void settings() {
        QTemporaryDir dir;
        BinaSettings s = readBinaSettings(dir.path());
        QCOMPARE(s.source, BinaSettings::Source::None);
        QVERIFY(s.problem.isEmpty());
        QCOMPARE(s.commands, defaultCommands());

        writeIni(dir.path(),
                 u"[bina]\nfonte=serial\nporta=/dev/ttyUSB1\nvelocidade=38400\n"
                 u"comandos=AT#CID=1, AT+VCID=1\nddd_local=(21)\nddd_nos_locais=não\n"_s);
        s = readBinaSettings(dir.path());
        QCOMPARE(s.source, BinaSettings::Source::Serial);
        QCOMPARE(s.port, u"/dev/ttyUSB1"_s);
        QCOMPARE(s.baud, 38400);
        QCOMPARE(s.commands, (QStringList{u"AT#CID=1"_s, u"AT+VCID=1"_s}));
        QCOMPARE(s.plan.localAreaCode, u"21"_s);
        QVERIFY(!s.plan.localWithAreaCode);

        writeIni(dir.path(), u"[bina]\nfonte=audio\ndispositivo=USB Audio\ntaxa=44100\n"
                             u"comandos=\n"_s);
        s = readBinaSettings(dir.path());
        QCOMPARE(s.source, BinaSettings::Source::Audio);
        QCOMPARE(s.audioDevice, u"USB Audio"_s);
        QCOMPARE(s.sampleRate, 44100);
        QVERIFY(s.commands.isEmpty());
        QVERIFY(s.plan.localWithAreaCode);

        writeIni(dir.path(), u"[bina]\nfonte=radio\n"_s);
        QVERIFY(readBinaSettings(dir.path()).problem.contains(u"radio"_s));
        writeIni(dir.path(), u"[bina]\nfonte=serial\n"_s);
        s = readBinaSettings(dir.path());
        QCOMPARE(s.source, BinaSettings::Source::None);
        QVERIFY(s.problem.contains(u"porta"_s));
    }

    // Nothing set: arming says what to write and where; a port that is not there says so.
    void nothingToArm() {
        QTemporaryDir dir;
        CallerIdService none(readBinaSettings(dir.path()));
        QSignalSpy told(&none, &CallerIdService::notice);
        QVERIFY(!none.arm());
        QVERIFY(!none.armed());
        QCOMPARE(told.size(), 1);
        const QString text = told.at(0).at(0).toString();
        QVERIFY2(text.contains(u"[bina]"_s) && text.contains(u"porta=/dev/ttyUSB0"_s) &&
                     text.contains(QDir(dir.path()).filePath(u"rotalix.ini"_s)),
                 qPrintable(text));
        QCOMPARE(none.statusText(), u"Bina desligada."_s);

        writeIni(dir.path(), u"[bina]\nporta=/dev/nenhuma-porta-aqui\n"_s);
        CallerIdService missing(readBinaSettings(dir.path()));
        QSignalSpy told2(&missing, &CallerIdService::notice);
        QVERIFY(!missing.arm());
        QVERIFY(notices(told2).contains(u"não foi encontrado"_s));
    }

    // The modem refuses the first caller-id command and takes the second; then a call with
    // a local number reaches the screens in the register's form, a withheld one comes with
    // its flag and a notice, and a line of noise is told and changes nothing.
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
        QVERIFY(service.statusText().contains(modem.path()));

        QTRY_COMPARE(modem.commands(), (QStringList{u"AT"_s, u"AT+VCID=1"_s, u"AT#CID=1"_s}));
        QTest::qWait(50);
        QCOMPARE(modem.commands().size(), 3); // nothing after the accepted one

        modem.send("\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\nNMBR = 33334444\r\n\r\nRING\r\n");
        QTRY_COMPARE(calls.size(), 1);
        Call call = calls.at(0).at(0).value<Call>();
        QCOMPARE(call.number, u"1133334444"_s);
        QVERIFY(!call.withheld());
        QVERIFY(call.hasNumber());

        // A modem that sends no NAME and no second ring: the block ends by its silence.
        modem.send("DATE=1123\r\nTIME=1406\r\nNMBR=021987654321\r\n");
        QTRY_COMPARE(calls.size(), 2);
        QCOMPARE(calls.at(1).at(0).value<Call>().number, u"21987654321"_s);

        modem.send("\r\nRING\r\n\r\nNMBR = P\r\n\r\nRING\r\n");
        QTRY_COMPARE(calls.size(), 3);
        call = calls.at(2).at(0).value<Call>();
        QVERIFY(call.withheld());
        QVERIFY(call.number.isEmpty());
        QTRY_VERIFY(notices(told).contains(u"privado"_s));

        const qsizetype before = told.size();
        modem.send(QByteArray("\x01\x02\xff\xfe%$#@\r\n", 11));
        QTRY_COMPARE(told.size(), before + 1);
        QVERIFY(notices(told).contains(u"não foi entendido"_s));
        QCOMPARE(calls.size(), 3);

        // Still listening after all that.
        modem.send("NMBR = 1155556666\r\nNAME = PADARIA\r\n");
        QTRY_COMPARE(calls.size(), 4);
        QCOMPARE(calls.at(3).at(0).value<Call>().name, u"PADARIA"_s);
    }

    // A modem that takes none of the commands is told; a box that does not speak AT is just
    // listened to; with comandos= empty nothing is written at all.
    void commandsRefusedOrNone() {
        {
            FakeModem modem;
            if (!modem.ok()) QSKIP("no pseudo-terminal here");
            modem.answers = {
                {u"AT"_s, "OK\r\n"}, {u"AT+VCID=1"_s, "ERROR\r\n"}, {u"AT#CID=1"_s, "ERROR\r\n"}};
            QTemporaryDir dir;
            writeIni(dir.path(),
                     u"[bina]\nporta=%1\ncomandos=AT+VCID=1, AT#CID=1\n"_s.arg(modem.path()));
            CallerIdService service(readBinaSettings(dir.path()));
            QSignalSpy told(&service, &CallerIdService::notice);
            QVERIFY(service.arm());
            QTRY_VERIFY(notices(told).contains(u"não aceitou nenhum comando"_s));
            QVERIFY(notices(told).contains(u"AT+VCID=1, AT#CID=1"_s));
            QVERIFY(service.armed());
        }
        {
            FakeModem box;
            if (!box.ok()) QSKIP("no pseudo-terminal here");
            QTemporaryDir dir;
            writeIni(dir.path(), u"[bina]\nporta=%1\ncomandos=\nddd_local=11\n"_s.arg(box.path()));
            CallerIdService service(readBinaSettings(dir.path()));
            QSignalSpy calls(&service, &CallerIdService::incomingCall);
            QVERIFY(service.arm());
            box.send("A33334444C\r\n");
            QTRY_COMPARE(calls.size(), 1);
            QCOMPARE(calls.at(0).at(0).value<Call>().number, u"1133334444"_s);
            QVERIFY(box.commands().isEmpty());
        }
    }

    // The sound input: samples of the formats sound cards give, the first channel of two;
    // an input that is not there is told, and nothing is armed.
    void soundInput() {
        QAudioFormat stereo16;
        stereo16.setSampleRate(8000);
        stereo16.setChannelCount(2);
        stereo16.setSampleFormat(QAudioFormat::Int16);
        const qint16 pcm[] = {16384, -32768, -16384, 32767, 0, 5};
        auto samples =
            monoSamples(QByteArray(reinterpret_cast<const char*>(pcm), sizeof pcm), stereo16);
        QCOMPARE(samples, (std::vector<float>{0.5f, -0.5f, 0.0f}));

        QAudioFormat monoFloat;
        monoFloat.setSampleRate(44100);
        monoFloat.setChannelCount(1);
        monoFloat.setSampleFormat(QAudioFormat::Float);
        const float f[] = {0.25f, -1.0f};
        samples =
            monoSamples(QByteArray(reinterpret_cast<const char*>(f), sizeof f) + "xy", monoFloat);
        QCOMPARE(samples, (std::vector<float>{0.25f, -1.0f})); // a piece of a frame is no sample

        QAudioFormat bytes;
        bytes.setChannelCount(1);
        bytes.setSampleFormat(QAudioFormat::UInt8);
        QCOMPARE(monoSamples(QByteArray("\x80\xc0\x00", 3), bytes),
                 (std::vector<float>{0.0f, 0.5f, -1.0f}));

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
        service.disarm();
        QVERIFY(!service.armed());
        QVERIFY(!service.arm()); // the port is gone: told, not armed
        QVERIFY(notices(told).contains(u"não foi encontrado"_s));
    }
};

QTEST_GUILESS_MAIN(BinaTest)
#include "tst_bina.moc"
