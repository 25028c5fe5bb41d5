#pragma once
// Rows and records. A screen holds the record it edits as a row: the values by column
// code, each typed as its column is (text QString, date QDate, invalid when empty, money
// qint64 cents, an option bool). A record type (Client, Employee...) lists its members
// against the column codes of its table once, in a list of fields; that list reads the
// record from the store, writes it back and turns it into a row and back.
//
//     const QList<Field<Client>>& fields = clientFields();
//     Client c = fromRow(row, fields);
//     Row shown = toRow(c, fields);

#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace rtx {

using Row = QVariantMap;

// The first thing a save lacks: the column of the field to go back to, and what to say.
struct Problem {
    QString column;
    QString message;
};

// The four buttons that walk a table by its key.
enum class Walk { First, Previous, Next, Last };

// "O campo [NOME], não pode ficar em branco."
QString requiredMessage(const QString& label);
// The first of the columns (with the label its message names) whose text is blank.
std::optional<Problem> firstBlank(const QList<std::pair<QString, QString>>& required,
                                  const std::function<QString(const QString&)>& textOf);

// The engine-given number of a row (employees, branches) as a screen holds it, the text of
// a list's cell. A text that is no number (the list's header, read by a double click where
// the list has no row) finds no row: a StoreError, as the old statement's failure was.
qint64 recordNumber(const QVariant& key);

// Names are later shown and searched as typed: the register screens take the apostrophes out
// of them as the user leaves the field.
QString withoutQuotes(QString text);

// How a column's value is kept: text, a real date (a member std::optional<QDate>, or a QDate
// invalid when empty), cents, or an option kept as the text
// "True" or "False".
enum class ValueKind { Text, Date, Money, Flag };

// The words an option is kept as.
const QString& trueWord();
const QString& falseWord();

// A column's value as a row holds it, read from the current row of a recordset.
QVariant readValue(const Recordset& rs, const QString& column, ValueKind kind);
// A row's value as the column keeps it: an option as its word, an empty date as no value.
QVariant storedValue(ValueKind kind, const QVariant& value);
// A row's value written to a column of the row being added or edited.
void writeValue(Recordset& rs, const QString& column, ValueKind kind, const QVariant& value);

namespace detail {

inline QVariant wrap(const QString& s) {
    return s;
}
inline QVariant wrap(const std::optional<QDate>& d) {
    return d ? QVariant(*d) : QVariant(QDate());
}
inline QVariant wrap(const QDate& d) {
    return d;
}
inline QVariant wrap(qint64 cents) {
    return cents;
}
inline QVariant wrap(bool on) {
    return on;
}
inline void unwrap(const QVariant& v, QString& s) {
    s = v.toString();
}
inline void unwrap(const QVariant& v, std::optional<QDate>& d) {
    const QDate date = v.toDate();
    d = date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}
inline void unwrap(const QVariant& v, QDate& d) {
    d = v.toDate();
}
inline void unwrap(const QVariant& v, qint64& cents) {
    cents = v.toLongLong();
}
inline void unwrap(const QVariant& v, bool& on) {
    on = v.toBool();
}

template <class T> constexpr ValueKind kindOf() {
    if constexpr (std::is_same_v<T, std::optional<QDate>> || std::is_same_v<T, QDate>)
        return ValueKind::Date;
    else if constexpr (std::is_same_v<T, qint64>)
        return ValueKind::Money;
    else if constexpr (std::is_same_v<T, bool>)
        return ValueKind::Flag;
    else {
        static_assert(std::is_same_v<T, QString>, "a record member is text, date, cents or flag");
        return ValueKind::Text;
    }
}

} // namespace detail

// One member of a record and the column it is kept in.
template <class R> struct Field {
    QString column;
    ValueKind kind = ValueKind::Text;
    std::function<QVariant(const R&)> get;
    std::function<void(R&, const QVariant&)> set;
};

// A field from a member pointer (&Client::name) or from a function that gives the member
// ([](auto& c) -> auto& { return c.address.street; }).
template <class R, class Access> Field<R> field(const QString& column, Access access) {
    using T = std::remove_cvref_t<std::invoke_result_t<Access, R&>>;
    return {column, detail::kindOf<T>(),
            [access](const R& r) { return detail::wrap(std::invoke(access, r)); },
            [access](R& r, const QVariant& v) { detail::unwrap(v, std::invoke(access, r)); }};
}

// The record of a row; the members whose columns the row lacks keep their defaults.
template <class R> R fromRow(const Row& row, const QList<Field<R>>& fields, R r = R()) {
    for (const Field<R>& f : fields)
        if (row.contains(f.column)) f.set(r, row.value(f.column));
    return r;
}

template <class R> Row toRow(const R& r, const QList<Field<R>>& fields) {
    Row row;
    for (const Field<R>& f : fields)
        row.insert(f.column, f.get(r));
    return row;
}

// The record of the current row of a recordset.
template <class R> R readRecord(const Recordset& rs, const QList<Field<R>>& fields) {
    R r;
    for (const Field<R>& f : fields)
        f.set(r, readValue(rs, f.column, f.kind));
    return r;
}

// The version of its row a record was read at (its field on versionColumn()); 0 for a record
// not read from its table, or of a table that keeps none.
template <class R> qint64 versionOf(const R& r, const QList<Field<R>>& fields) {
    for (const Field<R>& f : fields)
        if (f.column == versionColumn()) return f.get(r).toLongLong();
    return 0;
}

// Writes the record's columns into the row being added or edited; columns for which skip
// says so are left as they are. The version is the database's to keep, never written.
template <class R>
void writeRecord(Recordset& rs, const R& r, const QList<Field<R>>& fields,
                 const std::function<bool(const Field<R>&, const QVariant&)>& skip = {}) {
    for (const Field<R>& f : fields) {
        const QVariant value = f.get(r);
        if (f.column == versionColumn() || (skip && skip(f, value))) continue;
        writeValue(rs, f.column, f.kind, value);
    }
}

// The values of a record as its table keeps them, by column; columns for which skip says
// so are left out, and so is the version.
template <class R>
QVariantMap storedRow(const R& r, const QList<Field<R>>& fields,
                      const std::function<bool(const Field<R>&, const QVariant&)>& skip = {}) {
    QVariantMap row;
    for (const Field<R>& f : fields) {
        const QVariant value = f.get(r);
        if (f.column == versionColumn() || (skip && skip(f, value))) continue;
        row.insert(f.column, storedValue(f.kind, value));
    }
    return row;
}

// The one way a record is written: the row whose key column holds key is updated, or added
// when there is none. Runs in the caller's unit of work, or in its own. A record read at a
// version (versionOf) is written only over its row at that version: a row changed or deleted
// at another station since throws RowChanged, and nothing is written.
template <class R>
void saveRecord(Store& store, const QString& table, const QString& keyColumn, const QVariant& key,
                const R& r, const QList<Field<R>>& fields,
                const std::function<bool(const Field<R>&, const QVariant&)>& skip = {}) {
    QVariantMap row = storedRow(r, fields, skip);
    row.remove(keyColumn);
    store.saveByKey(table, keyColumn, key, row, versionOf(r, fields));
}

// The record whose key column holds key; nothing when there is none.
template <class R>
std::optional<R> loadRecord(Store& store, const QString& table, const QString& keyColumn,
                            const QVariant& key, const QList<Field<R>>& fields) {
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2").arg(table, store.sameText(table, keyColumn)),
        {key});
    if (rs.eof()) return std::nullopt;
    return readRecord(rs, fields);
}

} // namespace rtx
