#include "reportpreview.h"

#include "kit/dialogs.h"
#include "kit/fields.h"
#include "printing.h"
#include "reportpainter.h"

#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStandardPaths>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

// The page on a grey table, drawn once for each page and zoom.
class PageView : public QWidget {
public:
    explicit PageView(const output::Document& document, QWidget* parent)
        : QWidget(parent), document_(document) {
        setAutoFillBackground(false);
    }

    void setPage(int page) {
        page_ = page;
        image_ = QImage();
        update();
    }
    void setScale(double dotsPerMm) {
        if (qFuzzyCompare(dotsPerMm, k_)) return;
        k_ = dotsPerMm;
        image_ = QImage();
        const QSize page(int(document_.width * k_), int(document_.height * k_));
        setFixedSize(page + QSize(2 * kMargin, 2 * kMargin));
        update();
    }
    double scale() const { return k_; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.fillRect(rect(), QColor(0x80, 0x80, 0x80));
        if (image_.isNull()) image_ = render(page_, k_, devicePixelRatioF());
        const QRect pageRect(kMargin, kMargin, int(document_.width * k_),
                             int(document_.height * k_));
        p.fillRect(pageRect.translated(3, 3), QColor(0x50, 0x50, 0x50));
        p.drawImage(pageRect, image_);
    }

public:
    QImage render(int page, double k, double ratio = 1.0) const {
        QImage image(QSize(int(document_.width * k * ratio), int(document_.height * k * ratio)),
                     QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        // The image's dots per inch follow the scale, so that letters are sized as on paper.
        const int dotsPerMetre = int(k * 1000);
        image.setDotsPerMeterX(dotsPerMetre);
        image.setDotsPerMeterY(dotsPerMetre);
        image.fill(Qt::white);
        QPainter p(&image);
        paintPage(p, document_, page, k);
        return image;
    }

private:
    static constexpr int kMargin = 14;
    const output::Document& document_;
    int page_ = 0;
    double k_ = 0;
    QImage image_;
};

namespace {

QPushButton* button(const QString& name, const QString& caption, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

} // namespace

ReportPreview::ReportPreview(output::ReportData data, output::Document document, QWidget* parent)
    : QDialog(parent), data_(std::move(data)), document_(std::move(document)) {
    setObjectName(u"Visualizacao"_s);
    setWindowTitle(document_.title.isEmpty() ? u"Relatório"_s : document_.title);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::WindowMaximizeButtonHint);

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(6, 6, 6, 6);
    auto* bar = new QHBoxLayout;
    auto* printButton = button(u"imprimir"_s, u"&Imprimir"_s, this);
    auto* pdfButton = button(u"salvarPdf"_s, u"Salvar &PDF"_s, this);
    auto* sheetButton = button(u"salvarPlanilha"_s, u"Salvar pla&nilha"_s, this);
    first_ = button(u"primeira"_s, u"|<"_s, this);
    previous_ = button(u"anterior"_s, u"<"_s, this);
    next_ = button(u"proxima"_s, u">"_s, this);
    last_ = button(u"ultima"_s, u">|"_s, this);
    first_->setToolTip(u"Primeira página"_s);
    previous_->setToolTip(u"Página anterior"_s);
    next_->setToolTip(u"Próxima página"_s);
    last_->setToolTip(u"Última página"_s);
    for (QPushButton* b : {first_, previous_, next_, last_})
        b->setFixedWidth(36);
    pageLabel_ = new QLabel(this);
    pageLabel_->setObjectName(u"pagina"_s);
    pageLabel_->setMinimumWidth(120);
    pageLabel_->setAlignment(Qt::AlignCenter);
    zoom_ = new QComboBox(this);
    zoom_->setObjectName(u"zoom"_s);
    zoom_->addItem(u"Largura da página"_s, 0.0);
    zoom_->addItem(u"Página inteira"_s, -1.0);
    for (int percent : {50, 75, 100, 125, 150, 200})
        zoom_->addItem(u"%1%"_s.arg(percent), percent / 100.0);
    auto* closeButton = button(u"fechar"_s, u"&Fechar"_s, this);

    bar->addWidget(printButton);
    bar->addWidget(pdfButton);
    bar->addWidget(sheetButton);
    bar->addSpacing(16);
    bar->addWidget(first_);
    bar->addWidget(previous_);
    bar->addWidget(pageLabel_);
    bar->addWidget(next_);
    bar->addWidget(last_);
    bar->addSpacing(16);
    bar->addWidget(zoom_);
    bar->addStretch(1);
    bar->addWidget(closeButton);
    box->addLayout(bar);

    scroll_ = new QScrollArea(this);
    scroll_->setObjectName(u"paginas"_s);
    scroll_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    scroll_->setBackgroundRole(QPalette::Dark);
    view_ = new PageView(document_, scroll_);
    scroll_->setWidget(view_);
    scroll_->viewport()->installEventFilter(this);
    box->addWidget(scroll_, 1);

    connect(printButton, &QPushButton::clicked, this, &ReportPreview::print);
    connect(pdfButton, &QPushButton::clicked, this, &ReportPreview::savePdf);
    connect(sheetButton, &QPushButton::clicked, this, &ReportPreview::saveSheet);
    connect(first_, &QPushButton::clicked, this, [this] { showPage(0); });
    connect(previous_, &QPushButton::clicked, this, [this] { showPage(page_ - 1); });
    connect(next_, &QPushButton::clicked, this, [this] { showPage(page_ + 1); });
    connect(last_, &QPushButton::clicked, this, [this] { showPage(pageCount() - 1); });
    connect(zoom_, &QComboBox::currentIndexChanged, this, [this] { applyZoom(); });
    connect(closeButton, &QPushButton::clicked, this, &QDialog::close);

    // As large as the screen allows, the first page at the width of the window.
    QSize size(1000, 760);
    if (const QScreen* screen = this->screen())
        size = size.boundedTo(screen->availableGeometry().size() * 0.92);
    resize(size);
    applyZoom();
    showPage(0);
    centreScreen(this);
}

ReportPreview::~ReportPreview() = default;

// The page follows the window's size when it is shown at the page's width or whole.
bool ReportPreview::eventFilter(QObject* watched, QEvent* event) {
    if (watched == scroll_->viewport() && event->type() == QEvent::Resize) applyZoom();
    return QDialog::eventFilter(watched, event);
}

void ReportPreview::applyZoom() {
    const double choice = zoom_->currentData().toDouble();
    const double screenDpm = logicalDpiX() / 25.4;
    double k = screenDpm * choice;
    const QSize room = scroll_->viewport()->size() - QSize(2 * 14 + 4, 2 * 14 + 4);
    if (choice == 0.0) k = room.width() / document_.width;
    if (choice < 0) k = std::min(room.width() / document_.width, room.height() / document_.height);
    view_->setScale(std::max(0.5, k));
}

void ReportPreview::showPage(int page) {
    page_ = std::clamp(page, 0, std::max(0, pageCount() - 1));
    view_->setPage(page_);
    pageLabel_->setText(u"Página %1 de %2"_s.arg(page_ + 1).arg(std::max(1, pageCount())));
    first_->setEnabled(page_ > 0);
    previous_->setEnabled(page_ > 0);
    next_->setEnabled(page_ + 1 < pageCount());
    last_->setEnabled(page_ + 1 < pageCount());
    scroll_->verticalScrollBar()->setValue(0);
}

QImage ReportPreview::renderPage(int page, double dotsPerMm) const {
    return view_->render(page, dotsPerMm);
}

void ReportPreview::print() {
    QPrinter printer(QPrinter::HighResolution);
    if (!choosePrinterFor(this, printer)) return;
    printPages(this, document_, printer);
}

QString ReportPreview::suggestedName(const QString& extension) const {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty()) folder = QDir::homePath();
    const QString base = QFileInfo(data_.layout.file).completeBaseName();
    return QDir(folder).filePath(
        u"%1 %2.%3"_s.arg(base, data_.printedAt.toString(u"yyyy-MM-dd HHmm"_s), extension));
}

void ReportPreview::savePdf() {
    const auto file = chooseSaveFile(this, u"Salvar o relatório em PDF"_s, suggestedName(u"pdf"_s),
                                     u"Arquivos PDF (*.pdf)"_s);
    if (!file) return;
    QString error;
    if (writePdf(document_, *file, error))
        notice(this, u"Relatório salvo em %1."_s.arg(*file));
    else
        showError(this, u"Não foi possível salvar o relatório em %1: %2."_s.arg(*file, error));
}

void ReportPreview::saveSheet() {
    const auto chosen = chooseSaveFile(
        this, u"Salvar os dados do relatório em planilha"_s, suggestedName(u"xlsx"_s),
        u"Planilhas do Excel (*.xlsx);;Planilhas CSV, separadas por ponto e vírgula "
        u"(*.csv)"_s);
    if (!chosen) return;
    const QString file = sheetPath(*chosen);
    QString error;
    if (writeSheet(data_, file, error))
        notice(this, u"Planilha salva em %1."_s.arg(file));
    else
        showError(this, u"Não foi possível salvar a planilha em %1: %2."_s.arg(file, error));
}

} // namespace rtx::ui
