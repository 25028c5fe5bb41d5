#include "output/core/invoicing.h"

#include "dispatch/core/dispatch.h"
#include "finance/core/amountwords.h"
#include "finance/core/pix.h"
#include "output/core/compose.h"
#include "output/core/qrcode.h"
#include "registers/core/company.h"
#include "registers/core/docnumbers.h"
#include "registers/core/parties.h"
#include "store/formats.h"

#include <QHash>

using namespace Qt::Literals::StringLiterals;

namespace rtx::output {

namespace fin = rtx::finance;
namespace reg = rtx::registers;

namespace {

// The client's register as an invoice needs it.
struct ClientCard {
    QString code, name, taxNumber, address, email, dueDays;
};

std::optional<ClientCard> clientCard(Store& store, const QString& name) {
    namespace c = reg::clientcol;
    const QString& table = reg::partyTable(reg::Party::Client);
    Recordset rs = store.open(u"SELECT * FROM %1 WHERE %2 ORDER BY CAST(%3 AS BIGINT)"_s.arg(
                                  table, store.sameText(table, c::name), c::code),
                              {name});
    if (rs.eof()) return std::nullopt;
    ClientCard card;
    card.code = rs.text(c::code);
    card.name = rs.text(c::name);
    card.taxNumber = taxNumberShown(rs.text(c::taxNumber));
    QStringList parts;
    for (const QString& col : {c::street, c::district})
        if (!rs.text(col).trimmed().isEmpty()) parts << rs.text(col).trimmed();
    QString city = rs.text(c::city).trimmed();
    if (!rs.text(c::state).trimmed().isEmpty()) city += u'/' + rs.text(c::state).trimmed();
    if (!city.isEmpty()) parts << city;
    if (!rs.text(c::postcode).trimmed().isEmpty()) parts << u"CEP "_s + rs.text(c::postcode);
    card.address = parts.join(u" - "_s);
    card.email = rs.text(c::email);
    card.dueDays = rs.text(c::dueDays);
    return card;
}

struct PixSetup {
    registers::PixKeyKind kind;
    QString key;
};

std::optional<PixSetup> pixOf(const reg::Company& company) {
    const auto kind = registers::pixKindOf(company.pixKind);
    if (!kind || company.pixKey.trimmed().isEmpty() || registers::checkPixKey(*kind, company.pixKey))
        return std::nullopt;
    return PixSetup{*kind, fin::pixKeyForPayload(*kind, company.pixKey)};
}

QString plainAmount(qint64 cents) {
    const qint64 reais = cents / 100;
    return (reais ? QString::number(reais) : QString()) + u',' +
           QString::number(cents % 100).rightJustified(2, u'0');
}

QString dateText(const std::optional<QDate>& d) {
    return d ? formatDate(*d) : QString();
}

} // namespace

std::optional<QString> invoicingProblem(Store& store) {
    const std::optional<reg::Company> company = reg::loadCompany(store);
    if (!company || !pixOf(*company))
        return u"A chave PIX da empresa não está cadastrada ou não é válida: cadastre-a em "
               u"Retaguarda, Empresa, antes de gerar faturas."_s;
    return std::nullopt;
}

QList<fin::Invoice> makeInvoices(Store& store, const QStringList& clients, const QDate& from,
                                 const QDate& to, const QDate& today) {
    const std::optional<reg::Company> company = reg::loadCompany(store);
    const int companyDays = company ? reg::dueDaysOf(company->dueDays).value_or(reg::defaultDueDays)
                                    : reg::defaultDueDays;
    QList<fin::Invoice> made;
    UnitOfWork unit(store);
    for (const QString& client : clients) {
        fin::InvoiceRequest request;
        request.client = client;
        request.from = from;
        request.to = to;
        request.dueDays = companyDays;
        if (const auto card = clientCard(store, client)) {
            request.clientCode = card->code;
            request.dueDays = reg::dueDaysOf(card->dueDays).value_or(companyDays);
        }
        if (auto invoice = fin::makeInvoice(store, request, today)) made.append(*invoice);
    }
    unit.commit();
    return made;
}

InvoiceSheet readInvoiceSheet(Store& store, const QString& code) {
    const std::optional<fin::Invoice> invoice = fin::loadInvoice(store, code);
    if (!invoice) throw StoreError(u"A fatura %1 não existe."_s.arg(code));
    InvoiceSheet sheet;
    sheet.invoice = *invoice;
    const reg::Company company = reg::loadCompany(store).value_or(reg::Company{});
    sheet.companyName = company.name;
    QStringList address;
    for (const QString& part : {company.address, company.district})
        if (!part.trimmed().isEmpty()) address << part.trimmed();
    QString city = company.city.trimmed();
    if (!company.state.trimmed().isEmpty()) city += u'/' + company.state.trimmed();
    if (!city.isEmpty()) address << city;
    if (!company.postcode.trimmed().isEmpty()) address << u"CEP "_s + company.postcode.trimmed();
    sheet.companyAddress = address.join(u" - "_s);
    sheet.companyCnpj = company.cnpj;
    sheet.companyPhone = company.phone;
    sheet.companyEmail = company.email;

    sheet.clientName = invoice->clientName;
    if (const auto card = clientCard(store, invoice->clientName)) {
        sheet.clientTaxNumber = card->taxNumber;
        sheet.clientAddress = card->address;
        sheet.clientEmail = card->email;
    }

    // The dispatches the receivables came from, a few hundred numbers at a time.
    const QList<fin::InvoiceItem> items = fin::itemsOf(store, code);
    namespace d = dispatch::col;
    QHash<QString, InvoiceLine> dispatches;
    QStringList numbers;
    for (const fin::InvoiceItem& item : items)
        if (!item.document.isEmpty()) numbers << item.document;
    constexpr int kChunk = 400;
    for (qsizetype at = 0; at < numbers.size(); at += kChunk) {
        const QStringList chunk = numbers.mid(at, kChunk);
        QVariantList params;
        for (const QString& n : chunk)
            params << n;
        QStringList marks(chunk.size(), u"?"_s);
        Recordset rs = store.open(u"SELECT %1, %2, %3, %4, %5 FROM %6 WHERE %1 IN (%7)"_s.arg(
                                      d::number, d::date, d::pickupAddress, d::deliveryAddress,
                                      d::service, d::table, marks.join(u", "_s)),
                                  params);
        for (; !rs.eof(); rs.moveNext()) {
            InvoiceLine line;
            line.date = rs.date(d::date).value_or(QDate());
            line.number = rs.text(d::number);
            line.route = rs.text(d::pickupAddress).simplified() + u" -> "_s +
                         rs.text(d::deliveryAddress).simplified();
            line.service = rs.text(d::service);
            dispatches.insert(line.number, line);
        }
    }
    for (const fin::InvoiceItem& item : items) {
        InvoiceLine line;
        const auto found = dispatches.constFind(item.document);
        if (found != dispatches.cend()) {
            line = *found;
        } else {
            // A receivable entered by hand: its own date, document and description.
            line.date = item.entered;
            line.number = item.document;
            line.route = item.description.simplified();
        }
        line.amount = item.amount; // the invoice is worth what its receivables are
        sheet.lines.append(line);
    }
    std::stable_sort(sheet.lines.begin(), sheet.lines.end(),
                     [](const InvoiceLine& a, const InvoiceLine& b) { return a.date < b.date; });

    if (const auto pix = pixOf(company)) {
        fin::PixCharge charge;
        charge.key = pix->key;
        charge.name = company.pixName.trimmed().isEmpty() ? company.name : company.pixName;
        charge.city = company.pixCity.trimmed().isEmpty() ? company.city : company.pixCity;
        charge.amount = invoice->total;
        charge.txid = invoice->txid;
        sheet.pixKey = pix->key;
        sheet.pixName = fin::payloadText(charge.name, 25);
        sheet.payload = fin::brCode(charge);
    }
    sheet.amountWords = fin::amountInWords(plainAmount(invoice->total));
    return sheet;
}

namespace {

// The page, in millimetres.
constexpr double kLeft = 12, kRight = 198, kTop = 12, kBottom = 282;
constexpr double kRowPoints = 8.5;
constexpr double kQrSide = 46; // the QR code with its quiet zone

const QString kFont = u"DejaVu Sans"_s;

// The columns of the lines: left edge and width.
struct Col {
    double x, w;
    Align align;
};
const Col kDate{kLeft, 20, Align::Left};
const Col kNumber{kLeft + 21, 19, Align::Left};
const Col kRoute{kLeft + 41, 98, Align::Left};
const Col kService{kLeft + 140, 25, Align::Left};
const Col kValue{kLeft + 166, kRight - kLeft - 166, Align::Right};

class Pages {
public:
    Pages(Document& doc, const TextMeasure* measure) : doc_(doc), measure_(measure) {}

    double y = kTop;

    void newPage() {
        doc_.pages.append(Page{});
        y = kTop;
    }
    Page& page() { return doc_.pages.last(); }

    void text(double x, double top, double w, const QString& t, double points, bool bold = false,
              Align align = Align::Left) {
        Item it;
        it.kind = Item::Kind::Text;
        it.align = align;
        it.bold = bold;
        it.size = float(points);
        it.rect = QRectF(x, top, w, lineHeight(points));
        it.text = t;
        page().items.append(it);
    }
    void line(double x1, double y1, double x2, double y2, double pen = 0.5) {
        Item it;
        it.kind = Item::Kind::Line;
        it.pen = float(pen);
        it.rect = QRectF(QPointF(x1, y1), QPointF(x2, y2));
        page().items.append(it);
    }
    void box(const QRectF& r, quint8 grey, double pen) {
        Item it;
        it.kind = Item::Kind::Box;
        it.grey = grey;
        it.pen = float(pen);
        it.rect = r;
        page().items.append(it);
    }
    // A text broken into the lines of a width; gives the lines.
    QStringList broken(const QString& t, double w, double points, bool bold = false) const {
        return breakLines(
            t, w, [&](const QString& s) { return measure_->width(s, kFont, points, bold, false); });
    }

    // A text cut into lines by characters alone, every character kept.
    QStringList cut(const QString& t, double w, double points) const {
        QStringList lines;
        QString line;
        for (QChar c : t) {
            if (!line.isEmpty() && measure_->width(line + c, kFont, points, false, false) > w) {
                lines << line;
                line.clear();
            }
            line += c;
        }
        if (!line.isEmpty()) lines << line;
        return lines;
    }

private:
    Document& doc_;
    const TextMeasure* measure_;
};

void lineHeadings(Pages& p) {
    const double h = lineHeight(kRowPoints);
    p.box(QRectF(kLeft, p.y, kRight - kLeft, h + 1), 225, 0);
    const auto head = [&](const Col& c, const QString& t) {
        p.text(c.x + 0.5, p.y + 0.5, c.w - 1, t, kRowPoints, true, c.align);
    };
    head(kDate, u"Data"_s);
    head(kNumber, u"Número"_s);
    head(kRoute, u"Origem -> Destino"_s);
    head(kService, u"Serviço"_s);
    head(kValue, u"Valor"_s);
    p.y += h + 1.5;
}

} // namespace

Document invoiceDocument(const InvoiceSheet& sheet, const TextMeasure* measure) {
    static const EstimatedMeasure estimated;
    if (!measure) measure = &estimated;
    const fin::Invoice& inv = sheet.invoice;
    Document doc;
    doc.title = u"Fatura %1 - %2"_s.arg(inv.code, sheet.clientName);
    doc.font = kFont;
    Pages p(doc, measure);
    p.newPage();

    // The letterhead, and the invoice's number and dates on the right.
    const double headTop = p.y;
    p.text(kLeft, p.y, 120, sheet.companyName, 13, true);
    p.y += lineHeight(13);
    for (const QString& l : p.broken(sheet.companyAddress, 120, 8)) {
        p.text(kLeft, p.y, 120, l, 8);
        p.y += lineHeight(8);
    }
    QStringList contact;
    if (!sheet.companyCnpj.trimmed().isEmpty()) contact << u"CNPJ: "_s + sheet.companyCnpj;
    if (!sheet.companyPhone.trimmed().isEmpty()) contact << u"Telefone: "_s + sheet.companyPhone;
    if (!sheet.companyEmail.trimmed().isEmpty()) contact << sheet.companyEmail;
    p.text(kLeft, p.y, 125, contact.join(u"   "_s), 8);
    p.y += lineHeight(8);
    double right = headTop;
    p.text(140, right, kRight - 140, u"FATURA Nº %1"_s.arg(inv.code), 13, true, Align::Right);
    right += lineHeight(13);
    p.text(140, right, kRight - 140, u"Emissão: "_s + dateText(inv.made), 9, false, Align::Right);
    right += lineHeight(9);
    p.text(140, right, kRight - 140, u"Vencimento: "_s + dateText(inv.due), 10, true, Align::Right);
    right += lineHeight(10);
    p.y = std::max(p.y, right) + 2;
    p.line(kLeft, p.y, kRight, p.y, 1);
    p.y += 2;

    // The client.
    p.text(kLeft, p.y, kRight - kLeft, u"Cliente: "_s + sheet.clientName, 10, true);
    p.y += lineHeight(10);
    if (!sheet.clientTaxNumber.isEmpty()) {
        p.text(kLeft, p.y, kRight - kLeft, u"CNPJ/CPF: "_s + sheet.clientTaxNumber, 9);
        p.y += lineHeight(9);
    }
    for (const QString& l : p.broken(u"Endereço: "_s + sheet.clientAddress, kRight - kLeft, 9)) {
        if (sheet.clientAddress.isEmpty()) break;
        p.text(kLeft, p.y, kRight - kLeft, l, 9);
        p.y += lineHeight(9);
    }
    p.text(kLeft, p.y, kRight - kLeft,
           u"Período: %1 a %2"_s.arg(dateText(inv.from), dateText(inv.to)), 9);
    p.y += lineHeight(9) + 2;

    // One line per dispatch; the headings again on every page.
    const double rowHeight = lineHeight(kRowPoints);
    lineHeadings(p);
    const auto continuation = [&] {
        p.newPage();
        p.text(kLeft, p.y, 120, sheet.companyName, 9, true);
        p.text(110, p.y, kRight - 110,
               u"Fatura Nº %1 - %2 (continuação)"_s.arg(inv.code, sheet.clientName), 9, false,
               Align::Right);
        p.y += lineHeight(9) + 2;
        lineHeadings(p);
    };
    for (const InvoiceLine& l : sheet.lines) {
        if (p.y + rowHeight > kBottom) continuation();
        p.text(kDate.x, p.y, kDate.w, l.date.isValid() ? formatDate(l.date) : QString(),
               kRowPoints);
        p.text(kNumber.x, p.y, kNumber.w, l.number, kRowPoints);
        p.text(kRoute.x, p.y, kRoute.w, l.route, kRowPoints);
        p.text(kService.x, p.y, kService.w, l.service, kRowPoints);
        p.text(kValue.x, p.y, kValue.w, formatMoney(l.amount), kRowPoints, false, Align::Right);
        p.y += rowHeight;
    }
    doc.rows = int(sheet.lines.size());

    // The total in figures and in words.
    const QStringList words = p.broken(u"("_s + sheet.amountWords + u")"_s, kRight - kLeft, 9);
    const double totalHeight = 2 + lineHeight(11) + words.size() * lineHeight(9) + 2;
    if (p.y + totalHeight > kBottom) continuation();
    p.line(kLeft, p.y + 0.5, kRight, p.y + 0.5, 0.8);
    p.y += 2;
    p.text(kLeft, p.y, 120, u"%1 atendimento(s)"_s.arg(sheet.lines.size()), 10);
    p.text(110, p.y, kRight - 110, u"TOTAL: R$ "_s + formatMoney(inv.total), 11, true,
           Align::Right);
    p.y += lineHeight(11);
    for (const QString& w : words) {
        p.text(kLeft, p.y, kRight - kLeft, w, 9, false);
        p.y += lineHeight(9);
    }
    p.y += 3;

    // The PIX block: the QR code on the left, the "copia e cola" text on the right.
    if (!sheet.payload.isEmpty()) {
        const double textX = kLeft + kQrSide + 6;
        const double textW = kRight - 3 - textX;
        // Broken well short of the box: a surface whose letters come out a little wider
        // than measured would cut the end of a line, and the text must be copied whole.
        // Broken by characters, never at a blank, which the break would swallow: the blanks
        // of the name are part of the code.
        const QStringList copy = p.cut(sheet.payload, textW * 0.85, 7.5);
        const double blockHeight =
            std::max(kQrSide + lineHeight(10),
                     lineHeight(10) + 4 * lineHeight(9) + copy.size() * lineHeight(7.5) + 2) +
            4;
        if (p.y + blockHeight > kBottom) continuation();
        const double top = p.y;
        p.box(QRectF(kLeft, top, kRight - kLeft, blockHeight), 255, 0.6);
        p.text(kLeft + 2, top + 1, 100, u"Pague com PIX"_s, 10, true);
        const QrSymbol qr = encodeQr(sheet.payload);
        if (!qr.isEmpty()) {
            // Four modules of white around the code, as readers expect.
            const double module = kQrSide / (qr.size + 8);
            const QPointF origin(kLeft + 1 + 4 * module, top + 1 + lineHeight(10) + 4 * module);
            for (const QRectF& r : qrBoxes(qr, origin, module))
                p.box(r, 0, 0);
        }
        double ty = top + 1 + lineHeight(10);
        const auto info = [&](const QString& t, bool bold = false) {
            p.text(textX, ty, textW, t, 9, bold);
            ty += lineHeight(9);
        };
        info(u"Valor: R$ "_s + formatMoney(inv.total), true);
        info(u"Beneficiário: "_s + sheet.pixName);
        info(u"Chave PIX: "_s + sheet.pixKey);
        info(u"PIX copia e cola:"_s, true);
        for (const QString& l : copy) {
            p.text(textX, ty, textW, l, 7.5);
            ty += lineHeight(7.5);
        }
        p.y = top + blockHeight + 2;
    }

    // "Página n de m" at the foot of every page.
    const int pages = int(doc.pages.size());
    for (int i = 0; i < pages; ++i) {
        Item it;
        it.kind = Item::Kind::Text;
        it.align = Align::Right;
        it.size = 7.5f;
        it.rect = QRectF(kLeft, kBottom + 4, kRight - kLeft, lineHeight(7.5));
        it.text = u"Página %1 de %2"_s.arg(i + 1).arg(pages);
        doc.pages[i].items.append(it);
    }
    return doc;
}

ReportData invoiceData(const InvoiceSheet& sheet) {
    ReportData data;
    data.table = fin::invoiceTable();
    data.columns = {u"Data"_s, u"Numero"_s, u"Origem_Destino"_s, u"Servico"_s, u"Valor"_s};
    data.types = {ColType::Date, ColType::Text, ColType::Text, ColType::Text, ColType::Money};
    for (const InvoiceLine& l : sheet.lines)
        data.rows.append({l.date, l.number, l.route, l.service, l.amount});
    // The columns the spreadsheet of the preview takes, each with its kind.
    data.layout.title = u"Fatura %1 - %2"_s.arg(sheet.invoice.code, sheet.clientName);
    const QList<std::tuple<QString, QString, Format>> columns{
        {u"Data"_s, u"Data"_s, Format::Date},
        {u"Numero"_s, u"Número"_s, Format::Plain},
        {u"Origem_Destino"_s, u"Origem -> Destino"_s, Format::Plain},
        {u"Servico"_s, u"Serviço"_s, Format::Plain},
        {u"Valor"_s, u"Valor"_s, Format::Money}};
    for (const auto& [name, caption, format] : columns) {
        ColumnDef c;
        QString problem;
        Template::parse(u"{%1}"_s.arg(name), c.value, problem);
        c.caption = caption;
        c.format = format;
        data.layout.columns.append(c);
    }
    data.formulas = {{u"FATURA"_s, sheet.invoice.code}, {u"CLIENTE"_s, sheet.clientName}};
    data.company.name = sheet.companyName;
    data.printedAt = QDateTime::currentDateTime();
    return data;
}

QString invoiceFolder(const QString& installation, const QDate& from) {
    return installation + u"/Faturas "_s + from.toString(u"MM.yyyy"_s);
}

QString invoiceFileName(const fin::Invoice& invoice) {
    QString name = invoice.clientCode.isEmpty() ? invoice.clientName
                                                : invoice.clientCode + u' ' + invoice.clientName;
    name += u" - fatura "_s + invoice.code;
    QString safe;
    for (QChar c : name)
        if (!QStringView(u"/\\:*?\"<>|").contains(c) && c.unicode() >= 0x20) safe += c;
    return safe.simplified() + u".pdf"_s;
}

} // namespace rtx::output
