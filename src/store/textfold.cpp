#include "textfold.h"

namespace rtx {

namespace {

// Plain ASCII needs neither normalisation nor the full case tables.
bool lowerAscii(QStringView text, QString& out) {
    out.resize(text.size());
    QChar* d = out.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        char16_t c = text[i].unicode();
        if (c >= 0x80) return false;
        if (c >= 'A' && c <= 'Z') c += 32;
        d[i] = QChar(c);
    }
    return true;
}

} // namespace

QString foldKey(QStringView text) {
    QString out;
    if (lowerAscii(text, out)) return out;
    return text.toString().toCaseFolded().normalized(QString::NormalizationForm_C);
}

QString foldSearch(QStringView text) {
    QString out;
    if (lowerAscii(text, out)) return out;
    const QString d = text.toString().normalized(QString::NormalizationForm_D);
    out.clear();
    out.reserve(d.size());
    for (QChar c : d)
        if (c.category() != QChar::Mark_NonSpacing) out += c;
    return out.toCaseFolded();
}

} // namespace rtx
