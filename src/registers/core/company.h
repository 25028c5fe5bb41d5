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

struct Company : Letterhead {};

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

// The company's name is required.
std::optional<Problem> checkCompany(const Company& company);

// Writes the branch by its name when it has one (the first branch of that name is written
// over, otherwise one is added), and the company over its one row, in one unit of work.
// Throws StoreError, writing nothing, when the company's row is missing.
void saveCompany(Store& store, const Company& company, const std::optional<Branch>& branch);
void removeBranch(Store& store, qint64 id);

} // namespace rtx::registers
