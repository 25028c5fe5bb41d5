#include "dispatchreports.h"

#include "output/core/values.h"
#include "posting.h"
#include "store/formats.h"
#include "store/store.h"

namespace rtx::dispatch {

namespace {

const QString kTable = QStringLiteral("atendimentos");

// The dispatch columns copied into every row of the work table, in its order.
QStringList copiedColumns() {
    QStringList c{QStringLiteral("CODIGO"), QStringLiteral("a1"), QStringLiteral("ST")};
    for (int i = 2; i <= 22; ++i)
        c << QStringLiteral("a%1").arg(i);
    return c;
}

} // namespace

// ---- The A4 slip and the coupon -------------------------------------------------------------

QString setUpSlip(output::ReportDefinition& report, Store& store, const QString& number,
                  bool twoCopies) {
    if (number.isEmpty()) return saveFirstMessage();
    const output::Company company = output::Company::read(store);
    report.setDataSource(kTable);
    // The telephone as the office writes it, whatever way it was typed in the registry.
    report.setFormula(1, QStringLiteral("NOME"),
                      company.name + QStringLiteral("  Tel: ") +
                          output::formatPhone(company.phone));
    report.setSelection(output::Selection::byKey(QStringLiteral("CODIGO"), number));
    report.setLayoutFile(twoCopies ? layouts::slipTwice : layouts::slip);
    return {};
}

void fillCouponCompany(output::CouponFields& fields, Store& store) {
    const output::Company company = output::Company::read(store);
    fields.companyName = company.name;
    fields.companyPhone = company.phone;
}

// ---- Reports of the search tab ------------------------------------------------------------

QString checkSearchReport(ReportBy by, const QString& name) {
    if (!name.isEmpty()) return {};
    switch (by) {
    case ReportBy::Courier:
        return QStringLiteral(
            "Antes da impressão selecione o nome do motoqueiro, na primeira aba.");
    case ReportBy::Client:
        return QStringLiteral("Antes da impressão selecione o nome do cliente, na primeira aba.");
    case ReportBy::Status:
        return QStringLiteral("Antes da impressão selecione o status, na primeira aba.");
    case ReportBy::Payment:
        break;
    }
    return {};
}

QStringList buttonsDisabledBy(ReportBy by) {
    switch (by) {
    case ReportBy::Courier:
        return {QStringLiteral("Command17"), QStringLiteral("Command18")};
    case ReportBy::Client:
        return {QStringLiteral("Command10"), QStringLiteral("Command18")};
    case ReportBy::Status:
        return {QStringLiteral("Command10"), QStringLiteral("Command17")};
    case ReportBy::Payment:
        break;
    }
    return {};
}

void setUpSearchReport(output::ReportDefinition& report, const SearchReport& r) {
    QString column = QStringLiteral("a18"), layout = layouts::byCourier;
    if (r.by == ReportBy::Client) column = QStringLiteral("a6"), layout = layouts::byClient;
    if (r.by == ReportBy::Status) column = QStringLiteral("ST"), layout = layouts::byStatus;
    const QDate from = requireDate(r.from), to = requireDate(r.to);
    report.setDataSource(kTable);
    report.setLayoutFile(layout);
    report.setFormula(1, QStringLiteral("DATA"), r.from + QStringLiteral(" até ") + r.to);
    if (r.by == ReportBy::Courier) report.setFormula(2, QStringLiteral("VM"), r.courierFee);
    report.setSelection(
        output::Selection::namePeriod(column, r.name, QStringLiteral("a2"), from, to));
}

// ---- Reports of the report screen -----------------------------------------------------------

QString checkPeriodReport(const PeriodReport& r) {
    if (r.by == ReportBy::Courier && r.courier.isEmpty())
        return QStringLiteral("Antes da impressão selecione o nome do motoqueiro.");
    if (r.by == ReportBy::Client && r.client.isEmpty())
        return QStringLiteral("Antes da impressão selecione o nome do cliente.");
    return {};
}

PeriodFill fillPeriodReport(Store& store, const PeriodReport& r) {
    PeriodFill fill;
    QString where;
    QVariantList filter;
    QString moto = r.status; // the status box, also for the report by payment
    switch (r.by) {
    case ReportBy::Courier:
        where = store.sameText(kTable, QStringLiteral("a18"));
        filter << r.courier;
        moto = r.courier;
        fill.layout = layouts::byCourier;
        break;
    case ReportBy::Client:
        where = store.sameText(kTable, QStringLiteral("a6"));
        filter << r.client;
        moto = r.client;
        fill.layout = layouts::byClient;
        break;
    case ReportBy::Status:
        if (r.status.isEmpty()) {
            fill.layout = layouts::allStatuses;
        } else {
            where = store.sameText(kTable, QStringLiteral("ST"));
            filter << r.status;
            fill.layout = layouts::byStatus;
        }
        break;
    case ReportBy::Payment:
        // An empty box finds the dispatches without a way of payment.
        if (r.payment.isEmpty()) {
            where = QStringLiteral("(a20 IS NULL OR a20 = '')");
        } else {
            where = store.sameText(kTable, QStringLiteral("a20"));
            filter << r.payment;
        }
        fill.layout = layouts::byStatus;
        break;
    }
    const bool courier = r.by == ReportBy::Courier;
    QStringList target{QStringLiteral("DI"), QStringLiteral("DF"), QStringLiteral("MOTO")};
    // PostgreSQL reads a value in a select list as text unless it is told the type.
    const QString date = store.engine() == Engine::PostgreSQL ? QStringLiteral("CAST(? AS DATE)")
                                                              : QStringLiteral("?");
    QStringList source{date, date, QStringLiteral("CAST(? AS TEXT)")};
    if (courier) {
        target << QStringLiteral("ve");
        source << QStringLiteral("VE");
    }
    target += copiedColumns();
    source += copiedColumns();
    if (courier) {
        target << QStringLiteral("vMOTO");
        source << QStringLiteral("moto");
    }

    QString sql = QStringLiteral("INSERT INTO %1 (%2) SELECT %3 FROM %4 WHERE ")
                      .arg(reportTable(), target.join(u", "), source.join(u", "), kTable);
    if (!where.isEmpty()) sql += where + QStringLiteral(" AND ");
    sql += QStringLiteral("a2 BETWEEN ? AND ? ORDER BY CODIGO");
    const QVariantList params =
        QVariantList{r.from, r.to, moto} + filter + QVariantList{r.from, r.to};

    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1").arg(reportTable()));
    fill.rows = store.execute(sql, params);
    unit.commit();
    return fill;
}

void setUpPeriodReport(output::ReportDefinition& report, const PeriodFill& fill) {
    report.setDataSource(reportTable());
    report.setLayoutFile(fill.layout);
}

QStringList activeCourierNames(Store& store) {
    QStringList out;
    Recordset rs =
        store.open(QStringLiteral("SELECT C1, C4 FROM motoqueiros ORDER BY %1, CODIGO")
                       .arg(store.sortKey(QStringLiteral("motoqueiros"), QStringLiteral("C4"))));
    for (; !rs.eof(); rs.moveNext())
        if (rs.text(QStringLiteral("C1")) == QStringLiteral("ATIVO"))
            out << rs.text(QStringLiteral("C4"));
    return out;
}

QStringList clientNames(Store& store) {
    QStringList out;
    Recordset rs =
        store.open(QStringLiteral("SELECT C5 FROM clientes ORDER BY %1, CODIGO")
                       .arg(store.sortKey(QStringLiteral("clientes"), QStringLiteral("C5"))));
    out.reserve(rs.recordCount());
    for (; !rs.eof(); rs.moveNext())
        out << rs.text(QStringLiteral("C5"));
    return out;
}

QDate reportPeriodStart() {
    return QDate(2013, 1, 1);
}

} // namespace rtx::dispatch
