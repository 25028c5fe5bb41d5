#pragma once
// The month's invoices. An invoice gathers the open receivables of one client entered in a
// period, under a number of its own (faturas), with its total, its due date and the
// transaction id of its PIX charge; the receivables it gathers are kept beside it
// (faturas_contas), each on one invoice at most. Receivables already on an invoice are not
// offered again. Writing off a paid invoice settles exactly its receivables, with one
// credit each in the cash book, as billing does, in one unit of work.
//
// This core is the one writer of both tables. What an invoice prints (the dispatches, the
// client's register, the company) is read on the output floor, which may read every
// subsystem.

#include "store/record.h"
#include "store/store.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace rtx::finance {

const QString& invoiceTable();     // faturas
const QString& invoiceItemTable(); // faturas_contas

namespace invoicecol {
inline const QString code = QStringLiteral("codigo");
inline const QString clientCode = QStringLiteral("f1");
inline const QString clientName = QStringLiteral("f2");
inline const QString from = QStringLiteral("f3");
inline const QString to = QStringLiteral("f4");
inline const QString total = QStringLiteral("f5");
inline const QString due = QStringLiteral("f6");
inline const QString txid = QStringLiteral("f7");
inline const QString made = QStringLiteral("f8");
inline const QString status = QStringLiteral("f9");
inline const QString paid = QStringLiteral("f10");
// faturas_contas
inline const QString itemInvoice = QStringLiteral("f1");
inline const QString itemReceivable = QStringLiteral("f2");
} // namespace invoicecol

// The two states of an invoice.
inline const QString invoiceOpen = QStringLiteral("Aberta");
inline const QString invoicePaid = QStringLiteral("Paga");

struct Invoice {
    QString code;
    QString clientCode;
    QString clientName;
    std::optional<QDate> from;
    std::optional<QDate> to;
    qint64 total = 0;
    std::optional<QDate> due;
    QString txid;
    std::optional<QDate> made;
    QString status;
    std::optional<QDate> paid;
};
const QList<Field<Invoice>>& invoiceFields(); // without the code

// A client with open receivables of a period that no invoice gathers yet: what the list of
// the invoice screen shows.
struct InvoiceCandidate {
    QString client; // c6 of the receivables
    int count = 0;
    qint64 total = 0;
};
// By client's name; of one client (compared whole) or of all when client is empty.
QList<InvoiceCandidate> clientsToInvoice(Store& store, const QDate& from, const QDate& to,
                                         const QString& client = {});

// A receivable as an invoice lists it.
struct InvoiceItem {
    QString receivable; // its code
    QString document;   // c3: the dispatch's number, when a dispatch posted it
    QDate entered;      // c1
    QString description;
    qint64 amount = 0; // c12
    QString status;    // c2
};

// What makes a client's invoice: who, the period, how many days it is given.
struct InvoiceRequest {
    QString client;
    QString clientCode; // his register's code, when he has one
    QDate from;
    QDate to;
    int dueDays = 10;
};

// The transaction id of the PIX charge of an invoice: letters and digits only.
QString invoiceTxid(const QString& code);

// Makes the invoice of the client's open receivables of the period that no invoice holds
// yet, dated today and due dueDays later; nothing when there are none. Runs in the caller's
// unit of work (or its own); throws StoreError.
std::optional<Invoice> makeInvoice(Store& store, const InvoiceRequest& request,
                                   const QDate& today = QDate::currentDate());

std::optional<Invoice> loadInvoice(Store& store, const QString& code);
// The receivables of an invoice, in the order of entry.
QList<InvoiceItem> itemsOf(Store& store, const QString& code);
// The invoices whose period starts within from..to, of one client or of all, by number.
QList<Invoice> invoicesOfPeriod(Store& store, const QDate& from, const QDate& to,
                                const QString& client = {});

// Settles every receivable of the invoice still open ("Recebida", its own amount, today),
// posts one credit of each into the cash book, and marks the invoice paid; one unit of
// work. Gives how many receivables were settled. Throws StoreError when there is no such
// invoice or it is paid already, writing nothing.
int writeOffInvoice(Store& store, const QString& code, const QDate& today = QDate::currentDate());

} // namespace rtx::finance
