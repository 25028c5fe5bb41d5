#pragma once
// The tests' answerer for the dialog seam. Installed while it lives; answers questions and
// prompts from queues, in order, and keeps every text it was shown, word for word.
//
//     ScriptedPrompter prompts;
//     prompts.answerYes();                       // the next question gets "Sim"
//     QTest::mouseClick(button, Qt::LeftButton);
//     QCOMPARE(prompts.texts(), QStringList{u"Confirma exclusão?"_s});
//
// A question with nothing queued gets "Não", a prompt gets Cancelar; both are counted in
// unanswered() so that a test can tell it missed one.

#include "kit/dialogs.h"

#include <QList>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>

namespace rtx::test {

class ScriptedPrompter : public rtx::ui::Prompter {
public:
    enum class Kind { Notice, Question, Prompt, Error, Printer, Browser, Program, Quit };
    struct Shown {
        Kind kind;
        QString title;
        QString text;             // the message, the prompt's label, the address or the program
        bool password = false;    // a prompt that shows '*'
        bool information = false; // a notice with the information icon
    };

    ScriptedPrompter();
    ~ScriptedPrompter() override;

    void answerYes() { questions_.enqueue(true); }
    void answerNo() { questions_.enqueue(false); }
    void answerText(const QString& text) { prompts_.enqueue(text); }
    void answerCancel() { prompts_.enqueue(std::nullopt); }
    void answerPrinter(bool confirm) { printers_.enqueue(confirm); }
    void setBrowserResult(bool ok) { browserResult_ = ok; }
    void setProgramResult(bool ok) { programResult_ = ok; }

    const QList<Shown>& shown() const { return shown_; }
    // The texts shown, in order (every kind).
    QStringList texts() const;
    QStringList texts(Kind kind) const;
    QString lastText() const { return shown_.isEmpty() ? QString() : shown_.last().text; }
    int count(Kind kind) const { return int(texts(kind).size()); }
    int unanswered() const { return unanswered_; }
    // Queued answers not used yet.
    int pending() const { return int(questions_.size() + prompts_.size() + printers_.size()); }
    void clear();

    // Prompter
    void notice(QWidget* parent, const QString& text, const QString& title,
                bool information) override;
    bool ask(QWidget* parent, const QString& text, const QString& title) override;
    std::optional<QString> askText(QWidget* parent, const QString& title, const QString& label,
                                   const QString& initial, bool password) override;
    void error(QWidget* parent, const QString& text, const QString& title) override;
    bool choosePrinter(QWidget* parent, QPrinter* printer) override;
    // Shown as a prompt with the dialog's title as its text; answered from answerText().
    std::optional<QString> chooseSaveFile(QWidget* parent, const QString& title,
                                          const QString& suggested, const QString& filter) override;
    bool openUrl(const QUrl& url) override;
    bool startProgram(const QString& program, const QStringList& arguments,
                      const QString& folder) override;
    void quitProgram() override;

private:
    QList<Shown> shown_;
    QQueue<bool> questions_;
    QQueue<std::optional<QString>> prompts_;
    QQueue<bool> printers_;
    bool browserResult_ = true;
    bool programResult_ = true;
    int unanswered_ = 0;
};

} // namespace rtx::test
