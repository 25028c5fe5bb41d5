#pragma once
// The courier board of the dispatch screen and the lists beside it: where each courier in
// service stands, his fee, and the dispatch statuses with their small registry. The board
// reads the courier register; the status words live in their own list.

#include "store/store.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::dispatch {

// The columns of the courier register that dispatch reads and writes.
namespace courier {
inline const QString table = QStringLiteral("motoqueiros");
inline const QString code = QStringLiteral("CODIGO");
inline const QString state = QStringLiteral("C1"); // "ATIVO" serves
inline const QString name = QStringLiteral("C4");  // the short name a dispatch carries
inline const QString position = QStringLiteral("C25");
inline const QString fee = QStringLiteral("C28");
inline const QString active = QStringLiteral("ATIVO");
} // namespace courier

// The list of dispatch statuses.
namespace statuslist {
inline const QString table = QStringLiteral("status_atendimento");
inline const QString word = QStringLiteral("sta");
} // namespace statuslist

struct CourierPosition {
    QString name;
    QString position;
    bool operator==(const CourierPosition&) const = default;
};

// The couriers in service (state exactly "ATIVO"), by name, with where each stands.
QList<CourierPosition> board(Store& store);

// A courier's fee per dispatch, from the first courier of that name (capitals aside); none
// when no courier has that name.
std::optional<qint64> courierFee(Store& store, const QString& name);

// Puts a courier (by his name, capitals aside) at a position; the first courier of that
// name when there are several. False when no courier has that name. One unit of work, or
// part of the caller's.
bool moveCourier(Store& store, const QString& name, const QString& position);

// The status words, each once, in order.
QStringList statuses(Store& store);
// Whether the word stands in the list, capitals aside but not accents: "Nao encontrado"
// is another word than "Não encontrado".
bool hasStatus(Store& store, const QString& word);
// Adds a word, or takes it out (every entry that is the same word), each in its own unit
// of work.
void addStatus(Store& store, const QString& word);
void removeStatus(Store& store, const QString& word);

} // namespace rtx::dispatch
