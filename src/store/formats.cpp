#include "formats.h"

#include <QRegularExpression>

namespace rtx {

QString formatMoney(qint64 cents) {
    const bool negative = cents < 0;
    const quint64 v = negative ? quint64(-(cents + 1)) + 1 : quint64(cents);
    const QString whole = QString::number(v / 100);
    QString grouped;
    grouped.reserve(whole.size() + whole.size() / 3 + 4);
    for (qsizetype i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) grouped += QLatin1Char('.');
        grouped += whole[i];
    }
    const QString frac = QStringLiteral("%1").arg(v % 100, 2, 10, QLatin1Char('0'));
    return (negative ? QStringLiteral("-") : QString()) + grouped + QLatin1Char(',') + frac;
}

QString formatCurrency(qint64 cents) {
    if (cents < 0) return QStringLiteral("-R$ ") + formatMoney(-cents);
    return QStringLiteral("R$ ") + formatMoney(cents);
}

std::optional<qint64> parseMoney(const QString& input) {
    QString t = input.trimmed();
    t.remove(QStringLiteral("R$"));
    t.remove(QChar(0x00A0));
    t = t.trimmed();
    if (t.isEmpty()) return std::nullopt;
    bool negative = false;
    if (t.startsWith(QLatin1Char('-'))) {
        negative = true;
        t = t.mid(1).trimmed();
    }
    static const QRegularExpression shape(
        QStringLiteral(R"(^(\d{1,3}(\.\d{3})+|\d*)(,(\d{0,2}))?$)"));
    const auto m = shape.match(t);
    if (!m.hasMatch() || t == QStringLiteral(",")) return std::nullopt;
    QString whole = m.captured(1);
    whole.remove(QLatin1Char('.'));
    QString frac = m.captured(4);
    if (whole.isEmpty() && frac.isEmpty()) return std::nullopt;
    // Leading zeros say nothing; past the largest amount's digits the number is too large
    // for any field, and would overflow the reading below.
    while (whole.size() > 1 && whole.startsWith(QLatin1Char('0')))
        whole.remove(0, 1);
    if (whole.size() > 15) return std::nullopt;
    while (frac.size() < 2)
        frac += QLatin1Char('0');
    const qint64 value = (whole.isEmpty() ? 0 : whole.toLongLong()) * 100 + frac.toLongLong();
    if (value > maxMoneyCents) return std::nullopt;
    return negative ? -value : value;
}

std::optional<QString> moneyRefusal(qint64 cents, const QString& caption) {
    if (cents < 0) return QStringLiteral("O campo [%1], não aceita valor negativo.").arg(caption);
    if (cents > maxMoneyCents)
        return QStringLiteral("O campo [%1], não aceita valor acima de %2.")
            .arg(caption, formatMoney(maxMoneyCents));
    return std::nullopt;
}

QString tooMuchMoneyMessage() {
    return QStringLiteral("Valor acima do limite: o maior valor aceito é %1.")
        .arg(formatMoney(maxMoneyCents));
}

QString formatDate(const QDate& date) {
    return date.isValid() ? date.toString(QStringLiteral("dd/MM/yyyy")) : QString();
}

std::optional<QDate> parseDate(const QString& text) {
    static const QRegularExpression shape(QStringLiteral(R"(^(\d{1,2})/(\d{1,2})/(\d{4})$)"));
    const auto m = shape.match(text.trimmed());
    if (!m.hasMatch()) return std::nullopt;
    const QDate d(m.captured(3).toInt(), m.captured(2).toInt(), m.captured(1).toInt());
    if (!d.isValid()) return std::nullopt;
    return d;
}

QString maskDate(const QString& text) {
    static const QRegularExpression eight(QStringLiteral(R"(^\d{8}$)"));
    if (!eight.match(text).hasMatch()) return text;
    return text.left(2) + QLatin1Char('/') + text.mid(2, 2) + QLatin1Char('/') + text.mid(4);
}

std::optional<QDate> normaliseDate(const QString& text, const QDate& today) {
    if (text.isEmpty()) return today;
    if (text.size() == 8) {
        const QString masked = maskDate(text);
        return masked == text ? std::nullopt : parseDate(masked);
    }
    if (text.size() == 10) return parseDate(text);
    return std::nullopt;
}

QString padCode(qint64 number, int width) {
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

} // namespace rtx
