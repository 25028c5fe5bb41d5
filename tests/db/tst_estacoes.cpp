// Several stations at once on one database: the simulator's short run on the engine under
// test, its checker catching what it is there to catch, and a receivable two stations write
// off from the same grid.

#include "dispatch/core/dispatch.h"
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
namespace fin = rtx::finance;

namespace {

// The installation's settings as the program reads them: on PostgreSQL, its rotalix.ini.
void pointAtDatabase(const TestInstallation& inst) {
    const ConnectionSettings s = inst.settings();
    if (s.engine != Engine::PostgreSQL) return;
    QSettings ini(QDir(inst.folder()).filePath(u"rotalix.ini"_s), QSettings::IniFormat);
    ini.setValue(u"banco/motor"_s, u"postgresql"_s);
    ini.setValue(u"banco/servidor"_s, s.host);
    ini.setValue(u"banco/porta"_s, s.port);
    ini.setValue(u"banco/banco"_s, s.database);
    ini.setValue(u"banco/usuario"_s, s.user);
}

// The simulator's exit code (-1: it did not end by itself) and what it printed.
std::pair<int, QString> simulate(const TestInstallation& inst, const QStringList& args) {
    QProcess p;
    p.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    p.start(QStringLiteral(ROTALIX_ESTACOES), QStringList{u"--pasta"_s, inst.folder()} + args);
    if (!p.waitForFinished(120000)) p.kill();
    p.waitForFinished();
    const bool ended =
        p.exitStatus() == QProcess::NormalExit && p.error() == QProcess::UnknownError;
    return {ended ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput())};
}

// What follows a prefix on the lines of a printout.
QStringList linesAfter(const QString& out, const QString& prefix) {
    QStringList found;
    for (const QString& line : out.split(u'\n'))
        if (line.startsWith(prefix)) found << line.mid(prefix.size()).trimmed();
    return found;
}

// A credit put into the book by hand, in its own unit of work.
void postCredit(Store& st, const QString& document, qint64 amount, const QString& group) {
    fin::CashMovement m;
    m.date = QDate::currentDate();
    m.operation = fin::credit;
    m.document = document;
    m.amount = amount;
    m.group = group;
    UnitOfWork unit(st);
    fin::postCash(st, m);
    unit.commit();
}

} // namespace

class TestEstacoes : public QObject {
    Q_OBJECT

private slots:
    // Two stations for three seconds, one killed while its dispatch's unit of work is open:
    // every rule held, and the dispatches in the table are exactly the ones the logs say were
    // saved. The checker that found it green is no rubber stamp: a dispatch's cash credit
    // posted twice and a receivable credited twice are each told under their own rule.
    void shortRunKeepsEveryRule() {
        TestInstallation inst;
        RTX_REQUIRE_INSTALL(inst);
        pointAtDatabase(inst);
        const auto [code, out] =
            simulate(inst, {u"--estacoes"_s, u"2"_s, u"--segundos"_s, u"3"_s, u"--matar"_s});
        QVERIFY2(code == 0 && out.contains(u"derrubada (SIGKILL)"_s), qPrintable(out));
        const int saved =
            linesAfter(out, u"  atendimento_novo "_s).value(0).section(u' ', 0, 0).toInt();
        QVERIFY(saved > 10);
        // Every action of the office's mix was tried: a green run proves nothing of one that
        // never ran.
        for (const char* action : {"agenda", "atendimento_alterado", "baixa_faturamento", "caixa",
                                   "cliente", "conta_paga", "posicao_motoqueiro", "recibo"})
            QVERIFY2(linesAfter(out, u"  %1 "_s.arg(QLatin1String(action)))
                             .value(0)
                             .section(u' ', 0, 0)
                             .toInt() > 0,
                     action);
        Store& st = inst.store();
        QCOMPARE(int(dispatch::count(st)), saved);

        const QString paidAtOnce =
            st.scalar(u"SELECT MIN(CODIGO) FROM atendimentos WHERE a20 = ?"_s,
                      {dispatch::cashPayment})
                .toString();
        const QString writtenOff =
            st.scalar(u"SELECT MIN(A3) FROM caixa WHERE A7 = ?"_s, {fin::billingGroup}).toString();
        QVERIFY(!paidAtOnce.isEmpty() && !writtenOff.isEmpty());
        postCredit(st, paidAtOnce, dispatch::load(st, paidAtOnce)->clientValue,
                   dispatch::revenueGroup);
        postCredit(st, writtenOff, 100, fin::billingGroup);
        const auto [broken, check] = simulate(inst, {u"--verificar"_s});
        QCOMPARE(broken, 1);
        QCOMPARE(linesAfter(check, u"  FALHOU"_s),
                 (QStringList{
                     u"Cada atendimento tem um lançamento de cada espécie, com os seus valores"_s,
                     u"Nenhuma conta a receber baixada duas vezes"_s}));
    }

    // Two stations list the same open receivables and both press the write-off: the second
    // finds them written off and keeps nothing, so the money is credited once. A difference
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
            QList<fin::WriteOff> rows;
            for (const fin::BillingRow& r : fin::openReceivables(s, today, today))
                rows.append({r.document, r.amount, r.client});
            return rows;
        };
        const QList<fin::WriteOff> seenThere = grid(*other);
        QCOMPARE(seenThere.size(), 1);
        fin::writeOff(st, grid(st), today);
        try {
            fin::writeOff(*other, seenThere, today);
            QFAIL("the second write-off of the same receivable went through");
        } catch (const StoreError& e) {
            QCOMPARE(e.text(), fin::writtenOffElsewhere(d.number));
        }
        const auto received = [&] {
            QList<qint64> amounts;
            for (const fin::Bill& b :
                 fin::billsOf(st, fin::Ledger::Receivables, d.number, dispatch::revenueGroup))
                amounts << b.settledAmount;
            for (const fin::CashMovement& m :
                 fin::movementsOf(st, fin::credit, d.number, fin::billingGroup))
                amounts << -m.amount;
            std::sort(amounts.begin(), amounts.end());
            return amounts;
        };
        QCOMPARE(received(), (QList<qint64>{-5000, 5000}));

        // The value grows after it was received: the difference is written off by itself.
        d.clientValue = 6200;
        dispatch::save(st, d, {true, true});
        const QList<fin::WriteOff> difference = grid(*other);
        QCOMPARE(difference.size(), 1);
        QCOMPARE(difference[0].amount, 1200);
        fin::writeOff(*other, difference, today);
        QCOMPARE(received(), (QList<qint64>{-5000, -1200, 1200, 5000}));
    }
};

QTEST_GUILESS_MAIN(TestEstacoes)
#include "tst_estacoes.moc"
