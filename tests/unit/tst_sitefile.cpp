// site.txt: written by this program in UTF-8, by the old one in the Windows code page; its
// first line is the installation's name either way. No file, or an empty one: no name.

#include "store/installation.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace rtx;

class SiteFileTest : public QObject {
    Q_OBJECT

private slots:
    void readsTheFirstLine_data() {
        QTest::addColumn<QByteArray>("bytes"); // null: no file
        QTest::addColumn<QVariant>("name");    // invalid: no name
        QTest::newRow("utf-8, marked, CRLF, second line")
            << QByteArray("\xef\xbb\xbfMotos & Cia \xe2\x80\x93 Ara\xc3\xa7\xc3\xa1\r\noutra\r\n")
            << QVariant(QStringLiteral("Motos & Cia – Araçá"));
        QTest::newRow("windows-1252, the code page's own signs")
            << QByteArray("Expressa S\xe3o Jo\xe3o \x96 Pe\xe7\x61s \x80 \x93ok\x94")
            << QVariant(QStringLiteral("Expressa São João – Peças € “ok”"));
        QTest::newRow("no file") << QByteArray() << QVariant();
        QTest::newRow("empty file") << QByteArray("") << QVariant();
    }

    void readsTheFirstLine() {
        QFETCH(QByteArray, bytes);
        QFETCH(QVariant, name);
        QTemporaryDir dir;
        Installation inst(dir.path());
        if (!bytes.isNull()) {
            QFile f(inst.siteFile());
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size());
        }
        const std::optional<QString> read = inst.siteName();
        QCOMPARE(read.has_value(), name.isValid());
        if (read) QCOMPARE(*read, name.toString());
    }
};

QTEST_GUILESS_MAIN(SiteFileTest)
#include "tst_sitefile.moc"
