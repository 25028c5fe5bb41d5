#include "values.h"

#include "store/formats.h"

namespace rtx::output {

namespace {

std::optional<QDate> dateOf(const QVariant& v) {
    if (v.typeId() == QMetaType::QDate) {
        const QDate d = v.toDate();
        return d.isValid() ? std::optional<QDate>(d) : std::nullopt;
    }
    const QString s = v.toString().trimmed();
    if (s.isEmpty()) return std::nullopt;
    if (auto d = parseDate(s)) return d;
    const QDate iso = QDate::fromString(s.left(10), Qt::ISODate);
    return iso.isValid() ? std::optional<QDate>(iso) : std::nullopt;
}

QString digitsOf(const QString& text) {
    QString out;
    for (QChar c : text)
        if (c.isDigit()) out += c;
    return out;
}

// Only digits and the marks these numbers are written with: anything else is some other
// text and stays as it is.
bool onlyNumberMarks(const QString& text) {
    for (QChar c : text)
        if (!c.isDigit() && !QStringLiteral(" ().-/").contains(c)) return false;
    return true;
}

Format naturalFormat(ColType type) {
    switch (type) {
    case ColType::Date:
        return Format::Date;
    case ColType::Money:
        return Format::Money;
    default:
        return Format::Plain;
    }
}

} // namespace

// A CNPJ with letters ("12ABC34501DE35", "12.abc.345/01de-35"): twelve digits or capital
// letters, then the two check digits, among the usual marks. Nothing for anything else.
std::optional<QString> letteredCnpj(const QString& text) {
    QString chars;
    for (QChar c : text.trimmed()) {
        if (c.isDigit() || (c.isLetter() && c.unicode() < 128))
            chars += c.toUpper();
        else if (!QStringLiteral(" .-/").contains(c))
            return std::nullopt;
    }
    if (chars.size() != 14 || !chars.at(12).isDigit() || !chars.at(13).isDigit())
        return std::nullopt;
    return chars;
}

QString formatTaxNumber(const QString& text) {
    if (const auto cnpj = letteredCnpj(text)) {
        const QString& c = *cnpj;
        return QStringLiteral("%1.%2.%3/%4-%5")
            .arg(c.left(2), c.mid(2, 3), c.mid(5, 3), c.mid(8, 4), c.mid(12, 2));
    }
    const QString d = digitsOf(text);
    if (!onlyNumberMarks(text.trimmed())) return text;
    if (d.size() == 14)
        return QStringLiteral("%1.%2.%3/%4-%5")
            .arg(d.left(2), d.mid(2, 3), d.mid(5, 3), d.mid(8, 4), d.mid(12, 2));
    if (d.size() == 11)
        return QStringLiteral("%1.%2.%3-%4").arg(d.left(3), d.mid(3, 3), d.mid(6, 3), d.mid(9, 2));
    return text;
}

QString formatPostcode(const QString& text) {
    const QString d = digitsOf(text);
    if (!onlyNumberMarks(text.trimmed()) || d.size() != 8) return text;
    return d.left(5) + u'-' + d.mid(5);
}

QString formatPhone(const QString& text) {
    const QString t = text.trimmed();
    if (!onlyNumberMarks(t)) return text;
    QString d = digitsOf(t);
    // A long-distance zero in front of the area code ("011 3333-4444") is not printed.
    if ((d.size() == 11 || d.size() == 12) && d.startsWith(u'0')) d.remove(0, 1);
    auto local = [](const QString& n) { return n.left(n.size() - 4) + u'-' + n.right(4); };
    if (d.size() == 10 || d.size() == 11)
        return u'(' + d.left(2) + QStringLiteral(") ") + local(d.mid(2));
    if (d.size() == 8 || d.size() == 9) return local(d);
    return text;
}

QString formatCount(qint64 count) {
    QString digits = QString::number(count < 0 ? -count : count);
    for (qsizetype i = digits.size() - 3; i > 0; i -= 3)
        digits.insert(i, u'.');
    return count < 0 ? u'-' + digits : digits;
}

QString display(const QVariant& value, ColType type, Format format, bool formatted) {
    if (!formatted || format == Format::Plain) format = naturalFormat(type);
    if (value.isNull()) return {};
    switch (format) {
    case Format::Money: {
        if (type == ColType::Money || type == ColType::Int) return formatMoney(value.toLongLong());
        const QString s = value.toString();
        if (auto cents = parseMoney(s)) return formatMoney(*cents);
        return s;
    }
    case Format::Date: {
        if (auto d = dateOf(value)) return formatDate(*d);
        return value.typeId() == QMetaType::QDate ? QString() : value.toString();
    }
    case Format::TaxNumber:
        return formatTaxNumber(value.toString());
    case Format::Postcode:
        return formatPostcode(value.toString());
    case Format::Phone:
        return formatPhone(value.toString());
    case Format::Plain:
        break;
    }
    return value.toString();
}

qint64 centsOf(const QVariant& value, ColType type) {
    switch (type) {
    case ColType::Money:
        return value.toLongLong();
    case ColType::Int:
    case ColType::Id:
        return value.toLongLong() * 100;
    case ColType::Text:
        return parseMoney(value.toString()).value_or(0);
    case ColType::Date:
        break;
    }
    return 0;
}

FieldFiller::FieldFiller(const ReportData& data) : data_(data) {}

FieldFiller::Ref FieldFiller::resolve(const Template::Piece& piece) const {
    Ref r;
    r.format = piece.format;
    r.formatted = piece.formatted;
    if (!piece.field) {
        r.text = piece.text;
        return r;
    }
    const QString name = piece.text;
    if (name.contains(u'|')) {
        // {R15|empresa.nome}: the first of the fields that is not empty.
        r.kind = Ref::Kind::FirstOf;
        for (const QString& option : name.split(u'|')) {
            Template::Piece p = piece;
            p.text = option.trimmed();
            r.options.push_back(resolve(p));
        }
        return r;
    }
    const QString key = keyword(name);
    auto value = [&](const QString& text) {
        r.kind = Ref::Kind::Value;
        r.text = text;
        return r;
    };
    if (key == QStringLiteral("pagina")) {
        r.kind = Ref::Kind::Page;
        return r;
    }
    if (key == QStringLiteral("paginas")) {
        r.kind = Ref::Kind::Pages;
        return r;
    }
    if (key == QStringLiteral("linhas")) {
        r.kind = Ref::Kind::Rows;
        return r;
    }
    if (key == QStringLiteral("agora"))
        return value(data_.printedAt.toString(QStringLiteral("dd/MM/yyyy HH:mm")));
    if (key == QStringLiteral("hoje")) return value(formatDate(data_.printedAt.date()));
    if (key == QStringLiteral("titulo")) return value(data_.layout.title);
    if (key == QStringLiteral("selecao")) return value(data_.selectionName);
    if (key.startsWith(QStringLiteral("empresa."))) {
        const QString part = key.mid(8);
        const Company& c = data_.company;
        // The registry keeps these numbers as typed; the paper shows them as the office
        // writes them.
        const QList<std::pair<const char*, QString>> parts{{"nome", c.name},
                                                           {"telefone", formatPhone(c.phone)},
                                                           {"endereco", c.address},
                                                           {"bairro", c.district},
                                                           {"cidade", c.city},
                                                           {"uf", c.state},
                                                           {"cep", formatPostcode(c.postcode)},
                                                           {"email", c.email},
                                                           {"cnpj", formatTaxNumber(c.cnpj)}};
        for (const auto& [n, v] : parts)
            if (part == QLatin1String(n)) return value(v);
        r.kind = Ref::Kind::Empty;
        return r;
    }
    if (key.startsWith(QStringLiteral("total."))) {
        r.kind = Ref::Kind::Total;
        r.column = data_.columnIndex(name.mid(6));
        if (r.column < 0) r.kind = Ref::Kind::Empty;
        return r;
    }
    for (const Formula& f : data_.formulas)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0) return value(f.value);
    const qsizetype dot = name.indexOf(u'.');
    QString column = name;
    if (dot > 0) {
        // A column named with its table prints only when the report reads that table.
        if (name.left(dot).compare(data_.table, Qt::CaseInsensitive) != 0) {
            r.kind = Ref::Kind::Empty;
            return r;
        }
        column = name.mid(dot + 1);
    }
    r.column = data_.columnIndex(column);
    r.kind = r.column < 0 ? Ref::Kind::Empty : Ref::Kind::Column;
    return r;
}

const QList<FieldFiller::Ref>& FieldFiller::refs(const Template& t) const {
    auto it = compiled_.find(&t);
    if (it != compiled_.end()) return *it;
    QList<Ref> out;
    for (const Template::Piece& p : t.pieces)
        out << resolve(p);
    return *compiled_.insert(&t, out);
}

qint64 FieldFiller::sum(int column, const Scope& scope) const {
    if (column < 0 || scope.first > scope.last) return 0;
    const quint64 key = (quint64(quint32(column)) << 48) ^ (quint64(quint32(scope.first)) << 24) ^
                        quint64(quint32(scope.last));
    auto it = sums_.find(key);
    if (it != sums_.end()) return *it;
    qint64 total = 0;
    const ColType type = data_.types.value(column, ColType::Text);
    for (int r = scope.first; r <= scope.last && r < data_.rows.size(); ++r)
        total += centsOf(data_.rows[r][column], type);
    sums_.insert(key, total);
    return total;
}

QString FieldFiller::value(const Ref& ref, const Scope& scope) const {
    switch (ref.kind) {
    case Ref::Kind::Literal:
    case Ref::Kind::Value:
        return ref.text;
    case Ref::Kind::Column:
        if (scope.row < 0 || scope.row >= data_.rows.size()) return {};
        return display(data_.rows[scope.row][ref.column], data_.types[ref.column], ref.format,
                       ref.formatted);
    case Ref::Kind::Page:
        return QString::number(page_);
    case Ref::Kind::Pages:
        return QString(pageCountMark());
    case Ref::Kind::Rows:
        return formatCount(std::max(0, scope.last - scope.first + 1));
    case Ref::Kind::Total:
        return formatMoney(sum(ref.column, scope));
    case Ref::Kind::FirstOf:
        for (const Ref& option : ref.options) {
            QString v = value(option, scope);
            if (!v.trimmed().isEmpty()) return v;
        }
        break;
    case Ref::Kind::Empty:
        break;
    }
    return {};
}

QString FieldFiller::fill(const Template& t, const Scope& scope) const {
    const QList<Ref>& list = refs(t);
    if (list.size() == 1) return value(list.first(), scope);
    QString out;
    for (const Ref& r : list)
        out += value(r, scope);
    return out;
}

QString FieldFiller::cell(const Template& t, const Scope& scope, Format format) const {
    const QList<Ref>& list = refs(t);
    QString out;
    for (const Ref& r : list) {
        if (r.kind == Ref::Kind::Column && !r.formatted && format != Format::Plain) {
            // The column's format, for a field that has none of its own.
            if (scope.row >= 0 && scope.row < data_.rows.size())
                out +=
                    display(data_.rows[scope.row][r.column], data_.types[r.column], format, true);
            continue;
        }
        out += value(r, scope);
    }
    return out;
}

bool FieldFiller::allFieldsEmpty(const Template& t, const Scope& scope) const {
    bool anyField = false;
    for (const Ref& r : refs(t)) {
        if (r.kind == Ref::Kind::Literal) continue;
        anyField = true;
        if (!value(r, scope).trimmed().isEmpty()) return false;
    }
    return anyField;
}

} // namespace rtx::output

namespace rtx::output {

namespace {

// The formulas the screens give their reports.
const QStringList& screenFormulas() {
    static const QStringList names{QStringLiteral("DATA"), QStringLiteral("VM"),
                                   QStringLiteral("NOME")};
    return names;
}

bool anyTableHas(const QString& column) {
    for (const TableDef& t : tables())
        if (t.column(column)) return true;
    return false;
}

bool knownName(const ReportData& data, const QString& name) {
    if (name.contains(u'|')) {
        for (const QString& option : name.split(u'|'))
            if (!knownName(data, option.trimmed())) return false;
        return true;
    }
    const QString key = keyword(name);
    static const QStringList specials{QStringLiteral("pagina"), QStringLiteral("paginas"),
                                      QStringLiteral("linhas"), QStringLiteral("agora"),
                                      QStringLiteral("hoje"),   QStringLiteral("titulo"),
                                      QStringLiteral("selecao")};
    if (specials.contains(key)) return true;
    if (key.startsWith(QStringLiteral("empresa."))) {
        static const QStringList parts{
            QStringLiteral("nome"),   QStringLiteral("telefone"), QStringLiteral("endereco"),
            QStringLiteral("bairro"), QStringLiteral("cidade"),   QStringLiteral("uf"),
            QStringLiteral("cep"),    QStringLiteral("email"),    QStringLiteral("cnpj")};
        return parts.contains(key.mid(8));
    }
    if (key.startsWith(QStringLiteral("total."))) return knownName(data, name.mid(6));
    for (const Formula& f : data.formulas)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0) return true;
    if (screenFormulas().contains(name, Qt::CaseInsensitive)) return true;
    if (data.columnIndex(name) >= 0) return true;
    const qsizetype dot = name.indexOf(u'.');
    if (dot > 0) {
        const TableDef* t = findTable(name.left(dot));
        return t && t->column(name.mid(dot + 1));
    }
    // One layout serves a table and its work table: a column of either is known.
    return anyTableHas(name);
}

} // namespace

QStringList unknownNames(const ReportData& data) {
    const Layout& l = data.layout;
    QStringList out;
    auto check = [&](const Template& t, int line) {
        for (const Template::Piece& p : t.pieces) {
            if (!p.field || knownName(data, p.text)) continue;
            const QString said = QStringLiteral("linha %1: {%2}").arg(line).arg(p.text);
            if (!out.contains(said)) out << said;
        }
    };
    for (const Band* band :
         {&l.header, &l.start, &l.groupHeader, &l.groupFooter, &l.form, &l.finish, &l.footer})
        for (const Element& e : band->elements)
            for (const Template& t : e.texts)
                check(t, e.sourceLine);
    for (const ColumnDef& c : l.columns)
        if (!c.hidden) check(c.value, c.sourceLine);
    return out;
}

} // namespace rtx::output
