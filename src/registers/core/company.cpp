#include "registers/core/company.h"

#include "registers/core/pixkey.h"

namespace rtx::registers {

const QString& companyTable() {
    static const QString table = QStringLiteral("empresa");
    return table;
}

const QString& branchTable() {
    static const QString table = QStringLiteral("filiais");
    return table;
}

namespace {

// The nine fields of a letterhead against nine columns.
template <class R> QList<Field<R>> letterheadFields(const QStringList& columns) {
    using L = Letterhead;
    const QList<QString L::*> members{&L::name,  &L::phone,    &L::address, &L::district, &L::city,
                                      &L::state, &L::postcode, &L::email,   &L::cnpj};
    QList<Field<R>> fields;
    for (qsizetype i = 0; i < members.size(); ++i) {
        QString L::*member = members.at(i);
        fields.append(field<R>(
            columns.at(i), [member](auto& r) -> auto& { return r.*member; }));
    }
    return fields;
}

} // namespace

const QList<Field<Company>>& companyFields() {
    namespace c = companycol;
    static const QList<Field<Company>> fields =
        letterheadFields<Company>({c::name, c::phone, c::address, c::district, c::city, c::state,
                                   c::postcode, c::email, c::cnpj}) +
        QList<Field<Company>>{field<Company>(c::pixKind, &Company::pixKind),
                              field<Company>(c::pixKey, &Company::pixKey),
                              field<Company>(c::pixName, &Company::pixName),
                              field<Company>(c::pixCity, &Company::pixCity),
                              field<Company>(c::dueDays, &Company::dueDays)};
    return fields;
}

const QList<Field<Branch>>& branchFields() {
    namespace c = branchcol;
    static const QList<Field<Branch>> fields =
        letterheadFields<Branch>({c::name, c::phone, c::address, c::district, c::city, c::state,
                                  c::postcode, c::email, c::cnpj});
    return fields;
}

namespace {

Recordset companyRow(Store& store) {
    return store.open(QStringLiteral("SELECT * FROM %1 ORDER BY %2")
                          .arg(companyTable(), rtx::table(companyTable()).idColumn));
}

Branch readBranch(const Recordset& rs) {
    Branch b = readRecord(rs, branchFields());
    b.id = rs.value(branchcol::id).toLongLong();
    return b;
}

} // namespace

std::optional<Company> loadCompany(Store& store) {
    Recordset rs = companyRow(store);
    if (rs.eof()) return std::nullopt;
    return readRecord(rs, companyFields());
}

std::optional<Branch> loadBranch(Store& store, qint64 id) {
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 WHERE %2 = ?").arg(branchTable(), branchcol::id), {id});
    if (rs.eof()) return std::nullopt;
    return readBranch(rs);
}

QList<Branch> branches(Store& store) {
    QList<Branch> all;
    Recordset rs = store.open(
        QStringLiteral("SELECT * FROM %1 ORDER BY %2, %3")
            .arg(branchTable(), store.sortKey(branchTable(), branchcol::name), branchcol::id));
    for (; !rs.eof(); rs.moveNext())
        all.append(readBranch(rs));
    return all;
}

std::optional<int> dueDaysOf(const QString& typed) {
    bool ok = false;
    const int days = typed.trimmed().toInt(&ok);
    if (!ok || days < 0 || days > 365) return std::nullopt;
    return days;
}

std::optional<Problem> checkDueDays(const QString& column, const QString& typed) {
    if (typed.trimmed().isEmpty() || dueDaysOf(typed)) return std::nullopt;
    return Problem{column,
                   QStringLiteral("O prazo da fatura deve ser um n\u00famero de dias de 0 a 365.")};
}

std::optional<Problem> checkCompany(const Company& company) {
    namespace c = companycol;
    if (auto blank = firstBlank({{c::name, QStringLiteral("Nome")}},
                                [&](const QString&) { return company.name; }))
        return blank;
    if (!company.pixKey.trimmed().isEmpty()) {
        const auto kind = pixKindOf(company.pixKind);
        if (!kind)
            return Problem{c::pixKind, QStringLiteral("Escolha o tipo da chave PIX: CNPJ, "
                                                      "E-MAIL, TELEFONE ou ALEAT\u00d3RIA.")};
        if (auto wrong = checkPixKey(*kind, company.pixKey)) return Problem{c::pixKey, *wrong};
    }
    return checkDueDays(c::dueDays, company.dueDays);
}

void saveCompany(Store& store, const Company& company, const std::optional<Branch>& branch) {
    UnitOfWork unit(store);
    if (branch && !branch->name.trimmed().isEmpty()) {
        Recordset rs = store.open(
            QStringLiteral("SELECT * FROM %1 WHERE %2 ORDER BY %3")
                .arg(branchTable(), store.sameText(branchTable(), branchcol::name), branchcol::id),
            {branch->name});
        if (rs.eof())
            rs.addNew();
        else
            rs.edit();
        writeRecord(rs, *branch, branchFields());
        rs.update();
    }
    Recordset rs = companyRow(store);
    if (rs.eof())
        throw StoreError(
            QStringLiteral("O registro da empresa n\u00e3o existe nesta instala\u00e7\u00e3o; "
                           "nada foi gravado."));
    rs.edit();
    writeRecord(rs, company, companyFields());
    rs.update();
    unit.commit();
}

void removeBranch(Store& store, qint64 id) {
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(branchTable(), branchcol::id),
                  {id});
    unit.commit();
}

} // namespace rtx::registers
