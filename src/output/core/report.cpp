#include "report.h"

#include "store/formats.h"
#include "store/store.h"

#include <algorithm>

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

// What a row is sorted by in one column: dates as dates, amounts and numbers as numbers,
// words blind to case and accents. Work tables keep dates and amounts as text: a column of
// them whose every value reads as a date (or as a number) sorts as such, so 02/11 comes
// after 24/10 and January after December.
struct SortValue {
    bool empty = true;
    qint64 number = 0; // days or cents
    QString word;
};

QList<SortValue> sortColumn(const ReportData& data, int column) {
    const ColType type = data.types.value(column, ColType::Text);
    QList<SortValue> out;
    out.reserve(data.rows.size());
    enum class As { Date, Number, Word } as = As::Word;
    if (type == ColType::Date) {
        as = As::Date;
    } else if (type != ColType::Text) {
        as = As::Number;
    } else {
        bool dates = true, numbers = true, any = false;
        for (const QVariantList& row : data.rows) {
            const QString s = row[column].toString().trimmed();
            if (s.isEmpty()) continue;
            any = true;
            dates = dates && parseDate(s).has_value();
            numbers = numbers && parseMoney(s).has_value();
            if (!dates && !numbers) break;
        }
        if (any && dates)
            as = As::Date;
        else if (any && numbers)
            as = As::Number;
    }
    for (const QVariantList& row : data.rows) {
        const QVariant& v = row[column];
        SortValue sv;
        if (as == As::Date) {
            const QDate d = v.typeId() == QMetaType::QDate
                                ? v.toDate()
                                : parseDate(v.toString().trimmed()).value_or(QDate());
            sv.empty = !d.isValid();
            sv.number = d.isValid() ? d.toJulianDay() : 0;
        } else if (as == As::Number) {
            if (type == ColType::Text) {
                const auto cents = parseMoney(v.toString().trimmed());
                sv.empty = !cents;
                sv.number = cents.value_or(0);
            } else {
                sv.empty = v.isNull();
                sv.number = v.toLongLong();
            }
        } else {
            sv.word = keyword(v.toString().trimmed());
            sv.empty = sv.word.isEmpty();
        }
        out << sv;
    }
    return out;
}

} // namespace

void sortRows(ReportData& data) {
    QStringList wanted = data.layout.order;
    if (!data.layout.groupField.isEmpty()) wanted.prepend(data.layout.groupField);
    // Columns the data lacks are passed over, since one layout serves a table and its work
    // table alike.
    QList<QList<SortValue>> keys;
    for (const QString& name : std::as_const(wanted)) {
        const int c = data.columnIndex(name);
        if (c >= 0) keys << sortColumn(data, c);
    }
    if (keys.isEmpty() || data.rows.size() < 2) return;
    QList<int> index(data.rows.size());
    for (int i = 0; i < index.size(); ++i)
        index[i] = i;
    std::stable_sort(index.begin(), index.end(), [&](int a, int b) {
        for (const QList<SortValue>& k : std::as_const(keys)) {
            const SortValue &x = k[a], &y = k[b];
            if (x.empty != y.empty) return x.empty; // the empty first
            if (x.empty) continue;
            if (x.number != y.number) return x.number < y.number;
            const int words = x.word.compare(y.word);
            if (words != 0) return words < 0;
        }
        return false;
    });
    QList<QVariantList> sorted;
    sorted.reserve(data.rows.size());
    for (int i : std::as_const(index))
        sorted << std::move(data.rows[i]);
    data.rows = std::move(sorted);
}

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
    // The rows come in the table's key order; the layout's sort is made on the values as
    // typed below.
    const QString key = t.codeColumn.isEmpty() ? t.idColumn : t.codeColumn;
    const QString order =
        t.column(key) && t.column(key)->type == ColType::Text ? store.sortKey(t.name, key) : key;

    QString sql = QStringLiteral("SELECT * FROM %1").arg(t.name);
    if (!where.isEmpty()) sql += QStringLiteral(" WHERE ") + where.join(QStringLiteral(" AND "));
    sql += QStringLiteral(" ORDER BY ") + order;
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
    sortRows(data);
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
