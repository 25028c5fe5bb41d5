#include "panel/core/sheet.h"

#include "store/formats.h"

#include <algorithm>
#include <cmath>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace rtx::panel {

namespace {

using output::Align;
using output::Item;

constexpr double kLeft = 15, kWidth = 180;

Item text(const QRectF& rect, const QString& words, float size = 8, bool bold = false,
          Align align = Align::Left) {
    Item i;
    i.kind = Item::Kind::Text;
    i.rect = rect;
    i.text = words;
    i.size = size;
    i.bold = bold;
    i.align = align;
    return i;
}

Item box(const QRectF& rect, quint8 grey) {
    Item i;
    i.kind = Item::Kind::Box;
    i.rect = rect;
    i.grey = grey;
    return i;
}

Item line(const QPointF& from, const QPointF& to, float pen = 0.5f) {
    Item i;
    i.kind = Item::Kind::Line;
    i.rect = QRectF(from, to);
    i.pen = pen;
    return i;
}

// A titled block; gives the top of what comes under the title.
double heading(output::Page& page, double top, const QString& title) {
    page.items.append(text({kLeft, top, kWidth, 6}, title, 10, true));
    page.items.append(line({kLeft, top + 6}, {kLeft + kWidth, top + 6}, 0.3f));
    return top + 8;
}

// Columns side by side, one or two series, over a baseline, with a caption under each
// column that has room for one.
void columns(output::Page& page, const QRectF& area, const QStringList& captions,
             const QList<qint64>& first, const QList<qint64>& second,
             const std::function<QString(qint64)>& figure) {
    const qint64 top = std::max<qint64>(
        1, std::max(first.isEmpty() ? 0 : *std::max_element(first.begin(), first.end()),
                    second.isEmpty() ? 0 : *std::max_element(second.begin(), second.end())));
    const int n = int(first.size());
    if (n == 0) return;
    const double slot = area.width() / n;
    const double chartHeight = area.height() - 5;
    const int every = std::max(1, int(std::ceil(9.0 / slot)));
    for (int i = 0; i < n; ++i) {
        const double x = area.left() + i * slot;
        const double w = second.isEmpty() ? slot * 0.7 : slot * 0.4;
        const double h1 = chartHeight * first[i] / top;
        page.items.append(box({x + slot * 0.1, area.top() + chartHeight - h1, w, h1}, 90));
        if (!second.isEmpty() && i < second.size()) {
            const double h2 = chartHeight * second[i] / top;
            page.items.append(box({x + slot * 0.5, area.top() + chartHeight - h2, w, h2}, 200));
        }
        if (i % every == 0 && i < captions.size())
            page.items.append(text({x - 3, area.top() + chartHeight + 0.5, slot + 6, 4},
                                   captions[i], 6, false, Align::Centre));
    }
    page.items.append(
        line({area.left(), area.top() + chartHeight}, {area.right(), area.top() + chartHeight}));
    // The scale: the tallest column's figure at its height.
    page.items.append(line({area.left(), area.top()}, {area.right(), area.top()}, 0.1f));
    page.items.append(
        text({area.right() - 40, area.top() - 4, 40, 4}, figure(top), 6.5, false, Align::Right));
}

// Rows of a name, a bar and its figure: the long lists (couriers, clients, debtors).
double bars(output::Page& page, double top, const QList<QPair<QString, qint64>>& rows,
            const std::function<QString(qint64)>& figure) {
    qint64 most = 1;
    for (const auto& r : rows)
        most = std::max(most, r.second);
    for (const auto& r : rows) {
        page.items.append(text({kLeft, top, 60, 4.5}, r.first, 7.5));
        page.items.append(box({kLeft + 62, top + 0.8, 85.0 * r.second / most, 3}, 110));
        page.items.append(
            text({kLeft + 150, top, 30, 4.5}, figure(r.second), 7.5, false, Align::Right));
        top += 5;
    }
    return top;
}

QString money(qint64 cents) {
    return formatMoney(cents);
}

QString count(qint64 n) {
    return QString::number(n);
}

} // namespace

output::Document sheet(const Figures& f, const QString& company) {
    output::Document doc;
    doc.title = u"Painel"_s;
    doc.font = u"DejaVu Sans"_s;
    const QString period =
        f.period.from == f.period.to
            ? formatDate(f.period.from)
            : u"%1 a %2"_s.arg(formatDate(f.period.from), formatDate(f.period.to));
    auto newPage = [&]() -> double {
        doc.pages.append(output::Page{});
        output::Page& p = doc.pages.last();
        p.items.append(text({kLeft, 10, kWidth, 7}, u"Painel — %1"_s.arg(company), 13, true));
        p.items.append(text({kLeft, 17, kWidth, 5}, u"Período: %1"_s.arg(period), 9));
        p.items.append(text({kLeft, 17, kWidth, 5}, u"Página %1"_s.arg(doc.pages.size()), 8, false,
                            Align::Right));
        return 25;
    };

    // Page 1: today's figures, the days, the hours and the money.
    double y = newPage();
    output::Page* page = &doc.pages.last();
    const Headline& h = f.headline;
    const QStringList figures{u"Atendimentos hoje: %1"_s.arg(h.dispatchesToday),
                              u"Entregadores livres: %1"_s.arg(h.couriersFree),
                              u"Saldo do caixa: %1"_s.arg(money(h.cashBalance)),
                              u"A receber: %1"_s.arg(money(h.openReceivables))};
    for (int i = 0; i < figures.size(); ++i)
        page->items.append(text({kLeft + i * 45.0, y, 45, 5}, figures[i], 8, true));
    y += 9;

    y = heading(*page, y, u"Atendimentos por dia (escuro: período; claro: período anterior)"_s);
    if (f.empty()) {
        page->items.append(text({kLeft, y, kWidth, 5}, nothingInPeriod, 9));
        y += 8;
    } else {
        QStringList captions;
        QList<qint64> now, before;
        for (int i = 0; i < f.perDay.size(); ++i) {
            captions << f.period.from.addDays(i).toString(u"dd/MM"_s);
            now << f.perDay[i];
            before << (i < f.previousPerDay.size() ? f.previousPerDay[i] : 0);
        }
        columns(*page, {kLeft, y + 4, kWidth, 55}, captions, now, before, count);
        y += 64;
    }

    y = heading(*page, y, u"Atendimentos por hora"_s);
    if (f.empty()) {
        page->items.append(text({kLeft, y, kWidth, 5}, nothingInPeriod, 9));
        y += 8;
    } else {
        QStringList captions;
        QList<qint64> hours;
        for (int i = 0; i < 24; ++i) {
            captions << u"%1h"_s.arg(i);
            hours << f.perHour[i];
        }
        columns(*page, {kLeft, y + 4, kWidth, 45}, captions, hours, {}, count);
        y += 54;
    }

    y = heading(*page, y,
                f.revenueByMonth
                    ? u"Faturamento por mês (escuro: clientes; claro: entregadores)"_s
                    : u"Faturamento por dia (escuro: clientes; claro: entregadores)"_s);
    if (f.empty()) {
        page->items.append(text({kLeft, y, kWidth, 5}, nothingInPeriod, 9));
    } else {
        qint64 cash = 0, invoiced = 0, fees = 0;
        for (const Revenue& r : f.revenue) {
            cash += r.cash;
            invoiced += r.invoiced;
            fees += r.courierFees;
        }
        page->items.append(
            text({kLeft, y, kWidth, 5},
                 u"A VISTA %1   FATURAR %2   Entregadores %3   Margem %4"_s.arg(
                     money(cash), money(invoiced), money(fees), money(cash + invoiced - fees)),
                 8));
        QStringList captions;
        QList<qint64> totals, courierFees;
        for (const Revenue& r : f.revenue) {
            captions << r.start.toString(f.revenueByMonth ? u"MM/yyyy"_s : u"dd/MM"_s);
            totals << r.total();
            courierFees << r.courierFees;
        }
        columns(*page, {kLeft, y + 10, kWidth, 50}, captions, totals, courierFees, money);
    }

    // Page 2: the couriers, the clients, the receivables.
    y = newPage();
    page = &doc.pages.last();
    y = heading(*page, y,
                u"Entregadores: atendimentos (entregues), ganhos e tempo médio até a entrega"_s);
    if (f.couriers.isEmpty()) {
        page->items.append(text({kLeft, y, kWidth, 5}, nothingInPeriod, 9));
        y += 8;
    } else {
        for (int i = 0; i < f.couriers.size() && i < 12; ++i) {
            const CourierFigures& c = f.couriers[i];
            page->items.append(text({kLeft, y, 60, 4.5}, c.name, 7.5));
            page->items.append(text({kLeft + 60, y, 50, 4.5},
                                    u"%1 (%2)"_s.arg(c.dispatches).arg(c.delivered), 7.5, false,
                                    Align::Right));
            page->items.append(
                text({kLeft + 115, y, 40, 4.5}, money(c.earnings), 7.5, false, Align::Right));
            if (const auto average = c.averageMinutes())
                page->items.append(text({kLeft + 160, y, 20, 4.5}, durationText(*average), 7.5,
                                        false, Align::Right));
            y += 5;
        }
        y += 3;
    }

    y = heading(*page, y, u"Os dez clientes que mais trazem"_s);
    if (f.topClients.isEmpty()) {
        page->items.append(text({kLeft, y, kWidth, 5}, nothingInPeriod, 9));
        y += 8;
    } else {
        QList<QPair<QString, qint64>> rows;
        for (const Amount& a : f.topClients)
            rows.append({a.name, a.cents});
        const qint64 whole = std::max<qint64>(1, f.clientsTotal);
        y = bars(*page, y, rows,
                 [whole](qint64 c) {
                     return u"%1 (%2%)"_s.arg(money(c)).arg(
                         QString::number(100.0 * c / whole, 'f', 1).replace(u'.', u','));
                 }) +
            3;
    }

    y = heading(*page, y, u"Contas a receber em aberto, por atraso"_s);
    QList<QPair<QString, qint64>> ages;
    for (int i = 0; i < AgeCount; ++i)
        ages.append({ageCaption(i), f.ages[i]});
    y = bars(*page, y, ages, money) + 3;
    y = heading(*page, y, u"Os clientes que mais devem"_s);
    QList<QPair<QString, qint64>> debtors;
    for (const Amount& a : f.topDebtors)
        debtors.append({a.name, a.cents});
    if (debtors.isEmpty())
        page->items.append(text({kLeft, y, kWidth, 5}, u"Nada em aberto."_s, 9));
    else
        bars(*page, y, debtors, money);
    return doc;
}

} // namespace rtx::panel
