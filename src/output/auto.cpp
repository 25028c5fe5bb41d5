#include "output/auto.h"

#include "kit/kit.h"
#include "output/core/backup.h"
#include "session/core/current.h"
#include "session/modules.h"
#include "store/formats.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("Backup", [](QWidget* parent) -> QDialog* { return new AUTO(parent); });

QString AUTO::doneMessage() {
    // As the users have always read it, "Está é" included.
    return u"O backup foi realizado com sucesso.\r\n"
           u"Foi criado uma sub-pasta com a data de hoje e salvo os bancos de dados, dentro "
           u"desta pasta.\r\n"
           u"Está é uma opção de backup, porém é importante que se faça uma cópia da pasta "
           u"toda em um CD,\r\n"
           u"para que não seja perdida nenhuma informação em caso de problemas com o "
           u"computador."_s;
}

AUTO::AUTO(QWidget* parent, const QDate& day) : QDialog(parent), day_(day) {
    setObjectName(u"AUTO"_s);
    setWindowTitle(u"Backup Automático"_s);
    auto* outer = new QVBoxLayout(this);
    auto* menu = new QMenuBar(this);
    outer->setMenuBar(menu);
    auto* heading = new QLabel(u"Backup"_s, this);
    heading->setObjectName(u"Label39"_s);
    QFont big = heading->font();
    big.setPointSize(big.pointSize() + 8);
    big.setBold(true);
    heading->setFont(big);
    outer->addWidget(heading);
    auto* grid = new QGridLayout;
    auto* dateLabel = new QLabel(u"Data:"_s, this);
    dateField_ = new QLineEdit(formatDate(day_), this);
    dateField_->setObjectName(u"Text1"_s);
    dateField_->setReadOnly(true);
    dateField_->setFixedWidth(110);
    auto* filesLabel = new QLabel(u"Arquivos:"_s, this);
    count_ = new QLabel(this);
    count_->setObjectName(u"QTDE"_s);
    QFont bold = count_->font();
    bold.setBold(true);
    count_->setFont(bold);
    grid->addWidget(dateLabel, 0, 0);
    grid->addWidget(dateField_, 0, 1);
    grid->addWidget(filesLabel, 1, 0);
    grid->addWidget(count_, 1, 1);
    grid->setColumnStretch(2, 1);
    outer->addLayout(grid);
    outer->addStretch(1);
    auto* buttons = new QHBoxLayout;
    auto* startButton = new QPushButton(u"Backup"_s, this);
    startButton->setObjectName(u"Command16"_s);
    auto* backButton = new QPushButton(u"Volta"_s, this);
    backButton->setObjectName(u"Command4"_s);
    buttons->addStretch(1);
    buttons->addWidget(startButton);
    buttons->addWidget(backButton);
    outer->addLayout(buttons);
    QAction* startTwin = menu->addAction(u"Backup"_s);
    startTwin->setObjectName(u"fgfg"_s);
    QAction* backTwin = menu->addAction(u"Volta"_s);
    backTwin->setObjectName(u"dfg"_s);
    connect(startButton, &QPushButton::clicked, this, [this] { start(); });
    connect(startTwin, &QAction::triggered, this, [this] { start(); });
    connect(backButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(backTwin, &QAction::triggered, this, &QDialog::reject);
    setupFields(this);
    resize(420, 220);
    centreScreen(this);
}

bool AUTO::start() {
    count_->clear();
    output::BackupRun run;
    try {
        run = output::runBackup(session::installation(), Store::current().settings(), day_,
                                [this](int count, const QString&) {
                                    // The count runs while the copy goes on.
                                    count_->setText(QString::number(count));
                                    count_->repaint();
                                });
    } catch (const output::BackupError& e) {
        showError(this, e.text());
        return false;
    }
    // What the office keeps in the day's folder besides the backup is named, not removed.
    const QString note = output::leftAloneNote(run);
    notice(this, note.isEmpty() ? doneMessage() : doneMessage() + u"\r\n\r\n"_s + note);
    accept();
    return true;
}

} // namespace rtx::ui
