#include "kit/dialogs.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>

namespace rtx::ui {

Prompter::~Prompter() = default;

std::optional<QString> Prompter::chooseSaveFile(QWidget* parent, const QString& title,
                                                const QString& suggested, const QString& filter) {
    QString type;
    QString file = QFileDialog::getSaveFileName(parent, title, suggested, filter, &type);
    if (file.isEmpty()) return std::nullopt;
    // A name typed without an extension takes the one of the type chosen in the dialog
    // ("Planilhas CSV (*.csv)"), since the extension decides how the file is written.
    static const QRegularExpression extension(QStringLiteral("\\*(\\.\\w+)"));
    if (const auto m = extension.match(type); m.hasMatch() && QFileInfo(file).suffix().isEmpty())
        file += m.captured(1);
    return file;
}

namespace {

// A message without a title of its own bears the program's name.
QString titleOr(const QString& title) {
    return title.isEmpty() ? QStringLiteral("Rotalix") : title;
}

// Qt's dialogs, with the buttons' captions set here so that they read in Portuguese even
// where Qt's translations are missing.
class QtPrompter final : public Prompter {
public:
    void notice(QWidget* parent, const QString& text, const QString& title,
                bool information) override {
        QMessageBox box(information ? QMessageBox::Information : QMessageBox::NoIcon,
                        titleOr(title), text, QMessageBox::Ok, parent);
        box.button(QMessageBox::Ok)->setText(QStringLiteral("OK"));
        box.exec();
    }

    bool ask(QWidget* parent, const QString& text, const QString& title) override {
        QMessageBox box(QMessageBox::Question, titleOr(title), text,
                        QMessageBox::Yes | QMessageBox::No, parent);
        box.button(QMessageBox::Yes)->setText(QStringLiteral("&Sim"));
        box.button(QMessageBox::No)->setText(QStringLiteral("&Não"));
        box.setDefaultButton(QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::No);
        return box.exec() == QMessageBox::Yes;
    }

    std::optional<QString> askText(QWidget* parent, const QString& title, const QString& label,
                                   const QString& initial, bool password) override {
        QInputDialog dialog(parent);
        dialog.setWindowTitle(titleOr(title));
        dialog.setLabelText(label);
        dialog.setTextValue(initial);
        dialog.setTextEchoMode(password ? QLineEdit::Password : QLineEdit::Normal);
        dialog.setOkButtonText(QStringLiteral("OK"));
        dialog.setCancelButtonText(QStringLiteral("Cancelar"));
        if (dialog.exec() != QDialog::Accepted) return std::nullopt;
        return dialog.textValue();
    }

    void error(QWidget* parent, const QString& text, const QString& title) override {
        QMessageBox box(QMessageBox::Critical, titleOr(title), text, QMessageBox::Ok, parent);
        box.button(QMessageBox::Ok)->setText(QStringLiteral("OK"));
        box.exec();
    }

    bool choosePrinter(QWidget* parent, QPrinter* printer) override {
        QPrintDialog dialog(printer, parent);
        return dialog.exec() == QDialog::Accepted;
    }

    bool openUrl(const QUrl& url) override { return QDesktopServices::openUrl(url); }

    bool startProgram(const QString& program, const QStringList& arguments,
                      const QString& folder) override {
        return QProcess::startDetached(program, arguments, folder);
    }

    void quitProgram() override { QCoreApplication::exit(0); }
};

QtPrompter& qtPrompter() {
    static QtPrompter instance;
    return instance;
}

Prompter* g_prompter = nullptr;

} // namespace

Prompter& prompter() {
    return g_prompter ? *g_prompter : qtPrompter();
}

void setPrompter(Prompter* p) {
    g_prompter = p;
}

void notice(QWidget* parent, const QString& text, const QString& title) {
    prompter().notice(parent, text, title, false);
}

void inform(QWidget* parent, const QString& text, const QString& title) {
    prompter().notice(parent, text, title, true);
}

bool ask(QWidget* parent, const QString& text, const QString& title) {
    return prompter().ask(parent, text, title);
}

std::optional<QString> askText(QWidget* parent, const QString& title, const QString& label,
                               const QString& initial, bool password) {
    return prompter().askText(parent, title, label, initial, password);
}

void showError(QWidget* parent, const QString& text, const QString& title) {
    prompter().error(parent, text, title);
}

bool choosePrinter(QWidget* parent, QPrinter* printer) {
    return prompter().choosePrinter(parent, printer);
}

std::optional<QString> chooseSaveFile(QWidget* parent, const QString& title,
                                      const QString& suggested, const QString& filter) {
    return prompter().chooseSaveFile(parent, title, suggested, filter);
}

bool openUrl(const QUrl& url) {
    return prompter().openUrl(url);
}

bool startProgram(const QString& program, const QStringList& arguments, const QString& folder) {
    return prompter().startProgram(program, arguments, folder);
}

void quitProgram() {
    prompter().quitProgram();
}

QString unexpectedFailureText(const char* what) {
    const QString said = what ? QString::fromUtf8(what).trimmed() : QString();
    if (said.isEmpty())
        return QStringLiteral("Ocorreu um erro inesperado. A operação foi interrompida.");
    return QStringLiteral("Ocorreu um erro inesperado: %1. A operação foi interrompida.").arg(said);
}

} // namespace rtx::ui
