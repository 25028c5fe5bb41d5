// The widgets of the dispatch screen: the menu, the two tabs and their keyboard order. The
// fields are laid out in columns that stretch with the window, so the whole screen fits the
// 1024x768 desktop of the offices and grows on a larger one.

#include "dispatch/atendimento.h"
#include "dispatch/core/dispatch.h"
#include "dispatch/core/dispatchreports.h"
#include "dispatch/core/searches.h"
#include "kit/controls.h"
#include "kit/kit.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace {

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

MaskEdBox* maskedPhone(const QString& name, QWidget* parent) {
    auto* e = new MaskEdBox(parent);
    e->setObjectName(name);
    return e;
}

// A combo box of the dispatch form, sized by its column rather than by its list.
QComboBox* columnCombo(const QString& name, QWidget* parent, bool editable = true) {
    auto* c = new QComboBox(parent);
    c->setObjectName(name);
    c->setEditable(editable);
    c->setInsertPolicy(QComboBox::NoInsert);
    // The list sets no width: the column does.
    c->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    c->setMinimumContentsLength(6);
    return c;
}

// The keyboard order of a list of widgets.
void chain(QWidget* screen, const QList<QWidget*>& order) {
    for (int i = 1; i < order.size(); ++i)
        screen->setTabOrder(order[i - 1], order[i]);
}

} // namespace

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
    outer->setContentsMargins(6, 6, 6, 6);
    auto* left = new QVBoxLayout;
    outer->addLayout(left, 1);

    // Head: control number, date, time, and how many dispatches there are.
    auto* head = new QHBoxLayout;
    numberLabel = new QLabel(page);
    numberLabel->setObjectName(u"CODIGO"_s);
    numberLabel->setMinimumWidth(90);
    numberLabel->setFrameShape(QFrame::Panel);
    numberLabel->setFrameShadow(QFrame::Sunken);
    QFont big = numberLabel->font();
    big.setBold(true);
    big.setPointSize(big.pointSize() + 2);
    numberLabel->setFont(big);
    numberLabel->setStyleSheet(u"color: #B00000;"_s);
    dateField = new MaskEdBox(MaskEdBox::dateMask(), page);
    dateField->setObjectName(u"A2"_s);
    dateField->setFixedWidth(95);
    timeField = lineField(u"a3"_s, page);
    timeField->setFixedWidth(60);
    countLabel = new QLabel(page);
    countLabel->setObjectName(u"nr"_s);
    countLabel->setMinimumWidth(50);
    head->addWidget(caption(u"NR.CONTROLE:"_s, page));
    head->addWidget(numberLabel);
    head->addSpacing(16);
    head->addWidget(caption(u"DATA...."_s, page));
    head->addWidget(dateField);
    head->addWidget(caption(u"HORA..."_s, page));
    head->addWidget(timeField);
    head->addStretch(1);
    head->addWidget(caption(u"ATENDIMENTOS:"_s, page));
    head->addWidget(countLabel);
    left->addLayout(head);

    // The form: captions in columns 0, 2 and 4, fields in 1, 3 and 5, the buttons of a
    // line in column 6.
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(4);
    left->addLayout(grid);
    int row = 0;

    attendantBox = columnCombo(u"A1"_s, page);
    grid->addWidget(caption(u"ATENDIDO POR....."_s, page), row, 0);
    grid->addWidget(attendantBox, row, 1, 1, 3);
    ++row;

    phoneField = maskedPhone(u"a4"_s, page);
    auto* callerId = button(u"Command3"_s, u"Ativar Bina"_s, page);
    callerId->setToolTip(u"Liga o identificador de chamadas (Alt+B)."_s);
    contactField = lineField(u"A5"_s, page);
    grid->addWidget(caption(u"TELEFONE............."_s, page), row, 0);
    grid->addWidget(phoneField, row, 1);
    grid->addWidget(caption(u"CONTATO..........."_s, page), row, 2);
    grid->addWidget(contactField, row, 3, 1, 3);
    grid->addWidget(callerId, row, 6);
    ++row;

    clientField = lineField(u"A6"_s, page);
    auto* clientLookup =
        pictureButton(u"Command5"_s, Picture::Lens, {}, u"Busca pelo campo ao lado."_s, page);
    grid->addWidget(caption(u"CLIENTE................"_s, page), row, 0);
    grid->addWidget(clientField, row, 1, 1, 5);
    grid->addWidget(clientLookup, row, 6, Qt::AlignLeft);
    ++row;

    addressField = lineField(u"A7"_s, page);
    kindField = lineField(u"A8"_s, page);
    grid->addWidget(caption(u"ENDEREÇO............."_s, page), row, 0);
    grid->addWidget(addressField, row, 1, 1, 3);
    grid->addWidget(caption(u"TIPO............"_s, page), row, 4);
    grid->addWidget(kindField, row, 5, 1, 2);
    ++row;

    // Pickup and delivery: address, contact, telephone, task.
    auto place = [&](const QString& captionText, PlaceFields& fields, int first,
                     const QString& lookupName) {
        fields.address = lineField(u"A%1"_s.arg(first), page);
        auto* lookup = button(lookupName, u"Altera"_s, page);
        grid->addWidget(caption(captionText, page), row, 0);
        grid->addWidget(fields.address, row, 1, 1, 5);
        grid->addWidget(lookup, row, 6);
        ++row;
        fields.contact = lineField(u"A%1"_s.arg(first + 1), page);
        fields.phone = maskedPhone(u"A%1"_s.arg(first + 2), page);
        fields.task = lineField(u"A%1"_s.arg(first + 3), page);
        grid->addWidget(caption(u"CONTATO...."_s, page), row, 0);
        grid->addWidget(fields.contact, row, 1);
        grid->addWidget(caption(u"TELEFONE............"_s, page), row, 2);
        grid->addWidget(fields.phone, row, 3);
        grid->addWidget(caption(u"TAREFA...."_s, page), row, 4);
        grid->addWidget(fields.task, row, 5, 1, 2);
        ++row;
    };
    place(u"ORIGEM................."_s, pickup, 9, u"Command21"_s);
    place(u"DESTINO.............."_s, delivery, 13, u"Command22"_s);

    serviceField = lineField(u"A21"_s, page);
    auto* serviceTable = button(u"Command19"_s, u"Tabela  Serviço"_s, page);
    grid->addWidget(caption(u"SERVIÇO:"_s, page), row, 0);
    grid->addWidget(serviceField, row, 1, 1, 3);
    grid->addWidget(serviceTable, row, 4, 1, 2, Qt::AlignLeft);
    ++row;

    remarksField = new QPlainTextEdit(page);
    remarksField->setObjectName(u"A17"_s);
    remarksField->setTabChangesFocus(true);
    remarksField->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    remarksField->setFixedHeight(remarksField->fontMetrics().height() * 3 + 12);
    grid->addWidget(caption(u"OBSERVAÇÕES"_s, page), row, 0, Qt::AlignTop);
    grid->addWidget(remarksField, row, 1, 1, 6);
    ++row;

    returnBox = columnCombo(u"A22"_s, page);
    returnBox->addItems(dispatch::returnTrips());
    returnBox->setCurrentIndex(-1);
    statusBox = columnCombo(u"ST"_s, page);
    auto* registry =
        pictureButton(u"Command23"_s, Picture::Text, u"\u00B1"_s, u"Incluir / Excluir"_s, page);
    auto* statusChange = button(u"Command6"_s, u"Altera"_s, page);
    grid->addWidget(caption(u"COM RETORNO:"_s, page), row, 0);
    grid->addWidget(returnBox, row, 1);
    grid->addWidget(caption(u"STATUS:"_s, page), row, 2);
    grid->addWidget(statusBox, row, 3);
    {
        auto* h = new QHBoxLayout;
        h->addWidget(registry);
        h->addWidget(statusChange);
        h->addStretch(1);
        grid->addLayout(h, row, 4, 1, 3);
    }
    ++row;

    courierBox = columnCombo(u"A18"_s, page);
    paymentBox = columnCombo(u"A20"_s, page, false);
    paymentBox->addItems(dispatch::payments());
    grid->addWidget(caption(u"ENTREGADOR:"_s, page), row, 0);
    grid->addWidget(courierBox, row, 1);
    grid->addWidget(caption(u"RECEBIMENTO:"_s, page), row, 2);
    grid->addWidget(paymentBox, row, 3);
    ++row;

    clientValueField = new MaskEdBox(MaskEdBox::moneyMask(), page);
    clientValueField->setObjectName(u"A19"_s);
    courierValueField = new MaskEdBox(MaskEdBox::moneyMask(), page);
    courierValueField->setObjectName(u"VE"_s);
    grid->addWidget(caption(u"VLR. CLIENTE:"_s, page), row, 0);
    grid->addWidget(clientValueField, row, 1);
    grid->addWidget(caption(u"VLR.ENTREGADOR:"_s, page), row, 2);
    grid->addWidget(courierValueField, row, 3);
    ++row;

    // The fields share what the window gives beyond their least width: the names and
    // addresses most, the telephones, lists and values less.
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(3, 2);
    grid->setColumnStretch(5, 4);
    for (QLineEdit* w : page->findChildren<QLineEdit*>())
        w->setMinimumWidth(60);
    for (QWidget* w : {static_cast<QWidget*>(phoneField), static_cast<QWidget*>(pickup.phone),
                       static_cast<QWidget*>(delivery.phone), static_cast<QWidget*>(courierBox),
                       static_cast<QWidget*>(statusBox), static_cast<QWidget*>(paymentBox)})
        w->setMinimumWidth(110);
    for (QWidget* w : {static_cast<QWidget*>(clientValueField),
                       static_cast<QWidget*>(courierValueField), static_cast<QWidget*>(returnBox)})
        w->setMinimumWidth(90);
    for (QWidget* w : {pickup.contact, delivery.contact})
        w->setMinimumWidth(100);

    // Printing.
    auto* print = new QHBoxLayout;
    twoCopiesCheck = new QCheckBox(u"Em 2 Vias"_s, page);
    twoCopiesCheck->setObjectName(u"Check1"_s);
    auto* printA4 = button(u"Command7"_s, u"Impressão A4"_s, page);
    auto* slip = pictureButton(u"Command8"_s, Picture::Printer, {}, u"Impressão A4"_s, page);
    auto* coupon = button(u"Command24"_s, u"Impressão Cupom USB"_s, page);
    print->addWidget(twoCopiesCheck);
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
    auto* saveButton = button(u"Command16"_s, u"Grava"_s, page);
    auto* newButton = button(u"Command4"_s, u"Novo"_s, page);
    auto* deleteButton = button(u"Command11"_s, u"Exclui"_s, page);
    auto* backButton = button(u"Command2"_s, u"Volta"_s, page);
    for (QWidget* w : {first, previous, next, last})
        actions->addWidget(w);
    actions->addStretch(1);
    for (QWidget* w : {saveButton, newButton, deleteButton, backButton})
        actions->addWidget(w);
    left->addLayout(actions);
    feeLabel = new QLabel(page);
    feeLabel->setObjectName(u"VM"_s);
    QFont small = feeLabel->font();
    small.setPointSize(qMax(6, small.pointSize() - 2));
    feeLabel->setFont(small);
    feeLabel->setStyleSheet(u"color: #707070;"_s);
    left->addWidget(feeLabel, 0, Qt::AlignLeft);

    // The courier board.
    auto* right = new QVBoxLayout;
    outer->addLayout(right);
    board = new MSFlexGrid(page);
    board->setObjectName(u"Grid1"_s);
    board->setHeaders({u"Nome"_s, u"Posição"_s});
    board->setColWidth(0, 95);
    board->setColWidth(1, 110);
    // The position takes what the board is given beyond the names.
    board->horizontalHeader()->setStretchLastSection(true);
    board->setMinimumWidth(225);
    board->setMaximumWidth(280);
    right->addWidget(board, 1);
    auto* positionCaption = caption(u"MUDA POSIÇÃO DO ENTREGADOR:"_s, page);
    positionCaption->setWordWrap(true);
    right->addWidget(positionCaption);
    positionBox = columnCombo(u"PZ"_s, page);
    positionBox->addItems(dispatch::positions());
    positionBox->setCurrentIndex(-1);
    positionBox->setMaximumWidth(280);
    right->addWidget(positionBox);

    callerIdSetting = lineField(u"Text9"_s, page);
    callerIdSetting->hide();

    // Keyboard order: the fields as an operator fills them; time and date after them,
    // then the buttons.
    chain(this, {attendantBox,
                 phoneField,
                 contactField,
                 clientField,
                 addressField,
                 kindField,
                 pickup.address,
                 pickup.contact,
                 pickup.phone,
                 pickup.task,
                 delivery.address,
                 delivery.contact,
                 delivery.phone,
                 delivery.task,
                 serviceField,
                 remarksField,
                 returnBox,
                 statusBox,
                 courierBox,
                 paymentBox,
                 clientValueField,
                 courierValueField,
                 positionBox,
                 timeField,
                 dateField,
                 saveButton,
                 newButton,
                 deleteButton,
                 backButton,
                 first,
                 previous,
                 next,
                 last,
                 callerId,
                 clientLookup,
                 namedControl<QWidget>(this, u"Command21"_s),
                 namedControl<QWidget>(this, u"Command22"_s),
                 serviceTable,
                 registry,
                 statusChange,
                 twoCopiesCheck,
                 printA4,
                 slip,
                 coupon,
                 board});

    // Grava, Exclui and the prints read the date and the amounts as typed, or stop.
    onAction(saveButton, this, [this] { onSave(); });
    connect(newButton, &QPushButton::clicked, this, &Atendimento::onNew);
    onAction(deleteButton, this, [this] { onDelete(); });
    connect(backButton, &QPushButton::clicked, this, &QDialog::close);
    connect(first, &QToolButton::clicked, this, &Atendimento::onFirst);
    connect(previous, &QToolButton::clicked, this, &Atendimento::onPrevious);
    connect(next, &QToolButton::clicked, this, &Atendimento::onNext);
    connect(last, &QToolButton::clicked, this, &Atendimento::onLast);
    connect(registry, &QToolButton::clicked, this, &Atendimento::onStatusRegistry);
    connect(statusChange, &QPushButton::clicked, this, &Atendimento::onStatusChange);
    connect(serviceTable, &QPushButton::clicked, this, &Atendimento::onServiceTable);
    connect(callerId, &QPushButton::clicked, this, &Atendimento::onCallerId);
    connect(clientLookup, &QToolButton::clicked, this,
            [this] { openClientLookup(dispatch::LookupFor::Client); });
    connect(namedControl<QPushButton>(this, u"Command21"_s), &QPushButton::clicked, this,
            [this] { openClientLookup(dispatch::LookupFor::Pickup); });
    connect(namedControl<QPushButton>(this, u"Command22"_s), &QPushButton::clicked, this,
            [this] { openClientLookup(dispatch::LookupFor::Delivery); });
    onAction(printA4, this, [this] { printSlip(); });
    onAction(slip, this, [this] { printSlip(); });
    onAction(coupon, this, [this] { printCoupon(); });
    connect(board, &MSFlexGrid::rowDoubleClicked, this, &Atendimento::onBoardDoubleClick);

    auto twin = [this](const QString& entry, QAbstractButton* target) {
        callsButton(namedControl<QAction>(this, entry), target);
    };
    twin(u"dfe"_s, saveButton);
    twin(u"sd"_s, newButton);
    twin(u"df"_s, deleteButton);
    twin(u"asd"_s, backButton);
}

void Atendimento::buildSecondTab(QWidget* page) {
    auto* box = new QVBoxLayout(page);
    box->setContentsMargins(6, 6, 6, 6);
    auto* boxes = new QGridLayout;
    box->addLayout(boxes);
    numberSearch = lineField(u"Text3"_s, page);
    numberSearch->setMaximumWidth(120);
    statusSearch = new QComboBox(page);
    statusSearch->setObjectName(u"Combo1"_s);
    statusSearch->setEditable(true);
    statusSearch->setInsertPolicy(QComboBox::NoInsert);
    statusSearch->addItems(dispatch::usualStatuses());
    statusSearch->setCurrentIndex(-1);
    statusSearch->setMinimumWidth(200);
    courierSearch = lineField(u"Text2"_s, page);
    clientSearch = lineField(u"Text1"_s, page);
    boxes->addWidget(caption(u"POR NÚMERO:"_s, page), 0, 0);
    boxes->addWidget(numberSearch, 0, 1);
    boxes->addWidget(caption(u"POR STATUS:"_s, page), 0, 2);
    boxes->addWidget(statusSearch, 0, 3);
    boxes->addWidget(caption(u"COURIER (ENTREGADOR):"_s, page), 1, 0);
    boxes->addWidget(courierSearch, 1, 1, 1, 1);
    boxes->addWidget(caption(u"POR CLIENTE:"_s, page), 1, 2);
    boxes->addWidget(clientSearch, 1, 3);
    boxes->setColumnStretch(4, 1);

    auto* period = new QHBoxLayout;
    fromField = new MaskEdBox(MaskEdBox::dateMask(), page);
    fromField->setObjectName(u"k1"_s);
    fromField->setFixedWidth(95);
    toField = new MaskEdBox(MaskEdBox::dateMask(), page);
    toField->setObjectName(u"k2"_s);
    toField->setFixedWidth(95);
    auto* byPeriod =
        pictureButton(u"Command9"_s, Picture::Lens, {}, u"Busca pelo campo ao lado."_s, page);
    auto* all = button(u"Command15"_s, u"Ver todos"_s, page);
    foundLabel = new QLabel(page);
    foundLabel->setObjectName(u"itt"_s);
    foundLabel->setMinimumWidth(60);
    period->addWidget(caption(u"DATA INICIO:"_s, page));
    period->addWidget(fromField);
    period->addWidget(caption(u"DATA FINAL:"_s, page));
    period->addWidget(toField);
    period->addWidget(byPeriod);
    period->addSpacing(12);
    period->addWidget(foundLabel);
    period->addStretch(1);
    period->addWidget(all);
    box->addLayout(period);

    searchGrid = new DBGrid(page);
    searchGrid->setObjectName(u"DBGrid1"_s);
    const QStringList columns = dispatch::searchColumns();
    searchGrid->setColumns({{columns[0], u"Controle"_s, 70},
                            {columns[1], u"Data"_s, 80},
                            {columns[2], u"Cliente"_s, 220},
                            {columns[3], u"Status"_s, 105},
                            {columns[4], u"Serviço"_s, 160},
                            {columns[5], u"Retorno"_s, 60},
                            {columns[6], u"Courier"_s, 95},
                            {columns[7], u"Valor"_s, 95, true}});
    box->addWidget(searchGrid, 1);

    auto* reports = new QGroupBox(u"RELATÓRIOS"_s, page);
    auto* row = new QHBoxLayout(reports);
    auto* byCourier = button(u"Command10"_s, u"Relatório por Co"_s, reports);
    auto* byClient = button(u"Command17"_s, u"Relatório por cliente"_s, reports);
    auto* byStatus = button(u"Command18"_s, u"Relatório por status"_s, reports);
    auto* reportScreen =
        pictureButton(u"Command20"_s, Picture::Printer, {}, u"Impressão de Relatórios"_s, reports);
    row->addWidget(byCourier);
    row->addWidget(byClient);
    row->addWidget(byStatus);
    row->addStretch(1);
    row->addWidget(reportScreen);
    box->addWidget(reports);

    // Keyboard order: the four boxes, the period and its button, the list.
    chain(this, {numberSearch, statusSearch, courierSearch, clientSearch, fromField, toField,
                 byPeriod, all, searchGrid});

    using dispatch::SearchBy;
    connect(numberSearch, &QLineEdit::textChanged, this,
            [this](const QString& t) { search(SearchBy::Number, t); });
    connect(statusSearch, &QComboBox::editTextChanged, this,
            [this](const QString& t) { search(SearchBy::Status, t); });
    connect(courierSearch, &QLineEdit::textChanged, this,
            [this](const QString& t) { search(SearchBy::Courier, t); });
    connect(clientSearch, &QLineEdit::textChanged, this,
            [this](const QString& t) { search(SearchBy::Client, t); });
    onAction(byPeriod, this, [this] { onPeriodSearch(); });
    connect(all, &QPushButton::clicked, this, &Atendimento::onShowAll);
    connect(searchGrid, &DBGrid::recordActivated, this, &Atendimento::onSearchDoubleClick);
    using dispatch::ReportBy;
    onAction(byCourier, this, [this] { printSearchReport(ReportBy::Courier); });
    onAction(byClient, this, [this] { printSearchReport(ReportBy::Client); });
    onAction(byStatus, this, [this] { printSearchReport(ReportBy::Status); });
    connect(reportScreen, &QToolButton::clicked, this, &Atendimento::openReportScreen);
}

void Atendimento::fitToScreen() {
    // As wide and high as the fields like, within the desktop the window opens on; never
    // narrower than the least that shows every control whole.
    QSize room(1004, 724); // the 1024x768 desktop less a window frame and a task bar
    if (const QScreen* s = screen()) room = s->availableGeometry().size() - QSize(20, 44);
    resize(sizeHint().boundedTo(room).expandedTo(minimumSizeHint()));
}

} // namespace rtx::ui
