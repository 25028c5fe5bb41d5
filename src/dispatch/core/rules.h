#pragma once
// The rules of a dispatch's life: the password that opens a delivered dispatch and deletes
// any, the lock on a delivered dispatch, Grava's checks in their order, and Grava's store
// work (the number, the row and the money in one unit of work). The screen asks the
// operator; these decide and write.

#include "dispatch/core/dispatch.h"
#include "dispatch/core/posting.h"

#include <QString>
#include <QTime>
#include <optional>

namespace rtx::dispatch {

// The password of a change to a delivered dispatch and of any deletion. An answer passes
// when it is not empty and its capitals are the password's.
inline const QString password = QStringLiteral("MARIPOSA");
bool passwordAccepted(const std::optional<QString>& answer);

// The words of the screen that several steps share.
namespace text {
inline const QString deliveredRefusal =
    QStringLiteral("Este atendimento j\u00e1 foi entregue e n\u00e3o pode ser alterado.");
inline const QString deliveredWarning =
    QStringLiteral("Aviso: Ao gravar o atendimento na posi\u00e7\u00e3o Entregue a mesma n\u00e3o "
                   "poder\u00e1 ser mais alterada.");
inline const QString passwordTitle = QStringLiteral("Senha de altera\u00e7\u00e3o");
inline const QString passwordLabel =
    QStringLiteral("Atendimento j\u00e1 foi entregue para alterar  digite a senha.");
inline const QString deletePasswordTitle = QStringLiteral("Senha");
inline const QString deletePasswordLabel = QStringLiteral("Digite a senha de exclus\u00e3o.");
inline const QString changeQuestion = QStringLiteral("Confirma altera\u00e7\u00e3o?");
inline const QString postingQuestion =
    QStringLiteral("Confirma movimenta\u00e7\u00e3o financeira?");
inline const QString printQuestion = QStringLiteral("Imprimir atendimento?");
inline const QString added = QStringLiteral("Atendimento registrado.");
inline const QString changed = QStringLiteral("Atendimento alterado.");
inline const QString searchFirst = QStringLiteral("Primeiro fa\u00e7a a busca do atendimento.");
inline const QString deleteQuestion = QStringLiteral("Confirma exclus\u00e3o?");
inline const QString statusFirst = QStringLiteral("Primeiro defina o novo status.");
inline const QString statusChanged = QStringLiteral("Status alterado com sucesso.");
} // namespace text

// The delivered lock: a saved dispatch whose stored status is "Entregue" takes the password
// before Grava changes it, and refuses a status change outright. A new dispatch, or one
// whose row is gone, is not locked. Throws StoreError.
bool isLocked(Store& store, const QString& number);

// Saving a dispatch with the status "Entregue" locks it: the operator is warned first.
bool locksOnSave(const QString& status);

// The fields Grava checks, in the order it checks them: three required, then the two values,
// which take no negative amount and none above the largest.
enum class Field { Attendant, ClientName, Status, ClientValue, CourierValue };

struct Refusal {
    Field field;
    QString message;
};

// Grava's checks in their order: the first that fails, with its message; none when the
// dispatch may be saved.
std::optional<Refusal> checkSave(const Dispatch& dispatch);

// What the operator answered before Grava writes.
struct SaveChoice {
    bool change = true; // "Confirma alteração?" for a saved dispatch (a new one is always added)
    bool post = false;  // "Confirma movimentação financeira?"
};

struct Saved {
    QString message; // "Atendimento registrado.", "Atendimento alterado." or nothing
    bool posted = false;
    PostingResult posting;
};

// Grava's store work in one unit of work: a new dispatch gets the time of saving and the
// next control number (put into dispatch); a saved one is rewritten when the operator
// confirmed the change (its row may be gone: nothing written, nothing said); then, when
// confirmed, the posting of its money (once: a saved dispatch's rows are brought up to
// date) and the courier's move. A dispatch read at a version is saved only while its row
// is still at it (RowChanged, before anything is written); dispatch gets the version the
// save left it at. Throws StoreError, and then nothing of it is stored.
Saved save(Store& store, Dispatch& dispatch, const SaveChoice& choice,
           const QTime& now = QTime::currentTime(), const QDate& today = QDate::currentDate());

// What a posting reads from a dispatch.
Posting postingOf(const Dispatch& dispatch, const QDate& today = QDate::currentDate());

// Grava's financial question for the dispatch on the screen: the plain question, or, where
// its money was posted and partly settled since, what was settled and the difference a Yes
// posts. Throws StoreError.
QString postingQuestionFor(Store& store, const Dispatch& dispatch);

} // namespace rtx::dispatch
