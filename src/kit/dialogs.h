#pragma once
// The one door through which screens talk to the user outside their own window: notices,
// Yes/No questions, text prompts, store errors, the printer dialog, the browser, other
// programs and the end of the program. The program uses Qt's dialogs; the tests install
// a scripted answerer (tests/support/scriptedprompter.h) that answers from a queue and
// keeps every text it was shown.
//
// Screens never build a QMessageBox themselves: they call the free functions below.
//
//     rtx::ui::notice(this, u"Operação realizada com sucesso."_s);
//     if (!rtx::ui::ask(this, u"Confirma exclusão?"_s)) return;
//     rtx::ui::guarded(this, [&] { ...store work... });

#include "store/store.h"

#include <QString>
#include <QStringList>
#include <QUrl>
#include <exception>
#include <optional>
#include <utility>

class QWidget;
class QPrinter;

namespace rtx::ui {

class Prompter {
public:
    virtual ~Prompter();

    // A notice with an OK button: plain, without an icon, unless information is set.
    virtual void notice(QWidget* parent, const QString& text, const QString& title,
                        bool information) = 0;
    // A question with the question icon and the buttons "Sim" and "Não". True for "Sim".
    virtual bool ask(QWidget* parent, const QString& text, const QString& title) = 0;
    // A text prompt with OK and Cancelar; nothing on Cancelar. password: shows '*'.
    virtual std::optional<QString> askText(QWidget* parent, const QString& title,
                                           const QString& label, const QString& initial,
                                           bool password) = 0;
    // A failure of the store (or another failure the user must see), with the error icon.
    virtual void error(QWidget* parent, const QString& text, const QString& title) = 0;
    // The printer dialog; true when the user confirmed (printer then holds the choice).
    virtual bool choosePrinter(QWidget* parent, QPrinter* printer) = 0;
    // The dialog that names a file to save (a report as PDF or spreadsheet), offering a
    // name; nothing on Cancelar.
    virtual std::optional<QString> chooseSaveFile(QWidget* parent, const QString& title,
                                                  const QString& suggested, const QString& filter);
    // Opens an address in the user's browser; false when it could not.
    virtual bool openUrl(const QUrl& url) = 0;
    // Starts another program, detached; false when it could not.
    virtual bool startProgram(const QString& program, const QStringList& arguments,
                              const QString& folder) = 0;
    // Ends the program at once (the hub's exit).
    virtual void quitProgram() = 0;
};

// The prompter in use. Until one is installed, the one built on Qt's dialogs.
Prompter& prompter();
// Installs a prompter (not owned); nullptr goes back to Qt's dialogs.
void setPrompter(Prompter* prompter);

// Short forms. An empty title means the program's name.
void notice(QWidget* parent, const QString& text, const QString& title = {});
// A notice with the information icon.
void inform(QWidget* parent, const QString& text, const QString& title = {});
bool ask(QWidget* parent, const QString& text, const QString& title = {});
std::optional<QString> askText(QWidget* parent, const QString& title, const QString& label,
                               const QString& initial = {}, bool password = false);
void showError(QWidget* parent, const QString& text, const QString& title = {});
bool choosePrinter(QWidget* parent, QPrinter* printer);
std::optional<QString> chooseSaveFile(QWidget* parent, const QString& title,
                                      const QString& suggested, const QString& filter);
bool openUrl(const QUrl& url);
bool startProgram(const QString& program, const QStringList& arguments = {},
                  const QString& folder = {});
void quitProgram();

// What the user is shown of a failure that is not the store's: a fault of the program, which
// should not happen, but which must not take the open screen and what was typed in it with it.
QString unexpectedFailureText(const char* what);

// Runs a piece of work of a screen's slot. A StoreError is shown with the engine's words, any
// other exception with what it says, and gives false; the screen stays as it is and usable.
// Any unit of work inside the action has rolled back by then.
template <class F> bool guarded(QWidget* parent, F&& action) {
    try {
        std::forward<F>(action)();
        return true;
    } catch (const rtx::StoreError& e) {
        showError(parent, e.text());
    } catch (const std::exception& e) {
        showError(parent, unexpectedFailureText(e.what()));
    } catch (...) {
        showError(parent, unexpectedFailureText(nullptr));
    }
    return false;
}

} // namespace rtx::ui
