// The bina on the dispatch screen, with a pseudo-terminal playing the modem (no device set:
// the dispatch screen's own test): Ativar Bina arms it and says so; a call to an idle screen fills
// the client as if the number had been typed; a call while another dispatch is typed waits in its
// line and changes nothing until F9 takes it; a withheld number is told in the status line.

#include "dispatchdesk.h"
#include "fakemodem.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QtTest>
#include <memory>

using namespace rtx;
using namespace rtx::test;
using namespace rtx::ui;
using namespace Qt::Literals::StringLiterals;

namespace {

// Every field of the first tab an operator types in, "|" between them.
const QString kTyped = u"a4 A5 A6 A7 A8 A9 A10 A11 A12 A13 A14 A15 A16 A17 A21"_s;

} // namespace

class AtendimentoBinaTest : public QObject, DispatchDesk {
    Q_OBJECT

    std::unique_ptr<FakeModem> modem;

    QString statusLine() { return get<QLabel>(u"StatusBina"_s)->text(); }
    QLabel* waitingLine() { return get<QLabel>(u"ChamadaEspera"_s); }

    // The telephone of D'Avila without its area code, as the line of a local call sends it.
    QString davilaLocal() { return clientPhone(kDavila).mid(2); }

    // The modem on a pseudo-terminal, named in rotalix.ini, and the screen armed with it.
    void openArmed() {
        modem = std::make_unique<FakeModem>();
        if (!modem->ok()) QSKIP("no pseudo-terminal here");
        appendIni(
            u"\n[bina]\nfonte=serial\nporta=%1\ncomandos=\nddd_local=11\n"_s.arg(modem->path()));
        open();
        prompts->clear();
        get<QAbstractButton>(u"Command3"_s)->click();
        QCOMPARE(prompts->texts(), QStringList());
        QVERIFY2(statusLine().contains(u"Bina ativa"_s) && statusLine().contains(modem->path()),
                 qPrintable(statusLine()));
    }

    void ring(const QString& number) {
        modem->send(
            u"\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\nNMBR = %1\r\n\r\nRING\r\n"_s.arg(number)
                .toLatin1());
    }

private slots:
    void init() { begin(); }
    void cleanup() {
        end();
        modem.reset();
    }

    // An idle screen: the number in a4, the client's line filled, its remark told as when
    // the number is typed; then a withheld number is only told in the status line.
    void callToAnIdleScreen() {
        RTX_REQUIRE_INSTALL(*inst);
        store().execute(u"UPDATE clientes SET C31 = ? WHERE C5 = ?"_s,
                        {u"SÓ ENTREGAR ATÉ AS 17H"_s, kDavila});
        openArmed();
        const QString local = davilaLocal();
        ring(local);
        QTRY_COMPARE(text(u"A6"_s), kDavila);
        QCOMPARE(text(u"a4"_s), u"11"_s + local);
        QVERIFY(!text(u"A7"_s).isEmpty());
        QCOMPARE(prompts->texts(), QStringList{u"Obs. SÓ ENTREGAR ATÉ AS 17H"_s});
        QVERIFY(waitingLine()->isHidden());

        // A withheld number: no box, nothing written, a notice in the status line.
        prompts->clear();
        const QString before = fields(kTyped);
        modem->send("\r\nRING\r\n\r\nNMBR = P\r\n\r\nRING\r\n");
        QTRY_VERIFY2(statusLine().contains(u"privado"_s), qPrintable(statusLine()));
        QCOMPARE(fields(kTyped), before);
        QCOMPARE(prompts->texts(), QStringList());
        QVERIFY(waitingLine()->isHidden());
    }

    // The operator is typing another dispatch: the call changes no field and waits in its
    // line; F9 takes it into a new dispatch, filled from the client.
    void callWhileTyping() {
        RTX_REQUIRE_INSTALL(*inst);
        openArmed();
        type(u"A6"_s, u"CLIENTE DE BALCÃO"_s);
        type(u"A9"_s, u"RUA DAS FLORES, 10"_s);
        get<QPlainTextEdit>(u"A17"_s)->setPlainText(u"LEVAR TROCO"_s);
        const QString before = fields(kTyped);

        const QString local = davilaLocal();
        ring(local);
        QTRY_VERIFY(!waitingLine()->isHidden());
        QCOMPARE(waitingLine()->text(),
                 u"Chamada de (11) %1-%2 — F9 para atender"_s.arg(local.left(4), local.mid(4)));
        QCOMPARE(fields(kTyped), before);
        QCOMPARE(prompts->texts(), QStringList());

        // Still waiting after more typing; nothing was put anywhere.
        type(u"A5"_s, u"JOÃO"_s);
        QVERIFY(text(u"a4"_s).isEmpty());
        QVERIFY(!waitingLine()->isHidden());

        // What is typed and not saved is not dropped without the operator's word.
        QTest::keyClick(get(u"A5"_s), Qt::Key_F9);
        QCOMPARE(prompts->texts(ScriptedPrompter::Kind::Question),
                 QStringList{u"O atendimento em digitação ainda não foi gravado e será "
                             u"descartado. Atender a chamada assim mesmo?"_s});
        QCOMPARE(fields(kTyped).contains(u"RUA DAS FLORES"_s), true);
        QVERIFY(!waitingLine()->isHidden());
        prompts->answerYes();
        QTest::keyClick(get(u"A5"_s), Qt::Key_F9);
        QTRY_COMPARE(text(u"A6"_s), kDavila);
        QCOMPARE(text(u"a4"_s), u"11"_s + local);
        QCOMPARE(text(u"A9"_s), QString()); // a new dispatch: the other one's fields are gone
        QCOMPARE(text(u"A17"_s), QString());
        QVERIFY(waitingLine()->isHidden());
        // F9 with nothing waiting changes nothing.
        const QString now = fields(kTyped);
        QTest::keyClick(get(u"A5"_s), Qt::Key_F9);
        QCOMPARE(fields(kTyped), now);
    }
};

QTEST_MAIN(AtendimentoBinaTest)
#include "tst_atendimento_bina.moc"
