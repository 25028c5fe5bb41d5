#pragma once
// The service price table: a description and a value per service, under a six-digit code.
// And the hand-over of a service picked in the table opened from the hub: it goes to the
// dispatch screen that stands open, or waits for the next one opened.

#include "store/store.h"

#include <QList>
#include <QObject>
#include <QString>
#include <optional>

namespace rtx::dispatch {

namespace service {
inline const QString table = QStringLiteral("servicos");
inline const QString code = QStringLiteral("cod");
inline const QString description = QStringLiteral("A1");
inline const QString value = QStringLiteral("A2");
} // namespace service

struct Service {
    QString code;
    QString description;
    qint64 value = 0; // cents
    bool operator==(const Service&) const = default;
};

// Every service, by description. Throws StoreError.
QList<Service> services(Store& store);
// Why a service cannot be saved with that value (negative, or above the largest amount);
// nothing when it can.
std::optional<QString> checkServiceValue(qint64 value);
// Adds a service under the next code, drawn in its own unit of work, and gives it back
// with that code. Grava always adds: a service is changed by deleting it and adding it.
Service addService(Store& store, const QString& description, qint64 value);
// Deletes the service of that code, if any, in its own unit of work.
void deleteService(Store& store, const QString& code);

// The hand-over of a picked service between screens that do not know each other. A dispatch
// screen listens to picked() while it stands open, and takes what waits when it opens.
class ServicePicks : public QObject {
    Q_OBJECT
public:
    // A service picked outside any dispatch screen: told to the listening screens, or kept
    // for the next one when none listens.
    void offer(const Service& service);
    // The service kept for the next screen, once.
    std::optional<Service> takeWaiting();

signals:
    void picked(const rtx::dispatch::Service& service);

private:
    std::optional<Service> waiting_;
};

// The one hand-over of the process.
ServicePicks& servicePicks();

} // namespace rtx::dispatch
