#include "scriptedprompter.h"

namespace rtx::test {

ScriptedPrompter::ScriptedPrompter() {
    rtx::ui::setPrompter(this);
}

ScriptedPrompter::~ScriptedPrompter() {
    if (&rtx::ui::prompter() == this) rtx::ui::setPrompter(nullptr);
}

QStringList ScriptedPrompter::texts() const {
    QStringList out;
    for (const Shown& s : shown_)
        out << s.text;
    return out;
}

QStringList ScriptedPrompter::texts(Kind kind) const {
    QStringList out;
    for (const Shown& s : shown_)
        if (s.kind == kind) out << s.text;
    return out;
}

void ScriptedPrompter::clear() {
    shown_.clear();
    questions_.clear();
    prompts_.clear();
    printers_.clear();
    unanswered_ = 0;
}

void ScriptedPrompter::notice(QWidget*, const QString& text, const QString& title,
                              bool information) {
    shown_.append({Kind::Notice, title, text, false, information});
}

bool ScriptedPrompter::ask(QWidget*, const QString& text, const QString& title) {
    shown_.append({Kind::Question, title, text});
    if (questions_.isEmpty()) {
        ++unanswered_;
        return false;
    }
    return questions_.dequeue();
}

std::optional<QString> ScriptedPrompter::askText(QWidget*, const QString& title,
                                                 const QString& label, const QString&,
                                                 bool password) {
    shown_.append({Kind::Prompt, title, label, password});
    if (prompts_.isEmpty()) {
        ++unanswered_;
        return std::nullopt;
    }
    return prompts_.dequeue();
}

void ScriptedPrompter::error(QWidget*, const QString& text, const QString& title) {
    shown_.append({Kind::Error, title, text});
}

bool ScriptedPrompter::choosePrinter(QWidget*, QPrinter*) {
    shown_.append({Kind::Printer, QString(), QString()});
    if (printers_.isEmpty()) {
        ++unanswered_;
        return false;
    }
    return printers_.dequeue();
}

std::optional<QString> ScriptedPrompter::chooseSaveFile(QWidget*, const QString& title,
                                                        const QString&, const QString&) {
    shown_.append({Kind::Prompt, title, title});
    if (prompts_.isEmpty()) {
        ++unanswered_;
        return std::nullopt;
    }
    return prompts_.dequeue();
}

bool ScriptedPrompter::openUrl(const QUrl& url) {
    shown_.append({Kind::Browser, QString(), url.toString()});
    return browserResult_;
}

bool ScriptedPrompter::startProgram(const QString& program, const QStringList&, const QString&) {
    shown_.append({Kind::Program, QString(), program});
    return programResult_;
}

void ScriptedPrompter::quitProgram() {
    shown_.append({Kind::Quit, QString(), QString()});
}

} // namespace rtx::test
