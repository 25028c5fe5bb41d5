#include "session/core/session.h"

#include "store/store.h"

namespace rtx::session {

namespace {
const QString kEmployees = QStringLiteral("funcionarios");
const QString kName = QStringLiteral("x1");
const QString kPassword = QStringLiteral("x8");
const QString kRights = QStringLiteral("permissoes");
const QString kRightPassword = QStringLiteral("a1");
const QString kRightModule = QStringLiteral("a4");
const QString kRightGranted = QStringLiteral("a5");
const QString kYes = QStringLiteral("Sim");
} // namespace

QStringList userNames(Store& store) {
    QStringList names;
    Recordset rs = store.open(QStringLiteral("SELECT %1 FROM %2 ORDER BY %3")
                                  .arg(kName, kEmployees, store.sortKey(kEmployees, kName)));
    for (; !rs.eof(); rs.moveNext())
        names << rs.text(kName);
    return names;
}

std::optional<Session> logIn(Store& store, const QString& user, const QString& password) {
    Recordset rs = store.open(QStringLiteral("SELECT %1 FROM %2 WHERE %3 AND %4")
                                  .arg(kName, kEmployees, store.sameText(kEmployees, kPassword),
                                       store.sameText(kEmployees, kName)),
                              {password, user});
    if (rs.eof()) return std::nullopt;
    Session s;
    s.user = user;
    Recordset rights = store.open(
        QStringLiteral("SELECT %1, %2 FROM %3 WHERE %4")
            .arg(kRightModule, kRightGranted, kRights, store.sameText(kRights, kRightPassword)),
        {password});
    for (; !rights.eof(); rights.moveNext())
        if (rights.text(kRightGranted) == kYes) s.modules << rights.text(kRightModule);
    s.company = companyName(store);
    return s;
}

QString companyName(Store& store) {
    Recordset rs = store.open(QStringLiteral("SELECT e1 FROM empresa ORDER BY rid"));
    return rs.eof() ? QString() : rs.text(QStringLiteral("e1"));
}

} // namespace rtx::session
