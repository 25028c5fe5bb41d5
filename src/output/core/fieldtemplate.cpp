// The texts of a layout with their fields ("Cliente: {C5}", "{a19:###,##0.00}"), and the
// words the layout files are read by.

#include "layout.h"

namespace rtx::output {

bool Template::hasFields() const {
    for (const Piece& p : pieces)
        if (p.field) return true;
    return false;
}

QString Template::onlyField() const {
    return pieces.size() == 1 && pieces.first().field ? pieces.first().text : QString();
}

// Keywords are read blind to case and accents: "Página", "pagina" and "PÁGINA" are one.
QString keyword(const QString& word) {
    const QString d = word.normalized(QString::NormalizationForm_D);
    QString out;
    out.reserve(d.size());
    for (QChar c : d)
        if (c.category() != QChar::Mark_NonSpacing) out += c.toLower();
    return out;
}

bool readFormat(const QString& word, Format& format) {
    const QString w = keyword(word);
    if (w == QStringLiteral("###,##0.00")) {
        format = Format::Money;
    } else if (w == QStringLiteral("dd/mm/yyyy")) {
        format = Format::Date;
    } else if (w == QStringLiteral("texto")) {
        format = Format::Plain;
    } else if (w == QStringLiteral("cnpj") || w == QStringLiteral("cpf")) {
        format = Format::TaxNumber;
    } else if (w == QStringLiteral("cep")) {
        format = Format::Postcode;
    } else if (w == QStringLiteral("telefone")) {
        format = Format::Phone;
    } else {
        return false;
    }
    return true;
}

bool Template::parse(const QString& source, Template& out, QString& problem) {
    out.pieces.clear();
    QString literal;
    auto flush = [&] {
        if (!literal.isEmpty()) out.pieces.append({false, literal, Format::Plain, false});
        literal.clear();
    };
    for (qsizetype i = 0; i < source.size(); ++i) {
        const QChar c = source[i];
        if (c == u'{' && i + 1 < source.size() && source[i + 1] == u'{') {
            literal += c;
            ++i;
        } else if (c == u'}' && i + 1 < source.size() && source[i + 1] == u'}') {
            literal += c;
            ++i;
        } else if (c == u'{') {
            const qsizetype end = source.indexOf(u'}', i + 1);
            if (end < 0) {
                problem = QStringLiteral("falta fechar a chave do campo em \"%1\"").arg(source);
                return false;
            }
            QString name = source.mid(i + 1, end - i - 1).trimmed();
            Piece piece{true, {}, Format::Plain, false};
            const qsizetype colon = name.indexOf(u':');
            if (colon >= 0) {
                const QString format = name.mid(colon + 1).trimmed();
                if (!readFormat(format, piece.format)) {
                    problem = QStringLiteral("formato desconhecido \"%1\" (use \"###,##0.00\", "
                                             "dd/mm/yyyy, cnpj, cep, telefone ou texto)")
                                  .arg(format);
                    return false;
                }
                piece.formatted = true;
                name = name.left(colon).trimmed();
            }
            if (name.isEmpty()) {
                problem = QStringLiteral("campo sem nome em \"%1\"").arg(source);
                return false;
            }
            flush();
            piece.text = name;
            out.pieces.append(piece);
            i = end;
        } else if (c == u'}') {
            problem = QStringLiteral("chave fechada sem ter sido aberta em \"%1\"").arg(source);
            return false;
        } else {
            literal += c;
        }
    }
    flush();
    return true;
}

} // namespace rtx::output
