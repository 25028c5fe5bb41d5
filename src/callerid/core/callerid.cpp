#include "callerid.h"

namespace rtx::callerid {

namespace {

QString digitsOf(const QString& text) {
    QString out;
    for (QChar c : text)
        if (c >= u'0' && c <= u'9') out += c;
    return out;
}

bool nonGeographic(const QString& digits) {
    for (const char* prefix : {"0800", "0300", "0500", "0900"})
        if (digits.startsWith(QLatin1String(prefix))) return true;
    return false;
}

} // namespace

QString normaliseNumber(const QString& sent, const NumberPlan& plan) {
    QString d = digitsOf(sent);
    if (d.isEmpty() || nonGeographic(d)) return d;

    // From abroad the line may give the international form: 00 55, or 55 alone.
    if (d.startsWith(QLatin1String("0055")) && d.size() >= 14)
        d = d.mid(4);
    else if (d.startsWith(QLatin1String("55")) && (d.size() == 12 || d.size() == 13))
        d = d.mid(2);

    // The trunk prefix 0, and the two-digit carrier code that long-distance calls carry:
    // 0 DD NNNNNNNN(N), 0 CC DD NNNNNNNN(N).
    if (d.startsWith(u'0')) {
        if (d.size() == 11 || d.size() == 12)
            d = d.mid(1);
        else if (d.size() == 13 || d.size() == 14)
            d = d.mid(3);
    }

    const QString& local = plan.localAreaCode;
    if (d.size() == 8 || d.size() == 9) {
        if (plan.localWithAreaCode && !local.isEmpty()) d = local + d;
    } else if ((d.size() == 10 || d.size() == 11) && !plan.localWithAreaCode && !local.isEmpty() &&
               d.startsWith(local)) {
        d = d.mid(local.size());
    }
    return d;
}

Call officeCall(const CallerInfo& info, const NumberPlan& plan) {
    Call call;
    call.name = info.name.trimmed();
    call.sent = info.number;
    call.presentation = info.presentation;
    if (info.presentation == Presentation::Number) {
        call.number = normaliseNumber(info.number, plan);
        if (call.number.isEmpty()) call.presentation = Presentation::Unreadable;
    }
    return call;
}

QString callNotice(const Call& call) {
    switch (call.presentation) {
    case Presentation::Number:
        return call.number.isEmpty() ? QStringLiteral("Chamada recebida sem número.") : QString();
    case Presentation::Withheld:
        return QStringLiteral("Chamada de número privado: o cliente precisa ser buscado pelo "
                              "nome.");
    case Presentation::Unavailable:
        return QStringLiteral("Chamada recebida sem identificação (número não disponível na "
                              "rede): busque o cliente pelo nome.");
    case Presentation::Unreadable:
        break;
    }
    return QStringLiteral("Chamada recebida, mas o número veio ilegível (\"%1\"): busque o "
                          "cliente pelo nome.")
        .arg(call.sent);
}

} // namespace rtx::callerid
