#pragma once
// The company's own record, the letterhead of slips and receipts (one row, which the
// installation delivers and no screen adds), and its branches, saved by their name.

#include "store/record.h"

#include <QList>
#include <QString>
#include <optional>

namespace rtx::registers {

const QString& companyTable(); // empresa (the old A1.Mdb)
const QString& branchTable();  // filiais (the old A3.Mdb)

namespace companycol {
inline const QString name = QStringLiteral("e1");
inline const QString phone = QStringLiteral("e2");
inline const QString address = QStringLiteral("e3");
inline const QString district = QStringLiteral("e4");
inline const QString city = QStringLiteral("e5");
inline const QString state = QStringLiteral("e6");
inline const QString postcode = QStringLiteral("e7");
inline const QString email = QStringLiteral("e8");
inline const QString cnpj = QStringLiteral("e9");
inline const QString pixKind = QStringLiteral("e10");
inline const QString pixKey = QStringLiteral("e11");
inline const QString pixName = QStringLiteral("e12");
inline const QString pixCity = QStringLiteral("e13");
inline const QString dueDays = QStringLiteral("e14");
} // namespace companycol

namespace branchcol {
inline const QString id = QStringLiteral("cd");
inline const QString name = QStringLiteral("x1"); // the key of a save
inline const QString phone = QStringLiteral("x2");
inline const QString address = QStringLiteral("x3");
inline const QString district = QStringLiteral("x4");
inline const QString city = QStringLiteral("x5");
inline const QString state = QStringLiteral("x6");
inline const QString postcode = QStringLiteral("x7");
inline const QString email = QStringLiteral("x8");
inline const QString cnpj = QStringLiteral("x9");
} // namespace branchcol

// What the company and each branch keep.
struct Letterhead {
    QString name;
    QString phone;
    QString address;
    QString district;
    QString city;
    QString state;
    QString postcode;
    QString email;
    QString cnpj;
};

// The company also keeps how its invoices are paid: the PIX key with its kind, the
// beneficiary's name and city as the bank registered them (empty: the company's own), and
// the days an invoice is given when the client has none of his own.
struct Company : Letterhead {
    QString pixKind; // "CNPJ", "E-MAIL", "TELEFONE" or "ALEATÓRIA"
    QString pixKey;
    QString pixName;
    QString pixCity;
    QString dueDays; // as typed: a whole number of days, or empty
};

// The days an invoice is given when neither the client nor the company says.
inline constexpr int defaultDueDays = 10;
// The days of a register's field: a whole number from 0 to 365, nothing when empty or
// anything else.
std::optional<int> dueDaysOf(const QString& typed);
// What is wrong with the days typed in a register's field (the company's or a client's):
// nothing when they are empty or good.
std::optional<Problem> checkDueDays(const QString& column, const QString& typed);

struct Branch : Letterhead {
    qint64 id = 0; // given by the engine
};

const QList<Field<Company>>& companyFields();
const QList<Field<Branch>>& branchFields(); // without the id

// The company's row; nothing when the installation lacks it.
std::optional<Company> loadCompany(Store& store);
std::optional<Branch> loadBranch(Store& store, qint64 id);
// Every branch, by name: the search list.
QList<Branch> branches(Store& store);

// The company's name is required; a PIX key is checked as its kind requires (and needs its
// kind); the days of an invoice are a whole number up to a year.
std::optional<Problem> checkCompany(const Company& company);

// Writes the branch by its name when it has one (the first branch of that name is written
// over, otherwise one is added), and the company over its one row, in one unit of work.
// Throws StoreError, writing nothing, when the company's row is missing.
void saveCompany(Store& store, const Company& company, const std::optional<Branch>& branch);
void removeBranch(Store& store, qint64 id);

} // namespace rtx::registers
