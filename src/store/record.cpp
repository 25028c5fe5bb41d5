#include "store/record.h"

namespace rtx {

QString requiredMessage(const QString& label) {
    return QStringLiteral("O campo [%1], n\u00e3o pode ficar em branco.").arg(label);
}

std::optional<Problem> firstBlank(const QList<std::pair<QString, QString>>& required,
                                  const std::function<QString(const QString&)>& textOf) {
    for (const auto& [column, label] : required)
        if (textOf(column).trimmed().isEmpty()) return Problem{column, requiredMessage(label)};
    return std::nullopt;
}

qint64 recordNumber(const QVariant& key) {
    bool ok = false;
    const qint64 n = key.toString().trimmed().toLongLong(&ok);
    if (!ok)
        throw StoreError(
            QStringLiteral("N\u00famero de registro inv\u00e1lido: \"%1\".").arg(key.toString()));
    return n;
}

QString withoutQuotes(QString text) {
    return text.remove(u'\'');
}

const QString& trueWord() {
    static const QString word = QStringLiteral("True");
    return word;
}

const QString& falseWord() {
    static const QString word = QStringLiteral("False");
    return word;
}

QVariant readValue(const Recordset& rs, const QString& column, ValueKind kind) {
    switch (kind) {
    case ValueKind::Text:
        return rs.text(column);
    case ValueKind::Date:
        return detail::wrap(rs.date(column));
    case ValueKind::Money:
        return rs.cents(column);
    case ValueKind::Flag:
        return rs.text(column) == trueWord();
    }
    return {};
}

QVariant storedValue(ValueKind kind, const QVariant& value) {
    switch (kind) {
    case ValueKind::Text:
        return value.toString();
    case ValueKind::Date: {
        const QDate date = value.toDate();
        return date.isValid() ? QVariant(date) : QVariant(QMetaType(QMetaType::QDate));
    }
    case ValueKind::Money:
        return value.toLongLong();
    case ValueKind::Flag:
        return value.toBool() ? trueWord() : falseWord();
    }
    return {};
}

void writeValue(Recordset& rs, const QString& column, ValueKind kind, const QVariant& value) {
    rs.setValue(column, storedValue(kind, value));
}

} // namespace rtx
