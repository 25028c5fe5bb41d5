// site.txt of an installation: written by this program in UTF-8, by the old one in the
// Windows code page; the first line is the installation's name either way.

#include "store/installation.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace rtx;

class SiteFileTest : public QObject {
    Q_OBJECT

private slots:
    void readsUtf8AndWindows1252_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("name");
        QTest::newRow("utf-8") << QByteArray("Expressa S\xc3\xa3o Jo\xc3\xa3o\n")
                               << QStringLiteral("Expressa São João");
        QTest::newRow("utf-8, marked, CRLF, second line")
            << QByteArray("\xef\xbb\xbfMotos & Cia \xe2\x80\x93 Ara\xc3\xa7\xc3\xa1\r\noutra\r\n")
            << QStringLiteral("Motos & Cia – Araçá");
        // The old program's files: Latin letters and the code page's own signs (0x80-0x9F).
        QTest::newRow("windows-1252")
            << QByteArray("Expressa S\xe3o Jo\xe3o \x96 Pe\xe7\x61s \x80 \x93ok\x94\r\n")
            << QStringLiteral("Expressa São João – Peças € “ok”");
        QTest::newRow("windows-1252 with no line end")
            << QByteArray("CONCEI\xc7\xc3O") << QStringLiteral("CONCEIÇÃO");
        QTest::newRow("blank first line") << QByteArray("\r\nnome\r\n") << QString();
    }

    void readsUtf8AndWindows1252() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, name);
        QTemporaryDir dir;
        Installation inst(dir.path());
        QFile f(inst.siteFile());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        f.close();
        const std::optional<QString> read = inst.siteName();
        QVERIFY(read.has_value());
        QCOMPARE(*read, name);
    }

    void missingOrEmptyGivesNothing() {
        QTemporaryDir dir;
        Installation inst(dir.path());
        QVERIFY(!inst.siteName().has_value());
        QFile f(inst.siteFile());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        QVERIFY(!inst.siteName().has_value());
    }
};

QTEST_GUILESS_MAIN(SiteFileTest)
#include "tst_sitefile.moc"
