#include "dispatch/atendimento.h"

#include "dispatch/atendecli.h"
#include "dispatch/core/posting.h"
#include "dispatch/searchgrid.h"
#include "dispatch/servi2.h"
#include "session/kit/kit.h"
#include "session/modules.h"
#include "session/session.h"
#include "store/formats.h"
#include "store/store.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTime>
#include <QToolButton>
#include <QVBoxLayout>
#include <optional>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

RTX_REGISTER_MODULE("Atendimento",
                    [](QWidget* parent) -> QDialog* { return new Atendimento(parent); });

namespace {

QPointer<Atendimento> g_open;
// A service picked while no dispatch screen was open: its description and value.
std::optional<std::pair<QString, QString>> g_pendingService;

const QString kDelivered = u"Entregue"_s;
const QString kPassword = u"MARIPOSA"_s;
const QString kDeliveredRefusal = u"Este atendimento já foi entregue e não pode ser alterado."_s;
const QString kDeliveredWarning =
    u"Aviso: Ao gravar o atendimento na posição Entregue a mesma não poderá ser mais alterada."_s;
const QString kChangeQuestion = u"Confirma alteração?"_s;

// The columns of the search grid of the second tab, in their order.
const QStringList kGridColumns{u"CODIGO"_s, u"a2"_s,  u"a6"_s,  u"ST"_s,
                               u"a21"_s,    u"a22"_s, u"a18"_s, u"a19"_s};

QString now() {
    return QTime::currentTime().toString(u"HH:mm"_s);
}

QString today() {
    return formatDate(QDate::currentDate());
}

// Adds items to a combo box without touching what its field shows.
void appendItems(QComboBox* combo, const QStringList& items) {
    const QString shown = combo->currentText();
    const QSignalBlocker block(combo);
    combo->addItems(items);
    if (combo->isEditable()) {
        combo->setCurrentIndex(combo->findText(shown, Qt::MatchExactly));
        combo->setEditText(shown);
    }
}

// A caption beside a field.
QLabel* caption(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return label;
}

QPushButton* button(const QString& name, const QString& text, QWidget* parent) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    return b;
}

// The pictures of the picture buttons, drawn here so that no font is needed for them.
enum class Picture { Text, Lens, Printer };

QIcon drawn(Picture picture) {
    QPixmap pixmap(20, 20);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0x1F, 0x3A, 0x5F), 2));
    if (picture == Picture::Lens) {
        p.drawEllipse(QRectF(3, 3, 10, 10));
        p.setPen(QPen(QColor(0x1F, 0x3A, 0x5F), 3, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(12, 12), QPointF(17, 17));
    } else if (picture == Picture::Printer) {
        p.setPen(QPen(QColor(0x1F, 0x3A, 0x5F), 1.5));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(5.5, 2.5, 9, 6));
        p.setBrush(QColor(0x7F, 0x8C, 0x8D));
        p.drawRoundedRect(QRectF(2.5, 7.5, 15, 7), 1.5, 1.5);
        p.setBrush(Qt::white);
        p.drawRect(QRectF(5.5, 12.5, 9, 5));
    }
    return QIcon(pixmap);
}

QToolButton* pictureButton(const QString& name, Picture picture, const QString& text,
                           const QString& tip, QWidget* parent) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    if (picture == Picture::Text) {
        b->setText(text);
    } else {
        b->setIcon(drawn(picture));
        b->setIconSize(QSize(20, 20));
    }
    b->setToolTip(tip);
    b->setMinimumWidth(30);
    // A click takes the focus, as on any button, so that the field left does its work first.
    b->setFocusPolicy(Qt::StrongFocus);
    return b;
}

// A typed list that completes nothing: the text stays as typed (the kit would complete it,
// and so would Qt's own completer). Focus colours and Enter as Tab are given after the kit.
void typedOnly(QComboBox* combo) {
    combo->setProperty("rtxSemKit", true);
    combo->setCompleter(nullptr);
}

} // namespace

Atendimento::Atendimento(QWidget* parent) : QDialog(parent) {
    setObjectName(u"Atendimento"_s);
    setWindowTitle(u"Atendimento"_s);
    g_open = this;

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(6, 6, 6, 6);
    buildMenu(box);

    SSTab1 = new SSTab(this);
    SSTab1->setObjectName(u"SSTab1"_s);
    auto* first = new QWidget;
    auto* second = new QWidget;
    SSTab1->addTab(first, u"01- Atendimento"_s);
    SSTab1->addTab(second, u"02- Pesquisa e Relatórios"_s);
    box->addWidget(SSTab1);
    buildFirstTab(first);
    buildSecondTab(second);

    // Only A1, ST and A18 complete from their lists.
    const QList<QComboBox*> typed{A22, PZ, Combo1};
    for (QComboBox* combo : typed)
        typedOnly(combo);
    setupFields(this);
    keepOnEscape(this);
    for (QComboBox* combo : typed) {
        enterAsTab(combo);
        focusColours(combo);
    }
    // The remarks too move on with Enter; Shift+Enter starts a new line.
    enterAsTab(A17);
    for (QWidget* w :
         {static_cast<QWidget*>(a4), static_cast<QWidget*>(A18), static_cast<QWidget*>(A2),
          static_cast<QWidget*>(k1), static_cast<QWidget*>(k2)})
        w->installEventFilter(this);

    load();
    if (g_pendingService) {
        takeService(g_pendingService->first, g_pendingService->second);
        g_pendingService.reset();
    }
}

Atendimento::~Atendimento() = default;

Atendimento* Atendimento::openScreen() {
    return g_open.data();
}

void Atendimento::takeService(const QString& description, const QString& value) {
    Atendimento* screen = openScreen();
    if (!screen) {
        g_pendingService = {description, value};
        return;
    }
    screen->setField(u"A21"_s, description);
    screen->setField(u"A19"_s, value);
}

void Atendimento::buildMenu(QVBoxLayout* box) {
    auto* bar = new QMenuBar(this);
    bar->setObjectName(u"menu"_s);
    menuEntry(bar, u"dfe"_s, u"  Grava  "_s);
    menuEntry(bar, u"sd"_s, u"Novo  "_s);
    menuEntry(bar, u"df"_s, u"Exclui "_s);
    menuEntry(bar, u"asd"_s, u"Volta"_s);
    menuEntry(bar, u"der"_s, u"Imprime"_s); // the print entry has no action of its own
    box->setMenuBar(bar);
}

void Atendimento::buildFirstTab(QWidget* page) {
    auto* outer = new QHBoxLayout(page);
    auto* left = new QVBoxLayout;
    outer->addLayout(left, 1);

    // Head: control number, date, time, and how many dispatches there are.
    auto* head = new QHBoxLayout;
    CODIGO = new QLabel(page);
    CODIGO->setObjectName(u"CODIGO"_s);
    CODIGO->setMinimumWidth(90);
    CODIGO->setFrameShape(QFrame::Panel);
    CODIGO->setFrameShadow(QFrame::Sunken);
    QFont big = CODIGO->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 2);
    CODIGO->setFont(big);
    CODIGO->setStyleSheet(u"color: #B00000;"_s);
    A2 = new MaskEdBox(MaskEdBox::dateMask(), page);
    A2->setObjectName(u"A2"_s);
    A2->setFixedWidth(95);
    a3 = new QLineEdit(page);
    a3->setObjectName(u"a3"_s);
    a3->setFixedWidth(60);
    nr = new QLabel(page);
    nr->setObjectName(u"nr"_s);
    nr->setMinimumWidth(60);
    head->addWidget(caption(u"NR.CONTROLE:"_s, page));
    head->addWidget(CODIGO);
    head->addSpacing(16);
    head->addWidget(caption(u"DATA...."_s, page));
    head->addWidget(A2);
    head->addWidget(caption(u"HORA..."_s, page));
    head->addWidget(a3);
    head->addStretch(1);
    head->addWidget(caption(u"ATENDIMENTOS:"_s, page));
    head->addWidget(nr);
    left->addLayout(head);

    // The form: caption and field pairs, three to a line at most.
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(4);
    left->addLayout(grid);
    int row = 0;
    auto line = [&](const QString& name) {
        auto* e = new QLineEdit(page);
        e->setObjectName(name);
        return e;
    };
    auto phone = [&](const QString& name) {
        auto* e = new MaskEdBox(page);
        e->setObjectName(name);
        return e;
    };
    auto combo = [&](const QString& name, bool editable) {
        auto* c = new QComboBox(page);
        c->setObjectName(name);
        c->setEditable(editable);
        c->setInsertPolicy(QComboBox::NoInsert);
        return c;
    };

    A1 = combo(u"A1"_s, true);
    grid->addWidget(caption(u"ATENDIDO POR....."_s, page), row, 0);
    grid->addWidget(A1, row, 1, 1, 3);
    ++row;

    a4 = phone(u"a4"_s);
    auto* bina = button(u"Command3"_s, u"Ativar Bina"_s, page);
    A5 = line(u"A5"_s);
    grid->addWidget(caption(u"TELEFONE............."_s, page), row, 0);
    {
        auto* h = new QHBoxLayout;
        h->addWidget(a4, 1);
        h->addWidget(bina);
        grid->addLayout(h, row, 1);
    }
    grid->addWidget(caption(u"CONTATO..........."_s, page), row, 2);
    grid->addWidget(A5, row, 3, 1, 3);
    ++row;

    A6 = line(u"A6"_s);
    auto* lookup1 =
        pictureButton(u"Command5"_s, Picture::Lens, {}, u"Busca pelo campo ao lado."_s, page);
    grid->addWidget(caption(u"CLIENTE................"_s, page), row, 0);
    grid->addWidget(A6, row, 1, 1, 5);
    grid->addWidget(lookup1, row, 6);
    ++row;

    A7 = line(u"A7"_s);
    A8 = line(u"A8"_s);
    grid->addWidget(caption(u"ENDEREÇO............."_s, page), row, 0);
    grid->addWidget(A7, row, 1, 1, 3);
    grid->addWidget(caption(u"TIPO............"_s, page), row, 4);
    grid->addWidget(A8, row, 5);
    ++row;

    // Pickup and delivery: address, contact, telephone, task.
    auto place = [&](const QString& captionText, QLineEdit*& address, const QString& addressName,
                     const QString& lookupName, QLineEdit*& contact, const QString& contactName,
                     MaskEdBox*& tel, const QString& telName, QLineEdit*& task,
                     const QString& taskName) {
        address = line(addressName);
        auto* lookup = button(lookupName, u"Altera"_s, page);
        grid->addWidget(caption(captionText, page), row, 0);
        grid->addWidget(address, row, 1, 1, 5);
        grid->addWidget(lookup, row, 6);
        ++row;
        contact = line(contactName);
        tel = phone(telName);
        task = line(taskName);
        grid->addWidget(caption(u"CONTATO...."_s, page), row, 0);
        grid->addWidget(contact, row, 1);
        grid->addWidget(caption(u"TELEFONE............"_s, page), row, 2);
        grid->addWidget(tel, row, 3);
        grid->addWidget(caption(u"TAREFA...."_s, page), row, 4);
        grid->addWidget(task, row, 5, 1, 2);
        ++row;
    };
    place(u"ORIGEM................."_s, A9, u"A9"_s, u"Command21"_s, A10, u"A10"_s, A11, u"A11"_s,
          A12, u"A12"_s);
    place(u"DESTINO.............."_s, A13, u"A13"_s, u"Command22"_s, A14, u"A14"_s, A15, u"A15"_s,
          A16, u"A16"_s);

    A21 = line(u"A21"_s);
    auto* table = button(u"Command19"_s, u"Tabela  Serviço"_s, page);
    grid->addWidget(caption(u"SERVIÇO:"_s, page), row, 0);
    grid->addWidget(A21, row, 1, 1, 3);
    grid->addWidget(table, row, 4);
    ++row;

    A17 = new QPlainTextEdit(page);
    A17->setObjectName(u"A17"_s);
    A17->setTabChangesFocus(true);
    A17->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    A17->setFixedHeight(A17->fontMetrics().height() * 3 + 12);
    grid->addWidget(caption(u"OBSERVAÇÕES"_s, page), row, 0, Qt::AlignTop);
    grid->addWidget(A17, row, 1, 1, 6);
    ++row;

    A22 = combo(u"A22"_s, true);
    A22->addItems({u"SIM"_s, u"NÃO"_s});
    A22->setCurrentIndex(-1);
    ST = combo(u"ST"_s, true);
    auto* registry =
        pictureButton(u"Command23"_s, Picture::Text, u"\u00B1"_s, u"Incluir / Excluir"_s, page);
    auto* change = button(u"Command6"_s, u"Altera"_s, page);
    grid->addWidget(caption(u"COM RETORNO:"_s, page), row, 0);
    grid->addWidget(A22, row, 1);
    grid->addWidget(caption(u"STATUS:"_s, page), row, 2);
    grid->addWidget(ST, row, 3);
    {
        auto* h = new QHBoxLayout;
        h->addWidget(registry);
        h->addWidget(change);
        h->addStretch(1);
        grid->addLayout(h, row, 4, 1, 3);
    }
    ++row;

    A18 = combo(u"A18"_s, true);
    A20 = combo(u"A20"_s, false);
    A20->addItems({u"A VISTA"_s, u"FATURAR"_s});
    grid->addWidget(caption(u"ENTREGADOR:"_s, page), row, 0);
    grid->addWidget(A18, row, 1);
    grid->addWidget(caption(u"RECEBIMENTO:"_s, page), row, 2);
    grid->addWidget(A20, row, 3);
    ++row;

    A19 = new MaskEdBox(MaskEdBox::moneyMask(), page);
    A19->setObjectName(u"A19"_s);
    VE = new MaskEdBox(MaskEdBox::moneyMask(), page);
    VE->setObjectName(u"VE"_s);
    grid->addWidget(caption(u"VLR. CLIENTE:"_s, page), row, 0);
    grid->addWidget(A19, row, 1);
    grid->addWidget(caption(u"VLR.ENTREGADOR:"_s, page), row, 2);
    grid->addWidget(VE, row, 3);
    ++row;
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(3, 2);
    grid->setColumnStretch(5, 2);
    // Room for what each field holds: telephones, names of contacts, tasks, lists, money.
    a4->setMinimumWidth(130);
    A8->setMinimumWidth(130);
    for (QWidget* w : {A10, A14, A12, A16})
        w->setMinimumWidth(160);
    for (QWidget* w : {A11, A15})
        w->setMinimumWidth(120);
    for (QWidget* w : {static_cast<QWidget*>(A22), static_cast<QWidget*>(ST),
                       static_cast<QWidget*>(A18), static_cast<QWidget*>(A20)})
        w->setMinimumWidth(160);
    for (QWidget* w : {A19, VE})
        w->setMinimumWidth(120);

    // Printing.
    auto* print = new QHBoxLayout;
    Check1 = new QCheckBox(u"Em 2 Vias"_s, page);
    Check1->setObjectName(u"Check1"_s);
    auto* printA4 = button(u"Command7"_s, u"Impressão A4"_s, page);
    auto* slip = pictureButton(u"Command8"_s, Picture::Printer, {}, u"Impressão A4"_s, page);
    auto* coupon = button(u"Command24"_s, u"Impressão Cupom USB"_s, page);
    print->addWidget(Check1);
    print->addWidget(printA4);
    print->addWidget(slip);
    print->addWidget(coupon);
    print->addStretch(1);
    left->addSpacing(4);
    left->addLayout(print);
    left->addStretch(1);

    // Action bar: walk, save, new, delete, back.
    auto* actions = new QHBoxLayout;
    auto* first = pictureButton(u"Command1"_s, Picture::Text, u"|<"_s, u"Primeiro"_s, page);
    auto* previous = pictureButton(u"Command13"_s, Picture::Text, u"<"_s, u"Anterior"_s, page);
    auto* next = pictureButton(u"Command14"_s, Picture::Text, u">"_s, u"Próximo"_s, page);
    auto* last = pictureButton(u"Command12"_s, Picture::Text, u">|"_s, u"Último"_s, page);
    auto* save = button(u"Command16"_s, u"Grava"_s, page);
    auto* fresh = button(u"Command4"_s, u"Novo"_s, page);
    auto* remove = button(u"Command11"_s, u"Exclui"_s, page);
    auto* back = button(u"Command2"_s, u"Volta"_s, page);
    for (QWidget* w : {first, previous, next, last})
        actions->addWidget(w);
    actions->addStretch(1);
    for (QWidget* w : {save, fresh, remove, back})
        actions->addWidget(w);
    left->addLayout(actions);
    VM = new QLabel(page);
    VM->setObjectName(u"VM"_s);
    QFont small = VM->font();
    small.setPointSize(qMax(6, small.pointSize() - 2));
    VM->setFont(small);
    VM->setStyleSheet(u"color: #707070;"_s);
    left->addWidget(VM, 0, Qt::AlignLeft);

    // The courier board.
    auto* right = new QVBoxLayout;
    outer->addLayout(right);
    Grid1 = new MSFlexGrid(page);
    Grid1->setObjectName(u"Grid1"_s);
    Grid1->setHeaders({u"Nome"_s, u"Posição"_s});
    Grid1->setColWidth(0, 130);
    Grid1->setColWidth(1, 120);
    Grid1->setMinimumWidth(275);
    right->addWidget(Grid1, 1);
    right->addWidget(caption(u"MUDA POSIÇÃO DO ENTREGADOR:"_s, page));
    PZ = combo(u"PZ"_s, true);
    PZ->addItems({u"Livre"_s, u"A caminho"_s, u"Faltou"_s, u"Em atendimento"_s});
    PZ->setCurrentIndex(-1);
    right->addWidget(PZ);

    Text9 = new QLineEdit(page);
    Text9->setObjectName(u"Text9"_s);
    Text9->hide();

    // Keyboard order: the fields as an operator fills them; time and date after them,
    // then the buttons.
    const QList<QWidget*> order{A1,
                                a4,
                                A5,
                                A6,
                                A7,
                                A8,
                                A9,
                                A10,
                                A11,
                                A12,
                                A13,
                                A14,
                                A15,
                                A16,
                                A21,
                                A17,
                                A22,
                                ST,
                                A18,
                                A20,
                                A19,
                                VE,
                                PZ,
                                a3,
                                A2,
                                save,
                                fresh,
                                remove,
                                back,
                                first,
                                previous,
                                next,
                                last,
                                bina,
                                lookup1,
                                findChild<QWidget*>(u"Command21"_s),
                                findChild<QWidget*>(u"Command22"_s),
                                table,
                                registry,
                                change,
                                Check1,
                                printA4,
                                slip,
                                coupon,
                                Grid1};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(save, &QPushButton::clicked, this, [this] { Command16_Click(); });
    connect(fresh, &QPushButton::clicked, this, [this] { Command4_Click(); });
    connect(remove, &QPushButton::clicked, this, [this] { Command11_Click(); });
    connect(back, &QPushButton::clicked, this, [this] { close(); });
    connect(first, &QToolButton::clicked, this, [this] { Command1_Click(); });
    connect(previous, &QToolButton::clicked, this, [this] { Command13_Click(); });
    connect(next, &QToolButton::clicked, this, [this] { Command14_Click(); });
    connect(last, &QToolButton::clicked, this, [this] { Command12_Click(); });
    connect(registry, &QToolButton::clicked, this, [this] { Command23_Click(); });
    connect(change, &QPushButton::clicked, this, [this] { Command6_Click(); });
    connect(table, &QPushButton::clicked, this, [this] { Command19_Click(); });
    connect(bina, &QPushButton::clicked, this, [this] { Command3_Click(); });
    connect(lookup1, &QToolButton::clicked, this, [this] { openClientLookup(1); });
    connect(findChild<QPushButton*>(u"Command21"_s), &QPushButton::clicked, this,
            [this] { openClientLookup(2); });
    connect(findChild<QPushButton*>(u"Command22"_s), &QPushButton::clicked, this,
            [this] { openClientLookup(3); });
    connect(printA4, &QPushButton::clicked, this, [this] { printSlip(); });
    connect(slip, &QToolButton::clicked, this, [this] { printSlip(); });
    connect(Grid1, &MSFlexGrid::rowDoubleClicked, this, [this](int r) { Grid1_DblClick(r); });

    auto twin = [this](const QString& entry, QAbstractButton* target) {
        callsButton(findChild<QAction*>(entry), target);
    };
    twin(u"dfe"_s, save);
    twin(u"sd"_s, fresh);
    twin(u"df"_s, remove);
    twin(u"asd"_s, back);
}

void Atendimento::buildSecondTab(QWidget* page) {
    auto* box = new QVBoxLayout(page);
    auto* boxes = new QGridLayout;
    box->addLayout(boxes);
    auto line = [&](const QString& name) {
        auto* e = new QLineEdit(page);
        e->setObjectName(name);
        return e;
    };
    Text3 = line(u"Text3"_s);
    Text3->setMaximumWidth(120);
    Combo1 = new QComboBox(page);
    Combo1->setObjectName(u"Combo1"_s);
    Combo1->setEditable(true);
    Combo1->setInsertPolicy(QComboBox::NoInsert);
    Combo1->addItems(
        {u"A caminho"_s, u"Entregue"_s, u"Não encontrado"_s, u"Cancelado"_s, u"Outros"_s});
    Combo1->setCurrentIndex(-1);
    Combo1->setMinimumWidth(200);
    Text2 = line(u"Text2"_s);
    Text1 = line(u"Text1"_s);
    boxes->addWidget(caption(u"POR NÚMERO:"_s, page), 0, 0);
    boxes->addWidget(Text3, 0, 1);
    boxes->addWidget(caption(u"POR STATUS:"_s, page), 0, 2);
    boxes->addWidget(Combo1, 0, 3);
    boxes->addWidget(caption(u"COURIER (ENTREGADOR):"_s, page), 1, 0);
    boxes->addWidget(Text2, 1, 1, 1, 1);
    boxes->addWidget(caption(u"POR CLIENTE:"_s, page), 1, 2);
    boxes->addWidget(Text1, 1, 3);
    boxes->setColumnStretch(4, 1);

    auto* period = new QHBoxLayout;
    k1 = new MaskEdBox(MaskEdBox::dateMask(), page);
    k1->setObjectName(u"k1"_s);
    k1->setFixedWidth(95);
    k2 = new MaskEdBox(MaskEdBox::dateMask(), page);
    k2->setObjectName(u"k2"_s);
    k2->setFixedWidth(95);
    auto* byPeriod =
        pictureButton(u"Command9"_s, Picture::Lens, {}, u"Busca pelo campo ao lado."_s, page);
    auto* all = button(u"Command15"_s, u"Ver todos"_s, page);
    itt = new QLabel(page);
    itt->setObjectName(u"itt"_s);
    itt->setMinimumWidth(60);
    period->addWidget(caption(u"DATA INICIO:"_s, page));
    period->addWidget(k1);
    period->addWidget(caption(u"DATA FINAL:"_s, page));
    period->addWidget(k2);
    period->addWidget(byPeriod);
    period->addSpacing(12);
    period->addWidget(itt);
    period->addStretch(1);
    period->addWidget(all);
    box->addLayout(period);

    DBGrid1 = new DBGrid(page);
    DBGrid1->setObjectName(u"DBGrid1"_s);
    DBGrid1->setColumns({{u"CODIGO"_s, u"Controle"_s, 75},
                         {u"a2"_s, u"Data"_s, 85},
                         {u"a6"_s, u"Cliente"_s, 230},
                         {u"ST"_s, u"Status"_s, 110},
                         {u"a21"_s, u"Serviço"_s, 170},
                         {u"a22"_s, u"Retorno"_s, 60},
                         {u"a18"_s, u"Courier"_s, 100},
                         {u"a19"_s, u"Valor"_s, 95}});
    currencyColumn(DBGrid1, 7);
    box->addWidget(DBGrid1, 1);

    auto* reports = new QGroupBox(u"RELATÓRIOS"_s, page);
    auto* row = new QHBoxLayout(reports);
    row->addWidget(button(u"Command10"_s, u"Relatório por Co"_s, reports));
    row->addWidget(button(u"Command17"_s, u"Relatório por cliente"_s, reports));
    row->addWidget(button(u"Command18"_s, u"Relatório por status"_s, reports));
    row->addStretch(1);
    row->addWidget(
        pictureButton(u"Command20"_s, Picture::Printer, {}, u"Impressão de Relatórios"_s, reports));
    box->addWidget(reports);

    // Keyboard order: the four boxes, the period and its button, the list.
    const QList<QWidget*> order{Text3, Combo1, Text2, Text1, k1, k2, byPeriod, all, DBGrid1};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(Text3, &QLineEdit::textChanged, this,
            [this](const QString& t) { search(u"CODIGO"_s, t); });
    connect(Combo1, &QComboBox::editTextChanged, this,
            [this](const QString& t) { search(u"ST"_s, t); });
    connect(Text2, &QLineEdit::textChanged, this,
            [this](const QString& t) { search(u"a18"_s, t); });
    connect(Text1, &QLineEdit::textChanged, this, [this](const QString& t) { search(u"a6"_s, t); });
    connect(byPeriod, &QToolButton::clicked, this, [this] { Command9_Click(); });
    connect(all, &QPushButton::clicked, this, [this] { Command15_Click(); });
    connect(DBGrid1, &DBGrid::recordActivated, this, [this](int r) { DBGrid1_DblClick(r); });
}

// ---- Fields by name ---------------------------------------------------------------------

QString Atendimento::field(const QString& name) const {
    QWidget* w = findChild<QWidget*>(name);
    if (auto* mask = qobject_cast<MaskEdBox*>(w)) return mask->text();
    if (auto* edit = qobject_cast<QLineEdit*>(w)) return edit->text();
    if (auto* combo = qobject_cast<QComboBox*>(w)) return combo->currentText();
    if (auto* label = qobject_cast<QLabel*>(w)) return label->text();
    if (auto* memo = qobject_cast<QPlainTextEdit*>(w)) return memo->toPlainText();
    return {};
}

void Atendimento::setField(const QString& name, const QString& value) {
    QWidget* w = findChild<QWidget*>(name);
    if (auto* mask = qobject_cast<MaskEdBox*>(w)) {
        mask->setText(value);
    } else if (auto* edit = qobject_cast<QLineEdit*>(w)) {
        edit->setText(value);
    } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
        const int index = combo->findText(value, Qt::MatchExactly);
        combo->setCurrentIndex(value.isEmpty() ? -1 : index);
        if (combo->isEditable()) combo->setEditText(value);
    } else if (auto* label = qobject_cast<QLabel*>(w)) {
        label->setText(value);
    } else if (auto* memo = qobject_cast<QPlainTextEdit*>(w)) {
        memo->setPlainText(value);
    }
}

// ---- Load, Novo, busca ------------------------------------------------------------------

void Atendimento::load() {
    centreScreen(this);
    VE->setText(u"0,00"_s);
    fillStatusList();
    itt->setText(u"0"_s);
    A1->setEditText(userName());
    k1->setText(today());
    k2->setText(today());
    A20->setCurrentIndex(A20->findText(dispatch::invoicePayment()));
    A2->setText(today());
    a3->setText(now());
    A19->setText(u"0,00"_s);
    Command15_Click(); // the whole table at first; Novo narrows it to the day
    countDispatches();
    fillBoard();
    A1->setFocus();
}

void Atendimento::showToday() {
    guarded(this, [this] {
        showSearch(
            DBGrid1,
            {u"atendimentos"_s, kGridColumns, u"a2 = ?"_s, {QDate::currentDate()}, u"CODIGO"_s});
    });
}

void Atendimento::countDispatches() {
    guarded(this,
            [this] { nr->setText(QString::number(Store::current().count(u"atendimentos"_s))); });
}

void Atendimento::Command4_Click() {
    VM->setText(u"0,00"_s);
    VE->setText(u"0,00"_s);
    showToday();
    A20->setCurrentIndex(A20->findText(dispatch::invoicePayment()));
    A2->setText(today());
    a3->setText(now());
    A19->setText(u"0,00"_s);
    countDispatches();
    for (const QString& name : {u"A22"_s, u"ST"_s, u"a4"_s, u"A5"_s, u"A21"_s, u"A6"_s, u"A7"_s,
                                u"A8"_s, u"A9"_s, u"A10"_s, u"A11"_s, u"A12"_s, u"A13"_s, u"A14"_s,
                                u"A15"_s, u"A16"_s, u"A17"_s, u"A18"_s, u"CODIGO"_s})
        setField(name, QString());
    a4->setFocus();
    clearHourglass();
}

QStringList Atendimento::columnsOfBusca() const {
    QStringList c{u"CODIGO"_s, u"A21"_s, u"A22"_s, u"A1"_s, u"A2"_s, u"a3"_s, u"a4"_s};
    for (int i = 5; i <= 20; ++i)
        c << u"A%1"_s.arg(i);
    c << u"ST"_s << u"VE"_s;
    return c;
}

void Atendimento::busca() {
    guarded(this, [this] {
        Recordset rs = Store::current().open(u"SELECT * FROM atendimentos WHERE CODIGO = ?"_s,
                                             {CODIGO->text()});
        if (rs.eof()) return;
        for (const QString& name : columnsOfBusca())
            setField(name, rs.text(name));
    });
}

// ---- Field automatisms ------------------------------------------------------------------

bool Atendimento::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // Leaving the window or opening a list's popup is no leaving of the field.
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            if (watched == a4) {
                a4_LostFocus();
            } else if (watched == A18) {
                A18_LostFocus();
            } else if (watched == A2 || watched == k1 || watched == k2) {
                auto* date = static_cast<MaskEdBox*>(watched);
                if (!parseDate(date->shownText())) date->setText(today());
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void Atendimento::a4_LostFocus() {
    const QString tel = a4->text();
    if (tel.isEmpty()) return;
    QString remarks;
    guarded(this, [&] {
        Recordset rs =
            Store::current().open(u"SELECT * FROM clientes WHERE C8 = ? ORDER BY CODIGO"_s, {tel});
        if (rs.eof()) return;
        A5->setText(rs.text(u"C7"_s));
        A6->setText(rs.text(u"C5"_s));
        A7->setText(rs.text(u"C14"_s));
        A8->setText(rs.text(u"C25"_s));
        remarks = rs.text(u"C31"_s);
    });
    if (!remarks.isEmpty()) notice(this, u"Obs. "_s + remarks);
}

void Atendimento::A18_LostFocus() {
    VM->setText(u"0,00"_s);
    const QString courier = A18->currentText();
    if (courier.isEmpty()) return;
    guarded(this, [&] {
        Recordset rs = Store::current().open(
            u"SELECT * FROM motoqueiros WHERE C4 = ? ORDER BY CODIGO"_s, {courier});
        if (rs.eof()) return;
        const QString fee = formatMoney(rs.cents(u"C28"_s));
        VM->setText(fee);
        VE->setText(fee);
    });
}

// ---- Grava --------------------------------------------------------------------------------

bool Atendimento::askPassword(const QString& title, const QString& label) {
    const auto answer = askText(this, title, label, QString(), true);
    return answer && !answer->isEmpty() && answer->toUpper() == kPassword;
}

// A saved dispatch that was delivered takes the password before any change. False when
// Grava must stop; passed tells that the password was given.
bool Atendimento::deliveredLock(bool& passed) {
    passed = false;
    if (CODIGO->text().isEmpty()) return true;
    QString status;
    bool found = false;
    if (!guarded(this, [&] {
            Recordset rs = Store::current().open(u"SELECT ST FROM atendimentos WHERE CODIGO = ?"_s,
                                                 {CODIGO->text()});
            found = !rs.eof();
            if (found) status = rs.text(u"ST"_s);
        }))
        return false;
    if (!found || status != kDelivered) return true;
    notice(this, kDeliveredRefusal);
    if (!askPassword(u"Senha de alteração"_s,
                     u"Atendimento já foi entregue para alterar  digite a senha."_s))
        return false;
    passed = true;
    return true;
}

bool Atendimento::checkRequired() {
    struct Required {
        QWidget* field;
        QString text;
        const char16_t* label;
    };
    const Required required[] = {{A1, A1->currentText(), u"ATENDIDO POR"},
                                 {A6, A6->text(), u"CLIENTE"},
                                 {ST, ST->currentText(), u"STATUS"}};
    for (const Required& r : required) {
        if (!r.text.isEmpty()) continue;
        notice(this, u"O campo [%1], não pode ficar em branco."_s.arg(QString::fromUtf16(r.label)));
        r.field->setFocus();
        return false;
    }
    return true;
}

void Atendimento::writeRow(Recordset& rs, bool adding) {
    // Every column as the screen shows it; an empty field is stored as empty text.
    auto put = [&rs](const QString& column, const QString& value) {
        rs.setText(column, value.isNull() ? QStringLiteral("") : value);
    };
    put(u"CODIGO"_s, CODIGO->text());
    put(u"a1"_s, A1->currentText());
    put(u"ST"_s, ST->currentText());
    put(u"a2"_s, A2->shownText());
    put(u"a3"_s, a3->text());
    put(u"a4"_s, a4->text());
    for (int i = 5; i <= 22; ++i)
        put(u"a%1"_s.arg(i), field(u"A%1"_s.arg(i)));
    if (adding) rs.setValue(u"moto"_s, qint64(0));
    put(u"VE"_s, VE->text());
}

void Atendimento::Command16_Click() {
    // A date left half typed counts as left: it becomes today, as on leaving the field.
    if (!parseDate(A2->shownText())) A2->setText(today());
    VM->setText(VE->text());

    bool passed = false;
    if (!deliveredLock(passed)) return;
    if (!passed && ST->currentText() == kDelivered) notice(this, kDeliveredWarning);
    if (!checkRequired()) return;

    const bool adding = CODIGO->text().isEmpty();
    const bool change = adding || ask(this, kChangeQuestion);
    const bool post = ask(this, u"Confirma movimentação financeira?"_s);
    if (adding) a3->setText(now());

    // The dispatch and its money are stored together or not at all; the operator is told
    // once they are.
    QString number = CODIGO->text();
    QString said;
    const bool stored = guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        if (adding) {
            number = store.nextCode(u"atendimentos"_s);
            Recordset rs = store.open(u"SELECT * FROM atendimentos WHERE CODIGO = ?"_s, {number});
            if (rs.eof()) {
                rs.addNew();
                writeRow(rs, true);
                rs.setText(u"CODIGO"_s, number);
                rs.update();
            }
            said = u"Atendimento registrado."_s;
        } else if (change) {
            Recordset rs = store.open(u"SELECT * FROM atendimentos WHERE CODIGO = ?"_s, {number});
            if (!rs.eof()) {
                rs.edit();
                writeRow(rs, false);
                rs.update();
                said = u"Atendimento alterado."_s;
            }
        }
        if (post) {
            dispatch::Posting p;
            p.number = number;
            p.client = A6->text();
            p.courier = A18->currentText();
            p.date = requireDate(A2->shownText());
            if (!VM->text().isEmpty()) p.courierFee = parseMoney(VM->text());
            p.clientValue = parseMoney(A19->text()).value_or(0);
            p.payment = A20->currentText();
            dispatch::postDispatch(store, p);
        }
        unit.commit();
    });
    if (!stored) return;
    CODIGO->setText(number);
    if (!said.isEmpty()) notice(this, said);
    if (post) fillBoard();
    if (ask(this, u"Imprimir atendimento?"_s)) printSlip();
}

void Atendimento::printSlip() {
    // The A4 slip is drawn by the report engine, which this build does not have yet.
}

// ---- Exclui and the walk through the dispatches -------------------------------------------

void Atendimento::Command11_Click() {
    if (!askPassword(u"Senha"_s, u"Digite a senha de exclusão."_s)) return;
    if (CODIGO->text().isEmpty()) {
        notice(this, u"Primeiro faça a busca do atendimento."_s);
        return;
    }
    if (!ask(this, u"Confirma exclusão?"_s)) return;
    const bool done = guarded(this, [this] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        store.execute(u"DELETE FROM atendimentos WHERE CODIGO = ?"_s, {CODIGO->text()});
        unit.commit();
    });
    if (done) Command4_Click();
}

void Atendimento::Command1_Click() {
    guarded(this, [this] {
        const QString code = Store::current().firstCode(u"atendimentos"_s);
        if (!code.isEmpty()) CODIGO->setText(code);
    });
    busca();
}

void Atendimento::Command12_Click() {
    guarded(this, [this] {
        const QString code = Store::current().lastCode(u"atendimentos"_s);
        if (!code.isEmpty()) CODIGO->setText(code);
    });
    busca();
}

void Atendimento::Command13_Click() {
    const QString code = CODIGO->text();
    if (code.isEmpty()) return;
    QString previous;
    guarded(this, [&] {
        Store& store = Store::current();
        const bool exists =
            store.scalar(u"SELECT 1 FROM atendimentos WHERE CODIGO = ?"_s, {code}).isValid();
        if (exists) previous = store.previousCode(u"atendimentos"_s, code);
    });
    if (previous.isEmpty()) return;
    CODIGO->setText(previous);
    busca();
}

void Atendimento::Command14_Click() {
    const QString code = CODIGO->text();
    if (code.isEmpty()) return;
    bool exists = false;
    QString next;
    if (!guarded(this, [&] {
            Store& store = Store::current();
            exists =
                store.scalar(u"SELECT 1 FROM atendimentos WHERE CODIGO = ?"_s, {code}).isValid();
            if (exists) next = store.nextCodeAfter(u"atendimentos"_s, code);
        }))
        return;
    if (!exists) {
        // The dispatch on the screen is gone: the button offers to clear it away.
        Command11_Click();
        return;
    }
    if (next.isEmpty()) {
        clearHourglass();
        return;
    }
    CODIGO->setText(next);
    busca();
}

// ---- Courier board and status list ----------------------------------------------------------

void Atendimento::fillBoard() {
    Grid1->setRows(1);
    QStringList names;
    guarded(this, [&] {
        Recordset rs = Store::current().open(u"SELECT C1, C4, C25 FROM motoqueiros ORDER BY C4"_s);
        for (; !rs.eof(); rs.moveNext()) {
            if (rs.text(u"C1"_s) != u"ATIVO"_s) continue;
            const QString name = rs.text(u"C4"_s);
            names << name;
            Grid1->addItem(name + u'\t' + rs.text(u"C25"_s));
        }
    });
    // The courier list grows by the names of each fill: a courier who left the service
    // stays in it until the screen is opened again.
    appendItems(A18, names);
    stripeGrid(Grid1);
}

void Atendimento::fillStatusList() {
    QStringList words;
    guarded(this, [&] {
        Recordset rs = Store::current().open(
            u"SELECT sta FROM status_atendimento GROUP BY sta ORDER BY sta"_s);
        for (; !rs.eof(); rs.moveNext())
            words << rs.text(u"sta"_s);
    });
    const QString shown = ST->currentText();
    const QSignalBlocker block(ST);
    ST->clear();
    ST->addItems(words);
    ST->setCurrentIndex(ST->findText(shown, Qt::MatchExactly));
    ST->setEditText(shown);
}

void Atendimento::Grid1_DblClick(int row) {
    Grid1->setRow(row);
    const QString name = Grid1->textMatrix(row, 0);
    if (!ask(this, u"Deseja mudar a posição do motoqueiro: "_s + name)) return;
    if (PZ->currentText().isEmpty()) {
        notice(this, u"Primeiro defina a nova posição no campo nova posição."_s);
        PZ->setFocus();
        return;
    }
    guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        dispatch::moveCourier(store, name, PZ->currentText());
        unit.commit();
    });
    fillBoard();
}

void Atendimento::Command23_Click() {
    const auto typed =
        askText(this, u"Cadastro de Status"_s, u"Digite o novo status e clique no botão OK "_s);
    if (!typed || typed->isEmpty()) return;
    const QString word = *typed;
    bool exists = false;
    if (!guarded(this, [&] {
            exists = Store::current()
                         .scalar(u"SELECT 1 FROM status_atendimento WHERE sta = ?"_s, {word})
                         .isValid();
        }))
        return;
    if (exists) {
        // The same button takes a word out of the list.
        if (!ask(this, u"Confirma exclusão: "_s + word + u'?', u"Cadastro"_s)) return;
        if (!guarded(this, [&] {
                Store& store = Store::current();
                UnitOfWork unit(store);
                store.execute(u"DELETE FROM status_atendimento WHERE sta = ?"_s, {word});
                unit.commit();
            }))
            return;
        inform(this, u"Operação realizada com sucesso."_s);
    } else {
        if (!guarded(this, [&] {
                Store& store = Store::current();
                UnitOfWork unit(store);
                store.insert(u"status_atendimento"_s, {{u"sta"_s, word}});
                unit.commit();
            }))
            return;
    }
    fillStatusList();
}

void Atendimento::Command6_Click() {
    const QString status = ST->currentText();
    if (status.isEmpty()) {
        notice(this, u"Primeiro defina o novo status."_s);
        ST->setFocus();
        return;
    }
    const QString code = CODIGO->text();
    if (!code.isEmpty()) {
        QString saved;
        if (!guarded(this, [&] {
                Recordset rs = Store::current().open(
                    u"SELECT ST FROM atendimentos WHERE CODIGO = ?"_s, {code});
                if (!rs.eof()) saved = rs.text(u"ST"_s);
            }))
            return;
        if (saved == kDelivered) {
            notice(this, kDeliveredRefusal);
            return;
        }
    }
    if (status == kDelivered) notice(this, kDeliveredWarning);
    if (!ask(this, kChangeQuestion)) return;
    bool changed = false;
    guarded(this, [&] {
        Store& store = Store::current();
        UnitOfWork unit(store);
        changed =
            store.execute(u"UPDATE atendimentos SET ST = ? WHERE CODIGO = ?"_s, {status, code}) > 0;
        unit.commit();
    });
    if (changed) notice(this, u"Status alterado com sucesso."_s);
}

// ---- Service table, client lookup, caller id -----------------------------------------------

void Atendimento::Command19_Click() {
    auto* table = new SERVI2(this);
    table->setPicker(this);
    table->exec();
    delete table;
}

void Atendimento::openClientLookup(int caller) {
    auto* lookup = new atendecli(this, this);
    lookup->setCaller(QString::number(caller));
    lookup->exec();
    delete lookup;
}

void Atendimento::Command3_Click() {
    // No caller-id device is set up on any station: the number is typed in a4.
    notice(this, u"Nenhum identificador de chamadas (Bina) está configurado nesta estação. "
                 u"Digite o telefone do cliente no campo TELEFONE."_s);
}

// ---- Second tab -------------------------------------------------------------------------------

void Atendimento::search(const QString& column, const QString& typed) {
    guarded(this, [&] {
        showSearch(DBGrid1, {u"atendimentos"_s, kGridColumns, Store::prefixClause(column),
                             Store::prefixParams(typed), column});
    });
}

void Atendimento::Command9_Click() {
    guarded(this, [this] {
        const QDate from = requireDate(k1->shownText());
        const QDate to = requireDate(k2->shownText());
        showSearch(DBGrid1,
                   {u"atendimentos"_s, kGridColumns, u"a2 BETWEEN ? AND ?"_s, {from, to}, u"a2"_s});
        // The count goes on from the searches before: it is set to zero only on opening.
        const qint64 found =
            Store::current()
                .scalar(u"SELECT COUNT(*) FROM atendimentos WHERE a2 BETWEEN ? AND ?"_s, {from, to})
                .toLongLong();
        itt->setText(QString::number(itt->text().toLongLong() + found));
    });
}

void Atendimento::Command15_Click() {
    guarded(this, [this] {
        showSearch(DBGrid1, {u"atendimentos"_s, kGridColumns, QString(), {}, u"CODIGO"_s});
    });
}

void Atendimento::DBGrid1_DblClick(int row) {
    CODIGO->setText(DBGrid1->text(row, u"CODIGO"_s));
    busca();
    SSTab1->setTab(0);
}

} // namespace rtx::ui
