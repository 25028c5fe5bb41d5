#include "report.h"

#include "store/store.h"

namespace rtx::output {

Selection Selection::byKey(const QString& column, const QVariant& value) {
    Selection s;
    s.keyColumn = column;
    s.key = value;
    return s;
}

Selection Selection::namePeriod(const QString& nameColumn, const QString& name,
                                const QString& dateColumn, const QDate& from, const QDate& to) {
    Selection s;
    s.nameColumn = nameColumn;
    s.name = name;
    s.dateColumn = dateColumn;
    s.from = from;
    s.to = to;
    return s;
}

Company Company::read(Store& store) {
    Company c;
    Recordset rs = store.open(QStringLiteral("SELECT * FROM empresa ORDER BY rid LIMIT 1"));
    if (rs.eof()) return c;
    c.name = rs.text(QStringLiteral("e1"));
    c.phone = rs.text(QStringLiteral("e2"));
    c.address = rs.text(QStringLiteral("e3"));
    c.district = rs.text(QStringLiteral("e4"));
    c.city = rs.text(QStringLiteral("e5"));
    c.state = rs.text(QStringLiteral("e6"));
    c.postcode = rs.text(QStringLiteral("e7"));
    c.email = rs.text(QStringLiteral("e8"));
    c.cnpj = rs.text(QStringLiteral("e9"));
    return c;
}

int ReportData::columnIndex(const QString& name) const {
    for (int i = 0; i < columns.size(); ++i)
        if (columns[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

void ReportDefinition::setFormula(int n, const QString& name, const QString& value) {
    formulas_[n] = {name, value};
}

QString ReportDefinition::formula(const QString& name) const {
    for (const Formula& f : formulas_)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0) return f.value;
    return {};
}

namespace {

const Column& requireColumn(const TableDef& t, const QString& name) {
    if (const Column* c = t.column(name)) return *c;
    throw StoreError(QStringLiteral("Coluna desconhecida: %1.%2").arg(t.name, name));
}

QVariant typed(const QVariant& v, ColType type) {
    switch (type) {
    case ColType::Date: {
        if (v.isNull()) return QVariant(QMetaType(QMetaType::QDate));
        if (v.typeId() == QMetaType::QDate) return v;
        const QDate d = QDate::fromString(v.toString().left(10), Qt::ISODate);
        return d.isValid() ? QVariant(d) : QVariant(QMetaType(QMetaType::QDate));
    }
    case ColType::Money:
    case ColType::Int:
    case ColType::Id:
        return v.isNull() ? QVariant(QMetaType(QMetaType::LongLong))
                          : QVariant(v.toString().toLongLong());
    case ColType::Text:
        break;
    }
    return v.isNull() ? QVariant(QString()) : QVariant(v.toString());
}

} // namespace

void readRows(Store& store, ReportData& data, const Selection& selection) {
    const TableDef& t = rtx::table(data.table);
    data.table = t.name;
    QStringList where;
    QVariantList params;
    if (!selection.keyColumn.isEmpty()) {
        const Column& c = requireColumn(t, selection.keyColumn);
        where << c.name + QStringLiteral(" = ?");
        params << selection.key;
    }
    if (!selection.nameColumn.isEmpty()) {
        const Column& c = requireColumn(t, selection.nameColumn);
        where << (c.type == ColType::Text ? store.sameText(t.name, c.name)
                                          : c.name + QStringLiteral(" = ?"));
        params << selection.name;
        data.selectionName = selection.name;
    }
    if (!selection.dateColumn.isEmpty()) {
        const Column& c = requireColumn(t, selection.dateColumn);
        where << c.name + QStringLiteral(" BETWEEN ? AND ?");
        params << selection.from << selection.to;
    }
    // The layout's group first, then its order; columns the table lacks are passed over,
    // since one layout serves a table and its work table alike.
    QStringList order;
    QStringList wanted = data.layout.order;
    if (!data.layout.groupField.isEmpty()) wanted.prepend(data.layout.groupField);
    for (const QString& name : std::as_const(wanted)) {
        const Column* c = t.column(name);
        if (!c) continue;
        order << (c->type == ColType::Text ? store.sortKey(t.name, c->name) : c->name);
    }
    order << (t.codeColumn.isEmpty() ? t.idColumn : t.codeColumn);

    QString sql = QStringLiteral("SELECT * FROM %1").arg(t.name);
    if (!where.isEmpty()) sql += QStringLiteral(" WHERE ") + where.join(QStringLiteral(" AND "));
    sql += QStringLiteral(" ORDER BY ") + order.join(QStringLiteral(", "));
    Recordset rs = store.open(sql, params);

    data.columns = rs.columns();
    data.types.clear();
    for (const QString& name : std::as_const(data.columns)) {
        const Column* c = t.column(name);
        data.types << (c ? c->type : ColType::Id);
    }
    data.rows.clear();
    data.rows.reserve(rs.recordCount());
    const int n = int(data.columns.size());
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        QVariantList row;
        row.reserve(n);
        for (int i = 0; i < n; ++i)
            row << typed(rs.value(i), data.types[i]);
        data.rows << row;
    }
}

ReportData ReportDefinition::read(Store& store, const QString& folder, const QDateTime& now) const {
    ReportData data;
    data.layout = loadLayout(layoutPath(folder, layout_));
    data.table = table_;
    for (const Formula& f : formulas_)
        data.formulas << f;
    data.company = Company::read(store);
    data.printedAt = now;
    readRows(store, data, selection_);
    return data;
}

} // namespace rtx::output
