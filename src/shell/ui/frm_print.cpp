#include "shell/ui/frm_print.h"

#include "shell/key_value_store.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cmath>

namespace lumiran {

namespace {

constexpr const char* Section = "Settings";

double readNumber(const KeyValueStore& store, const char* key, double fallback) {
    const auto text = store.get(Section, key);
    if (!text) return fallback;
    bool ok = false;
    const double value = QString::fromStdString(*text).toDouble(&ok);
    return ok && std::isfinite(value) ? value : fallback;
}

QDoubleSpinBox* marginBox(const char* name, double value) {
    auto* box = new QDoubleSpinBox;
    box->setObjectName(name);
    box->setRange(0, 100);
    box->setDecimals(1);
    box->setSuffix(" mm");
    box->setValue(value);
    return box;
}

} // namespace

PrintSettings readPrintSettings(const KeyValueStore& store) {
    PrintSettings s;
    s.PrintSize = std::clamp(static_cast<int>(readNumber(store, "PrintSize", s.PrintSize)),
                             PrintSizeMin, PrintSizeMax);
    s.margins.left = std::clamp(readNumber(store, "PrinterScale.Left", s.margins.left), 0.0, 100.0);
    s.margins.top = std::clamp(readNumber(store, "PrinterScale.Top", s.margins.top), 0.0, 100.0);
    s.margins.right =
        std::clamp(readNumber(store, "PrinterScale.Right", s.margins.right), 0.0, 100.0);
    s.margins.bottom =
        std::clamp(readNumber(store, "PrinterScale.Bottom", s.margins.bottom), 0.0, 100.0);
    return s;
}

void writePrintSettings(KeyValueStore& store, const PrintSettings& s) {
    store.set(Section, "PrintSize", std::to_string(s.PrintSize));
    const auto number = [](double v) { return QString::number(v).toStdString(); };
    store.set(Section, "PrinterScale.Left", number(s.margins.left));
    store.set(Section, "PrinterScale.Top", number(s.margins.top));
    store.set(Section, "PrinterScale.Right", number(s.margins.right));
    store.set(Section, "PrinterScale.Bottom", number(s.margins.bottom));
}

void PrintImage(QPrinter& printer, const QImage& picture, const PrintSettings& settings) {
    // Coordinates from the paper's corner, so the margins are the user's own.
    printer.setFullPage(true);
    const QRectF paper = printer.paperRect(QPrinter::Millimeter);
    const PaperRect place = printPlacement(picture.width(), picture.height(), settings.PrintSize,
                                           settings.margins, paper.width(), paper.height());
    QPainter painter;
    if (!painter.begin(&printer)) return;
    if (place.width <= 0 || place.height <= 0) return;
    const double dotsPerMm = printer.resolution() / 25.4;
    const QRectF target(place.x * dotsPerMm, place.y * dotsPerMm, place.width * dotsPerMm,
                        place.height * dotsPerMm);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, target.width() < picture.width());
    painter.drawImage(target, picture);
}

frm_Print::frm_Print(QImage picture, QString documentName, KeyValueStore& store, QWidget* parent)
    : QDialog(parent), picture_(std::move(picture)), documentName_(std::move(documentName)),
      store_(store), printer_(std::make_unique<QPrinter>(QPrinter::HighResolution)) {
    setObjectName("frm_Print");
    setWindowTitle(res(ids::PrintTitle) + " - " + documentName_);
    const PrintSettings s = readPrintSettings(store_);

    PrinterList = new QComboBox;
    PrinterList->setObjectName("PrinterList");
    PrinterList->addItem(res(ids::PrintPdfRow));
    for (const QString& name : QPrinterInfo::availablePrinterNames())
        PrinterList->addItem(name);
    PrintSize = new QSpinBox;
    PrintSize->setObjectName("PrintSize");
    PrintSize->setRange(PrintSizeMin, PrintSizeMax);
    PrintSize->setSuffix(" %");
    PrintSize->setValue(s.PrintSize);
    MarginLeft = marginBox("MarginLeft", s.margins.left);
    MarginTop = marginBox("MarginTop", s.margins.top);
    MarginRight = marginBox("MarginRight", s.margins.right);
    MarginBottom = marginBox("MarginBottom", s.margins.bottom);

    auto* form = new QFormLayout;
    form->addRow(res(ids::PrintPrinter), PrinterList);
    form->addRow(res(ids::PrintSizeLabel), PrintSize);
    form->addRow(res(ids::PrintMarginLeft), MarginLeft);
    form->addRow(res(ids::PrintMarginTop), MarginTop);
    form->addRow(res(ids::PrintMarginRight), MarginRight);
    form->addRow(res(ids::PrintMarginBottom), MarginBottom);

    Preview = new QPrintPreviewWidget(printer_.get());
    Preview->setObjectName("Preview");
    Preview->setMinimumSize(300, 380);
    connect(Preview, &QPrintPreviewWidget::paintRequested, this,
            [this](QPrinter* p) { PrintImage(*p, picture_, chosen()); });

    auto* buttons = new QDialogButtonBox;
    QPushButton* print = buttons->addButton(res(ids::FilePrint), QDialogButtonBox::AcceptRole);
    print->setObjectName("PrintButton");
    buttons->addButton(QDialogButtonBox::Close);
    connect(print, &QPushButton::clicked, this, &frm_Print::printWithDialog);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* left = new QVBoxLayout;
    left->addLayout(form);
    left->addStretch();
    auto* top = new QHBoxLayout;
    top->addLayout(left);
    top->addWidget(Preview, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    const auto refresh = [this] { Preview->updatePreview(); };
    connect(PrintSize, &QSpinBox::valueChanged, this, refresh);
    for (QDoubleSpinBox* box : {MarginLeft, MarginTop, MarginRight, MarginBottom})
        connect(box, &QDoubleSpinBox::valueChanged, this, refresh);
    connect(PrinterList, &QComboBox::currentIndexChanged, this, [this] {
        choosePrinter();
        Preview->updatePreview();
    });
    choosePrinter();
}

frm_Print::~frm_Print() = default;

PrintSettings frm_Print::chosen() const {
    PrintSettings s;
    s.PrintSize = PrintSize->value();
    s.margins = {MarginLeft->value(), MarginTop->value(), MarginRight->value(),
                 MarginBottom->value()};
    return s;
}

void frm_Print::choosePrinter() {
    if (PrinterList->currentIndex() <= 0) {
        printer_->setOutputFormat(QPrinter::PdfFormat);
        printer_->setOutputFileName(pdfFile_);
    } else {
        printer_->setOutputFormat(QPrinter::NativeFormat);
        printer_->setPrinterName(PrinterList->currentText());
    }
    printer_->setDocName(documentName_);
}

void frm_Print::setPdfFile(const QString& path) {
    pdfFile_ = path;
    choosePrinter();
}

bool frm_Print::printNow() {
    choosePrinter();
    if (printer_->outputFormat() == QPrinter::PdfFormat && pdfFile_.isEmpty()) return false;
    PrintImage(*printer_, picture_, chosen());
    writePrintSettings(store_, chosen());
    return true;
}

void frm_Print::printWithDialog() {
    if (PrinterList->currentIndex() <= 0) {
        const QString path = QFileDialog::getSaveFileName(this, res(ids::PrintTitle),
                                                          documentName_ + ".pdf", "PDF (*.pdf)");
        if (path.isEmpty()) return;
        setPdfFile(path);
    } else {
        QPrintDialog dialog(printer_.get(), this);
        if (dialog.exec() != QDialog::Accepted) return;
    }
    if (printNow()) accept();
}

void frm_Print::done(int result) {
    writePrintSettings(store_, chosen());
    QDialog::done(result);
}

} // namespace lumiran
