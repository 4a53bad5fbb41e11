#pragma once

#include "tools/print_layout.h"

#include <QDialog>
#include <QImage>

class QComboBox;
class QDoubleSpinBox;
class QPrinter;
class QPrintPreviewWidget;
class QPushButton;
class QSpinBox;

namespace lumiran {

class KeyValueStore;

struct PrintSettings {
    int PrintSize = 400;
    PrintMargins margins;
};

// "PrintSize" and "PrinterScale.*" of the section "Settings".
[[nodiscard]] PrintSettings readPrintSettings(const KeyValueStore& store);
void writePrintSettings(KeyValueStore& store, const PrintSettings& settings);

// Paints the picture on the printer's page at the chosen size.
void PrintImage(QPrinter& printer, const QImage& picture, const PrintSettings& settings);

// The print dialog: the printer (or a PDF file), the picture's size on paper
// and the margins, with a preview of the page. The settings are stored when
// a page is printed and when the dialog closes.
class frm_Print : public QDialog {
    Q_OBJECT
  public:
    frm_Print(QImage picture, QString documentName, KeyValueStore& store, QWidget* parent);
    ~frm_Print() override;

    [[nodiscard]] PrintSettings chosen() const;
    // The printer the dialog prints on; the first row of the printer list is
    // a PDF file.
    [[nodiscard]] QPrinter& printer() { return *printer_; }
    // Prints to the chosen printer without asking (the PDF row needs a file
    // name set with `setPdfFile` or asks for one).
    bool printNow();
    void setPdfFile(const QString& path);

    QComboBox* PrinterList = nullptr;
    QSpinBox* PrintSize = nullptr;
    QDoubleSpinBox* MarginLeft = nullptr;
    QDoubleSpinBox* MarginTop = nullptr;
    QDoubleSpinBox* MarginRight = nullptr;
    QDoubleSpinBox* MarginBottom = nullptr;
    QPrintPreviewWidget* Preview = nullptr;

  protected:
    void done(int result) override;

  private:
    void choosePrinter();
    void printWithDialog();

    QImage picture_;
    QString documentName_;
    KeyValueStore& store_;
    std::unique_ptr<QPrinter> printer_;
    QString pdfFile_;
};

} // namespace lumiran
