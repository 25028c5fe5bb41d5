#include "dispatch/core/services.h"

#include "store/formats.h"

#include <QMetaMethod>

namespace rtx::dispatch {

QList<Service> services(Store& store) {
    Recordset rs =
        store.open(QStringLiteral("SELECT %1, %2, %3 FROM %4 ORDER BY %5, %1")
                       .arg(service::code, service::description, service::value, service::table,
                            store.sortKey(service::table, service::description)));
    QList<Service> list;
    for (; !rs.eof(); rs.moveNext())
        list.append(
            {rs.text(service::code), rs.text(service::description), rs.cents(service::value)});
    return list;
}

std::optional<QString> checkServiceValue(qint64 value) {
    return moneyRefusal(value, QStringLiteral("Valor"));
}

Service addService(Store& store, const QString& description, qint64 value) {
    UnitOfWork unit(store);
    Service s{store.nextCode(service::table), description, value};
    store.insert(service::table, {{service::code, s.code},
                                  {service::description, s.description},
                                  {service::value, s.value}});
    unit.commit();
    return s;
}

void deleteService(Store& store, const QString& code) {
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(service::table, service::code),
                  {code});
    unit.commit();
}

void ServicePicks::offer(const Service& service) {
    if (isSignalConnected(QMetaMethod::fromSignal(&ServicePicks::picked))) {
        waiting_.reset();
        emit picked(service);
    } else {
        waiting_ = service;
    }
}

std::optional<Service> ServicePicks::takeWaiting() {
    return std::exchange(waiting_, std::nullopt);
}

ServicePicks& servicePicks() {
    static ServicePicks picks;
    return picks;
}

} // namespace rtx::dispatch
