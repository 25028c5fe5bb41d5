// Every screen of the office opens whole on its 1024x768 desktop (less a window frame and a
// task bar): every named control of every tab inside the window at the least size the
// screen asks for, every caption whole. The hub's entries reach the screens by the names
// of the permission rows.

#include "agenda/agenda.h"
#include "agenda/agenda3.h"
#include "dispatch/atendimento.h"
#include "finance/caixa.h"
#include "finance/contas.h"
#include "output/auto.h"
#include "registerdesk.h"
#include "registers/MOTO.h"
#include "registers/cliente.h"
#include "registers/empe.h"
#include "registers/forne.h"
#include "registers/funci.h"
#include "session/modules.h"

#include <QtTest>
#include <functional>

using namespace rtx;
using namespace rtx::ui;
using namespace rtx::test;
using namespace Qt::StringLiterals;

using Make = std::function<QDialog*()>;
Q_DECLARE_METATYPE(Make)

class ScreensFitTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { session::end(); }

    void fitTheOfficeDesktop_data() {
        QTest::addColumn<QString>("module"); // the hub's name, or empty: made here
        QTest::addColumn<QString>("screen");
        QTest::addColumn<Make>("make");
        // The registers' bar of picture buttons and their dotted captions ("DATA
        // CADASTRO........") may narrow a caption at the very least size; the registers
        // also leave room for a taller task bar.
        QTest::addColumn<bool>("wholeCaptions");
        QTest::addColumn<QSize>("room");
        const QSize desktop(1004, 724), registers(1024, 708);
        QTest::newRow("Atendimento")
            << u"Atendimento"_s << u"Atendimento"_s << Make() << true << desktop;
        QTest::newRow("Caixa") << u"Caixa"_s << u"CAIXA"_s << Make() << true << desktop;
        QTest::newRow("Pagar") << u"Contas a pagar"_s << u"Pagar"_s << Make() << false << desktop;
        QTest::newRow("receber") << u"Contas a receber"_s << u"receber"_s << Make() << false
                                 << desktop;
        QTest::newRow("Agenda") << u"Agenda"_s << u"AGENDA"_s << Make() << true << desktop;
        QTest::newRow("AGENDA3") << QString() << u"AGENDA3"_s
                                 << Make([]() -> QDialog* { return new AGENDA3; }) << false
                                 << desktop; // its "..." button is narrower than its caption
        QTest::newRow("Backup") << u"Backup"_s << u"AUTO"_s << Make() << true << desktop;
        QTest::newRow("cliente") << QString() << u"cliente"_s
                                 << Make([]() -> QDialog* { return new cliente; }) << false
                                 << registers;
        QTest::newRow("MOTO") << QString() << u"MOTO"_s
                              << Make([]() -> QDialog* { return new MOTO; }) << false << registers;
        QTest::newRow("forne") << QString() << u"forne"_s
                               << Make([]() -> QDialog* { return new forne; }) << false
                               << registers;
        QTest::newRow("funci") << QString() << u"funci"_s
                               << Make([]() -> QDialog* { return new funci; }) << false
                               << registers;
        QTest::newRow("empe") << QString() << u"empe"_s
                              << Make([]() -> QDialog* { return new empe; }) << false << registers;
    }

    void fitTheOfficeDesktop() {
        QFETCH(QString, module);
        QFETCH(QString, screen);
        QFETCH(Make, make);
        QFETCH(bool, wholeCaptions);
        QFETCH(QSize, room);
        TestInstallation inst(true, true);
        RTX_REQUIRE_INSTALL(inst);
        ScriptedPrompter prompts;
        session::setInstallation(inst.installation());
        session::start({u"ANA PAULA"_s, {}, {}});
        std::unique_ptr<QDialog> s(module.isEmpty() ? make() : moduleFactory(module)(nullptr));
        QCOMPARE(s->objectName(), screen);
        QVERIFY(showActive(s.get()));
        QVERIFY2(s->size().boundedTo(room) == s->size(), qPrintable(screen));
        QCOMPARE(misfit(s.get(), room, wholeCaptions), QString());
    }
};

QTEST_MAIN(ScreensFitTest)
#include "tst_screensfit.moc"
