// Several stations at once on one database: the simulator's short runs on the engine under
// test (one with a station killed in the middle of a dispatch's unit of work), its checker
// catching what it is there to catch, and a receivable two stations write off from the same
// grid.

#include "dispatch/core/dispatch.h"
#include "dispatch/core/posting.h"
#include "dispatch/core/rules.h"
#include "finance/core/billing.h"
#include "finance/core/cashbook.h"
#include "finance/core/ledger.h"
#include "testinstall.h"

#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QtTest>

using namespace rtx;
using namespace rtx::test;
using namespace Qt::StringLiterals;

namespace {

struct Run {
    int exitCode = -1;
    QStringList lines;
    QString lastLine() const { return lines.isEmpty() ? QString() : lines.last(); }
    QString text() const { return lines.join(u'\n'); }
};

// The installation's settings as the program reads them: on PostgreSQL, its rotalix.ini.
void pointAtDatabase(const TestInstallation& inst) {
    const ConnectionSettings s = inst.settings();
    if (s.engine != Engine::PostgreSQL) return;
    QSettings ini(QDir(inst.folder()).filePath(u"rotalix.ini"_s), QSettings::IniFormat);
    ini.beginGroup(u"banco"_s);
    ini.setValue(u"motor"_s, u"postgresql"_s);
    ini.setValue(u"servidor"_s, s.host);
    ini.setValue(u"porta"_s, s.port);
    ini.setValue(u"banco"_s, s.database);
    ini.setValue(u"usuario"_s, s.user);
}

Run simulate(const TestInstallation& inst, const QStringList& args) {
    QProcess p;
    p.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    p.start(QStringLiteral(ROTALIX_ESTACOES), QStringList{u"--pasta"_s, inst.folder()} + args);
    Run run;
    if (!p.waitForFinished(120000)) {
        p.kill();
        p.waitForFinished();
        return run;
    }
    run.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    run.lines = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    return run;
}

// The new dispatches the stations reported saved, from their logs.
int reportedNewDispatches(const QString& folder) {
    int n = 0;
    for (const QString& name : QDir(folder).entryList({u"estacao-*.log"_s})) {
        QFile f(QDir(folder).filePath(name));
        if (!f.open(QIODevice::ReadOnly)) continue;
        for (const QByteArray& line : f.readAll().split('\n'))
            if (line.startsWith("ok\tatendimento_novo\t")) ++n;
    }
    return n;
}

// The rule lines of a check: which held and which did not.
QStringList failedRules(const Run& run) {
    QStringList out;
    for (const QString& line : run.lines)
        if (line.startsWith(u"  FALHOU"_s)) out << line.mid(10);
    return out;
}

const QString kAllHeld = u"RESULTADO: todos os invariantes valeram e nenhuma ação falhou"_s;

} // namespace

class TestEstacoes : public QObject {
    Q_OBJECT

private slots:
    // Two stations for three seconds: every action of the mix went through at least once,
    // every rule held, and the dispatches in the table are exactly the ones reported saved.
    // With one station killed while its dispatch's unit of work is open, the same holds:
    // nothing of that unit is left behind.
    void shortRunKeepsEveryRule_data() {
        QTest::addColumn<bool>("kill");
        QTest::newRow("duas estações") << false;
        QTest::newRow("uma derrubada no meio da gravação") << true;
    }
    void shortRunKeepsEveryRule() {
        QFETCH(bool, kill);
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        pointAtDatabase(inst);
        QStringList args{u"--estacoes"_s, u"2"_s, u"--segundos"_s, u"3"_s};
        if (kill) args << u"--matar"_s;
        const Run run = simulate(inst, args);
        QVERIFY2(run.exitCode == 0, qPrintable(run.text()));
        QCOMPARE(run.lastLine(), kAllHeld);
        QVERIFY(failedRules(run).isEmpty());
        QCOMPARE(run.text().contains(u"derrubada (SIGKILL)"_s), kill);
        for (const QString& action :
             {u"atendimento_novo"_s, u"atendimento_alterado"_s, u"posicao_motoqueiro"_s,
              u"cliente"_s, u"caixa"_s, u"conta_paga"_s, u"baixa_faturamento"_s, u"recibo"_s,
              u"agenda"_s}) {
            const auto line =
                std::find_if(run.lines.cbegin(), run.lines.cend(), [&](const QString& l) {
                    return l.startsWith(u"  "_s + action + u' ');
                });
            QVERIFY2(line != run.lines.cend(), qPrintable(action));
            QVERIFY2(line->split(u' ', Qt::SkipEmptyParts).value(1).toInt() > 0, qPrintable(*line));
        }
        const int reported = reportedNewDispatches(inst.folder());
        QVERIFY(reported > 10);
        QCOMPARE(int(dispatch::count(inst.store())), reported);
    }

    // The checker is not a rubber stamp: on a finished run, a dispatch's cash credit posted
    // twice, a day total that is not its rows and a receivable credited twice are each told
    // under their own rule, and once each is taken back the check is green again.
    void checkerTellsWhatWasPlanted() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        pointAtDatabase(inst);
        const Run run = simulate(inst, {u"--estacoes"_s, u"2"_s, u"--segundos"_s, u"3"_s});
        QVERIFY2(run.exitCode == 0, qPrintable(run.text()));
        Store& st = inst.store();
        const auto verify = [&](const QStringList& expected) {
            const Run check = simulate(inst, {u"--verificar"_s});
            QVERIFY2(check.exitCode == (expected.isEmpty() ? 0 : 1), qPrintable(check.text()));
            QCOMPARE(failedRules(check), expected);
        };

        // A cash dispatch whose credit is posted a second time.
        const QString cashDispatch =
            st.scalar(u"SELECT MIN(CODIGO) FROM atendimentos WHERE a20 = ?"_s,
                      {dispatch::cashPayment})
                .toString();
        QVERIFY(!cashDispatch.isEmpty());
        finance::CashMovement again;
        again.date = QDate::currentDate();
        again.operation = finance::credit;
        again.document = cashDispatch;
        again.amount = dispatch::load(st, cashDispatch)->clientValue;
        again.group = dispatch::revenueGroup;
        QString doubled;
        {
            UnitOfWork unit(st);
            doubled = finance::postCash(st, again);
            unit.commit();
        }
        verify({u"Cada atendimento tem um lançamento de cada espécie, com os seus valores"_s});
        QVERIFY(finance::removeCash(st, doubled));
        verify({});

        // A day's total one cent away from its rows.
        st.execute(u"UPDATE caixa_dias SET creditos = creditos + 1 WHERE dia = ?"_s,
                   {QDate::currentDate()});
        verify({u"Os totais do caixa por dia batem com as linhas"_s});
        st.execute(u"UPDATE caixa_dias SET creditos = creditos - 1 WHERE dia = ?"_s,
                   {QDate::currentDate()});
        verify({});

        // A written-off receivable credited again, as a second station's write-off would.
        const QString writtenOff =
            st.scalar(u"SELECT MIN(A3) FROM caixa WHERE A7 = ?"_s, {finance::billingGroup})
                .toString();
        QVERIFY(!writtenOff.isEmpty());
        finance::CashMovement credit;
        credit.date = QDate::currentDate();
        credit.operation = finance::credit;
        credit.document = writtenOff;
        credit.amount = 100;
        credit.group = finance::billingGroup;
        {
            UnitOfWork unit(st);
            finance::postCash(st, credit);
            unit.commit();
        }
        verify({u"Nenhuma conta a receber baixada duas vezes"_s});
    }

    // Two stations list the same open receivable and both press the write-off: the second
    // finds it written off and keeps nothing, so the money is credited once. A difference
    // left open beside a receivable already received is written off alone: the first keeps
    // what it received.
    void writeOffOnceAcrossStations() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        Store& st = inst.store();
        const std::unique_ptr<Store> other = inst.openSecondStore();
        const QDate today = QDate::currentDate();
        dispatch::Dispatch d;
        d.attendant = u"ADMIN"_s;
        d.date = today;
        d.clientName = u"PADARIA"_s;
        d.courier = u"BETO"_s;
        d.clientValue = 5000;
        d.courierValue = 1000;
        d.payment = dispatch::invoicePayment;
        d.status = dispatch::courierOnTheWay;
        dispatch::save(st, d, {true, true});

        const auto grid = [&](Store& s) {
            QList<finance::WriteOff> rows;
            for (const finance::BillingRow& r : finance::openReceivables(s, today, today))
                rows.append({r.document, r.amount, r.client});
            return rows;
        };
        const QList<finance::WriteOff> seenHere = grid(st);
        const QList<finance::WriteOff> seenThere = grid(*other);
        QCOMPARE(seenThere.size(), 1);
        finance::writeOff(st, seenHere, today);
        try {
            finance::writeOff(*other, seenThere, today);
            QFAIL("the second write-off of the same receivable went through");
        } catch (const StoreError& e) {
            QCOMPARE(e.text(), finance::writtenOffElsewhere(d.number));
        }
        const auto credits = [&] {
            qint64 sum = 0;
            for (const finance::CashMovement& m :
                 finance::movementsOf(st, finance::credit, d.number, finance::billingGroup))
                sum += m.amount;
            return sum;
        };
        QCOMPARE(credits(), 5000);

        // The value grows after it was received: the difference stands open and is written
        // off by itself.
        d.clientValue = 6200;
        dispatch::save(st, d, {true, true});
        const QList<finance::WriteOff> difference = grid(*other);
        QCOMPARE(difference.size(), 1);
        QCOMPARE(difference[0].amount, 1200);
        finance::writeOff(*other, difference, today);
        QCOMPARE(credits(), 6200);
        QList<qint64> received;
        for (const finance::Bill& b :
             finance::billsOf(st, finance::Ledger::Receivables, d.number, dispatch::revenueGroup))
            received << b.settledAmount;
        std::sort(received.begin(), received.end());
        QCOMPARE(received, (QList<qint64>{1200, 5000}));
    }
};

QTEST_GUILESS_MAIN(TestEstacoes)
#include "tst_estacoes.moc"
