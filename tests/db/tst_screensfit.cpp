// Every screen of the office opens whole on its 1024x768 desktop (less a window frame and a
// task bar): every named control of every tab inside the window at the least size the
// screen asks for, every caption whole. The hub's entries reach the screens by the names
// of the permission rows.

#include "agenda/agenda3.h"
#include "registerdesk.h"
#include "session/modules.h"

#include <QtTest>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;

class ScreensFitTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { session::end(); }

    // Each row is named by the screen's object name.
    void fitTheOfficeDesktop_data() {
        QTest::addColumn<QString>("module"); // the hub's name; AGENDA3 is opened from AGENDA
        // The registers' bar of picture buttons and their dotted captions ("DATA
        // CADASTRO........") may narrow a caption at the very least size; the registers
        // also leave room for a taller task bar. AGENDA3's "..." button is narrower than
        // its caption.
        QTest::addColumn<bool>("wholeCaptions");
        QTest::addColumn<QSize>("room");
        const QSize desktop(1004, 724), registers(1024, 708);
        QTest::newRow("Atendimento") << u"Atendimento"_s << true << desktop;
        QTest::newRow("CAIXA") << u"Caixa"_s << true << desktop;
        QTest::newRow("Pagar") << u"Contas a pagar"_s << false << desktop;
        QTest::newRow("receber") << u"Contas a receber"_s << false << desktop;
        QTest::newRow("AGENDA") << u"Agenda"_s << true << desktop;
        QTest::newRow("AGENDA3") << QString() << false << desktop;
        QTest::newRow("AUTO") << u"Backup"_s << true << desktop;
        QTest::newRow("cliente") << u"Clientes"_s << false << registers;
        QTest::newRow("MOTO") << u"Courier (entregador)"_s << false << registers;
        QTest::newRow("forne") << u"Fornecedores"_s << false << registers;
        QTest::newRow("funci") << u"Funcionários"_s << false << registers;
        QTest::newRow("empe") << u"Empresa"_s << false << registers;
    }

    void fitTheOfficeDesktop() {
        QFETCH(QString, module);
        QFETCH(bool, wholeCaptions);
        QFETCH(QSize, room);
        const QString screen = QString::fromLatin1(QTest::currentDataTag());
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        session::setInstallation(inst.installation());
        session::start({u"ANA PAULA"_s, {}, {}});
        const ModuleFactory make = moduleFactory(module);
        QVERIFY(make || module.isEmpty());
        std::unique_ptr<QDialog> s(make ? make(nullptr) : new AGENDA3);
        QCOMPARE(s->objectName(), screen);
        QVERIFY(showActive(s.get()));
        QVERIFY2(s->size().boundedTo(room) == s->size(), qPrintable(screen));
        QCOMPARE(misfit(s.get(), room, wholeCaptions), QString());
    }
};

QTEST_MAIN(ScreensFitTest)
#include "tst_screensfit.moc"
