// The bina on the dispatch screen, with a pseudo-terminal playing the modem: a call to an idle
// screen fills the client as if the number had been typed; a call while another dispatch is
// typed waits in its line until F9 takes it; a withheld number is told in the status line.

#include "dispatchdesk.h"
#include "fakemodem.h"

#include <QLabel>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::Literals::StringLiterals;

class AtendimentoBinaTest : public QObject, DispatchDesk {
    Q_OBJECT

    // Every field of the first tab an operator types in.
    const QString typed = u"a4 A5 A6 A7 A8 A9 A10 A11 A12 A13 A14 A15 A16 A17 A21"_s;
    std::unique_ptr<FakeModem> modem;
    QString statusLine() { return get<QLabel>(u"StatusBina"_s)->text(); }
    QLabel* waitingLine() { return get<QLabel>(u"ChamadaEspera"_s); }

    // The modem on a pseudo-terminal, named in rotalix.ini, and the screen armed with it.
    void openArmed() {
        modem = std::make_unique<FakeModem>();
        if (!modem->ok()) QSKIP("no pseudo-terminal here");
        appendIni(
            u"\n[bina]\nfonte=serial\nporta=%1\ncomandos=\nddd_local=11\n"_s.arg(modem->path()));
        open();
        QCOMPARE(press(u"Command3"_s), QStringList());
        QVERIFY2(statusLine().contains(u"Bina ativa"_s), qPrintable(statusLine()));
    }
    void ring(const QString& number) {
        modem->send(u"\r\nRING\r\n\r\nNMBR = %1\r\n\r\nRING\r\n"_s.arg(number).toLatin1());
    }

private slots:
    void init() { begin(); }
    void cleanup() {
        end();
        modem.reset();
    }

    // An idle screen: the number in a4, the client's line filled, its remark told as when
    // the number is typed; then a withheld number is only told in the status line.
    void callsToTheScreen() {
        RTX_REQUIRE_INSTALL(*inst);
        store().execute(u"UPDATE clientes SET C31 = ? WHERE C5 = ?"_s,
                        {u"SÓ ENTREGAR ATÉ AS 17H"_s, kDavila});
        openArmed();
        const QString local = clientPhone(kDavila).mid(2); // a local call comes without its DDD
        ring(local);
        QTRY_COMPARE(text(u"A6"_s), kDavila);
        QCOMPARE(text(u"a4"_s), u"11"_s + local);
        QCOMPARE(prompts->texts(), QStringList{u"Obs. SÓ ENTREGAR ATÉ AS 17H"_s});

        prompts->clear();
        QString before = fields(typed);
        ring(u"P"_s);
        QTRY_VERIFY2(statusLine().contains(u"privado"_s), qPrintable(statusLine()));
        QCOMPARE(fields(typed), before);
        QCOMPARE(prompts->texts(), QStringList());

        // The operator is typing another dispatch: the call changes no field and waits in its
        // line; F9 asks before dropping what is typed, then takes the call into a new one.
        click(u"Command4"_s);
        type(u"A9"_s, u"RUA DAS FLORES, 10"_s);
        before = fields(typed);
        ring(local);
        QTRY_VERIFY(!waitingLine()->isHidden());
        QCOMPARE(waitingLine()->text(),
                 u"Chamada de (11) %1-%2 — F9 para atender"_s.arg(local.left(4), local.mid(4)));
        QCOMPARE(fields(typed), before);

        QTest::keyClick(get(u"A5"_s), Qt::Key_F9);
        QCOMPARE(prompts->texts(),
                 QStringList{u"O atendimento em digitação ainda não foi gravado e será "
                             u"descartado. Atender a chamada assim mesmo?"_s});
        QCOMPARE(fields(typed), before); // a No keeps it
        prompts->answerYes();
        QTest::keyClick(get(u"A5"_s), Qt::Key_F9);
        QTRY_COMPARE(text(u"A6"_s), kDavila);
        QCOMPARE(text(u"A9"_s), QString()); // a new dispatch: the other one's fields are gone
        QVERIFY(waitingLine()->isHidden());
    }
};

QTEST_MAIN(AtendimentoBinaTest)
#include "tst_atendimento_bina.moc"
