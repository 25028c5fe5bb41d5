#include "registers/lists.h"

#include "kit/kit.h"
#include "registers/core/lists.h"
#include "store/store.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace rtx::ui {

namespace reg = rtx::registers;

ListOffers& ListOffers::instance() {
    static ListOffers offers;
    return offers;
}

void ListOffers::offer(const QString& table) {
    if (!pending_.contains(table)) pending_ << table;
    emit offered(table);
}

QStringList ListOffers::take() {
    return std::exchange(pending_, {});
}

ListDialog::ListDialog(const ListConfig& config, QWidget* parent)
    : QDialog(parent), config_(config) {
    setObjectName(config.screen);
    setWindowTitle(config.title);

    auto* grid = new QGridLayout(this);
    auto* caption = new QLabel(config.caption, this);
    caption->setObjectName(QStringLiteral("Label1"));
    nameBox = new QLineEdit(this);
    nameBox->setObjectName(QStringLiteral("A1"));
    nameBox->setMinimumWidth(260);
    caption->setBuddy(nameBox);
    // Enter in the name moves to the button, and Enter on the button saves.
    saveButton = new QPushButton(QStringLiteral("< Grava"), this);
    saveButton->setObjectName(QStringLiteral("Command10"));
    names = new MSFlexGrid(this);
    names->setObjectName(QStringLiteral("Grid1"));
    names->setHeaders({QString()});
    names->horizontalHeader()->setStretchLastSection(true);
    names->setMinimumHeight(240);
    auto* hint = new QLabel(QStringLiteral("PARA  APAGAR DE UM DUPLO CLIQUE."), this);
    hint->setObjectName(QStringLiteral("Label2"));

    grid->addWidget(caption, 0, 0, 1, 2);
    grid->addWidget(nameBox, 1, 0);
    grid->addWidget(saveButton, 1, 1);
    grid->addWidget(names, 2, 0, 1, 2);
    grid->addWidget(hint, 3, 0, 1, 2);

    connect(saveButton, &QPushButton::clicked, this, [this] { add(); });
    connect(names, &MSFlexGrid::rowDoubleClicked, this, [this](int) { removeCurrent(); });

    setupFields(this);
    centreScreen(this);
    nameBox->setFocus(Qt::OtherFocusReason);

    fill();
    refreshOn(this, {config_.table}, [this] { keepingRow(names, [this] { fill(); }); });
    if (config_.offeredToClients) ListOffers::instance().offer(config_.table);
}

void ListDialog::fill() {
    guarded(this, [&] {
        const QStringList all = reg::listNames(Store::current(), config_.table);
        names->setRows(1);
        for (const QString& name : all)
            names->addItem(name);
        stripeGrid(names);
    });
}

void ListDialog::add() {
    const QString typed = nameBox->text();
    if (typed.trimmed().isEmpty()) return;
    guarded(this, [&] { reg::addListName(Store::current(), config_.table, typed); });
    fill();
    nameBox->setFocus(Qt::OtherFocusReason);
}

void ListDialog::removeCurrent() {
    if (!ask(this, QStringLiteral("Confirma exclusão?"))) return;
    const QString name = names->row() >= 1 ? names->textMatrix(names->row(), 0) : QString();
    guarded(this, [&] { reg::removeListName(Store::current(), config_.table, name); });
    fill();
    nameBox->clear();
    nameBox->setFocus(Qt::OtherFocusReason);
}

cadgrupo::cadgrupo(QWidget* parent)
    : ListDialog({QStringLiteral("cadgrupo"), QStringLiteral("Cadastro de Grupos"),
                  QStringLiteral("NOME DO GRUPO"), reg::lists::regions, false},
                 parent) {}

cadcontas::cadcontas(QWidget* parent)
    : ListDialog({QStringLiteral("cadcontas"), QStringLiteral("Cadastro de Grupo"),
                  QStringLiteral("NOME"), reg::lists::accountGroups, true},
                 parent) {}

cadtipo::cadtipo(QWidget* parent)
    : ListDialog({QStringLiteral("cadtipo"), QStringLiteral("Cadastro de Tipos "),
                  QStringLiteral("NOME"), reg::lists::financialTypes, true},
                 parent) {}

cadforma::cadforma(QWidget* parent)
    : ListDialog({QStringLiteral("cadforma"), QStringLiteral("Cadastro de Formas de Pagamento"),
                  QStringLiteral("NOME"), reg::lists::paymentForms, true},
                 parent) {}

} // namespace rtx::ui
