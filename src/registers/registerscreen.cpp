#include "registers/registerscreen.h"

#include "registers/core/docnumbers.h"
#include "registers/lists.h"
#include "session/artwork.h"
#include "session/kit/kit.h"
#include "session/session.h"
#include "store/formats.h"
#include "store/store.h"

#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace rtx::ui {

namespace {

const QString kTrue = QStringLiteral("True");
const QString kFalse = QStringLiteral("False");
const QString kDigits14 = QStringLiteral("##############");
const QString kCpfMask = QStringLiteral("#########-##");
const QString kCnpjMask = QStringLiteral("########/####-##");

bool isLeaving(const QFocusEvent* event) {
    // A message box or a list's popup taking the focus for a moment is no leaving.
    return event->reason() != Qt::ActiveWindowFocusReason &&
           event->reason() != Qt::PopupFocusReason;
}

// The width of a caption without its dots, for the column of labels: the dots only fill
// the label up to the field, as on paper forms.
int captionWidth(const QFontMetrics& metrics, QString caption) {
    while (caption.endsWith(u'.') || caption.endsWith(u' '))
        caption.chop(1);
    return metrics.horizontalAdvance(caption + QStringLiteral(".."));
}

} // namespace

// --- Field definitions ----------------------------------------------------------------------

RegisterField RegisterField::text(const QString& name, const QString& caption, Place place) {
    RegisterField f;
    f.name = name;
    f.caption = caption;
    f.place = place;
    return f;
}

RegisterField RegisterField::masked(const QString& name, const QString& caption,
                                    const QString& mask, Place place) {
    RegisterField f = text(name, caption, place);
    f.kind = Masked;
    f.mask = mask;
    return f;
}

RegisterField RegisterField::combo(const QString& name, const QString& caption,
                                   const QStringList& items, bool completion, Place place) {
    RegisterField f = text(name, caption, place);
    f.kind = Combo;
    f.items = items;
    f.completion = completion;
    return f;
}

RegisterField RegisterField::memo(const QString& name, const QString& caption, Place place) {
    RegisterField f = text(name, caption, place);
    f.kind = Memo;
    return f;
}

RegisterField RegisterField::hidden(const QString& name) {
    RegisterField f;
    f.name = name;
    f.kind = Hidden;
    f.place.tab = -1;
    return f;
}

RegisterField RegisterField::status(Place place) {
    RegisterField f = combo(QStringLiteral("C1"), QStringLiteral("STATUS...."),
                            {QStringLiteral("ATIVO"), QStringLiteral("INATIVO")}, false, place);
    f.keepOnNew = true;
    return f;
}

RegisterField RegisterField::since(const QString& caption, Place place) {
    RegisterField f = masked(QStringLiteral("C2"), caption, MaskEdBox::dateMask(), place);
    f.today = true;
    return f;
}

QList<RegisterButton> RegisterButton::common() {
    const QString nearby = QStringLiteral("Busca pelo campo ao lado.");
    return {{QStringLiteral("Command19"),
             QStringLiteral("< Verifica"),
             {},
             LookUp,
             QStringLiteral("c3"),
             {}},
            {QStringLiteral("Command6"), {}, nearby, Find, QStringLiteral("C8"), {}},
            {QStringLiteral("Command7"), {}, nearby, Find, QStringLiteral("C9"), {}},
            {QStringLiteral("Command8"), {}, nearby, Find, QStringLiteral("C10"), {}}};
}

// --- Building the screen --------------------------------------------------------------------

RegisterScreen::RegisterScreen(const RegisterConfig& config, QWidget* parent)
    : QDialog(parent), config_(config) {
    setObjectName(config.screen);
    setWindowTitle(config.title);
    build();
    setupFields(this);
    keepOnEscape(this);
    centreScreen(this);
    start();
    if (QWidget* c3 = field(QStringLiteral("c3"))) c3->setFocus(Qt::OtherFocusReason);
}

QString RegisterScreen::cnpjPage() {
    return QStringLiteral(
        "https://www.receita.fazenda.gov.br/PessoaJuridica/CNPJ/cnpjreva/Cnpjreva_Solicitacao.asp");
}

QString RegisterScreen::cpfPage() {
    return QStringLiteral(
        "https://www.receita.fazenda.gov.br/Aplicacoes/ATCTA/cpf/ConsultaPublica.asp");
}

QStringList RegisterScreen::states() {
    return {QStringLiteral("AC"), QStringLiteral("AL"), QStringLiteral("AM"), QStringLiteral("AP"),
            QStringLiteral("BA"), QStringLiteral("CE"), QStringLiteral("DF"), QStringLiteral("ES"),
            QStringLiteral("EX"), QStringLiteral("GO"), QStringLiteral("MA"), QStringLiteral("MG"),
            QStringLiteral("MS"), QStringLiteral("MT"), QStringLiteral("PA"), QStringLiteral("PB"),
            QStringLiteral("PE"), QStringLiteral("PI"), QStringLiteral("PR"), QStringLiteral("RJ"),
            QStringLiteral("RN"), QStringLiteral("RR"), QStringLiteral("RS"), QStringLiteral("SC"),
            QStringLiteral("SE"), QStringLiteral("SP"), QStringLiteral("TO")};
}

QToolButton* RegisterScreen::addAction(QHBoxLayout* bar, QMenuBar* menu, const QString& name,
                                       const QString& menuName, const QString& caption,
                                       const QString& glyph, const QColor& colour) {
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(caption);
    button->setToolTip(caption);
    button->setIcon(artwork::tile(glyph, colour, 32));
    button->setIconSize(QSize(32, 32));
    button->setToolButtonStyle(caption.isEmpty() ? Qt::ToolButtonIconOnly
                                                 : Qt::ToolButtonTextUnderIcon);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::ClickFocus);
    button->setMinimumWidth(64);
    bar->addWidget(button);
    if (menu && !menuName.isEmpty()) {
        QAction* entry = menu->addAction(caption);
        entry->setObjectName(menuName);
        callsButton(entry, button);
    }
    return button;
}

void RegisterScreen::build() {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(8, 4, 8, 8);
    outer->setSpacing(6);

    // Menu and the strip of buttons with the same actions.
    auto* menu = new QMenuBar(this);
    menu->setObjectName(QStringLiteral("menu"));
    outer->setMenuBar(menu);
    auto* bar = new QHBoxLayout;
    bar->setSpacing(2);
    const QColor blue(0x1F618D), green(0x1E8449), red(0x922B21), grey(0x5D6D7E);
    QToolButton* Command16 = addAction(bar, menu, QStringLiteral("Command16"), QStringLiteral("sd"),
                                       QStringLiteral("Grava"), QStringLiteral("\u2714"), green);
    QToolButton* Command4 =
        addAction(bar, menu, QStringLiteral("Command4"), QStringLiteral("sdsss"),
                  QStringLiteral("Novo"), QStringLiteral("\u271A"), blue);
    QToolButton* Command3 = addAction(bar, menu, QStringLiteral("Command3"), QStringLiteral("gff"),
                                      QStringLiteral("Exclui"), QStringLiteral("\u2716"), red);
    QToolButton* Command1 = addAction(bar, menu, QStringLiteral("Command1"), QStringLiteral("ferr"),
                                      QStringLiteral("Relatórios"), QStringLiteral("\u2630"), grey);
    QToolButton* Command5 =
        addAction(bar, menu, QStringLiteral("Command5"), QStringLiteral("fdfff"),
                  QStringLiteral("Volta"), QStringLiteral("\u21A9"), grey);
    bar->addSpacing(16);
    QToolButton* Command11 = addAction(bar, nullptr, QStringLiteral("Command11"), {},
                                       QStringLiteral("Primeiro"), QStringLiteral("\u00AB"), blue);
    QToolButton* Command13 = addAction(bar, nullptr, QStringLiteral("Command13"), {},
                                       QStringLiteral("Anterior"), QStringLiteral("\u25C0"), blue);
    QToolButton* Command14 = addAction(bar, nullptr, QStringLiteral("Command14"), {},
                                       QStringLiteral("Próximo"), QStringLiteral("\u25B6"), blue);
    QToolButton* Command12 = addAction(bar, nullptr, QStringLiteral("Command12"), {},
                                       QStringLiteral("Último"), QStringLiteral("\u00BB"), blue);
    bar->addStretch();
    auto* heading = new QLabel(config_.heading, this);
    heading->setObjectName(QStringLiteral("Label1"));
    QFont big = heading->font();
    big.setPointSizeF(big.pointSizeF() * 1.8);
    big.setBold(true);
    heading->setFont(big);
    heading->setStyleSheet(QStringLiteral("color: #1F618D;"));
    bar->addWidget(heading);
    outer->addLayout(bar);

    connect(Command16, &QToolButton::clicked, this, [this] { save(); });
    connect(Command4, &QToolButton::clicked, this, [this] { novo(); });
    connect(Command3, &QToolButton::clicked, this, [this] { remove(); });
    connect(Command1, &QToolButton::clicked, this, [this] { report(); });
    connect(Command5, &QToolButton::clicked, this, [this] { close(); });
    connect(Command11, &QToolButton::clicked, this, [this] { first(); });
    connect(Command13, &QToolButton::clicked, this, [this] { previous(); });
    connect(Command14, &QToolButton::clicked, this, [this] { next(); });
    connect(Command12, &QToolButton::clicked, this, [this] { last(); });
    menu->actions().at(0)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    menu->actions().at(1)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));

    // The tabs: the pages of fields, then the search.
    SSTab1 = new SSTab(this);
    SSTab1->setObjectName(QStringLiteral("SSTab1"));
    SSTab1->setFocusPolicy(Qt::NoFocus);
    outer->addWidget(SSTab1, 1);
    QList<QWidget*> pages;
    QList<QGridLayout*> grids;
    for (const QString& caption : config_.tabs) {
        auto* page = new QWidget;
        auto* grid = new QGridLayout(page);
        grid->setHorizontalSpacing(6);
        grid->setVerticalSpacing(5);
        SSTab1->addTab(page, caption);
        pages << page;
        grids << grid;
    }
    const int searchTab = int(pages.size()) - 1;

    // Labels of one column group share a width, wide enough for the longest caption.
    QMap<QPair<int, int>, int> labelWidths;
    const QFontMetrics metrics(font());
    for (const RegisterField& f : config_.fields) {
        if (f.place.tab < 0 || f.caption.isEmpty()) continue;
        int& w = labelWidths[{f.place.tab, f.place.col}];
        w = qMax(w, captionWidth(metrics, f.caption));
    }

    // Each column group is a label and a cell; a cell holds the field and the buttons that
    // stand beside it.
    auto cell = [&](QLayoutItem* item, const Place& p) {
        grids.at(p.tab)->addItem(item, p.row, p.col * 2 + 1, 1, p.span * 2 - 1);
    };

    QHash<QString, QList<const RegisterButton*>> beside;
    for (const RegisterButton& b : config_.buttons)
        if (!b.beside.isEmpty()) beside[b.beside.toUpper()] << &b;

    for (const RegisterField& f : config_.fields) {
        QWidget* page = f.place.tab >= 0 ? pages.at(f.place.tab) : this;
        QWidget* w = makeField(f, page);
        fields_.insert(f.name.toUpper(), w);
        if (f.place.tab < 0) {
            w->hide();
            continue;
        }
        QGridLayout* grid = grids.at(f.place.tab);
        auto* label = new QLabel(f.caption, page);
        label->setObjectName(QStringLiteral("lbl") + f.name);
        label->setFixedWidth(labelWidths.value({f.place.tab, f.place.col}));
        label->setBuddy(w);
        grid->addWidget(label, f.place.row, f.place.col * 2,
                        f.kind == RegisterField::Memo ? Qt::AlignTop : Qt::Alignment());
        auto* box = new QHBoxLayout;
        box->setSpacing(3);
        box->addWidget(w, 1);
        for (const RegisterButton* b : beside.value(f.name.toUpper()))
            box->addWidget(makeButton(*b, page));
        cell(box, f.place);
        if (f.kind == RegisterField::Memo) grid->setRowStretch(f.place.row, 1);
    }
    for (const RegisterButton& b : config_.buttons) {
        if (!b.beside.isEmpty()) continue;
        QWidget* button = makeButton(b, pages.at(b.place.tab));
        grids.at(b.place.tab)->addWidget(button, b.place.row, b.place.col * 2 + 1, Qt::AlignRight);
    }

    if (config_.options) {
        QWidget* page = pages.at(config_.optionsPlace.tab);
        auto* group = new QGroupBox(QStringLiteral("TIPO...."), page);
        group->setObjectName(QStringLiteral("Frame1"));
        auto* row = new QHBoxLayout(group);
        row->setContentsMargins(6, 0, 6, 2);
        C32 = new QRadioButton(QStringLiteral("Pessoa Física"), group);
        C32->setObjectName(QStringLiteral("C32"));
        C33 = new QRadioButton(QStringLiteral("Pessoa Jurídica"), group);
        C33->setObjectName(QStringLiteral("C33"));
        row->addWidget(C32);
        row->addWidget(C33);
        C32->setChecked(true);
        const Place& p = config_.optionsPlace;
        grids.at(p.tab)->addWidget(group, p.row, p.col * 2, 1, p.span * 2);
    }

    // Rows and columns: fields stretch, labels and buttons keep their size, and the rows
    // stay at the top of the page.
    for (int t = 0; t < searchTab; ++t) {
        QGridLayout* grid = grids.at(t);
        for (int g = 0; g < 3; ++g)
            grid->setColumnStretch(g * 2 + 1, 1);
        bool memo = false;
        for (int r = 0; r < grid->rowCount(); ++r)
            memo = memo || grid->rowStretch(r) > 0;
        if (!memo) grid->setRowStretch(grid->rowCount(), 1);
    }

    // The search tab: the boxes over the grid.
    {
        QGridLayout* grid = grids.at(searchTab);
        QWidget* page = pages.at(searchTab);
        int r = 0;
        for (const RegisterSearch& s : config_.searches) {
            auto* label = new QLabel(s.caption, page);
            label->setObjectName(QStringLiteral("lbl") + s.name);
            auto* box = new QLineEdit(page);
            box->setObjectName(s.name);
            label->setBuddy(box);
            grid->addWidget(label, r, 0);
            grid->addWidget(box, r, 1);
            searchBoxes_ << box;
            connect(box, &QLineEdit::textChanged, this,
                    [this, s](const QString& typed) { search(s, typed); });
            ++r;
        }
        grid->setColumnStretch(1, 1);
        DBGrid1 = new DBGrid(page);
        DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
        DBGrid1->setColumns(config_.gridColumns);
        grid->addWidget(DBGrid1, r, 0, 1, 2);
        grid->setRowStretch(r, 1);
        connect(DBGrid1, &DBGrid::recordActivated, this, [this](int row) { openFromGrid(row); });
    }

    // The foot: the code the next save writes and the number of rows.
    auto* foot = new QHBoxLayout;
    auto* codeCaption = new QLabel(QStringLiteral("CÓDIGO:"), this);
    codeCaption->setObjectName(QStringLiteral("Label2"));
    A1 = new QLabel(this);
    A1->setObjectName(QStringLiteral("A1"));
    QFont bold = A1->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    A1->setFont(bold);
    A1->setMinimumWidth(80);
    auto* countCaption = new QLabel(QStringLiteral("REGISTROS:"), this);
    countCaption->setObjectName(QStringLiteral("Label3"));
    nr = new QLabel(this);
    nr->setObjectName(QStringLiteral("nr"));
    cd = new QLineEdit(this);
    cd->setObjectName(QStringLiteral("cd"));
    cd->hide();
    foot->addWidget(codeCaption);
    foot->addWidget(A1);
    foot->addStretch();
    foot->addWidget(countCaption);
    foot->addWidget(nr);
    outer->addLayout(foot);

    // Tab order as the operators know it; what the order does not name follows after.
    QWidget* previousWidget = nullptr;
    for (const QString& name : config_.tabOrder) {
        QWidget* w = findChild<QWidget*>(name);
        if (!w) continue;
        if (previousWidget) setTabOrder(previousWidget, w);
        previousWidget = w;
    }
    for (const RegisterField& f : config_.fields) {
        QWidget* w = field(f.name);
        if (f.place.tab < 0 || config_.tabOrder.contains(f.name)) continue;
        if (previousWidget) setTabOrder(previousWidget, w);
        previousWidget = w;
    }
    if (config_.options && previousWidget) {
        setTabOrder(previousWidget, C32);
        setTabOrder(C32, C33);
    }

    resize(960, 640);
}

QWidget* RegisterScreen::makeField(const RegisterField& f, QWidget* page) {
    QWidget* w = nullptr;
    switch (f.kind) {
    case RegisterField::Text:
    case RegisterField::Hidden: {
        auto* edit = new QLineEdit(page);
        if (f.maxLength > 0) edit->setMaxLength(f.maxLength);
        w = edit;
        break;
    }
    case RegisterField::Masked: {
        auto* masked = new MaskEdBox(f.mask, page);
        // Wide enough for the whole mask (the tax number for a CNPJ with its separators).
        QString sample = f.mask.size() >= 14 ? QStringLiteral("00000000/0000-00") : f.mask;
        sample.replace(u'#', u'0');
        if (!f.mask.isEmpty() && !masked->isMoney())
            masked->setMinimumWidth(masked->fontMetrics().horizontalAdvance(sample) + 16);
        w = masked;
        break;
    }
    case RegisterField::Combo: {
        auto* combo = new QComboBox(page);
        combo->setEditable(true);
        combo->setInsertPolicy(QComboBox::NoInsert);
        combo->setCompleter(nullptr);
        combo->addItems(f.items);
        combo->setMaxVisibleItems(15);
        // Only the status starts on its first item; the other lists start empty.
        if (!f.keepOnNew) combo->setCurrentIndex(-1);
        if (!f.completion) {
            // Enter and the focus colour, but no completion from the list.
            combo->setProperty("rtxSemKit", true);
            enterAsTab(combo);
            focusColours(combo);
        }
        w = combo;
        break;
    }
    case RegisterField::Memo: {
        auto* memo = new QPlainTextEdit(page);
        memo->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        memo->setTabChangesFocus(true);
        memo->setMinimumHeight(70);
        w = memo;
        break;
    }
    }
    w->setObjectName(f.name);
    if (f.red || f.bold) {
        QPalette palette = w->palette();
        if (f.red) palette.setColor(QPalette::Text, QColor(0xC0, 0, 0));
        w->setPalette(palette);
        QFont font = w->font();
        font.setBold(f.bold);
        w->setFont(font);
    }
    w->installEventFilter(this);
    return w;
}

QAbstractButton* RegisterScreen::makeButton(const RegisterButton& b, QWidget* page) {
    QAbstractButton* button = nullptr;
    if (b.caption.isEmpty()) {
        auto* picture = new QToolButton(page);
        const QString glyph = b.action == RegisterButton::Find        ? QStringLiteral("\u260E")
                              : b.action == RegisterButton::AddRegion ? QStringLiteral("+")
                              : b.tooltip.isEmpty()                   ? QStringLiteral("@")
                                                                      : QStringLiteral("\u2302");
        picture->setIcon(artwork::tile(glyph, QColor(0x1F618D), 20));
        picture->setIconSize(QSize(20, 20));
        picture->setAutoRaise(true);
        button = picture;
    } else {
        // A push button: Enter on it clicks it, for those who reach it by the keyboard.
        button = new QPushButton(b.caption, page);
    }
    button->setObjectName(b.name);
    button->setToolTip(b.tooltip);
    button->setFocusPolicy(b.action == RegisterButton::NextTab ? Qt::StrongFocus : Qt::ClickFocus);
    if (b.action != RegisterButton::Inert)
        connect(button, &QAbstractButton::clicked, this, [this, b] { buttonAction(b); });
    return button;
}

// --- Fields ---------------------------------------------------------------------------------

QWidget* RegisterScreen::field(const QString& name) const {
    return fields_.value(name.toUpper());
}

MaskEdBox* RegisterScreen::masked(const QString& name) const {
    return qobject_cast<MaskEdBox*>(field(name));
}

QString RegisterScreen::fieldText(const QString& name) const {
    QWidget* w = field(name);
    if (auto* m = qobject_cast<MaskEdBox*>(w)) return m->text();
    if (auto* e = qobject_cast<QLineEdit*>(w)) return e->text();
    if (auto* c = qobject_cast<QComboBox*>(w)) return c->currentText();
    if (auto* p = qobject_cast<QPlainTextEdit*>(w)) return p->toPlainText();
    return {};
}

void RegisterScreen::setFieldText(QWidget* w, const QString& text) {
    if (auto* m = qobject_cast<MaskEdBox*>(w))
        m->setText(text);
    else if (auto* e = qobject_cast<QLineEdit*>(w))
        e->setText(text);
    else if (auto* c = qobject_cast<QComboBox*>(w))
        c->setEditText(text);
    else if (auto* p = qobject_cast<QPlainTextEdit*>(w))
        p->setPlainText(text);
}

void RegisterScreen::clearField(QWidget* w) {
    if (auto* m = qobject_cast<MaskEdBox*>(w))
        m->clear();
    else
        setFieldText(w, QString());
}

// The tax number field shows the digits alone while it is typed in.
void RegisterScreen::resetC3() {
    MaskEdBox* c3 = masked(QStringLiteral("c3"));
    if (!c3) return;
    c3->setPromptInclude(false);
    c3->setMask(kDigits14);
    c3->clear();
    c3->setPromptInclude(true);
}

void RegisterScreen::enterC3() {
    MaskEdBox* c3 = masked(QStringLiteral("c3"));
    const QString digits = c3->digits();
    c3->setMask(kDigits14);
    c3->setText(digits);
    c3->setCursorPosition(0);
    c3->selectAll();
    c3->setPromptInclude(false);
    clearHourglass();
}

// Eleven digits are a CPF, fourteen a CNPJ; a wrong length or wrong check digits empty the
// field without a word. A right number already on file brings that record to the screen.
void RegisterScreen::leaveC3() {
    MaskEdBox* c3 = masked(QStringLiteral("c3"));
    const QString digits = c3->digits();
    const auto wrong = [c3] {
        c3->setMask(kDigits14);
        c3->setPromptInclude(false);
        c3->clear();
        c3->setPromptInclude(true);
    };
    if (digits.size() == 11) {
        c3->setMask(kCpfMask);
        if (cpfCheck(cpfForm(digits)) == kFalse) return wrong();
    } else if (digits.size() == 14) {
        c3->setMask(kCnpjMask);
        if (cnpjCheck(cnpjForm(digits)) == kFalse) return wrong();
    } else {
        c3->clear();
        return;
    }
    // The number of the record on the screen finds that same record: nothing to do, and
    // nothing typed in the other fields is lost.
    QString code;
    guarded(this, [&] { code = firstWith(QStringLiteral("C3"), digits); });
    if (!code.isEmpty() && code != ownCode_) loadFound(code);
}

void RegisterScreen::leaveField(QWidget* w) {
    const QString name = w->objectName();
    if (name == QStringLiteral("c3")) return leaveC3();
    for (const RegisterField& f : config_.fields) {
        if (f.name != name) continue;
        if (f.stripQuotes) {
            auto* edit = qobject_cast<QLineEdit*>(w);
            if (edit && edit->text().contains(u'\'')) edit->setText(edit->text().remove(u'\''));
        }
        if (f.kind == RegisterField::Masked && f.mask == MaskEdBox::dateMask()) {
            auto* m = static_cast<MaskEdBox*>(w);
            if (!m->isComplete() || !parseDate(m->shownText())) {
                if (f.today)
                    m->setText(formatDate(QDate::currentDate()));
                else
                    m->clear();
            }
        }
        return;
    }
}

// What leaving each field would do, for a save reached without leaving the field (the
// menu or its shortcut): dates, names without quotes, money never empty.
void RegisterScreen::settleFields() {
    for (const RegisterField& f : config_.fields) {
        QWidget* w = field(f.name);
        if (f.name == QStringLiteral("c3")) continue;
        if (f.stripQuotes || f.mask == MaskEdBox::dateMask()) leaveField(w);
        if (auto* m = qobject_cast<MaskEdBox*>(w); m && m->isMoney())
            m->setText(formatMoney(parseMoney(m->shownText()).value_or(0)));
    }
}

bool RegisterScreen::eventFilter(QObject* watched, QEvent* event) {
    auto* w = qobject_cast<QWidget*>(watched);
    if (w && fields_.value(w->objectName().toUpper()) == w) {
        if (event->type() == QEvent::FocusIn && w->objectName() == QStringLiteral("c3") &&
            isLeaving(static_cast<QFocusEvent*>(event)))
            enterC3();
        else if (event->type() == QEvent::FocusOut && isLeaving(static_cast<QFocusEvent*>(event)))
            leaveField(w);
    }
    return QDialog::eventFilter(watched, event);
}

// --- Start, new record, load ----------------------------------------------------------------

void RegisterScreen::start() {
    for (const RegisterField& f : config_.fields) {
        if (f.today) setFieldText(field(f.name), formatDate(QDate::currentDate()));
        if (auto* m = masked(f.name); m && m->isMoney()) m->clear();
    }
    guarded(this, [&] {
        bindGrid({}, {}, {});
        fillLists();
        showNextCode();
    });
}

void RegisterScreen::fillLists() {
    for (const auto& [name, sql] : config_.lists) {
        auto* combo = qobject_cast<QComboBox*>(field(name));
        if (!combo) continue;
        QStringList items;
        for (Recordset rs = Store::current().open(sql); !rs.eof(); rs.moveNext())
            items << rs.value(0).toString();
        const QString typed = combo->currentText();
        combo->clear();
        combo->addItems(items);
        combo->setEditText(typed);
    }
}

void RegisterScreen::showNextCode() {
    Store& store = Store::current();
    A1->setText(store.peekCode(config_.table));
    nr->setText(QString::number(store.count(config_.table)));
}

void RegisterScreen::novo() {
    ownCode_.clear();
    cd->clear();
    A1->clear();
    for (QLineEdit* box : searchBoxes_) {
        const QSignalBlocker quiet(box);
        box->clear();
    }
    for (const RegisterField& f : config_.fields) {
        if (f.keepOnNew) continue;
        QWidget* w = field(f.name);
        if (f.today)
            setFieldText(w, formatDate(QDate::currentDate()));
        else
            clearField(w);
    }
    resetC3();
    if (C32) C32->setChecked(true);
    guarded(this, [&] {
        bindGrid({}, {}, {});
        showNextCode();
    });
    if (QWidget* c3 = field(QStringLiteral("c3"))) {
        SSTab1->setTab(0);
        c3->setFocus(Qt::OtherFocusReason);
    }
}

void RegisterScreen::load(const QString& code) {
    guarded(this, [&] {
        Recordset rs = Store::current().open(
            QStringLiteral("SELECT * FROM %1 WHERE CODIGO = ?").arg(config_.table), {code});
        if (rs.eof()) return;
        A1->setText(rs.text(QStringLiteral("CODIGO")));
        ownCode_ = A1->text();
        for (int i = 1; i <= 31; ++i) {
            const QString column = QStringLiteral("C%1").arg(i);
            QWidget* w = field(column);
            if (!w) continue;
            const QString value = rs.text(column);
            if (column == QStringLiteral("C3")) {
                // The mask that suits the number kept, so that no digit is cut.
                auto* c3 = static_cast<MaskEdBox*>(w);
                const QString digits = value;
                c3->setPromptInclude(false);
                c3->setMask(digits.size() == 11   ? kCpfMask
                            : digits.size() == 14 ? kCnpjMask
                                                  : kDigits14);
                c3->setText(value);
                c3->setPromptInclude(true);
                continue;
            }
            setFieldText(w, value);
        }
        if (C32 && rs.text(QStringLiteral("C32")) == kTrue) C32->setChecked(true);
        if (C33 && rs.text(QStringLiteral("C33")) == kTrue) C33->setChecked(true);
        if (QWidget* c34 = field(QStringLiteral("C34")))
            setFieldText(c34, rs.text(QStringLiteral("C34")));
    });
}

void RegisterScreen::loadFound(const QString& code) {
    cd->setText(code);
    load(code);
}

QString RegisterScreen::foundCode() const {
    return cd->text();
}

QString RegisterScreen::shownCode() const {
    return A1->text();
}

// --- Save and delete ------------------------------------------------------------------------

void RegisterScreen::save() {
    // A field still being typed in is left first, as a click on the button would.
    if (QWidget* focused = focusWidget();
        focused && fields_.value(focused->objectName().toUpper()) == focused)
        leaveField(focused);
    settleFields();
    for (const auto& [name, label] : config_.required) {
        if (fieldText(name).trimmed().isEmpty()) {
            notice(this, QStringLiteral("O campo [%1], não pode ficar em branco.").arg(label));
            if (QWidget* w = field(name)) {
                SSTab1->setTab(qMax(0, SSTab1->indexOf(w->parentWidget())));
                w->setFocus(Qt::OtherFocusReason);
            }
            return;
        }
    }
    QString code;
    const bool saved = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        code = ownCode_.isEmpty() ? store.nextCode(config_.table) : ownCode_;
        Recordset rs = store.open(
            QStringLiteral("SELECT * FROM %1 WHERE CODIGO = ?").arg(config_.table), {code});
        if (rs.eof()) {
            rs.addNew();
            rs.setValue(QStringLiteral("CODIGO"), code);
        } else {
            rs.edit();
        }
        const TableDef& table = rtx::table(config_.table);
        for (const QString& column : config_.written) {
            if (config_.constants.contains(column)) {
                rs.setValue(column, config_.constants.value(column));
            } else if (column == QStringLiteral("C32") && C32) {
                rs.setValue(column, C32->isChecked() ? kTrue : kFalse);
            } else if (column == QStringLiteral("C33") && C33) {
                rs.setValue(column, C33->isChecked() ? kTrue : kFalse);
            } else if (column == QStringLiteral("EMPE")) {
                rs.setValue(column, userName());
            } else if (column == QStringLiteral("C3")) {
                rs.setValue(column, masked(QStringLiteral("c3"))->digits());
            } else if (field(column)) {
                const QString value = fieldText(column);
                const Column* def = table.column(column);
                if (def && def->type == ColType::Date) {
                    // An empty date keeps the date on file.
                    if (!value.isEmpty()) rs.setText(column, value);
                } else if (def && def->type == ColType::Money) {
                    rs.setText(column, value);
                } else {
                    rs.setValue(column, value);
                }
            }
        }
        rs.update();
        unit.commit();
    });
    if (!saved) return;
    ownCode_ = code;
    A1->setText(code);
    notice(this, QStringLiteral("Operação realizada com sucesso."));
}

void RegisterScreen::remove() {
    if (cd->text().isEmpty()) {
        notice(this, QStringLiteral("Primeiro faça a busca do cliente."));
        return;
    }
    if (!ask(this, QStringLiteral("Confirma exclusão?"))) return;
    const bool removed = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        store.execute(QStringLiteral("DELETE FROM %1 WHERE CODIGO = ?").arg(config_.table),
                      {cd->text()});
        unit.commit();
    });
    if (removed) novo();
}

// --- Navigation and finding -----------------------------------------------------------------

void RegisterScreen::first() {
    QString code;
    if (!guarded(this, [&] { code = Store::current().firstCode(config_.table); })) return;
    if (!code.isEmpty()) cd->setText(code);
    load(cd->text());
}

void RegisterScreen::last() {
    QString code;
    if (!guarded(this, [&] { code = Store::current().lastCode(config_.table); })) return;
    if (!code.isEmpty()) cd->setText(code);
    load(cd->text());
}

void RegisterScreen::previous() {
    if (cd->text().isEmpty()) return;
    QString code;
    if (!guarded(this, [&] { code = Store::current().previousCode(config_.table, cd->text()); }))
        return;
    if (code.isEmpty()) return; // the first row already
    loadFound(code);
}

void RegisterScreen::next() {
    if (cd->text().isEmpty()) return;
    QString code;
    bool gone = false;
    if (!guarded(this, [&] {
            Store& store = Store::current();
            gone =
                store
                    .open(
                        QStringLiteral("SELECT CODIGO FROM %1 WHERE CODIGO = ?").arg(config_.table),
                        {cd->text()})
                    .eof();
            if (!gone) code = store.nextCodeAfter(config_.table, cd->text());
        }))
        return;
    if (gone) return first();
    if (code.isEmpty()) return; // the last row already
    loadFound(code);
}

QString RegisterScreen::firstWith(const QString& column, const QString& text) const {
    Recordset rs =
        Store::current().open(QStringLiteral("SELECT CODIGO FROM %1 WHERE %2 = ? ORDER BY CODIGO")
                                  .arg(config_.table, column),
                              {text});
    return rs.eof() ? QString() : rs.text(QStringLiteral("CODIGO"));
}

void RegisterScreen::findBy(const QString& column, const QString& text) {
    if (text.isEmpty()) return;
    QString code;
    guarded(this, [&] { code = firstWith(column, text); });
    if (!code.isEmpty()) loadFound(code);
}

void RegisterScreen::buttonAction(const RegisterButton& b) {
    switch (b.action) {
    case RegisterButton::Find:
        findBy(b.beside.toUpper(), fieldText(b.beside));
        break;
    case RegisterButton::LookUp:
        lookUp();
        break;
    case RegisterButton::AddRegion: {
        cadgrupo list(this);
        list.exec();
        break;
    }
    case RegisterButton::NextTab:
        SSTab1->setTab(1);
        if (QWidget* w = field(QStringLiteral("C23"))) w->setFocus(Qt::OtherFocusReason);
        break;
    case RegisterButton::Inert:
        break;
    }
}

void RegisterScreen::lookUp() {
    if (!ask(this, QStringLiteral("Você está conectado a internet?"))) return;
    if (config_.lookUp == RegisterConfig::LookUp::CpfPage) {
        openUrl(QUrl(cpfPage()));
        return;
    }
    if (C33 && C33->isChecked()) openUrl(QUrl(cnpjPage()));
    if (C32 && C32->isChecked()) openUrl(QUrl(cpfPage()));
}

void RegisterScreen::report() {
    if (config_.report == RegisterConfig::Report::Disabled)
        notice(this, QStringLiteral("Desabilitado nesta versão."));
}

// --- Search tab -----------------------------------------------------------------------------

void RegisterScreen::bindGrid(const QString& column, const QString& orderBy, const QString& typed) {
    if (column.isEmpty()) {
        DBGrid1->setSource(QStringLiteral("SELECT * FROM %1 ORDER BY C5").arg(config_.table));
    } else {
        Store& store = Store::current();
        const QVariantList params = Store::prefixParams(typed);
        QString filter = Store::prefixClause(column);
        if (column != orderBy && store.engine() == Engine::SQLite) {
            // SQLite does not weigh how many rows a prefix matches: it reads them all by
            // the filter's index and sorts them, even when a prefix of one digit matches
            // half the table. When many match, walking the order's index and testing each
            // row fills a page sooner; the unary plus keeps the filter off its index.
            const qint64 many = 2000;
            const qint64 found =
                store
                    .scalar(QStringLiteral("SELECT COUNT(*) FROM (SELECT 1 FROM %1 WHERE %2 "
                                           "LIMIT %3) AS probe")
                                .arg(config_.table, filter)
                                .arg(many),
                            params)
                    .toLongLong();
            if (found >= many) filter = Store::prefixClause(QStringLiteral("+") + column);
        }
        DBGrid1->setSource(QStringLiteral("SELECT * FROM %1 WHERE %2 ORDER BY %3")
                               .arg(config_.table, filter, orderBy),
                           params);
    }
    DBGrid1->refresh();
}

void RegisterScreen::search(const RegisterSearch& box, const QString& typed) {
    guarded(this, [&] { bindGrid(box.column, box.orderBy, typed); });
}

void RegisterScreen::openFromGrid(int row) {
    const QString code = DBGrid1->text(row, QStringLiteral("CODIGO"));
    if (code.isEmpty()) return;
    loadFound(code);
    SSTab1->setTab(0);
}

} // namespace rtx::ui
