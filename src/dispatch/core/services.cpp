#include "dispatch/core/services.h"

#include "dispatch/core/records.h"
#include "store/formats.h"

#include <QMetaMethod>

namespace rtx::dispatch {

const QList<rtx::Field<Service>>& serviceFields() {
    static const QList<rtx::Field<Service>> fields{
        field<Service>(service::code, &Service::code),
        field<Service>(service::description, &Service::description),
        field<Service>(service::value, &Service::value)};
    return fields;
}

QList<Service> services(Store& store) {
    Recordset rs =
        store.open(QStringLiteral("SELECT %1, %2, %3 FROM %4 ORDER BY %5, %1")
                       .arg(service::code, service::description, service::value, service::table,
                            store.sortKey(service::table, service::description)));
    QList<Service> list;
    for (; !rs.eof(); rs.moveNext())
        list.append(readRecord(rs, serviceFields()));
    return list;
}

std::optional<QString> checkServiceValue(qint64 value) {
    return moneyRefusal(value, QStringLiteral("Valor"));
}

Service addService(Store& store, const QString& description, qint64 value) {
    UnitOfWork unit(store);
    const Service s{store.nextCode(service::table), description, value};
    saveRecord(store, service::table, service::code, s.code, s, serviceFields());
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
