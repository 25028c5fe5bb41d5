#pragma once
// inicio: the hub. It shows the session (the user in NOME, his modules in Grid2) and the
// company's name, and opens every module through its button bar and its menu. Each gated
// entry looks its module's name up among the session's modules and opens the module
// modally only when it is there; without it nothing happens at all. "05-Tabela de Serviços" opens
// SERVI2 for everyone, not modally.

#include <QDialog>
#include <QMainWindow>
#include <QPointer>

class QLabel;
class QLineEdit;
class QToolButton;

namespace rtx::session {
struct Session;
}

namespace rtx::ui {

class MSFlexGrid;

class inicio : public QMainWindow {
    Q_OBJECT
public:
    explicit inicio(QWidget* parent = nullptr);

    // Shows who is logged in (NOME), his modules (Grid2) and the company's name.
    void showSession(const session::Session& session);

    // Opens a module after the permission check, as its button does.
    void openModule(const QString& module, bool hourglass);
    // Opens the service price table (SERVI2), or brings it to the front.
    void openServiceTable();
    // The open service price table, if any.
    QDialog* serviceTable() const { return serviceTable_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QLineEdit* userNameField_ = nullptr;  // NOME
    QLabel* companyNameLabel_ = nullptr;  // nome2
    MSFlexGrid* moduleList_ = nullptr;    // Grid2
    QLabel* backgroundPicture_ = nullptr; // Picture1
    QPointer<QDialog> serviceTable_;

    void load();
    void buildMenu();
    QToolButton* addButton(const QString& name, const QString& tip, const QString& caption,
                           const QString& glyph, const QColor& colour);
    void onHelp(); // Command5, "Ajuda"
};

} // namespace rtx::ui
