// Rows read at once, walked, read by column code and edited in the manner of the old
// record access.
#include "store.h"

#include "formats.h"

namespace rtx {

bool Recordset::eof() const {
    return rows_.isEmpty() || pos_ >= rows_.size();
}
bool Recordset::bof() const {
    return rows_.isEmpty() || pos_ < 0;
}
void Recordset::moveFirst() {
    pos_ = 0;
}
void Recordset::moveNext() {
    pos_ = std::min<int>(pos_ + 1, int(rows_.size()));
}
void Recordset::moveLast() {
    pos_ = int(rows_.size()) - 1;
}
int Recordset::recordCount() const {
    return int(rows_.size());
}

int Recordset::indexOf(const QString& column) const {
    for (int i = 0; i < columns_.size(); ++i)
        if (columns_[i].compare(column, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

const Column* Recordset::columnDef(const QString& column) const {
    return table_ ? table_->column(column) : nullptr;
}

QVariant Recordset::value(const QString& column) const {
    const int i = indexOf(column);
    if (i < 0) throw StoreError(QStringLiteral("Coluna desconhecida: %1").arg(column));
    if (mode_ != Mode::None && touched_.value(i)) return pending_[i];
    if (eof() || bof()) throw StoreError(QStringLiteral("Nenhum registro atual."));
    return rows_[pos_][i];
}

QVariant Recordset::value(int index) const {
    if (eof() || bof() || index < 0 || index >= columns_.size())
        throw StoreError(QStringLiteral("Nenhum registro atual."));
    return rows_[pos_][index];
}

bool Recordset::isNull(const QString& column) const {
    return value(column).isNull();
}

qint64 Recordset::cents(const QString& column) const {
    const QVariant v = value(column);
    if (v.isNull()) return 0;
    bool ok = false;
    const qint64 n = v.toString().toLongLong(&ok);
    return ok ? n : 0;
}

std::optional<QDate> Recordset::date(const QString& column) const {
    const QVariant v = value(column);
    if (v.isNull()) return std::nullopt;
    if (v.typeId() == QMetaType::QDate) return v.toDate();
    const QString s = v.toString();
    const QDate d = QDate::fromString(s.left(10), Qt::ISODate);
    if (d.isValid()) return d;
    return parseDate(s);
}

QString Recordset::text(const QString& column) const {
    const QVariant v = value(column);
    if (v.isNull()) return QString();
    const Column* c = columnDef(column);
    const ColType type = c ? c->type : ColType::Text;
    if (type == ColType::Date || v.typeId() == QMetaType::QDate) {
        const auto d = date(column);
        return d ? formatDate(*d) : v.toString();
    }
    if (type == ColType::Money) return formatMoney(cents(column));
    return v.toString();
}

void Recordset::addNew() {
    if (!editable_)
        throw StoreError(QStringLiteral("Este conjunto de registros n\u00e3o pode ser alterado."));
    mode_ = Mode::Adding;
    pending_ = QVariantList(columns_.size());
    touched_ = QList<bool>(columns_.size(), false);
}

void Recordset::edit(qint64 expectedVersion) {
    if (!editable_)
        throw StoreError(QStringLiteral("Este conjunto de registros n\u00e3o pode ser alterado."));
    if (eof() || bof()) throw StoreError(QStringLiteral("Nenhum registro atual."));
    mode_ = Mode::Editing;
    expected_ = expectedVersion;
    pending_ = rows_[pos_];
    touched_ = QList<bool>(columns_.size(), false);
}

void Recordset::setValue(const QString& column, const QVariant& v) {
    if (mode_ == Mode::None)
        throw StoreError(QStringLiteral("Use AddNew ou Edit antes de alterar um campo."));
    const int i = indexOf(column);
    if (i < 0 || (table_ && columns_[i].compare(table_->idColumn, Qt::CaseInsensitive) == 0))
        throw StoreError(QStringLiteral("Coluna desconhecida: %1").arg(column));
    const Column* c = columnDef(column);
    QVariant stored = v;
    if (c && v.typeId() == QMetaType::QString) {
        const QString s = v.toString();
        if (c->type == ColType::Date) {
            QString t = s.trimmed();
            const bool blank =
                t.isEmpty() ||
                t.remove(QLatin1Char('/')).remove(QLatin1Char('_')).trimmed().isEmpty();
            if (blank) {
                stored = QVariant(QMetaType(QMetaType::QDate));
            } else {
                const auto d = parseDate(maskDate(s.trimmed()));
                if (!d)
                    throw StoreError(
                        QStringLiteral("Data inv\u00e1lida no campo %1: \"%2\".").arg(c->name, s));
                stored = *d;
            }
        } else if (c->type == ColType::Money || c->type == ColType::Int) {
            if (s.trimmed().isEmpty()) {
                stored = qint64(0);
            } else if (c->type == ColType::Money) {
                const auto m = parseMoney(s);
                if (!m)
                    throw StoreError(
                        QStringLiteral("Valor inv\u00e1lido no campo %1: \"%2\".").arg(c->name, s));
                stored = *m;
            } else {
                bool ok = false;
                stored = s.trimmed().toLongLong(&ok);
                if (!ok)
                    throw StoreError(
                        QStringLiteral("N\u00famero inv\u00e1lido no campo %1: \"%2\".")
                            .arg(c->name, s));
            }
        }
    }
    pending_[i] = stored;
    touched_[i] = true;
}

void Recordset::setText(const QString& column, const QString& text) {
    setValue(column, text);
}

void Recordset::update() {
    if (mode_ == Mode::None)
        throw StoreError(QStringLiteral("Use AddNew ou Edit antes de Update."));
    const int idIndex = indexOf(table_->idColumn);
    QStringList names;
    QVariantList params;
    for (int i = 0; i < columns_.size(); ++i) {
        if (!touched_[i]) continue;
        names << columns_[i];
        params << pending_[i];
    }
    if (mode_ == Mode::Adding) {
        QString sql;
        if (names.isEmpty())
            sql = QStringLiteral("INSERT INTO %1 DEFAULT VALUES RETURNING %2")
                      .arg(table_->name, table_->idColumn);
        else
            sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3) RETURNING %4")
                      .arg(table_->name, names.join(u", "),
                           QStringList(names.size(), QStringLiteral("?")).join(u", "),
                           table_->idColumn);
        const QVariant id = store_->scalar(sql, params);
        if (idIndex >= 0) pending_[idIndex] = id;
        rows_.append(pending_);
    } else if (!names.isEmpty()) {
        QStringList sets;
        for (const QString& n : names)
            sets << n + QStringLiteral(" = ?");
        const QVariant id = rows_[pos_][idIndex];
        params << id;
        QString where = QStringLiteral("%1 = ?").arg(table_->idColumn);
        // The version is compared by the UPDATE itself, so that no other station's save can
        // come between the comparison and the write.
        if (expected_ > 0) {
            where += QStringLiteral(" AND %1 = ?").arg(versionColumn());
            params << expected_;
        }
        const int written = store_->execute(
            QStringLiteral("UPDATE %1 SET %2 WHERE %3").arg(table_->name, sets.join(u", "), where),
            params);
        if (expected_ > 0 && written == 0) {
            mode_ = Mode::None;
            const bool there = store_
                                   ->scalar(QStringLiteral("SELECT 1 FROM %1 WHERE %2 = ?")
                                                .arg(table_->name, table_->idColumn),
                                            {id})
                                   .isValid();
            throw RowChanged(there ? RowChanged::Why::Changed : RowChanged::Why::Deleted);
        }
        rows_[pos_] = pending_;
    }
    mode_ = Mode::None;
}

void Recordset::remove() {
    if (!editable_)
        throw StoreError(QStringLiteral("Este conjunto de registros n\u00e3o pode ser alterado."));
    if (eof() || bof()) throw StoreError(QStringLiteral("Nenhum registro atual."));
    const int idIndex = indexOf(table_->idColumn);
    store_->execute(
        QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(table_->name, table_->idColumn),
        {rows_[pos_][idIndex]});
    rows_.removeAt(pos_);
    --pos_;
}

} // namespace rtx