#pragma once
// Free-standing receipts: a numbered paper saying the company received an amount, with the
// amount in words. A receipt touches neither the receivables nor the cash book, and keeps a
// copy of the company's letterhead so that an old receipt prints the address it had.

#include "finance/core/cashbook.h"
#include "store/store.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::finance {

inline const QString receiptTable = QStringLiteral("recibos");

namespace receiptcol {
inline const QString number = QStringLiteral("CODIGO");
inline const QString payer = QStringLiteral("R2");
inline const QString payerDocument = QStringLiteral("R3");
inline const QString date = QStringLiteral("R4");
inline const QString address = QStringLiteral("R5");
inline const QString district = QStringLiteral("R6");
inline const QString city = QStringLiteral("R7");
inline const QString state = QStringLiteral("R8");
inline const QString amount = QStringLiteral("R9");
inline const QString words = QStringLiteral("R10");
inline const QString about = QStringLiteral("R11");
inline const QString cheque = QStringLiteral("R12");
inline const QString receivedBy = QStringLiteral("R13");
inline const QString companyName = QStringLiteral("R15");
inline const QString companyPhone = QStringLiteral("R16");
inline const QString companySpare = QStringLiteral("R17");
inline const QString companyAddress = QStringLiteral("R18");
inline const QString companyCity = QStringLiteral("R19");
inline const QString companyCnpj = QStringLiteral("R20");
inline const QString companyOther = QStringLiteral("R21");
} // namespace receiptcol

// The company as a receipt keeps it.
struct ReceiptCompany {
    QString name;    // e1
    QString phone;   // e2
    QString address; // e3
    QString city;    // e5 + " " + e6
    QString cnpj;    // e9
};

struct Receipt {
    QString number;
    QString payer;
    QString payerDocument;
    QDate date;
    QString address;
    QString district;
    QString city;
    QString state;
    qint64 amount = 0; // cents
    QString words;
    QString about;
    QString cheque;
    QString receivedBy;
    ReceiptCompany company;
};

// The members of a receipt, its letterhead's among them, and the columns they are kept in.
const QList<Field<Receipt>>& receiptFields();

// The states offered, as the office has always had them: with "EX", without "RO".
const QStringList& receiptStates();

// The words a receipt shows for an amount in cents (nothing: an empty field, no words), in
// their settled form: "( Cem reais.' ).".
QString receiptWords(std::optional<qint64> amount);

// The number the next receipt would get: "00001" on an empty table.
QString nextReceiptNumber(Store& store);

// The company's letterhead from the company's record (empty when none).
ReceiptCompany receiptCompany(Store& store);

// The checks of a save in their order: received from, received by, referring to, then an
// amount no receipt holds (negative, or above the largest).
std::optional<Problem> checkReceipt(const Receipt& receipt);

std::optional<Receipt> loadReceipt(Store& store, const QString& number);

// Adds the receipt under its number; false, writing nothing, when that number is on file
// (a saved receipt is never written over). Call inside a unit of work; throws StoreError.
bool addReceipt(Store& store, const Receipt& receipt);

// Deletes the receipt of a number; false when there is none.
bool removeReceipt(Store& store, const QString& number);

// The list of the second tab: every receipt, newest first.
QList<Receipt> allReceipts(Store& store);

// The payer's details of a client of that name (compared whole); nothing when the payer
// is not in the register.
struct Payer {
    QString document;
    QString address;
    QString district;
    QString city;
    QString state;
};
std::optional<Payer> payerOf(Store& store, const QString& name);

} // namespace rtx::finance
