#include "registers/lists.h"

#include "session/kit/kit.h"
#include "store/store.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace rtx::ui {

namespace {

// The region combos of the client screens that are open.
QList<QComboBox*> regionCombos() {
    QList<QComboBox*> combos;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QStringLiteral("cliente"))
            if (auto* combo = w->findChild<QComboBox*>(QStringLiteral("C34"))) combos << combo;
    return combos;
}

} // namespace

ListDialog::ListDialog(const ListConfig& config, QWidget* parent)
    : QDialog(parent), config_(config) {
    setObjectName(config.screen);
    setWindowTitle(config.title);

    auto* grid = new QGridLayout(this);
    auto* caption = new QLabel(config.caption, this);
    caption->setObjectName(QStringLiteral("Label1"));
    A1 = new QLineEdit(this);
    A1->setObjectName(QStringLiteral("A1"));
    A1->setMinimumWidth(260);
    caption->setBuddy(A1);
    // Enter in the name moves to the button, and Enter on the button saves.
    Command10 = new QPushButton(QStringLiteral("< Grava"), this);
    Command10->setObjectName(QStringLiteral("Command10"));
    Grid1 = new MSFlexGrid(this);
    Grid1->setObjectName(QStringLiteral("Grid1"));
    Grid1->setHeaders({QString()});
    Grid1->horizontalHeader()->setStretchLastSection(true);
    Grid1->setMinimumHeight(240);
    auto* hint = new QLabel(QStringLiteral("PARA  APAGAR DE UM DUPLO CLIQUE."), this);
    hint->setObjectName(QStringLiteral("Label2"));

    grid->addWidget(caption, 0, 0, 1, 2);
    grid->addWidget(A1, 1, 0);
    grid->addWidget(Command10, 1, 1);
    grid->addWidget(Grid1, 2, 0, 1, 2);
    grid->addWidget(hint, 3, 0, 1, 2);

    connect(Command10, &QPushButton::clicked, this, [this] { add(); });
    connect(Grid1, &MSFlexGrid::rowDoubleClicked, this, [this](int) { removeCurrent(); });

    setupFields(this);
    centreScreen(this);
    A1->setFocus(Qt::OtherFocusReason);

    guarded(this, [&] {
        fill();
        if (config_.regions == ListConfig::Regions::Append) {
            const QStringList all = names(config_.table);
            for (QComboBox* combo : regionCombos())
                combo->addItems(all);
        }
    });
}

QStringList ListDialog::names(const QString& table) {
    QStringList out;
    for (Recordset rs = Store::current().open(
             QStringLiteral("SELECT A1 FROM %1 GROUP BY A1 ORDER BY A1").arg(table));
         !rs.eof(); rs.moveNext())
        out << rs.text(QStringLiteral("A1"));
    return out;
}

void ListDialog::fill(bool changed) {
    const QStringList all = names(config_.table);
    Grid1->setRows(1);
    for (const QString& name : all)
        Grid1->addItem(name);
    stripeGrid(Grid1);
    // The list of regions hands a change to the client screen at once; opening it alone
    // leaves that screen's combo as it is.
    if (changed && config_.regions == ListConfig::Regions::Replace) {
        for (QComboBox* combo : regionCombos()) {
            const QString typed = combo->currentText();
            combo->clear();
            combo->addItems(all);
            combo->setEditText(typed);
        }
    }
}

void ListDialog::add() {
    const QString typed = A1->text().trimmed();
    if (typed.isEmpty()) return;
    guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        Recordset rs =
            store.open(QStringLiteral("SELECT * FROM %1 WHERE A1 = ?").arg(config_.table), {typed});
        if (rs.eof()) {
            rs.addNew();
            rs.setValue(QStringLiteral("A1"), typed.toUpper());
            rs.update();
        }
        unit.commit();
        fill(true);
    });
    A1->setFocus(Qt::OtherFocusReason);
}

void ListDialog::removeCurrent() {
    if (!ask(this, QStringLiteral("Confirma exclusão?"))) return;
    const QString name = Grid1->row() >= 1 ? Grid1->textMatrix(Grid1->row(), 0) : QString();
    guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        store.execute(QStringLiteral("DELETE FROM %1 WHERE A1 = ?").arg(config_.table), {name});
        unit.commit();
        fill(true);
    });
    A1->clear();
    A1->setFocus(Qt::OtherFocusReason);
}

cadgrupo::cadgrupo(QWidget* parent)
    : ListDialog({QStringLiteral("cadgrupo"), QStringLiteral("Cadastro de Grupos"),
                  QStringLiteral("NOME DO GRUPO"), QStringLiteral("grupos_clientes"),
                  ListConfig::Regions::Replace},
                 parent) {}

cadcontas::cadcontas(QWidget* parent)
    : ListDialog({QStringLiteral("cadcontas"), QStringLiteral("Cadastro de Grupo"),
                  QStringLiteral("NOME"), QStringLiteral("grupos_contas"),
                  ListConfig::Regions::Append},
                 parent) {}

cadtipo::cadtipo(QWidget* parent)
    : ListDialog({QStringLiteral("cadtipo"), QStringLiteral("Cadastro de Tipos "),
                  QStringLiteral("NOME"), QStringLiteral("tipos_financeiros"),
                  ListConfig::Regions::Append},
                 parent) {}

cadforma::cadforma(QWidget* parent)
    : ListDialog({QStringLiteral("cadforma"), QStringLiteral("Cadastro de Formas de Pagamento"),
                  QStringLiteral("NOME"), QStringLiteral("formas_pagamento"),
                  ListConfig::Regions::Append},
                 parent) {}

} // namespace rtx::ui
