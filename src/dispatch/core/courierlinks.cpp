#include "dispatch/core/courierlinks.h"

#include "callerid/core/callerid.h"
#include "dispatch/core/board.h"
#include "registers/core/company.h"
#include "registers/core/parties.h"
#include "store/formats.h"

#include <QUrl>

namespace rtx::dispatch {

using namespace Qt::Literals::StringLiterals;

namespace {

QString digitsOf(const QString& text) {
    QString digits;
    for (QChar c : text)
        if (c.isDigit()) digits += c;
    return digits;
}

// Area codes run from 11 to 99 and none ends in 0.
bool areaCode(const QString& two) {
    return two.size() == 2 && two.at(0) != u'0' && two.at(1) != u'0';
}

QString encoded(const QString& text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

void addLine(QStringList& lines, const QString& caption, const QString& value) {
    const QString v = value.trimmed();
    if (!v.isEmpty()) lines << caption + v;
}

// "JOÃO - tel. (11) 3333-4444": a place's contact and telephone, as far as given.
QString contactOf(const Place& place) {
    QString text = place.contact.trimmed();
    const QString phone = place.phone.trimmed();
    if (!digitsOf(phone).isEmpty())
        text += (text.isEmpty() ? QString() : u" - "_s) + u"tel. "_s + phone;
    return text;
}

QString placed(const QString& address, const QString& city, const QString& state) {
    QString where = address.trimmed();
    const QString town = state.trimmed().isEmpty()  ? city.trimmed()
                         : city.trimmed().isEmpty() ? QString()
                                                    : city.trimmed() + u" - "_s + state.trimmed();
    if (!town.isEmpty()) where += u", "_s + town;
    return where;
}

} // namespace

QString officeAreaCode(const QString& companyPhone) {
    QString d = digitsOf(companyPhone);
    if (d.startsWith(u"55"_s) && (d.size() == 12 || d.size() == 13)) d = d.mid(2);
    if (d.startsWith(u'0') && (d.size() == 11 || d.size() == 12)) d = d.mid(1);
    return (d.size() == 10 || d.size() == 11) && areaCode(d.left(2)) ? d.left(2) : QString();
}

std::optional<QString> mobileNumber(const QStringList& phones, const QString& areaCode) {
    const callerid::NumberPlan plan{areaCode, true};
    for (const QString& phone : phones) {
        const QString d = callerid::normaliseNumber(phone, plan);
        // A mobile has nine digits after the area code, the first of them a 9.
        if (d.size() == 11 && ::rtx::dispatch::areaCode(d.left(2)) && d.at(2) == u'9')
            return u"55"_s + d;
    }
    return std::nullopt;
}

QString dispatchMessage(const Dispatch& d) {
    QStringList lines;
    QString head = u"*Atendimento %1*"_s.arg(d.number.trimmed());
    if (d.date.isValid()) head += u" - "_s + formatDate(d.date);
    if (!d.time.trimmed().isEmpty()) head += u" "_s + d.time.trimmed();
    lines << head;
    addLine(lines, u"Cliente: "_s, d.clientName);
    for (const auto& [caption, place] :
         {std::pair{u"Coleta"_s, &d.pickup}, std::pair{u"Entrega"_s, &d.delivery}}) {
        lines << QString();
        lines << u"*%1:* %2"_s.arg(caption, place->address.trimmed());
        addLine(lines, u"Contato: "_s, contactOf(*place));
        addLine(lines, u"Tarefa: "_s, place->task);
    }
    lines << QString();
    addLine(lines, u"Serviço: "_s, d.service);
    addLine(lines, u"Obs.: "_s, d.remarks);
    addLine(lines, u"Retorno: "_s, d.returnTrip);
    if (d.payment.trimmed().compare(cashPayment, Qt::CaseInsensitive) == 0 && d.clientValue > 0)
        lines << u"*Receber do cliente: %1 (à vista)*"_s.arg(formatCurrency(d.clientValue));
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines.join(u'\n');
}

QString whatsAppUrl(const QString& mobile, const QString& text) {
    return u"https://wa.me/%1?text=%2"_s.arg(digitsOf(mobile), encoded(text));
}

QString routeUrl(const QString& from, const QString& to, const QString& city,
                 const QString& state) {
    return u"https://www.google.com/maps/dir/?api=1&origin=%1&destination=%2&travelmode=driving"_s
        .arg(encoded(placed(from, city, state)), encoded(placed(to, city, state)));
}

CourierLink whatsAppLink(Store& store, const Dispatch& d) {
    if (d.number.trimmed().isEmpty())
        return {{}, u"Grave o atendimento antes de enviá-lo ao entregador."_s};
    const QString name = d.courier.trimmed();
    if (name.isEmpty()) return {{}, u"Escolha o entregador do atendimento."_s};
    namespace cc = registers::couriercol;
    Recordset rs = store.open(u"SELECT %1, %2, %3 FROM %4 WHERE %5 ORDER BY %6 LIMIT 1"_s.arg(
                                  cc::phone1, cc::phone2, cc::phone3, courier::table,
                                  store.sameText(courier::table, courier::name), courier::code),
                              {name});
    if (rs.eof())
        return {{}, u"O entregador \"%1\" não está no cadastro de entregadores."_s.arg(name)};
    QStringList phones;
    for (const QString& column : {cc::phone1, cc::phone2, cc::phone3})
        if (!rs.text(column).trimmed().isEmpty()) phones << rs.text(column).trimmed();
    const auto company = registers::loadCompany(store);
    const auto mobile = mobileNumber(phones, officeAreaCode(company ? company->phone : QString()));
    if (!mobile)
        return {{},
                u"O entregador %1 não tem celular com DDD no cadastro (%2). Corrija os telefones "
                u"dele no cadastro de entregadores para enviar pelo WhatsApp."_s.arg(
                    name, phones.isEmpty() ? u"nenhum telefone"_s
                                           : u"telefones: "_s + phones.join(u", "_s))};
    return {whatsAppUrl(*mobile, dispatchMessage(d)), {}};
}

CourierLink routeLink(Store& store, const Dispatch& d) {
    if (d.pickup.address.trimmed().isEmpty())
        return {{}, u"Preencha o endereço de coleta para ver a rota."_s};
    if (d.delivery.address.trimmed().isEmpty())
        return {{}, u"Preencha o endereço de entrega para ver a rota."_s};
    const auto company = registers::loadCompany(store);
    return {routeUrl(d.pickup.address, d.delivery.address, company ? company->city : QString(),
                     company ? company->state : QString()),
            {}};
}

} // namespace rtx::dispatch
