#pragma once
// A dispatch: one courier job, one row of the dispatch table, known by its seven-digit
// control number. The column codes of that table and the words the code gives a meaning to
// (the delivered status, the two ways of payment, the courier's positions) are named here
// and nowhere else.

#include "store/store.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::dispatch {

// The dispatch table and its columns.
namespace col {
inline const QString table = QStringLiteral("atendimentos");
inline const QString number = QStringLiteral("CODIGO");
inline const QString attendant = QStringLiteral("a1");
inline const QString date = QStringLiteral("a2");
inline const QString time = QStringLiteral("a3");
inline const QString clientPhone = QStringLiteral("a4");
inline const QString clientContact = QStringLiteral("a5");
inline const QString clientName = QStringLiteral("a6");
inline const QString clientAddress = QStringLiteral("a7");
inline const QString clientKind = QStringLiteral("a8");
inline const QString pickupAddress = QStringLiteral("a9");
inline const QString pickupContact = QStringLiteral("a10");
inline const QString pickupPhone = QStringLiteral("a11");
inline const QString pickupTask = QStringLiteral("a12");
inline const QString deliveryAddress = QStringLiteral("a13");
inline const QString deliveryContact = QStringLiteral("a14");
inline const QString deliveryPhone = QStringLiteral("a15");
inline const QString deliveryTask = QStringLiteral("a16");
inline const QString remarks = QStringLiteral("a17");
inline const QString courier = QStringLiteral("a18");
inline const QString clientValue = QStringLiteral("a19");
inline const QString payment = QStringLiteral("a20");
inline const QString service = QStringLiteral("a21");
inline const QString returnTrip = QStringLiteral("a22");
inline const QString status = QStringLiteral("ST");
inline const QString courierValue = QStringLiteral("VE");
inline const QString billedCourierValue = QStringLiteral("moto"); // edited by billing only
inline const QString postedRows = QStringLiteral("lanc");         // written by the posting only
inline const QString deliveredAt = QStringLiteral("entregue_em"); // "yyyy-MM-ddTHH:mm:ss"
inline const QString deliveryMinutes = QStringLiteral("minutos_entrega");
} // namespace col

// The one status the code knows: a delivered dispatch is locked.
inline const QString delivered = QStringLiteral("Entregue");

// The statuses a new installation starts with, and the fixed list of the status search.
QStringList usualStatuses();

// How the client pays: cash now, or an invoice later.
inline const QString cashPayment = QStringLiteral("A VISTA");
inline const QString invoicePayment = QStringLiteral("FATURAR");
QStringList payments();

// Return trip: the words of its list.
QStringList returnTrips();

// Where a courier stands on the board; free text, these are the usual words.
inline const QString courierFree = QStringLiteral("Livre");
inline const QString courierOnTheWay = QStringLiteral("A caminho");
inline const QString courierAbsent = QStringLiteral("Faltou");
inline const QString courierBusy = QStringLiteral("Em atendimento");
QStringList positions();

// A place the courier goes to: the pickup or the delivery.
struct Place {
    QString address;
    QString contact;
    QString phone;
    QString task;
    bool operator==(const Place&) const = default;
};

// One dispatch as the screen edits it. Texts as typed; money in cents; a real date.
struct Dispatch {
    QString number; // empty until saved
    QString attendant;
    QDate date;
    QString time; // "HH:MM"
    QString clientPhone;
    QString clientContact;
    QString clientName;
    QString clientAddress;
    QString clientKind;
    Place pickup;
    Place delivery;
    QString remarks;
    QString courier; // the courier's short name (his register's C4)
    qint64 clientValue = 0;
    QString payment = invoicePayment;
    QString service;
    QString returnTrip;
    QString status;
    qint64 courierValue = 0;
    // The version of its row it was read at; 0: not read from the table.
    qint64 version = 0;

    bool isNew() const { return number.isEmpty(); }
    bool operator==(const Dispatch&) const = default;
};

// Reading and writing dispatches. Each throws StoreError. Each writer is one unit of work,
// or joins the caller's.
std::optional<Dispatch> load(Store& store, const QString& number);
bool exists(Store& store, const QString& number);
// The status saved for a number; none when there is no such dispatch.
std::optional<QString> savedStatus(Store& store, const QString& number);
// Adds the dispatch under the next control number, drawn here, and gives that number
// back in dispatch.number. The courier's value of billing starts at zero. The version of the
// new row is read by whoever shows it, once the unit's other writes are done.
void add(Store& store, Dispatch& dispatch);
// Rewrites every column of a saved dispatch; false when its row is gone. One read at a
// version is written only over its row at that version (RowChanged).
bool update(Store& store, const Dispatch& dispatch,
            const QDateTime& now = QDateTime::currentDateTime());
// Only the status; false when there is no such dispatch.
bool setStatus(Store& store, const QString& number, const QString& status,
               const QDateTime& now = QDateTime::currentDateTime());

// When a saved dispatch becomes "Entregue" the moment is kept (now, the station's clock),
// with the minutes from its own date and time to it; a dispatch that leaves "Entregue" loses
// them. A dispatch added already delivered was typed in after the fact: its delivery time is
// not known. Both writers above do this in their unit.
struct Delivery {
    QDateTime moment;
    std::optional<qint64> minutes; // none when its time cannot be read, or comes after
};
std::optional<Delivery> delivery(Store& store, const QString& number);
void remove(Store& store, const QString& number);
qint64 count(Store& store);

// The codes of the finance rows the dispatch's money stands in, one word each, its place's
// letter before the code ("P00012 R00007"): empty for a dispatch posted nothing yet, none
// for one saved before the codes were kept (or gone), whose rows are found by its number.
std::optional<QStringList> postedCodes(Store& store, const QString& number);
// Keeps the codes; gives the version the dispatch's row is at after it.
qint64 setPostedCodes(Store& store, const QString& number, const QStringList& codes);

// First, previous, next and last by control number; empty when there is none.
QString firstNumber(Store& store);
QString lastNumber(Store& store);
QString previousNumber(Store& store, const QString& number);
QString nextNumber(Store& store, const QString& number);

} // namespace rtx::dispatch
