#include "finance/faturas.h"

#include "agenda/cale.h"
#include "finance/core/ledger.h"
#include "kit/controls.h"
#include "kit/kit.h"
#include "output/core/invoicing.h"
#include "output/core/mail.h"
#include "output/printing.h"
#include "output/reportpainter.h"
#include "output/reportpreview.h"
#include "registers/core/parties.h"
#include "session/core/current.h"
#include "session/modules.h"
#include "store/changes.h"
#include "store/formats.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

namespace fin = rtx::finance;
namespace out = rtx::output;

RTX_REGISTER_MODULE("Faturas", [](QWidget* parent) -> QDialog* { return new Faturas(parent); });

namespace {

const QString kMark = u"Ok"_s;
const int kMarkColumn = 3;

QString dateText(const std::optional<QDate>& d) {
    return d && d->isValid() ? formatDate(*d) : QString();
}

// The invoice's PDF at path, as "Gerar faturas" writes it; false with why when it could not.
bool writeInvoicePdf(const out::InvoiceSheet& sheet, const QString& path, QString& error) {
    return writePdf(out::invoiceDocument(sheet, &fontMeasure()), path, error);
}

QString mailBody(const out::InvoiceSheet& sheet) {
    const fin::Invoice& inv = sheet.invoice;
    return u"Prezado cliente %1,\n\n"
           u"Segue em anexo a fatura %2 dos atendimentos de %3 a %4, no valor de R$ %5, "
           u"com vencimento em %6. O pagamento pode ser feito por PIX, pelo QR code ou pelo "
           u"texto \"copia e cola\" da fatura.\n\n"
           u"Atenciosamente,\n%7\n%8\n"_s.arg(
               sheet.clientName, inv.code, dateText(inv.from), dateText(inv.to),
               formatMoney(inv.total), dateText(inv.due), sheet.companyName, sheet.companyPhone);
}

} // namespace

Faturas::Faturas(QWidget* parent) : QDialog(parent) {
    setObjectName(u"Faturas"_s);
    setWindowTitle(u"Faturas"_s);
    auto* outer = new QVBoxLayout(this);

    auto* top = new QGridLayout;
    clientBox_ = comboField(u"A1"_s, this);
    fromField_ = new MaskEdBox(MaskEdBox::dateMask(), this);
    fromField_->setObjectName(u"k1"_s);
    toField_ = new MaskEdBox(MaskEdBox::dateMask(), this);
    toField_->setObjectName(u"k2"_s);
    for (MaskEdBox* m : {fromField_, toField_})
        m->setFixedWidth(110);
    const auto calendarButton = [this](const QString& name) {
        auto* b = pushButton(name, u"..."_s, this);
        b->setToolTip(u"Calendário"_s);
        b->setFocusPolicy(Qt::NoFocus);
        b->setFixedWidth(34);
        return b;
    };
    auto* fromCalendar = calendarButton(u"Command7"_s);
    auto* toCalendar = calendarButton(u"Command8"_s);
    auto* oneButton = pushButton(u"Command6"_s, u"..."_s, this);
    auto* allButton = pushButton(u"Command9"_s, u"..."_s, this);
    oneButton->setToolTip(u"Lista o cliente escolhido."_s);
    allButton->setToolTip(u"Lista todos os clientes do período."_s);
    for (QPushButton* b : {oneButton, allButton})
        b->setFixedWidth(36);
    top->addWidget(new QLabel(u"DATA INICIO:"_s, this), 0, 0);
    top->addWidget(fromField_, 0, 1);
    top->addWidget(fromCalendar, 0, 2);
    top->addWidget(new QLabel(u"DATA FINAL:"_s, this), 0, 3);
    top->addWidget(toField_, 0, 4);
    top->addWidget(toCalendar, 0, 5);
    top->addWidget(allButton, 0, 6);
    top->addWidget(new QLabel(u"CLIENTE:"_s, this), 1, 0);
    top->addWidget(clientBox_, 1, 1, 1, 5);
    top->addWidget(oneButton, 1, 6);
    top->setColumnStretch(7, 1);
    outer->addLayout(top);

    tabs_ = new SSTab(this);
    tabs_->setObjectName(u"SSTab1"_s);
    auto [clientsPage, clients] = gridPage(
        u"Grid1"_s, {u"Cliente"_s, u"Atendimentos"_s, u"Total"_s, u"Ps"_s}, {380, 110, 110, 40},
        u"PARA MARCAR UM CLIENTE, DE UM DUPLO CLIQUE SOBRE O MESMO."_s);
    clientsGrid_ = clients;
    auto [invoicesPage, invoices] = gridPage(
        u"Grid2"_s,
        {u"Fatura"_s, u"Cliente"_s, u"Período"_s, u"Vencimento"_s, u"Total"_s, u"Situação"_s},
        {80, 300, 170, 90, 100, 70}, u"PARA VER UMA FATURA, DE UM DUPLO CLIQUE SOBRE A MESMA."_s);
    invoicesGrid_ = invoices;
    tabs_->addTab(clientsPage, u"01- Clientes a faturar"_s);
    tabs_->addTab(invoicesPage, u"02- Faturas do período"_s);
    outer->addWidget(tabs_, 1);

    totalLabel_ = totalRow(u"TT"_s, formatMoney(0), outer, this);

    auto* actions = new QGridLayout;
    auto* generateButton = pushButton(u"Command1"_s, u"> Gerar faturas"_s, this);
    auto* showButton = pushButton(u"Command2"_s, u"> Visualizar fatura"_s, this);
    auto* writeOffButton = pushButton(u"Command3"_s, u"> Baixar fatura paga"_s, this);
    mailButton_ = pushButton(u"Command4"_s, u"> Enviar por e-mail"_s, this);
    mailProgress_ = new QProgressBar(this);
    mailProgress_->setObjectName(u"ProgressBar1"_s);
    mailProgress_->setFormat(u"Enviando %v de %m"_s);
    mailProgress_->hide();
    auto* backButton = pushButton(u"Command15"_s, u"Volta"_s, this);
    actions->addWidget(generateButton, 0, 0);
    actions->addWidget(showButton, 0, 1);
    actions->addWidget(writeOffButton, 0, 2);
    actions->addWidget(mailButton_, 1, 0);
    actions->addWidget(mailProgress_, 1, 1);
    actions->addWidget(backButton, 1, 2);
    outer->addLayout(actions);

    // A period that is no period lists nothing and makes nothing: it is said so first.
    const auto settled = [this](QAbstractButton* b, std::function<void()> action) {
        onAction(b, this, std::move(action));
    };
    settled(oneButton, [this] { listClient(); });
    settled(allButton, [this] { listAll(); });
    settled(generateButton, [this] { generate(); });
    settled(mailButton_, [this] { sendByMail(); });
    connect(showButton, &QPushButton::clicked, this, [this] { showInvoice(invoicesGrid_->row()); });
    connect(writeOffButton, &QPushButton::clicked, this, [this] { writeOffSelected(); });
    connect(backButton, &QPushButton::clicked, this, [this] { reject(); });
    connect(fromCalendar, &QPushButton::clicked, this, [this] { pickDate(fromField_); });
    connect(toCalendar, &QPushButton::clicked, this, [this] { pickDate(toField_); });
    connect(clientsGrid_, &MSFlexGrid::rowDoubleClicked, this,
            [this](int row) { toggleMark(row); });
    connect(invoicesGrid_, &MSFlexGrid::rowDoubleClicked, this,
            [this](int row) { showInvoice(row); });

    setupFields(this);
    comboInteligente(clientBox_);
    keepOnEscape(this);
    resize(1000, 640);
    centreScreen(this);

    // The month before this one: the month an office invoices.
    const QDate today = QDate::currentDate();
    const QDate first = QDate(today.year(), today.month(), 1).addMonths(-1);
    fromField_->setText(formatDate(first));
    toField_->setText(formatDate(first.addMonths(1).addDays(-1)));
    guarded(this, [&] {
        QStringList names =
            fin::partyNames(Store::current(), registers::partyTable(registers::Party::Client));
        names.removeDuplicates();
        clientBox_->addItems(names);
    });
    clientBox_->setEditText(QString());
}

std::optional<std::pair<QDate, QDate>> Faturas::period() {
    const auto from = fromField_->settledDate();
    const auto to = from ? toField_->settledDate() : std::nullopt;
    if (!from || !to) return std::nullopt;
    if (!from->isValid() || !to->isValid()) {
        notice(this, u"Informe a data inicial e a data final."_s);
        (from->isValid() ? toField_ : fromField_)->setFocus();
        return std::nullopt;
    }
    if (*to < *from) {
        notice(this, u"A data final é anterior à data inicial."_s);
        toField_->setFocus();
        return std::nullopt;
    }
    return std::pair{*from, *to};
}

void Faturas::pickDate(MaskEdBox* field) {
    const auto typed = field->date();
    QDate day = typed && typed->isValid() ? *typed : QDate::currentDate();
    if (Cale::GetDate(day, u"Período das faturas"_s, field)) field->setText(formatDate(day));
}

bool Faturas::fill(const QString& client) {
    const auto dates = period();
    if (!dates) return false;
    QList<fin::InvoiceCandidate> candidates;
    QList<fin::Invoice> invoices;
    if (!guarded(this, [&] {
            Store& store = Store::current();
            candidates = fin::clientsToInvoice(store, dates->first, dates->second, client);
            invoices = fin::invoicesOfPeriod(store, dates->first, dates->second, client);
        }))
        return false;
    listedClient_ = client;
    candidates_ = candidates;
    invoices_ = invoices;
    qint64 total = 0;
    clientsGrid_->setRows(1);
    clientsGrid_->setUpdatesEnabled(false);
    for (const fin::InvoiceCandidate& c : candidates_) {
        clientsGrid_->addItem(
            QStringList{c.client, QString::number(c.count), formatMoney(c.total), QString()}.join(
                u'\t'));
        total += c.total;
    }
    clientsGrid_->setUpdatesEnabled(true);
    stripeGrid(clientsGrid_, QColor(0x00, 0xFF, 0xFF));
    invoicesGrid_->setRows(1);
    for (const fin::Invoice& inv : invoices_)
        invoicesGrid_->addItem(QStringList{inv.code, inv.clientName,
                                           dateText(inv.from) + u" a "_s + dateText(inv.to),
                                           dateText(inv.due), formatMoney(inv.total), inv.status}
                                   .join(u'\t'));
    stripeGrid(invoicesGrid_, QColor(0x00, 0xFF, 0xFF));
    QStringList listed;
    for (const fin::Invoice& inv : invoices_)
        listed << inv.code;
    if (listed != mailListed_) {
        mailPending_.reset();
        mailListed_ = listed;
    }
    totalLabel_->setText(formatMoney(total));
    return true;
}

void Faturas::listClient() {
    const QString client = clientBox_->currentText().trimmed();
    if (client.isEmpty()) {
        notice(this, u"Selecione o cliente antes."_s);
        clientBox_->setFocus();
        return;
    }
    fill(client);
}

void Faturas::listAll() {
    fill(QString());
}

void Faturas::toggleMark(int row) {
    if (row < clientsGrid_->fixedRows() || row >= clientsGrid_->rows()) return;
    const bool marked = clientsGrid_->textMatrix(row, kMarkColumn) == kMark;
    clientsGrid_->setTextMatrix(row, kMarkColumn, marked ? QString() : kMark);
}

void Faturas::generate() {
    QStringList marked;
    for (int i = 0; i < candidates_.size(); ++i)
        if (clientsGrid_->textMatrix(clientsGrid_->fixedRows() + i, kMarkColumn) == kMark)
            marked << candidates_[i].client;
    if (marked.isEmpty()) {
        notice(this, u"Marque os clientes a faturar com um duplo clique."_s);
        clientsGrid_->setFocus();
        return;
    }
    const auto dates = period();
    if (!dates) return;
    std::optional<QString> problem;
    if (!guarded(this, [&] { problem = out::invoicingProblem(Store::current()); })) return;
    if (problem) {
        notice(this, *problem);
        return;
    }
    if (!ask(this, u"Confirma a geração das faturas de %1 cliente(s)?"_s.arg(marked.size())))
        return;
    QList<fin::Invoice> made;
    // One unit for every invoice of the run: a failure leaves no invoice made.
    if (!guarded(this, [&] {
            made = out::makeInvoices(Store::current(), marked, dates->first, dates->second);
        }))
        return;
    changes().announce(fin::invoiceTable());

    written_.clear();
    QStringList failures;
    const QString folder = out::invoiceFolder(session::installation().folder(), dates->first);
    if (!made.isEmpty() && !QDir().mkpath(folder))
        failures << u"a pasta %1 não pôde ser criada"_s.arg(QDir::toNativeSeparators(folder));
    for (const fin::Invoice& inv : made) {
        if (!failures.isEmpty()) break;
        guarded(this, [&] {
            const out::InvoiceSheet sheet = out::readInvoiceSheet(Store::current(), inv.code);
            const QString path = folder + u'/' + out::invoiceFileName(inv);
            QString error;
            if (writeInvoicePdf(sheet, path, error))
                written_ << path;
            else
                failures << u"%1: %2"_s.arg(inv.clientName, error);
        });
    }
    fill(listedClient_);
    if (made.isEmpty()) {
        notice(this, u"Nenhuma fatura gerada: os clientes marcados não têm contas em aberto "
                     u"no período."_s);
        return;
    }
    if (!failures.isEmpty())
        showError(this, u"As faturas foram gravadas no banco de dados, mas estes arquivos não "
                        u"foram gravados:\n"_s +
                            failures.join(u'\n'));
    openPreview(made.first().code);
    notice(this, u"%1 fatura(s) gerada(s) na pasta %2."_s.arg(made.size())
                     .arg(QDir::toNativeSeparators(folder)));
}

void Faturas::openPreview(const QString& code) {
    guarded(this, [&] {
        const out::InvoiceSheet sheet = out::readInvoiceSheet(Store::current(), code);
        auto* preview = new ReportPreview(out::invoiceData(sheet),
                                          out::invoiceDocument(sheet, &fontMeasure()), this);
        preview->setAttribute(Qt::WA_DeleteOnClose);
        preview_ = preview;
        preview->show();
    });
}

void Faturas::showInvoice(int row) {
    const int index = row - invoicesGrid_->fixedRows();
    if (index < 0 || index >= invoices_.size()) {
        notice(this, u"Escolha a fatura na lista de faturas do período."_s);
        tabs_->setCurrentIndex(1);
        invoicesGrid_->setFocus();
        return;
    }
    openPreview(invoices_[index].code);
}

void Faturas::writeOffSelected() {
    const int index = invoicesGrid_->row() - invoicesGrid_->fixedRows();
    if (index < 0 || index >= invoices_.size()) {
        notice(this, u"Escolha a fatura paga na lista de faturas do período."_s);
        tabs_->setCurrentIndex(1);
        invoicesGrid_->setFocus();
        return;
    }
    const fin::Invoice inv = invoices_[index];
    if (inv.status == fin::invoicePaid) {
        notice(this, u"A fatura %1 já está paga."_s.arg(inv.code));
        return;
    }
    if (!ask(this, u"Confirma a baixa da fatura %1 de %2, R$ %3?"_s.arg(inv.code, inv.clientName,
                                                                        formatMoney(inv.total))))
        return;
    int settled = 0;
    if (!guarded(this, [&] { settled = fin::writeOffInvoice(Store::current(), inv.code); })) return;
    changes().announce(fin::invoiceTable());
    changes().announce(fin::kindOf(fin::Ledger::Receivables).table);
    fill(listedClient_);
    notice(this, u"Fatura %1 baixada: %2 conta(s) recebida(s)."_s.arg(inv.code).arg(settled));
}

void Faturas::sendByMail() {
    // What goes: the open invoices of the second tab, or only those the last press could not
    // deliver. A paid invoice is not charged again.
    QList<fin::Invoice> toSend;
    for (const fin::Invoice& inv : invoices_)
        if (mailPending_ ? mailPending_->contains(inv.code) : inv.status != fin::invoicePaid)
            toSend << inv;
    if (toSend.isEmpty()) {
        notice(this, mailPending_ ? u"Todas as faturas listadas já foram enviadas por e-mail."_s
                                  : u"Não há faturas em aberto listadas para enviar: liste as "
                                    u"faturas do período antes."_s);
        tabs_->setCurrentIndex(1);
        return;
    }
    const out::MailSettings settings =
        out::mailSettings(session::installation().path(u"rotalix.ini"_s));
    if (!settings.valid()) {
        notice(this, settings.problem());
        return;
    }
    if (!ask(this, u"Confirma o envio por e-mail de %1 fatura(s)%2?"_s.arg(toSend.size())
                       .arg(mailPending_ ? u" que não foram enviadas antes"_s : QString())))
        return;

    // The messages, each with its invoice's PDF; the file is written again when it is not
    // in the month's folder any more. What cannot go is failed here, before any sending.
    struct Pending {
        QString code, client, to, problem;
    };
    QList<Pending> outcome;
    QList<out::Mail> mails;
    QList<qsizetype> mailOf; // the outcome of each message
    if (!guarded(this, [&] {
            for (const fin::Invoice& inv : toSend) {
                const out::InvoiceSheet sheet = out::readInvoiceSheet(Store::current(), inv.code);
                Pending p{inv.code, sheet.clientName, sheet.clientEmail.trimmed(), {}};
                if (p.to.isEmpty()) {
                    p.problem = u"Cliente sem e-mail no cadastro."_s;
                    outcome << p;
                    continue;
                }
                const QString folder = out::invoiceFolder(session::installation().folder(),
                                                          inv.from.value_or(QDate::currentDate()));
                const QString path = folder + u'/' + out::invoiceFileName(inv);
                QString error;
                if (!QFile::exists(path) &&
                    !(QDir().mkpath(folder) && writeInvoicePdf(sheet, path, error))) {
                    p.problem = u"O arquivo da fatura não pôde ser gravado: %1"_s.arg(error);
                    outcome << p;
                    continue;
                }
                QFile file(path);
                if (!file.open(QIODevice::ReadOnly)) {
                    p.problem = u"O arquivo %1 não pôde ser lido: %2"_s.arg(
                        QDir::toNativeSeparators(path), file.errorString());
                    outcome << p;
                    continue;
                }
                out::Mail mail;
                mail.to = p.to;
                mail.subject = u"Fatura %1 — %2"_s.arg(inv.code, sheet.companyName);
                mail.body = mailBody(sheet);
                mail.attachments.append({QFileInfo(path).fileName(), file.readAll()});
                mails << mail;
                mailOf << outcome.size();
                outcome << p;
            }
        }))
        return;

    // The bar keeps the screen painted while the server takes one message after another.
    mailButton_->setEnabled(false);
    mailProgress_->setRange(0, int(mails.size()));
    mailProgress_->setValue(0);
    mailProgress_->setVisible(mails.size() > 0);
    const QList<out::MailFailure> refused =
        out::sendAll(settings, mails, [this](qsizetype done, qsizetype) {
            mailProgress_->setValue(int(done));
            QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            return true;
        });
    mailProgress_->hide();
    mailButton_->setEnabled(true);
    for (const out::MailFailure& f : refused)
        outcome[mailOf.value(f.index)].problem = f.problem;

    QStringList failed, lines;
    for (const Pending& p : outcome)
        if (!p.problem.isEmpty()) {
            failed << p.code;
            lines << u"%1 (fatura %2%3): %4"_s.arg(
                p.client, p.code, p.to.isEmpty() ? QString() : u", "_s + p.to, p.problem);
        }
    mailPending_ = failed;
    const qsizetype sent = outcome.size() - failed.size();
    if (failed.isEmpty()) {
        inform(this, u"%1 fatura(s) enviada(s) por e-mail."_s.arg(sent));
        return;
    }
    showError(this,
              u"%1 de %2 fatura(s) enviada(s) por e-mail. Não foram enviadas:\n%3\n\n"
              u"Corrija e pressione \"Enviar por e-mail\" de novo para enviar só estas."_s.arg(sent)
                  .arg(outcome.size())
                  .arg(lines.join(u'\n')));
}

} // namespace rtx::ui
