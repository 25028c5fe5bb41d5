#include "dispatch/atendecli.h"

#include "dispatch/core/searches.h"
#include "kit/kit.h"
#include "store/store.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

atendecli::atendecli(QWidget* parent) : QDialog(parent) {
    setObjectName(u"atendecli"_s);
    setWindowTitle(u"Busca cliente"_s);
    auto* box = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    nameSearch = new QLineEdit(this);
    nameSearch->setObjectName(u"X1"_s);
    line->addWidget(new QLabel(u"BUSCA PELO NOME:"_s, this));
    line->addWidget(nameSearch, 1);
    box->addLayout(line);
    grid = new DBGrid(this);
    grid->setObjectName(u"DBGrid1"_s);
    const QStringList columns = dispatch::clientColumns();
    grid->setColumns({{columns[0], u"Código"_s, 70}, {columns[1], u"Nome"_s, 330}});
    box->addWidget(grid, 1);
    auto* back = new QPushButton(u"Volta"_s, this);
    back->setObjectName(u"Command5"_s);
    back->setAutoDefault(false);
    box->addWidget(back, 0, Qt::AlignRight);
    resize(460, 420);

    setupFields(this);
    // In the name box Enter goes down to the list, where Enter chooses.
    setTabOrder(nameSearch, grid);
    setTabOrder(grid, back);
    connect(nameSearch, &QLineEdit::textChanged, this, &atendecli::search);
    connect(grid, &DBGrid::recordActivated, this, &atendecli::choose);
    connect(back, &QPushButton::clicked, this, &QDialog::reject);

    centreScreen(this);
    search(QString());
    nameSearch->setFocus();
}

std::optional<dispatch::ClientCard> atendecli::lookUp(QWidget* parent) {
    atendecli lookup(parent);
    lookup.exec();
    return lookup.chosen();
}

void atendecli::search(const QString& typed) {
    guarded(this, [&] {
        grid->setQuery(dispatch::clientsByName(Store::current(), typed));
        grid->refresh();
    });
}

void atendecli::choose(int row) {
    const QString code = grid->text(row, dispatch::client::code);
    guarded(this, [&] { chosen_ = dispatch::clientByCode(Store::current(), code); });
    if (chosen_) {
        if (const QString remarks = dispatch::remarksNotice(*chosen_); !remarks.isEmpty())
            notice(this, remarks);
    }
    // The lookup closes also when the client is gone: nothing is filled then.
    accept();
}

} // namespace rtx::ui
